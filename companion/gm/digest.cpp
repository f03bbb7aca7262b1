#include "gm.hpp"

namespace zacert_gm {
namespace {

bool digest(const EVP_MD *algorithm, std::initializer_list<Bytes> parts, Digest &out) {
    const std::unique_ptr<EVP_MD_CTX, Release<EVP_MD_CTX_free>> context(EVP_MD_CTX_new());
    if (!context || EVP_DigestInit_ex(context.get(), algorithm, nullptr) != 1) {
        return false;
    }
    for (const Bytes part : parts) {
        if (EVP_DigestUpdate(context.get(), part.data(), part.size()) != 1) {
            return false;
        }
    }
    return EVP_DigestFinal_ex(context.get(), out.data(), nullptr) == 1;
}

}  // namespace

bool sm3(std::initializer_list<Bytes> parts, Digest &out) {
    return digest(EVP_sm3(), parts, out);
}

bool sha256(Bytes in, Digest &out) {
    return digest(EVP_sha256(), {in}, out);
}

// Z = SM3(ENTL || identifier || a || b || base point || public point), where ENTL counts the bits
// of the identifier in two octets (GB/T 32918.2, 5.5).
bool sm2_digest(Bytes id, const ZA_ECCPOINT &pub, Bytes in, Digest &out) {
    static_assert(ZACERT_GM_MAX_ID_LEN * 8 <= 0xFFFF);
    const size_t bits = id.size() * 8;
    const uint8_t entl[] = {static_cast<uint8_t>(bits >> 8), static_cast<uint8_t>(bits)};
    Digest z;
    return sm3({entl, id, kSm2.of_z(), pub.x, pub.y}, z) && sm3({z, in}, out);
}

}  // namespace zacert_gm

using namespace zacert_gm;

int32_t zacert_gm_sm3(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                      void *context) {
    return answer(in, inLen, out, outLen, context, false, ZACERT_GM_DIGEST_LEN, [&](Bytes octets) {
        Digest digest;
        if (!sm3({octets}, digest)) {
            return ZACERT_DigestedErr;
        }
        *outLen = ZACERT_GM_DIGEST_LEN;
        std::ranges::copy(digest, out);
        return ZACERT_Result{};
    });
}

int32_t zacert_gm_sm2_digest(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                             void *context) {
    return answer(in, inLen, out, outLen, context, true, ZACERT_GM_DIGEST_LEN, [&](Bytes octets) {
        zacert_gm_identity identity;
        if (!read_identity(context, identity)) {
            return ZACERT_TypeErr;
        }
        Digest digest;
        if (!sm2_digest({identity.id, identity.idLen}, identity.pub, octets, digest)) {
            return ZACERT_DigestedErr;
        }
        *outLen = ZACERT_GM_DIGEST_LEN;
        std::ranges::copy(digest, out);
        return ZACERT_Result{};
    });
}
