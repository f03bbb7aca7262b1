// One-shot signatures and key derivation against the functions of libcrypto that do the same work.
#define OPENSSL_SUPPRESS_DEPRECATED

#include <zacert.h>

#include "paired.hpp"

#include <array>
#include <memory>
#include <openssl/evp.h>
#include <openssl/objects.h>
#include <openssl/pkcs12.h>
#include <openssl/rsa.h>

namespace {

constexpr std::array<uint8_t, 100> kData{1, 2, 3};
constexpr int32_t kSha256 = 9;

struct Signed {
    ZA_RSArefPublicKey pub;
    ZA_RSArefPrivateKey priv;
    std::array<uint8_t, 256> signature;
    uint32_t signature_len;
};

const Signed &sample() {
    static const Signed made = [] {
        Signed fresh{};
        bench::check(
            ZA_PKCS7_GenRSAKeyPair_2048(&fresh.pub, &fresh.priv) == 0 &&
                ZA_PKCS7_SignedData(kSha256, kData.data(), kData.size(), fresh.signature.data(),
                                    &fresh.signature_len, &fresh.priv) == 0,
            "a signed sample");
        return fresh;
    }();
    return made;
}

template <class Call>
double repeated(size_t count, const Call &call) {
    return bench::nanoseconds([&] {
        for (size_t i = 0; i < count; ++i) {
            call();
        }
    });
}

// The operation alone: the peer of ours has the digest ready, and need not compare.
void open_with_libcrypto() {
    const Signed &with = sample();
    RSA *rsa = RSA_new();
    bench::check(RSA_set0_key(rsa, BN_bin2bn(with.pub.modulus, 256, nullptr),
                              BN_bin2bn(with.pub.exponent, 256, nullptr), nullptr) == 1,
                 "RSA_set0_key");
    std::array<uint8_t, 256> opened;
    bench::check(
        RSA_public_decrypt(256, with.signature.data(), opened.data(), rsa, RSA_PKCS1_PADDING) == 51,
        "RSA_public_decrypt");
    RSA_free(rsa);
}

void verify() {
    const Signed &with = sample();
    uint32_t verdict = 0;
    bench::check(
        ZA_PKCS7_VerifySignature(kSha256, kData.data(), kData.size(), with.signature.data(),
                                 with.signature_len, &with.pub, &verdict) == 0 &&
            verdict == 1,
        "ZA_PKCS7_VerifySignature");
}

void verify_against_libcrypto(benchmark::State &state) {
    constexpr size_t kCount = 20;
    sample();
    bench::compare(
        state, {1.35, "signature", kCount, "libcrypto"}, [] { return repeated(kCount, verify); },
        [] { return repeated(kCount, open_with_libcrypto); });
}

void sign() {
    const Signed &with = sample();
    std::array<uint8_t, 256> signature;
    uint32_t len = 0;
    bench::check(ZA_PKCS7_SignedData(kSha256, kData.data(), kData.size(), signature.data(), &len,
                                     &with.priv) == 0,
                 "ZA_PKCS7_SignedData");
}

RSA *private_key() {
    const ZA_RSArefPrivateKey &key = sample().priv;
    RSA *rsa = RSA_new();
    const auto number = [](const uint8_t *octets, int len) {
        return BN_bin2bn(octets, len, nullptr);
    };
    bench::check(
        RSA_set0_key(rsa, number(key.modulus, 256), number(key.publicExponent, 256),
                     number(key.exponent, 256)) == 1 &&
            RSA_set0_factors(rsa, number(key.prime1, 128), number(key.prime2, 128)) == 1 &&
            RSA_set0_crt_params(rsa, number(key.primeExponent1, 128),
                                number(key.primeExponent2, 128), number(key.coefficient, 128)) == 1,
        "the parts of a key");
    return rsa;
}

void sign_with_cached_key(RSA *rsa) {
    std::array<uint8_t, 32> digest;
    std::array<uint8_t, 256> signature;
    unsigned len = 0;
    bench::check(EVP_Digest(kData.data(), kData.size(), digest.data(), nullptr, EVP_sha256(),
                            nullptr) == 1 &&
                     RSA_sign(NID_sha256, digest.data(), 32, signature.data(), &len, rsa) == 1,
                 "RSA_sign");
}

// Ours loads the key each time and readies it against side channels, so this tells what that costs.
// Nobody asks for more; the bar tells when it gets worse.
void sign_against_cached_key(benchmark::State &state) {
    constexpr size_t kCount = 5;
    const std::unique_ptr<RSA, decltype(&RSA_free)> key(private_key(), RSA_free);
    bench::compare(
        state, {2.5, "signature", kCount, "a key kept"}, [] { return repeated(kCount, sign); },
        [&] { return repeated(kCount, [&] { sign_with_cached_key(key.get()); }); });
}

constexpr std::array<uint8_t, 6> kPassword{'a', 'b', 'c', '1', '2', '3'};
constexpr std::array<uint8_t, 14> kWide{0, 'a', 0, 'b', 0, 'c', 0, '1', 0, '2', 0, '3', 0, 0};
std::array<uint8_t, 8> salt{1, 2, 3, 4, 5, 6, 7, 8};
constexpr uint32_t kRounds = 2000;

void derive() {
    std::array<uint8_t, 20> key;
    bench::check(
        ZA_PKCS12_GenRandomFromPassword(7, kPassword.data(), kPassword.size(), salt.data(),
                                        salt.size(), 3, kRounds, key.data(), key.size()) == 0,
        "ZA_PKCS12_GenRandomFromPassword");
    benchmark::DoNotOptimize(key);
}

void derive_with_libcrypto() {
    std::array<uint8_t, 20> key;
    std::array<uint8_t, kWide.size()> password = kWide;
    bench::check(PKCS12_key_gen_uni(password.data(), password.size(), salt.data(), salt.size(), 3,
                                    kRounds, key.size(), key.data(), EVP_sha1()) == 1,
                 "PKCS12_key_gen_uni");
    benchmark::DoNotOptimize(key);
}

void derive_against_libcrypto(benchmark::State &state) {
    bench::compare(
        state, {0.75, "key of 2000 rounds", 1, "libcrypto"}, [] { return repeated(1, derive); },
        [] { return repeated(1, derive_with_libcrypto); });
}

ZA_PAIRED_BENCHMARK(verify_against_libcrypto);
ZA_PAIRED_BENCHMARK(derive_against_libcrypto);
ZA_PAIRED_BENCHMARK(sign_against_cached_key);

}  // namespace

int main(int argc, char **argv) {
    return bench::run(argc, argv);
}
