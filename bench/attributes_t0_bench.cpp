// Decoding a certificate and reading what an application usually wants to know of it.
#include "certificates.hpp"

#include <array>
#include <mbedtls/x509_crt.h>

namespace {

constexpr size_t kBuffer = 8192;

constexpr std::array kAttributes{
    CERT_TBS_CERTIFICATE,
    CERT_OUTER_SIGNATUREALGORITHM,
    CERT_CA_SIGNATURE,
    CERT_SERIALNUMBER,
    CERT_INNER_SIGNATUREALGORITHM,
    CERT_ISSUER_DERDN,
    CERT_ISSUER_COMMONNAME,
    CERT_SUBJECT_DERDN,
    CERT_SUBJECT_ORGANIZATIONNAME,
    CERT_SUBJECT_COMMONNAME,
    CERT_PUBLICKEY_ALGORITHM,
    CERT_SUBJECTPUBLICKEYINFO,
    CERTEX_AUTHORITYKEYIDENTIFIER,
    CERTEX_SUBJECTKEYIDENTIFIER,
    CERTEX_KEYUSAGE,
    CERTEX_AUTHORITY,
};
static_assert(kAttributes.size() == 16);

// Both calls: the first asks for the length, the second for the octets.
void read_attribute(void *context, int32_t type) {
    std::array<uint8_t, kBuffer> octets;
    uint32_t length = 0;
    bench::check(ZACert_GetCertAttributeChar(context, type, nullptr, &length) == 0 &&
                     length <= octets.size() &&
                     ZACert_GetCertAttributeChar(context, type, octets.data(), &length) == 0,
                 "ZACert_GetCertAttributeChar");
    benchmark::DoNotOptimize(octets.data());
}

double ours() {
    return bench::nanoseconds([] {
        for (const bench::Der &der : bench::bundle()) {
            void *context = bench::create_context();
            bench::decode(context, der);
            for (const int32_t type : kAttributes) {
                read_attribute(context, type);
            }
            bench::destroy_context(context);
        }
    });
}

// mbedTLS has getters for both names, the serial number, the signature algorithm and the key. What
// it keeps as fields (version, validity, key usage, cA flag; tbs, signature and the names' DER as
// views) is read where it stands, as its users do. It reads neither key identifier.
void read_mbedtls(const mbedtls_x509_crt &certificate) {
    std::array<char, kBuffer> text;
    for (const mbedtls_x509_name *name : {&certificate.issuer, &certificate.subject}) {
        bench::check(mbedtls_x509_dn_gets(text.data(), text.size(), name) >= 0,
                     "mbedtls_x509_dn_gets");
        benchmark::DoNotOptimize(text.data());
    }
    bench::check(mbedtls_x509_serial_gets(text.data(), text.size(), &certificate.serial) > 0,
                 "mbedtls_x509_serial_gets");
    benchmark::DoNotOptimize(text.data());
    bench::check(
        mbedtls_x509_sig_alg_gets(text.data(), text.size(), &certificate.sig_oid,
                                  certificate.sig_pk, certificate.sig_md, certificate.sig_opts) > 0,
        "mbedtls_x509_sig_alg_gets");
    benchmark::DoNotOptimize(text.data());
    benchmark::DoNotOptimize(mbedtls_pk_get_name(&certificate.pk));
    benchmark::DoNotOptimize(mbedtls_pk_get_bitlen(&certificate.pk));

    for (const mbedtls_x509_buf *view : {&certificate.tbs, &certificate.sig, &certificate.sig_oid,
                                         &certificate.issuer_raw, &certificate.subject_raw}) {
        benchmark::DoNotOptimize(view->p);
        benchmark::DoNotOptimize(view->len);
    }
    benchmark::DoNotOptimize(certificate.version);
    benchmark::DoNotOptimize(certificate.valid_from.year);
    benchmark::DoNotOptimize(certificate.valid_to.year);
    benchmark::DoNotOptimize(certificate.key_usage);
    benchmark::DoNotOptimize(certificate.ca_istrue);
}

double with_mbedtls() {
    return bench::nanoseconds([] {
        for (const bench::Der &der : bench::bundle()) {
            mbedtls_x509_crt certificate;
            mbedtls_x509_crt_init(&certificate);
            bench::check(mbedtls_x509_crt_parse_der(&certificate, der.data(), der.size()) == 0,
                         "mbedtls_x509_crt_parse_der");
            read_mbedtls(certificate);
            mbedtls_x509_crt_free(&certificate);
        }
    });
}

void attributes_against_mbedtls(benchmark::State &state) {
    bench::compare(state, bench::per_certificate(2.5, "mbedTLS"), ours, with_mbedtls);
}

ZA_PAIRED_BENCHMARK(attributes_against_mbedtls);

}  // namespace

int main(int argc, char **argv) {
    return bench::run(argc, argv);
}
