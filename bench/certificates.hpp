// The machine's trusted certificates, and the handles of the libraries that decode them.
#pragma once

#include <zacert.h>

#include "paired.hpp"

#include <cstdint>
#include <memory>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <vector>

namespace bench {

using Der = std::vector<uint8_t>;

inline std::vector<Der> read_bundle() {
    constexpr const char *kBundle = "/etc/ssl/certs/ca-certificates.crt";
    std::vector<Der> certificates;
    const std::unique_ptr<BIO, decltype(&BIO_free)> file(BIO_new_file(kBundle, "r"), BIO_free);
    char *name = nullptr;
    char *header = nullptr;
    unsigned char *octets = nullptr;
    long size = 0;
    while (file != nullptr && PEM_read_bio(file.get(), &name, &header, &octets, &size) == 1) {
        certificates.emplace_back(octets, octets + size);
        OPENSSL_free(name);
        OPENSSL_free(header);
        OPENSSL_free(octets);
    }
    return certificates;
}

inline const std::vector<Der> &bundle() {
    static const std::vector<Der> certificates = read_bundle();
    return certificates;
}

inline Bar per_certificate(double most_ratio, const char *peer) {
    return {most_ratio, "certificate", bundle().size(), peer};
}

inline void *create_context() {
    void *context = nullptr;
    check(ZACert_CreateCertDecodeCtx(&context) == 0, "ZACert_CreateCertDecodeCtx");
    return context;
}

inline void decode(void *context, const Der &der) {
    check(ZACert_DecodeCert(context, der.data(), static_cast<uint32_t>(der.size())) == 0,
          "ZACert_DecodeCert");
}

inline void destroy_context(void *context) {
    check(ZACert_DestroyCertDecodeCtx(context) == 0, "ZACert_DestroyCertDecodeCtx");
}

inline X509 *decode_openssl(const Der &der) {
    const unsigned char *octets = der.data();
    X509 *certificate = d2i_X509(nullptr, &octets, static_cast<long>(der.size()));
    check(certificate != nullptr, "d2i_X509");
    return certificate;
}

}  // namespace bench
