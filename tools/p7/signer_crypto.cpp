#include "p7/signer_crypto.hpp"

#include "base/callback.hpp"
#include "base/failure.hpp"
#include "objects/name_forms.hpp"
#include "objects/oid_names.hpp"
#include "objects/subject_key.hpp"

#include <algorithm>
#include <array>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

namespace tool {

namespace {

constexpr std::string_view kRsa = "1.2.840.113549.1.1.1";
constexpr std::string_view kSm2WithSm3 = "1.2.156.10197.1.501";
constexpr std::string_view kSm2 = "1.2.156.10197.1.301.1";

// `context` holds the algorithm.
int32_t digest_octets(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                      void *context) {
    const auto *algorithm = record_in<const EVP_MD *>(context);
    unsigned length = 0;
    if (*out_len < static_cast<uint32_t>(EVP_MD_get_size(algorithm)) ||
        EVP_Digest(in, in_len, out, &length, algorithm, nullptr) != 1) {
        ERR_clear_error();
        return ZACERT_DigestedErr;
    }
    *out_len = length;
    return 0;
}

// Opens a signature of PKCS#1 v1.5. `context` holds a pointer to the key. What stands in the opened
// block is compared whole by the library, so that nothing can hide behind the digest.
int32_t open_signature(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                       void *context) {
    auto *key = record_in<EVP_PKEY *>(context);
    if (*out_len < static_cast<uint32_t>(EVP_PKEY_get_size(key))) {
        return ZACERT_LengthErr;
    }
    const EvpKeyContext operation(EVP_PKEY_CTX_new(key, nullptr));
    size_t length = *out_len;
    if (operation == nullptr || EVP_PKEY_verify_recover_init(operation.get()) != 1 ||
        EVP_PKEY_CTX_set_rsa_padding(operation.get(), RSA_PKCS1_PADDING) != 1 ||
        EVP_PKEY_verify_recover(operation.get(), out, &length, in, in_len) != 1) {
        ERR_clear_error();
        return ZACERT_VerifyErr;
    }
    *out_len = static_cast<uint32_t>(length);
    return 0;
}

Failure cannot(const LoadedCertificate &certificate, const MessageSigner &signer) {
    return Failure(label(signer.signature_algorithm) + " with " + label(signer.digest_algorithm) +
                   " by a key " + short_form(certificate.facts.key) + " cannot be verified");
}

}  // namespace

SignerCrypto::SignerCrypto(const LoadedCertificate &certificate, const MessageSigner &signer) {
    const std::string &digest = signer.digest_algorithm.oid;
    const MessageDigest *known = digest_of_id(digest);
    if (known != nullptr && known->trust == Trust::none) {
        throw Failure(label(signer.digest_algorithm) +
                      ": others can make such signatures; none is trusted");
    }
    const SubjectKey key = subject_key(certificate.parts.key);
    const std::string &algorithm = signer.signature_algorithm.oid;
    if (key.kind == KeyKind::rsa) {
        prepare_rsa(certificate.parts.key, known, algorithm);
    } else if (key.kind == KeyKind::sm2 && digest == kSm2WithSm3 &&
               (algorithm == kSm2 || algorithm == kSm2WithSm3)) {
        prepare_sm2(key.bits);
    }
    if (digest_function_ == nullptr) {
        throw cannot(certificate, signer);
    }
    text_ = short_form(certificate.facts.key) + " with " +
            (key.kind == KeyKind::rsa ? label(signer.digest_algorithm) : "SM3");
}

void SignerCrypto::prepare_rsa(View key_info, const MessageDigest *digest,
                               std::string_view algorithm) {
    const uint8_t *at = key_info.data();
    key_.reset(d2i_PUBKEY(nullptr, &at, static_cast<long>(key_info.size())));
    if (digest == nullptr || (algorithm != kRsa && algorithm != digest->with_rsa) ||
        key_ == nullptr || EVP_PKEY_is_a(key_.get(), "RSA") != 1) {
        ERR_clear_error();
        return;
    }
    digest_function_ = digest_octets;
    digest_block_ = octets_of_record(digest->function());
    open_function_ = open_signature;
    verify_block_ = octets_of_record(key_.get());
    if (digest->trust == Trust::doubtful) {
        doubt_ = label(named(std::string(digest->id))) +
                 ": who may choose the content can find two with one digest";
    }
}

void SignerCrypto::prepare_sm2(const Octets &point) {
    // An uncompressed point: 04, x, y.
    ZA_ECCPOINT pub{};
    constexpr size_t kHalf = sizeof pub.x;
    if (point.size() != 1 + 2 * kHalf || point.front() != 4) {
        return;
    }
    std::copy_n(point.begin() + 1, kHalf, std::begin(pub.x));
    std::copy_n(point.begin() + 1 + kHalf, kHalf, std::begin(pub.y));
    zacert_gm_identity identity{};
    check(zacert_gm_identity_set(&pub, nullptr, 0, &identity));
    digest_function_ = zacert_gm_sm2_digest;
    digest_block_ = octets_of_record(identity);
    verify_function_ = zacert_gm_sm2_verify_pkcs7;
    verify_block_ = octets_of_record(identity);
}

void SignerCrypto::install(void *signer) const {
    const View digest = digest_block_.view();
    const View verify = verify_block_.view();
    const auto length = [](View block) { return static_cast<uint32_t>(block.size()); };
    check(
        ZA_PKCS7_SetSignerInfoDigestFunc(signer, digest_function_, digest.data(), length(digest)));
    check(ZA_PKCS7_SetSignerInfoDecSignFunc(signer, open_function_, verify.data(), length(verify)));
    check(ZA_PKCS7_SetSignerInfoDecEcVerifyFunc(signer, verify_function_, verify.data(),
                                                length(verify)));
}

Octets SignerCrypto::digest(View octets) const {
    constexpr uint8_t kNothing = 0;
    Secret block(digest_block_.view());
    Octets result(EVP_MAX_MD_SIZE);
    auto length = static_cast<uint32_t>(result.size());
    check(static_cast<uint32_t>(digest_function_(octets.empty() ? &kNothing : octets.data(),
                                                 static_cast<uint32_t>(octets.size()),
                                                 result.data(), &length, block.data())));
    result.resize(length);
    return result;
}

}  // namespace tool
