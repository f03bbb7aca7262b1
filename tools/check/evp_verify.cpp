#include "check/evp_verify.hpp"

#include "base/evp.hpp"

#include <algorithm>
#include <array>
#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/x509.h>

namespace tool {

namespace {

struct Algorithm {
    std::string_view id;
    const char *key;     // type of key that goes with it
    const char *digest;  // nullptr where the algorithm has its own
};

constexpr auto kAlgorithms = std::to_array<Algorithm>({
    {"1.2.840.113549.1.1.5", "RSA", "SHA1"},
    {"1.2.840.113549.1.1.14", "RSA", "SHA224"},
    {"1.2.840.113549.1.1.11", "RSA", "SHA256"},
    {"1.2.840.113549.1.1.12", "RSA", "SHA384"},
    {"1.2.840.113549.1.1.13", "RSA", "SHA512"},
    {"1.2.840.10045.4.1", "EC", "SHA1"},
    {"1.2.840.10045.4.3.1", "EC", "SHA224"},
    {"1.2.840.10045.4.3.2", "EC", "SHA256"},
    {"1.2.840.10045.4.3.3", "EC", "SHA384"},
    {"1.2.840.10045.4.3.4", "EC", "SHA512"},
    {"1.3.101.112", "ED25519", nullptr},
    {"1.3.101.113", "ED448", nullptr},
    {"1.2.156.10197.1.501", "SM2", "SM3"},
});

// Under which SM2 signs unless told otherwise; other keys have no such parameter.
std::array<OSSL_PARAM, 2> parameters_for(EVP_PKEY &key) {
    static char identifier[] = "1234567812345678";
    const OSSL_PARAM end = OSSL_PARAM_construct_end();
    return {EVP_PKEY_is_a(&key, "SM2") == 1
                ? OSSL_PARAM_construct_octet_string(OSSL_PKEY_PARAM_DIST_ID, identifier,
                                                    sizeof identifier - 1)
                : end,
            end};
}

}  // namespace

EvpVerdict evp_verify(View key_info, const SignedObject &object) {
    const auto algorithm =
        std::find_if(kAlgorithms.begin(), kAlgorithms.end(),
                     [&](const auto &row) { return row.id == object.algorithm_id; });
    const uint8_t *at = key_info.data();
    const EvpKey key(d2i_PUBKEY(nullptr, &at, static_cast<long>(key_info.size())));
    const EvpDigest context(EVP_MD_CTX_new());
    EvpVerdict verdict = EvpVerdict::unsupported;
    if (algorithm != kAlgorithms.end() && key != nullptr && context != nullptr &&
        EVP_PKEY_is_a(key.get(), algorithm->key) == 1 &&
        EVP_DigestVerifyInit_ex(context.get(), nullptr, algorithm->digest, nullptr, nullptr,
                                key.get(), parameters_for(*key).data()) == 1) {
        const int result =
            EVP_DigestVerify(context.get(), object.signature.data(), object.signature.size(),
                             object.signed_part.data(), object.signed_part.size());
        verdict = result == 1 ? EvpVerdict::good : EvpVerdict::bad;
    }
    ERR_clear_error();
    return verdict;
}

}  // namespace tool
