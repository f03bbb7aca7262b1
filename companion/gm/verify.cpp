#include "gm.hpp"

#include <cstring>
#include <openssl/ec.h>

namespace {

using namespace zacert_gm;

struct VerifyId {
    uint32_t len = 0;
    std::array<uint8_t, ZACERT_GM_MAX_ID_LEN> octets{};

    Bytes bytes() const { return len == 0 ? default_id() : Bytes(octets.data(), len); }
};

thread_local VerifyId verify_id;

int32_t verify_der(const Curve &curve, const ZA_ECCPOINT &pub, Bytes digest, Bytes der,
                   uint32_t *result) {
    const Key key = make_key(curve, pub);
    const std::unique_ptr<EVP_PKEY_CTX, Release<EVP_PKEY_CTX_free>> context(
        key ? EVP_PKEY_CTX_new_from_pkey(nullptr, key.get(), nullptr) : nullptr);
    if (!context || EVP_PKEY_verify_init(context.get()) != 1) {
        return ZACERT_CryptErr;
    }
    // What libcrypto cannot read as a signature it does not tell from one that does not match.
    if (EVP_PKEY_verify(context.get(), der.data(), der.size(), digest.data(), digest.size()) == 1) {
        *result = 1;
    }
    return 0;
}

// Dss-Sig-Value ::= SEQUENCE { r INTEGER, s INTEGER }; libcrypto takes signatures in this form
// alone.
int32_t verify(const Curve &curve, const ZA_ECCPOINT &pub, Bytes digest,
               const ZA_ECCSignStruct &sig, uint32_t *result) {
    const std::unique_ptr<ECDSA_SIG, Release<ECDSA_SIG_free>> halves(ECDSA_SIG_new());
    Number r(BN_bin2bn(sig.r, sizeof sig.r, nullptr));
    Number s(BN_bin2bn(sig.s, sizeof sig.s, nullptr));
    if (!halves || !r || !s || ECDSA_SIG_set0(halves.get(), r.get(), s.get()) != 1) {
        return ZACERT_MemoryErr;
    }
    static_cast<void>(r.release());
    static_cast<void>(s.release());
    std::array<uint8_t, ZACERT_GM_SIGNATURE_LEN> der;
    uint8_t *end = der.data();
    const int len = i2d_ECDSA_SIG(halves.get(), &end);
    if (len <= 0) {
        return ZACERT_MemoryErr;
    }
    return verify_der(curve, pub, digest, Bytes(der.data(), static_cast<size_t>(len)), result);
}

struct Call {
    const uint8_t *tbs;
    uint32_t tbs_len;
    const ZA_ECCSignStruct *sig;
    const ZA_ECCPOINT *pub;
    uint32_t *result;
};

bool complete(const Call &call) {
    return present(call.tbs, call.tbs_len) && call.sig != nullptr && call.pub != nullptr &&
           call.result != nullptr;
}

int32_t verify_octets(const Curve &curve, const Call &call) noexcept {
    if (!complete(call)) {
        return ZACERT_GeneralErr;
    }
    const ErrorMark mark;
    const Bytes tbs(call.tbs, call.tbs_len);
    Digest digest;
    const bool done = curve.number == ZACERT_GM_CURVE_SM2
                          ? sm2_digest(verify_id.bytes(), *call.pub, tbs, digest)
                          : sha256(tbs, digest);
    return done ? verify(curve, *call.pub, digest, *call.sig, call.result)
                : int32_t{ZACERT_DigestedErr};
}

int32_t verify_digest(const Curve &curve, const Call &call) noexcept {
    if (!complete(call)) {
        return ZACERT_GeneralErr;
    }
    if (call.tbs_len != ZACERT_GM_DIGEST_LEN) {
        return ZACERT_LengthErr;
    }
    const ErrorMark mark;
    return verify(curve, *call.pub, {call.tbs, call.tbs_len}, *call.sig, call.result);
}

}  // namespace

uint32_t zacert_gm_set_verify_id(const uint8_t *id, uint32_t idLen) {
    if (!present(id, idLen)) {
        return ZACERT_GeneralErr;
    }
    if (idLen > ZACERT_GM_MAX_ID_LEN) {
        return ZACERT_LengthErr;
    }
    std::copy_n(id, idLen, verify_id.octets.data());
    verify_id.len = idLen;
    return 0;
}

int32_t zacert_gm_sm2_verify(const uint8_t *tbs, uint32_t tbsLen, void *,
                             const ZA_ECCSignStruct *sig, const ZA_ECCPOINT *pub,
                             uint32_t *result) {
    return verify_octets(kSm2, {tbs, tbsLen, sig, pub, result});
}

int32_t zacert_gm_p256_verify(const uint8_t *tbs, uint32_t tbsLen, void *,
                              const ZA_ECCSignStruct *sig, const ZA_ECCPOINT *pub,
                              uint32_t *result) {
    return verify_octets(kP256, {tbs, tbsLen, sig, pub, result});
}

int32_t zacert_gm_verify(const uint8_t *tbs, uint32_t tbsLen, void *pass,
                         const ZA_ECCSignStruct *sig, const ZA_ECCPOINT *pub, uint32_t *result) {
    if (pass == nullptr) {
        return ZACERT_GeneralErr;
    }
    ZACERT_EccCurve domain;
    std::memcpy(&domain, pass, sizeof domain);
    const Curve *const curve = curve_by_domain(domain);
    if (curve == nullptr) {
        return ZACERT_InvalidSignatureAlgErr;
    }
    return verify_octets(*curve, {tbs, tbsLen, sig, pub, result});
}

int32_t zacert_gm_sm2_verify_digest(const uint8_t *tbs, uint32_t tbsLen, void *,
                                    const ZA_ECCSignStruct *sig, const ZA_ECCPOINT *pub,
                                    uint32_t *result) {
    return verify_digest(kSm2, {tbs, tbsLen, sig, pub, result});
}

int32_t zacert_gm_p256_verify_digest(const uint8_t *tbs, uint32_t tbsLen, void *,
                                     const ZA_ECCSignStruct *sig, const ZA_ECCPOINT *pub,
                                     uint32_t *result) {
    return verify_digest(kP256, {tbs, tbsLen, sig, pub, result});
}

int32_t zacert_gm_sm2_verify_pkcs7(const uint8_t *digest, uint32_t digestLen, const uint8_t *sig,
                                   uint32_t sigLen, uint32_t *result, void *context) {
    if (!present(digest, digestLen) || !present(sig, sigLen) || result == nullptr ||
        context == nullptr) {
        return ZACERT_GeneralErr;
    }
    zacert_gm_identity identity;
    if (!read_identity(context, identity)) {
        return ZACERT_TypeErr;
    }
    if (digestLen != ZACERT_GM_DIGEST_LEN) {
        return ZACERT_LengthErr;
    }
    const ErrorMark mark;
    return verify_der(kSm2, identity.pub, {digest, digestLen}, {sig, sigLen}, result);
}
