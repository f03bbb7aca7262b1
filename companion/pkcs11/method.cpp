#include "key.hpp"

#include <openssl/bn.h>
#include <openssl/ec.h>

namespace zacert_pkcs11 {
namespace {

// DigestInfo ::= SEQUENCE { digestAlgorithm SEQUENCE { algorithm OBJECT IDENTIFIER,
//     parameters NULL }, digest OCTET STRING } up to the digest's octets (RFC 8017, 9.2)
constexpr uint8_t kSha1Info[] = {0x30, 0x21, 0x30, 0x09, 0x06, 0x05, 0x2B, 0x0E,
                                 0x03, 0x02, 0x1A, 0x05, 0x00, 0x04, 0x14};
constexpr uint8_t kSha256Info[] = {0x30, 0x31, 0x30, 0x0D, 0x06, 0x09, 0x60, 0x86, 0x48, 0x01,
                                   0x65, 0x03, 0x04, 0x02, 0x01, 0x05, 0x00, 0x04, 0x20};
constexpr uint8_t kSha384Info[] = {0x30, 0x41, 0x30, 0x0D, 0x06, 0x09, 0x60, 0x86, 0x48, 0x01,
                                   0x65, 0x03, 0x04, 0x02, 0x02, 0x05, 0x00, 0x04, 0x30};
constexpr uint8_t kSha512Info[] = {0x30, 0x51, 0x30, 0x0D, 0x06, 0x09, 0x60, 0x86, 0x48, 0x01,
                                   0x65, 0x03, 0x04, 0x02, 0x03, 0x05, 0x00, 0x04, 0x40};

struct DigestRow {
    int32_t selector;
    const EVP_MD *(*md)();
    Bytes info;
    CK_MECHANISM_TYPE rsa;
    CK_MECHANISM_TYPE ecdsa;
};

constexpr DigestRow kDigests[] = {
    {7, EVP_sha1, kSha1Info, CKM_SHA1_RSA_PKCS, CKM_ECDSA_SHA1},
    {9, EVP_sha256, kSha256Info, CKM_SHA256_RSA_PKCS, CKM_ECDSA_SHA256},
    {11, EVP_sha384, kSha384Info, CKM_SHA384_RSA_PKCS, CKM_ECDSA_SHA384},
    {13, EVP_sha512, kSha512Info, CKM_SHA512_RSA_PKCS, CKM_ECDSA_SHA512},
};
constexpr int32_t kNoDigest = 0;

bool can_sign(const TokenKey &key, CK_MECHANISM_TYPE mechanism) {
    return std::ranges::count(key.mechanisms, mechanism) > 0;
}

uint32_t make_digest(const EVP_MD *md, Bytes in, std::vector<uint8_t> &out) {
    const size_t before = out.size();
    out.resize(before + static_cast<size_t>(EVP_MD_get_size(md)));
    return EVP_Digest(in.data(), in.size(), &out[before], nullptr, md, nullptr) == 1
               ? 0
               : uint32_t{ZACERT_DigestedErr};
}

// EMSA-PKCS1-v1_5 puts at least eleven octets before what is signed (RFC 8017, 9.2); ECDSA takes
// digests, of which SHA-512's is the longest.
size_t most_input(const TokenKey &key) {
    constexpr size_t kPadding = 11;
    return key.rsa ? key.most - std::min(key.most, kPadding) : EVP_MAX_MD_SIZE;
}

}  // namespace

uint32_t choose_method(const TokenKey &key, int32_t digest, Method &out) {
    const CK_MECHANISM_TYPE plain = key.rsa ? CKM_RSA_PKCS : CKM_ECDSA;
    const auto *const row = std::ranges::find(kDigests, digest, &DigestRow::selector);
    const bool known = row != std::end(kDigests);
    if (!known && digest != kNoDigest) {
        return ZACERT_InvalidSignatureAlgErr;
    }
    if (can_sign(key, plain)) {
        out = known ? Method{row->md(), key.rsa ? row->info : Bytes(), plain}
                    : Method{nullptr, {}, plain};
        return 0;
    }
    if (!known || !can_sign(key, key.rsa ? row->rsa : row->ecdsa)) {
        return ZACERT_InvalidSignatureAlgErr;
    }
    out = {nullptr, {}, key.rsa ? row->rsa : row->ecdsa};
    return 0;
}

uint32_t prepare(const TokenKey &key, const Method &method, Bytes in, std::vector<uint8_t> &out) {
    if (method.md == nullptr) {
        out.assign(in.begin(), in.end());
    } else {
        out.assign(method.prefix.begin(), method.prefix.end());
        if (const uint32_t code = make_digest(method.md, in, out)) {
            return code;
        }
    }
    const bool plain = method.mechanism == CKM_RSA_PKCS || method.mechanism == CKM_ECDSA;
    if (plain && out.size() > most_input(key)) {
        return ZACERT_LengthErr;
    }
    // ECDSA takes the leading bits of a digest longer than the order (FIPS 186-4, 6.4), but not
    // every token cuts it.
    if (plain && !key.rsa && out.size() > key.coordinate) {
        out.resize(key.coordinate);
    }
    return 0;
}

uint32_t to_der(Bytes halves, std::vector<uint8_t> &out) {
    const size_t half = halves.size() / 2;
    const std::unique_ptr<ECDSA_SIG, Release<ECDSA_SIG_free>> sig(ECDSA_SIG_new());
    BIGNUM *const r = BN_bin2bn(halves.data(), static_cast<int>(half), nullptr);
    BIGNUM *const s = BN_bin2bn(halves.data() + half, static_cast<int>(half), nullptr);
    if (!sig || r == nullptr || s == nullptr || ECDSA_SIG_set0(sig.get(), r, s) != 1) {
        BN_free(r);
        BN_free(s);
        return ZACERT_MemoryErr;
    }
    const int len = i2d_ECDSA_SIG(sig.get(), nullptr);
    if (len <= 0) {
        return ZACERT_MemoryErr;
    }
    out.resize(static_cast<size_t>(len));
    uint8_t *end = out.data();
    return i2d_ECDSA_SIG(sig.get(), &end) == len ? 0 : uint32_t{ZACERT_MemoryErr};
}

}  // namespace zacert_pkcs11
