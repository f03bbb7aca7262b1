// Certificates, CRLs and requests of the test's own time, signed by libcrypto.
#pragma once

#include "support/bytes.hpp"

#include <ctime>
#include <map>
#include <memory>
#include <openssl/evp.h>
#include <openssl/x509.h>

namespace za::test {

// Of tests/data/keys; they stay.
inline EVP_PKEY *key_named(const std::string &name) {
    static std::map<std::string, std::shared_ptr<EVP_PKEY>> keys;
    std::shared_ptr<EVP_PKEY> &key = keys[name];
    if (key == nullptr) {
        const Octets der = data_file("keys/" + name + ".der");
        const uint8_t *at = der.data();
        key.reset(d2i_AutoPrivateKey(nullptr, &at, long(der.size())), EVP_PKEY_free);
    }
    return key.get();
}

inline time_t epoch() {
    static const time_t start = time(nullptr);
    return start;
}

struct Issue {
    const char *issuer = "CA";
    uint8_t string_type = 0x13;  // of the issuer's name
    const char *subject = "User";
    int64_t from = -1000;  // seconds from the epoch
    int64_t to = 1000;
    bool generalized = false;
    const EVP_MD *digest = EVP_sha256();
    std::string algorithm = "2A 86 48 86 F7 0D 01 01 0B";
};

inline Octets name_of(const std::string &text, uint8_t string_type) {
    const Octets value = element(string_type, {text.begin(), text.end()});
    return sequence({element(0x31, sequence({{6, 3, 0x55, 4, 3}, value}))});
}

inline Octets time_of(const Issue &issue, int64_t seconds) {
    const time_t time = epoch() + seconds;
    char text[16];
    const char *format = issue.generalized ? "%Y%m%d%H%M%SZ" : "%y%m%d%H%M%SZ";
    const size_t size = std::strftime(text, sizeof text, format, std::gmtime(&time));
    return element(issue.generalized ? 0x18 : 0x17, {text, text + size});
}

inline Octets public_key_of(const char *key) {
    uint8_t *der = nullptr;
    const int size = i2d_PUBKEY(key_named(key), &der);
    const Octets octets(der, der + size);
    OPENSSL_free(der);
    return octets;
}

enum Kind { kCertificate, kCertificateByKey, kCrl, kRequest };

// With the signer's own key in it.
inline Octets issued(Kind kind, const char *signer, const Issue &issue = {}) {
    const Octets algorithm = sequence({element(6, from_hex(issue.algorithm)), {5, 0}});
    const Octets issuer = name_of(issue.issuer, issue.string_type);
    const Octets subject = name_of(issue.subject, 0x13);
    const Octets from = time_of(issue, issue.from);
    const Octets validity = sequence({from, time_of(issue, issue.to)});
    const Octets key = public_key_of(signer);
    const Octets head = from_hex("A0 03 02 01 02 02 01 4D");  // version 3, a serial number
    const Octets tbs = kind == kRequest ? sequence({{2, 1, 0}, subject, key, {0xA0, 0}})
                       : kind == kCrl   ? sequence({{2, 1, 1}, algorithm, issuer, from})
                                      : sequence({head, algorithm, issuer, validity, subject, key});

    const std::shared_ptr<EVP_MD_CTX> md(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    Octets bits(1 + 512);
    size_t size = 512;
    EVP_DigestSignInit(md.get(), nullptr, issue.digest, nullptr, key_named(signer));
    EVP_DigestSign(md.get(), &bits[1], &size, tbs.data(), tbs.size());
    bits.resize(1 + size);
    return sequence({tbs, algorithm, element(3, bits)});
}

}  // namespace za::test
