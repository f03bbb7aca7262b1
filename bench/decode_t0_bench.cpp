// What decoding costs by itself, from creating the context to destroying it.
#include "certificates.hpp"

#include <mbedtls/x509_crt.h>

namespace {

double ours() {
    return bench::nanoseconds([] {
        for (const bench::Der &der : bench::bundle()) {
            void *context = bench::create_context();
            bench::decode(context, der);
            bench::destroy_context(context);
        }
    });
}

double with_mbedtls() {
    return bench::nanoseconds([] {
        for (const bench::Der &der : bench::bundle()) {
            mbedtls_x509_crt certificate;
            mbedtls_x509_crt_init(&certificate);
            bench::check(mbedtls_x509_crt_parse_der(&certificate, der.data(), der.size()) == 0,
                         "mbedtls_x509_crt_parse_der");
            mbedtls_x509_crt_free(&certificate);
        }
    });
}

double with_openssl() {
    return bench::nanoseconds([] {
        for (const bench::Der &der : bench::bundle()) {
            X509_free(bench::decode_openssl(der));
        }
    });
}

void decode_against_mbedtls(benchmark::State &state) {
    bench::compare(state, bench::per_certificate(2.0, "mbedTLS"), ours, with_mbedtls);
}

void decode_against_openssl(benchmark::State &state) {
    bench::compare(state, bench::per_certificate(0.03, "OpenSSL"), ours, with_openssl);
}

ZA_PAIRED_BENCHMARK(decode_against_mbedtls);
ZA_PAIRED_BENCHMARK(decode_against_openssl);

}  // namespace

int main(int argc, char **argv) {
    return bench::run(argc, argv);
}
