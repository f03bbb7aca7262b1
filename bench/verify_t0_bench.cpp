// What it costs to check a certificate's signature by its issuer's certificate, both given as DER.
#include "certificates.hpp"

#include <openssl/evp.h>

namespace {

constexpr size_t kVerifications = 20;  // in one repetition

struct FreeKey {
    void operator()(EVP_PKEY *key) const { EVP_PKEY_free(key); }
};
using Key = std::unique_ptr<EVP_PKEY, FreeKey>;

Key new_key() {
    Key key(EVP_PKEY_Q_keygen(nullptr, nullptr, "RSA", size_t{2048}));
    bench::check(key != nullptr, "EVP_PKEY_Q_keygen");
    return key;
}

void add_entry(X509_NAME *name, const char *key, const char *value) {
    const auto *octets = reinterpret_cast<const unsigned char *>(value);
    bench::check(X509_NAME_add_entry_by_txt(name, key, MBSTRING_ASC, octets, -1, -1, 0) == 1,
                 "X509_NAME_add_entry_by_txt");
}

void set_name(X509_NAME *name, const char *common_name) {
    add_entry(name, "C", "CN");
    add_entry(name, "O", "Organization");
    add_entry(name, "OU", "Unit");
    add_entry(name, "CN", common_name);
}

// RSA with SHA-256, as most certificates are signed.
bench::Der new_certificate(const char *subject, EVP_PKEY *key, EVP_PKEY *signer) {
    const std::unique_ptr<X509, decltype(&X509_free)> x(X509_new(), X509_free);
    X509_set_version(x.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(x.get()), 1);
    set_name(X509_get_issuer_name(x.get()), "CA");
    set_name(X509_get_subject_name(x.get()), subject);
    X509_gmtime_adj(X509_getm_notBefore(x.get()), 0);
    X509_gmtime_adj(X509_getm_notAfter(x.get()), 86400);
    X509_set_pubkey(x.get(), key);
    bench::check(X509_sign(x.get(), signer, EVP_sha256()) > 0, "X509_sign");
    unsigned char *octets = nullptr;
    const int size = i2d_X509(x.get(), &octets);
    bench::check(size > 0, "i2d_X509");
    const bench::Der der(octets, octets + size);
    OPENSSL_free(octets);
    return der;
}

struct Pair {
    bench::Der ca;
    bench::Der user;
};

const Pair &pair() {
    static const Pair made = [] {
        const Key ca = new_key();
        const Key user = new_key();
        return Pair{new_certificate("CA", ca.get(), ca.get()),
                    new_certificate("User", user.get(), ca.get())};
    }();
    return made;
}

double ours() {
    return bench::nanoseconds([] {
        for (size_t i = 0; i < kVerifications; ++i) {
            const auto &[ca, user] = pair();
            bench::check(ZA_VerifyCert(ca.data(), static_cast<uint32_t>(ca.size()), user.data(),
                                       static_cast<uint32_t>(user.size())) == 0,
                         "ZA_VerifyCert");
        }
    });
}

double with_openssl() {
    return bench::nanoseconds([] {
        for (size_t i = 0; i < kVerifications; ++i) {
            X509 *ca = bench::decode_openssl(pair().ca);
            X509 *user = bench::decode_openssl(pair().user);
            bench::check(X509_verify(user, X509_get0_pubkey(ca)) == 1, "X509_verify");
            X509_free(user);
            X509_free(ca);
        }
    });
}

void verify_against_openssl(benchmark::State &state) {
    bench::compare(state, {0.15, "certificate", kVerifications, "OpenSSL"}, ours, with_openssl);
}

ZA_PAIRED_BENCHMARK(verify_against_openssl);

}  // namespace

int main(int argc, char **argv) {
    return bench::run(argc, argv);
}
