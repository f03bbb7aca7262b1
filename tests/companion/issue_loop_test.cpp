// A request becomes a certificate: written, read, issued, read again and verified, with functions of
// the library and callbacks of the companion alone.
#include <zacert.h>
#include <zacert/gm.h>

#include "support/bytes.hpp"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace za::test {
namespace {

Octets octets_of(std::string_view text) {
    return {text.begin(), text.end()};
}

// Signs with an RSAref record, of which the first call of a certificate gets none.
int32_t sign_rsa(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len, void *key) {
    if (out == nullptr) {
        *out_len = 256;
        return 0;
    }
    constexpr int32_t kSha256 = 9;
    return static_cast<int32_t>(ZA_PKCS7_SignedData(kSha256, in, static_cast<int32_t>(in_len), out,
                                                    out_len,
                                                    static_cast<ZA_RSArefPrivateKey *>(key)));
}

struct KeyPair {
    std::string signature_oid;
    std::string key_oid;
    std::string curve_oid;  // empty for RSA
    Octets public_key;      // what attribute 54 takes
    ZACertSignFunc sign;
    Octets secret;
};

template <class Record>
Octets octets_of_record(const Record &record) {
    const auto *first = reinterpret_cast<const uint8_t *>(&record);
    return {first, first + sizeof record};
}

KeyPair make_rsa() {
    ZA_RSArefPublicKey pub{};
    ZA_RSArefPrivateKey secret{};
    EXPECT_EQ(ZA_PKCS7_GenRSAKeyPair_2048(&pub, &secret), 0U);
    ZA_RSAPublicKey record{};
    std::copy_n(pub.modulus, sizeof pub.modulus, record.modulus);
    std::copy_n(pub.exponent, sizeof pub.exponent, record.exponent);
    Octets der(600);
    uint32_t len = 0;
    EXPECT_EQ(ZA_Encode_PublicKey(&record, der.data(), &len), 0U);
    der.resize(len);
    return {"1.2.840.113549.1.1.11", "1.2.840.113549.1.1.1", {}, der, sign_rsa,
            octets_of_record(secret)};
}

KeyPair make_curve(uint32_t curve, std::string signature_oid, std::string curve_oid,
                   ZACertSignFunc sign) {
    const std::array<uint8_t, ZACERT_GM_SCALAR_LEN> scalar{0x12, 0x34, 0x56};
    zacert_gm_key key{};
    EXPECT_EQ(zacert_gm_key_from_scalar(curve, scalar.data(), &key), 0U);
    ZACERT_EccPubKey record{};
    std::copy_n(key.identity.pub.x, sizeof record.x, record.x);
    std::copy_n(key.identity.pub.y, sizeof record.y, record.y);
    Octets der(600);
    uint32_t len = 0;
    EXPECT_EQ(ZACERT_EncodeEccPubKey(&record, sizeof record, der.data(), &len), 0U);
    der.resize(len);
    return {signature_oid, "1.2.840.10045.2.1", curve_oid, der, sign, octets_of_record(key)};
}

Octets oid(const std::string &dotted) {
    Octets content(64);
    uint32_t len = 0;
    EXPECT_EQ(ZACert_GetOIDValue(dotted.data(), static_cast<uint32_t>(dotted.size()),
                                 content.data(), &len),
              0U);
    content.resize(len);
    return content;
}

using Set = uint32_t (*)(void *, int32_t, const uint8_t *, int32_t);
using Get = uint32_t (*)(void *, int32_t, uint8_t *, uint32_t *);
using Encode = uint32_t (*)(void *, uint8_t *, uint32_t *);

void set(Set function, void *ctx, int32_t type, const Octets &value) {
    EXPECT_EQ(function(ctx, type, value.data(), static_cast<int32_t>(value.size())), 0U) << type;
}

Octets get(Get function, void *ctx, int32_t type) {
    uint32_t len = 0;
    EXPECT_EQ(function(ctx, type, nullptr, &len), 0U) << type;
    Octets value(len);
    EXPECT_EQ(function(ctx, type, value.data(), &len), 0U) << type;
    return value;
}

Octets encode(Encode function, void *ctx) {
    uint32_t len = 0;
    EXPECT_EQ(function(ctx, nullptr, &len), 0U);
    Octets der(len);
    EXPECT_EQ(function(ctx, der.data(), &len), 0U);
    return der;
}

constexpr std::string_view kUnstructuredName = "1.2.840.113549.1.9.2";

Octets make_request(const KeyPair &key) {
    void *ctx = nullptr;
    EXPECT_EQ(ZACert_CreateCsrEncodeCtx(&ctx), 0U);
    set(ZACert_SetCsrAttributeChar, ctx, CSR_SUBJECT_COUNTRYNAME, octets_of("CN"));
    set(ZACert_SetCsrAttributeChar, ctx, CSR_SUBJECT_COMMONNAME, octets_of("\325\305\310\375"));
    set(ZACert_SetCsrAttributeChar, ctx, CSR_OUTER_SIGNATUREALGORITHM, oid(key.signature_oid));
    set(ZACert_SetCsrAttributeChar, ctx, CSR_PUBLICKEY_ALGORITHM, oid(key.key_oid));
    set(ZACert_SetCsrAttributeChar, ctx, CSR_SUBJECTPUBLICKEYINFO, key.public_key);
    if (!key.curve_oid.empty()) {
        set(ZACert_SetCsrAttributeChar, ctx, CSR_ECC_PUBLICKEY_OID, oid(key.curve_oid));
    }
    const Octets attribute = oid(std::string(kUnstructuredName));
    EXPECT_EQ(
        ZACert_SetCsrAttributePrivate(ctx, attribute.data(), static_cast<int32_t>(attribute.size()),
                                      attribute.data(), 3),
        0U);
    EXPECT_EQ(ZACert_SetCsrSignFunc(ctx, key.sign, key.secret.data(),
                                    static_cast<int32_t>(key.secret.size())),
              0U);
    const Octets der = encode(ZACert_EncodeCsr, ctx);
    EXPECT_EQ(ZACert_DestroyCsrEncodeCtx(ctx), 0U);
    return der;
}

void set_validity_and_signature(void *cert, const KeyPair &signer) {
    EXPECT_EQ(ZACert_SetCertAttributeInt(cert, CERT_VERSION, 2), 0U);
    EXPECT_EQ(ZACert_SetCertAttributeInt(cert, CERT_VALIDFROM, 1700000000), 0U);
    EXPECT_EQ(ZACert_SetCertAttributeInt(cert, CERT_VALIDTO, 2100000000), 0U);
    set(ZACert_SetCertAttributeChar, cert, CERT_SERIALNUMBER, {0x8A, 0x01});
    set(ZACert_SetCertAttributeChar, cert, CERT_INNER_SIGNATUREALGORITHM,
        oid(signer.signature_oid));
    set(ZACert_SetCertAttributeChar, cert, CERT_OUTER_SIGNATUREALGORITHM,
        oid(signer.signature_oid));
    EXPECT_EQ(ZACert_SetCertSignFunc(cert, signer.sign, signer.secret.data(),
                                     static_cast<int32_t>(signer.secret.size())),
              0U);
}

// The subject, key and attributes of a request, and with an issuer's certificate its name.
Octets issue(const Octets &request, const Octets &issuer, const KeyPair &signer, bool has_curve) {
    void *csr = nullptr;
    void *cert = nullptr;
    EXPECT_EQ(ZACert_CreateCsrDecodeCtx(&csr), 0U);
    EXPECT_EQ(ZACert_DecodeCsr(csr, request.data(), static_cast<uint32_t>(request.size())), 0U);
    const Octets name = get(ZACert_GetCsrAttributeChar, csr, CSR_SUBJECT_COMMONNAME);
    if (issuer.empty()) {
        EXPECT_EQ(ZACert_CreateCertEncodeCtx(&cert), 0U);
        set(ZACert_SetCertAttributeChar, cert, CERT_ISSUER_COUNTRYNAME, octets_of("CN"));
        set(ZACert_SetCertAttributeChar, cert, CERT_ISSUER_COMMONNAME, name);
        set(ZACert_SetCertAttributeChar, cert, CERTEX_AUTHORITY, {1});
    } else {
        EXPECT_EQ(ZACert_CreateCertEncodeCtx_Ex(&cert, issuer.data(),
                                                static_cast<uint32_t>(issuer.size())),
                  0U);
    }
    set(ZACert_SetCertAttributeChar, cert, CERT_SUBJECT_COUNTRYNAME,
        get(ZACert_GetCsrAttributeChar, csr, CSR_SUBJECT_COUNTRYNAME));
    set(ZACert_SetCertAttributeChar, cert, CERT_SUBJECT_COMMONNAME, name);
    set(ZACert_SetCertAttributeChar, cert, CERT_PUBLICKEY_ALGORITHM,
        get(ZACert_GetCsrAttributeChar, csr, CSR_PUBLICKEY_ALGORITHM));
    set(ZACert_SetCertAttributeChar, cert, CERT_SUBJECTPUBLICKEYINFO,
        get(ZACert_GetCsrAttributeChar, csr, CSR_SUBJECTPUBLICKEYINFO));
    if (has_curve) {
        set(ZACert_SetCertAttributeChar, cert, CERT_ECC_PUBLICKEY_OID,
            get(ZACert_GetCsrAttributeChar, csr, CSR_ECC_PUBLICKEY_OID));
    }
    uint32_t index = 1;
    Octets type(64), value(64);
    uint32_t type_len = 0, value_len = 0;
    EXPECT_EQ(ZACert_GetCsrAttributePrivate(csr, &index, type.data(), &type_len, value.data(),
                                            &value_len),
              0U);
    EXPECT_EQ(value_len, 3U);
    EXPECT_EQ(ZACert_SetCertAttributePrivate(cert, type.data(), static_cast<int32_t>(type_len), 0,
                                             value.data(), static_cast<int32_t>(value_len)),
              0U);
    set_validity_and_signature(cert, signer);
    const Octets der = encode(ZACert_EncodeCert, cert);
    EXPECT_EQ(ZACert_DestroyCertEncodeCtx(cert), 0U);
    EXPECT_EQ(ZACert_DestroyCsrDecodeCtx(csr), 0U);
    return der;
}

uint32_t verify_request(const Octets &der, bool has_curve) {
    const auto len = static_cast<int32_t>(der.size());
    return has_curve ? ZA_VerifyECCsr(der.data(), len, zacert_gm_verify)
                     : ZA_VerifyCsr_Sign(der.data(), len);
}

uint32_t verify_certificate(const Octets &ca, const Octets &user, bool has_curve) {
    const auto ca_len = static_cast<uint32_t>(ca.size());
    const auto user_len = static_cast<uint32_t>(user.size());
    return has_curve ? ZA_ECC_VerifyCert(ca.data(), ca_len, user.data(), user_len, zacert_gm_verify)
                     : ZA_VerifyCert(ca.data(), ca_len, user.data(), user_len);
}

KeyPair make_sm2() {
    return make_curve(ZACERT_GM_CURVE_SM2, "1.2.156.10197.1.501", "1.2.156.10197.1.301",
                      zacert_gm_sm2_sign);
}

KeyPair make_p256() {
    return make_curve(ZACERT_GM_CURVE_P256, "1.2.840.10045.4.3.2", "1.2.840.10045.3.1.7",
                      zacert_gm_p256_sign);
}

void expect_loop_closes(const KeyPair &key) {
    const bool has_curve = !key.curve_oid.empty();
    const Octets request = make_request(key);
    EXPECT_EQ(verify_request(request, has_curve), 0U);
    const Octets root = issue(request, {}, key, has_curve);
    const Octets user = issue(request, root, key, has_curve);
    EXPECT_EQ(verify_certificate(root, root, has_curve), 0U);
    EXPECT_EQ(verify_certificate(root, user, has_curve), 0U);

    void *ctx = nullptr;
    EXPECT_EQ(ZACert_CreateCertDecodeCtx(&ctx), 0U);
    EXPECT_EQ(ZACert_DecodeCert(ctx, user.data(), static_cast<uint32_t>(user.size())), 0U);
    EXPECT_EQ(get(ZACert_GetCertAttributeChar, ctx, CERT_SUBJECT_COMMONNAME),
              octets_of("\325\305\310\375"));
    EXPECT_EQ(get(ZACert_GetCertAttributeChar, ctx, CERT_ISSUER_DERDN),
              get(ZACert_GetCertAttributeChar, ctx, CERT_SUBJECT_DERDN));
    EXPECT_EQ(ZACert_DestroyCertDecodeCtx(ctx), 0U);

    Octets changed = user;
    changed.back() ^= 1;
    EXPECT_EQ(verify_certificate(root, changed, has_curve), uint32_t{ZACERT_VerifyErr});
}

TEST(IssueLoop, Rsa) {
    expect_loop_closes(make_rsa());
}

TEST(IssueLoop, Sm2) {
    expect_loop_closes(make_sm2());
}

TEST(IssueLoop, P256) {
    expect_loop_closes(make_p256());
}

}  // namespace
}  // namespace za::test
