// What issuing costs by itself: creating a context, setting two names of five entries, a key given as octets and four
// extensions, encoding, destroying. The signature is ready-made; then the same with a real one.
#include <zacert.h>

#include "paired.hpp"

#include <array>
#include <cstring>
#include <mbedtls/asn1write.h>
#include <mbedtls/oid.h>
#include <mbedtls/pk.h>
#include <mbedtls/x509_crt.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>
#include <string_view>
#include <vector>

namespace {

constexpr size_t kCertificates = 20;  // in one repetition

using Octets = std::vector<uint8_t>;

const std::array<uint8_t, 256> kSignature{0x5A, 0x5A};
const std::array<uint8_t, 20> kKeyIdentifier{1, 2, 3, 4, 5};
const std::array<uint8_t, 16> kSerial{0x11, 0x22};
constexpr uint8_t kKeyUsage[] = {0x06};
constexpr uint8_t kOne[] = {1};
constexpr uint8_t kSha256WithRsa[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01, 0x0B};
constexpr uint8_t kRsa[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01, 0x01};
constexpr int32_t kFrom = 1700000000;
constexpr int32_t kTo = 1800000000;

struct Entry {
    int32_t issuer;
    int32_t subject;
    int nid;
    std::string_view text;
};

constexpr Entry kEntries[] = {
    {CERT_ISSUER_COUNTRYNAME, CERT_SUBJECT_COUNTRYNAME, NID_countryName, "CN"},
    {CERT_ISSUER_STATEORPROVINCENAME, CERT_SUBJECT_STATEORPROVINCENAME, NID_stateOrProvinceName,
     "Beijing"},
    {CERT_ISSUER_ORGANIZATIONNAME, CERT_SUBJECT_ORGANIZATIONNAME, NID_organizationName,
     "Example Organisation"},
    {CERT_ISSUER_ORGANIZATIONALUNITNAME, CERT_SUBJECT_ORGANIZATIONALUNITNAME,
     NID_organizationalUnitName, "Example Unit"},
    {CERT_ISSUER_COMMONNAME, CERT_SUBJECT_COMMONNAME, NID_commonName, "www.example.com"},
};
constexpr const char *kNameText =
    "C=CN,ST=Beijing,O=Example Organisation,OU=Example Unit,CN=www.example.com";

EVP_PKEY *private_key() {
    static EVP_PKEY *const key = EVP_RSA_gen(2048);
    return key;
}

// RSAPublicKey
const Octets &public_key() {
    static const Octets octets = [] {
        unsigned char *der = nullptr;
        const int size = i2d_PublicKey(private_key(), &der);
        bench::check(size > 0, "i2d_PublicKey");
        Octets copy(der, der + size);
        OPENSSL_free(der);
        return copy;
    }();
    return octets;
}

// ---- Ours

int32_t give_signature(const uint8_t *, uint32_t, uint8_t *out, uint32_t *out_len, void *) {
    if (out != nullptr) {
        std::memcpy(out, kSignature.data(), kSignature.size());
    }
    *out_len = kSignature.size();
    return 0;
}

size_t sign_with(EVP_PKEY *key, const uint8_t *in, size_t in_len, uint8_t *out, size_t room) {
    EVP_MD_CTX *context = EVP_MD_CTX_new();
    bench::check(EVP_DigestSignInit(context, nullptr, EVP_sha256(), nullptr, key) == 1 &&
                     EVP_DigestSign(context, out, &room, in, in_len) == 1,
                 "EVP_DigestSign");
    EVP_MD_CTX_free(context);
    return room;
}

int32_t sign_really(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len, void *) {
    if (out != nullptr) {
        *out_len = static_cast<uint32_t>(sign_with(private_key(), in, in_len, out, *out_len));
    }
    return 0;
}

template <class Value>
void set(void *cert, int32_t id, const Value &value) {
    bench::check(
        ZACert_SetCertAttributeChar(cert, id, reinterpret_cast<const uint8_t *>(std::data(value)),
                                    static_cast<int32_t>(std::size(value))) == 0,
        "ZACert_SetCertAttributeChar");
}

void fill(void *cert) {
    bench::check(ZACert_SetCertAttributeInt(cert, CERT_VERSION, 2) == 0 &&
                     ZACert_SetCertAttributeInt(cert, CERT_VALIDFROM, kFrom) == 0 &&
                     ZACert_SetCertAttributeInt(cert, CERT_VALIDTO, kTo) == 0,
                 "ZACert_SetCertAttributeInt");
    set(cert, CERT_SERIALNUMBER, kSerial);
    set(cert, CERT_INNER_SIGNATUREALGORITHM, kSha256WithRsa);
    set(cert, CERT_OUTER_SIGNATUREALGORITHM, kSha256WithRsa);
    for (const Entry &entry : kEntries) {
        set(cert, entry.issuer, entry.text);
        set(cert, entry.subject, entry.text);
    }
    set(cert, CERT_PUBLICKEY_ALGORITHM, kRsa);
    set(cert, CERT_SUBJECTPUBLICKEYINFO, public_key());
    set(cert, CERTEX_AUTHORITYKEYIDENTIFIER, kKeyIdentifier);
    set(cert, CERTEX_SUBJECTKEYIDENTIFIER, kKeyIdentifier);
    set(cert, CERTEX_AUTHORITY, kOne);
    set(cert, CERTEX_KEYUSAGE, kKeyUsage);
}

Octets issue(ZACertSignFunc sign) {
    void *cert = nullptr;
    bench::check(ZACert_CreateCertEncodeCtx(&cert) == 0, "ZACert_CreateCertEncodeCtx");
    fill(cert);
    uint32_t len = 0;
    bench::check(ZACert_SetCertSignFunc(cert, sign, nullptr, 0) == 0 &&
                     ZACert_EncodeCert(cert, nullptr, &len) == 0,
                 "ZACert_EncodeCert");
    Octets der(len);
    bench::check(ZACert_EncodeCert(cert, der.data(), &len) == 0, "ZACert_EncodeCert");
    ZACert_DestroyCertEncodeCtx(cert);
    return der;
}

// ---- mbed TLS, whose writer digests what it has signed

int give_signature_to_mbedtls(void *, int (*)(void *, unsigned char *, size_t), void *, int,
                              mbedtls_md_type_t, unsigned int, const unsigned char *,
                              unsigned char *out) {
    std::memcpy(out, kSignature.data(), kSignature.size());
    return 0;
}

size_t signature_size(void *) {
    return kSignature.size();
}

int no_random(void *, unsigned char *, size_t) {
    return 0;
}

mbedtls_pk_context *issuer_key() {
    static mbedtls_pk_context key;
    static const bool ready = [] {
        mbedtls_pk_init(&key);
        return mbedtls_pk_setup_rsa_alt(&key, &key, nullptr, give_signature_to_mbedtls,
                                        signature_size) == 0;
    }();
    bench::check(ready, "mbedtls_pk_setup_rsa_alt");
    return &key;
}

mbedtls_pk_context *subject_key() {
    static mbedtls_pk_context key;
    static const bool ready = [] {
        unsigned char *der = nullptr;
        const int size = i2d_PUBKEY(private_key(), &der);
        mbedtls_pk_init(&key);
        const int result = mbedtls_pk_parse_public_key(&key, der, static_cast<size_t>(size));
        OPENSSL_free(der);
        return result == 0;
    }();
    bench::check(ready, "mbedtls_pk_parse_public_key");
    return &key;
}

void set_mbedtls_extension(mbedtls_x509write_cert &cert, const char *oid, size_t oid_len,
                           uint8_t tag) {
    std::array<uint8_t, 24> der{};
    uint8_t *place = der.data() + der.size();
    const auto length = mbedtls_asn1_write_raw_buffer(&place, der.data(), kKeyIdentifier.data(),
                                                      kKeyIdentifier.size()) +
                        mbedtls_asn1_write_len(&place, der.data(), kKeyIdentifier.size()) +
                        mbedtls_asn1_write_tag(&place, der.data(), tag);
    bench::check(mbedtls_x509write_crt_set_extension(&cert, oid, oid_len, 0, place,
                                                     static_cast<size_t>(length)) == 0,
                 "mbedtls_x509write_crt_set_extension");
}

void issue_with_mbedtls() {
    mbedtls_x509write_cert cert;
    mbedtls_mpi serial;
    mbedtls_x509write_crt_init(&cert);
    mbedtls_mpi_init(&serial);
    mbedtls_x509write_crt_set_version(&cert, MBEDTLS_X509_CRT_VERSION_3);
    mbedtls_x509write_crt_set_md_alg(&cert, MBEDTLS_MD_SHA256);
    mbedtls_x509write_crt_set_subject_key(&cert, subject_key());
    mbedtls_x509write_crt_set_issuer_key(&cert, issuer_key());
    bench::check(
        mbedtls_mpi_read_binary(&serial, kSerial.data(), kSerial.size()) == 0 &&
            mbedtls_x509write_crt_set_serial(&cert, &serial) == 0 &&
            mbedtls_x509write_crt_set_issuer_name(&cert, kNameText) == 0 &&
            mbedtls_x509write_crt_set_subject_name(&cert, kNameText) == 0 &&
            mbedtls_x509write_crt_set_validity(&cert, "20231114221320", "20270115080000") == 0 &&
            mbedtls_x509write_crt_set_basic_constraints(&cert, 1, -1) == 0 &&
            mbedtls_x509write_crt_set_key_usage(&cert, kKeyUsage[0]) == 0,
        "mbedtls_x509write");
    // The identifiers as octets, since its own functions would compute them.
    set_mbedtls_extension(cert, MBEDTLS_OID_AUTHORITY_KEY_IDENTIFIER,
                          MBEDTLS_OID_SIZE(MBEDTLS_OID_AUTHORITY_KEY_IDENTIFIER), 0x80);
    set_mbedtls_extension(cert, MBEDTLS_OID_SUBJECT_KEY_IDENTIFIER,
                          MBEDTLS_OID_SIZE(MBEDTLS_OID_SUBJECT_KEY_IDENTIFIER), 0x04);
    std::array<uint8_t, 2048> der;
    bench::check(mbedtls_x509write_crt_der(&cert, der.data(), der.size(), no_random, nullptr) > 0,
                 "mbedtls_x509write_crt_der");
    mbedtls_mpi_free(&serial);
    mbedtls_x509write_crt_free(&cert);
}

// ---- OpenSSL; its signature is set where signing would set it, and what is signed is encoded as for signing

void add_entries(X509_NAME *name) {
    for (const Entry &entry : kEntries) {
        bench::check(
            X509_NAME_add_entry_by_NID(name, entry.nid, MBSTRING_ASC,
                                       reinterpret_cast<const unsigned char *>(entry.text.data()),
                                       static_cast<int>(entry.text.size()), -1, 0) == 1,
            "X509_NAME_add_entry_by_NID");
    }
}

void add_extensions(X509 *cert) {
    AUTHORITY_KEYID *authority = AUTHORITY_KEYID_new();
    authority->keyid = ASN1_OCTET_STRING_new();
    ASN1_OCTET_STRING *subject = ASN1_OCTET_STRING_new();
    BASIC_CONSTRAINTS *constraints = BASIC_CONSTRAINTS_new();
    ASN1_BIT_STRING *usage = ASN1_BIT_STRING_new();
    constraints->ca = 0xFF;
    bench::check(
        ASN1_OCTET_STRING_set(authority->keyid, kKeyIdentifier.data(), kKeyIdentifier.size()) &&
            ASN1_OCTET_STRING_set(subject, kKeyIdentifier.data(), kKeyIdentifier.size()) &&
            ASN1_BIT_STRING_set_bit(usage, 5, 1) && ASN1_BIT_STRING_set_bit(usage, 6, 1) &&
            X509_add1_ext_i2d(cert, NID_authority_key_identifier, authority, 0, 0) == 1 &&
            X509_add1_ext_i2d(cert, NID_subject_key_identifier, subject, 0, 0) == 1 &&
            X509_add1_ext_i2d(cert, NID_basic_constraints, constraints, 1, 0) == 1 &&
            X509_add1_ext_i2d(cert, NID_key_usage, usage, 1, 0) == 1,
        "X509_add1_ext_i2d");
    AUTHORITY_KEYID_free(authority);
    ASN1_OCTET_STRING_free(subject);
    BASIC_CONSTRAINTS_free(constraints);
    ASN1_BIT_STRING_free(usage);
}

void set_key(X509 *cert) {
    auto *octets =
        static_cast<unsigned char *>(OPENSSL_memdup(public_key().data(), public_key().size()));
    bench::check(X509_PUBKEY_set0_param(X509_get_X509_PUBKEY(cert), OBJ_nid2obj(NID_rsaEncryption),
                                        V_ASN1_NULL, nullptr, octets,
                                        static_cast<int>(public_key().size())) == 1,
                 "X509_PUBKEY_set0_param");
}

void set_signature(X509 *cert) {
    const ASN1_BIT_STRING *signature = nullptr;
    const X509_ALGOR *algorithm = nullptr;
    X509_get0_signature(&signature, &algorithm, cert);
    for (const X509_ALGOR *each : {algorithm, X509_get0_tbs_sigalg(cert)}) {
        X509_ALGOR_set0(const_cast<X509_ALGOR *>(each), OBJ_nid2obj(NID_sha256WithRSAEncryption),
                        V_ASN1_NULL, nullptr);
    }
    bench::check(ASN1_BIT_STRING_set(const_cast<ASN1_BIT_STRING *>(signature),
                                     const_cast<uint8_t *>(kSignature.data()),
                                     static_cast<int>(kSignature.size())) == 1,
                 "ASN1_BIT_STRING_set");
}

void issue_with_openssl() {
    X509 *cert = X509_new();
    BIGNUM *serial = BN_bin2bn(kSerial.data(), kSerial.size(), nullptr);
    bench::check(X509_set_version(cert, 2) == 1 &&
                     BN_to_ASN1_INTEGER(serial, X509_get_serialNumber(cert)) != nullptr &&
                     ASN1_TIME_set(X509_getm_notBefore(cert), kFrom) != nullptr &&
                     ASN1_TIME_set(X509_getm_notAfter(cert), kTo) != nullptr,
                 "X509_set");
    add_entries(X509_get_issuer_name(cert));
    add_entries(X509_get_subject_name(cert));
    set_key(cert);
    add_extensions(cert);
    set_signature(cert);
    unsigned char *tbs = nullptr;
    unsigned char *der = nullptr;
    bench::check(i2d_re_X509_tbs(cert, &tbs) > 0 && i2d_X509(cert, &der) > 0, "i2d_X509");
    OPENSSL_free(tbs);
    OPENSSL_free(der);
    BN_free(serial);
    X509_free(cert);
}

// ---- Comparisons

template <class Issue>
double issued(const Issue &issue_one) {
    return bench::nanoseconds([&] {
        for (size_t i = 0; i < kCertificates; ++i) {
            issue_one();
        }
    });
}

double ours() {
    return issued([] { issue(give_signature); });
}

void encode_against_mbedtls(benchmark::State &state) {
    bench::compare(state, {2.0, "certificate", kCertificates, "mbedTLS"}, ours,
                   [] { return issued(issue_with_mbedtls); });
}

void encode_against_openssl(benchmark::State &state) {
    bench::compare(state, {0.35, "certificate", kCertificates, "OpenSSL"}, ours,
                   [] { return issued(issue_with_openssl); });
}

// Against digest and signature of octets as long as what is signed.
void signing_against_private_operation(benchmark::State &state) {
    constexpr size_t kEnd = 256 + 40;
    const Octets der = issue(sign_really);
    Octets signature(512);
    const auto sign = [&] {
        sign_with(private_key(), der.data(), der.size() - kEnd, signature.data(), signature.size());
    };
    bench::compare(
        state, {1.05, "certificate", kCertificates, "RSA-2048 alone"},
        [] { return issued([] { issue(sign_really); }); }, [&] { return issued(sign); });
}

ZA_PAIRED_BENCHMARK(encode_against_mbedtls);
ZA_PAIRED_BENCHMARK(encode_against_openssl);
ZA_PAIRED_BENCHMARK(signing_against_private_operation);

}  // namespace

int main(int argc, char **argv) {
    return bench::run(argc, argv);
}
