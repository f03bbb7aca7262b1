#include "gm.hpp"

namespace {

using namespace zacert_gm;

using Signature = std::array<uint8_t, ZACERT_GM_SIGNATURE_LEN>;

// Dss-Sig-Value ::= SEQUENCE { r INTEGER, s INTEGER }
bool sign(const Curve &curve, const zacert_gm_key &key, const Digest &digest, Signature &out,
          size_t &out_len) {
    const Key pair = make_key(curve, key.identity.pub, key.d);
    const std::unique_ptr<EVP_PKEY_CTX, Release<EVP_PKEY_CTX_free>> context(
        pair ? EVP_PKEY_CTX_new_from_pkey(nullptr, pair.get(), nullptr) : nullptr);
    out_len = out.size();
    return context && EVP_PKEY_sign_init(context.get()) == 1 &&
           EVP_PKEY_sign(context.get(), out.data(), &out_len, digest.data(), digest.size()) == 1;
}

// `make_digest(key, octets, digest)` gives 0 or the code of a failure.
template <class MakeDigest>
int32_t signed_octets(const Curve &curve, const uint8_t *in, uint32_t in_len, uint8_t *out,
                      uint32_t *out_len, void *context, const MakeDigest &make_digest) {
    const auto body = [&](Bytes octets) -> int32_t {
        Wiped<zacert_gm_key> key;
        if (!read_key(context, curve, key.value)) {
            return ZACERT_TypeErr;
        }
        Digest digest;
        if (const int32_t code = make_digest(key.value, octets, digest); code != 0) {
            return code;
        }
        Signature signature;
        size_t len = 0;
        if (!sign(curve, key.value, digest, signature, len)) {
            return ZACERT_CryptErr;
        }
        std::copy_n(signature.data(), len, out);
        *out_len = static_cast<uint32_t>(len);
        return 0;
    };
    return answer(in, in_len, out, out_len, context, true, ZACERT_GM_SIGNATURE_LEN, body);
}

}  // namespace

int32_t zacert_gm_sm2_sign(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                           void *context) {
    const auto digest = [](const zacert_gm_key &key, Bytes octets, Digest &e) -> int32_t {
        const zacert_gm_identity &self = key.identity;
        return sm2_digest({self.id, self.idLen}, self.pub, octets, e) ? 0 : ZACERT_DigestedErr;
    };
    return signed_octets(kSm2, in, inLen, out, outLen, context, digest);
}

int32_t zacert_gm_sm2_sign_digest(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                                  void *context) {
    const auto given = [](const zacert_gm_key &, Bytes octets, Digest &e) -> int32_t {
        if (octets.size() != e.size()) {
            return ZACERT_LengthErr;
        }
        std::ranges::copy(octets, e.begin());
        return 0;
    };
    return signed_octets(kSm2, in, inLen, out, outLen, context, given);
}

int32_t zacert_gm_p256_sign(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                            void *context) {
    const auto digest = [](const zacert_gm_key &, Bytes octets, Digest &e) -> int32_t {
        return sha256(octets, e) ? 0 : ZACERT_DigestedErr;
    };
    return signed_octets(kP256, in, inLen, out, outLen, context, digest);
}
