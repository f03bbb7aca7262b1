#include "p7/signing_key.hpp"

#include <zacert/gm.h>
#include <zacert/pkcs11.h>

#include "base/callback.hpp"
#include "base/der_writer.hpp"
#include "base/evp.hpp"
#include "base/failure.hpp"
#include "issue/private_key.hpp"
#include "issue/token_key.hpp"

#include <array>
#include <openssl/err.h>
#include <openssl/rsa.h>
#include <utility>

namespace tool {

namespace {

// The input is a DigestInfo. The context holds a pointer to the key.
int32_t sign_digest_info(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                         void *context) {
    const EvpKeyContext operation(
        EVP_PKEY_CTX_new_from_pkey(nullptr, record_in<EVP_PKEY *>(context), nullptr));
    size_t written = *out_len;
    // libcrypto looks at the room itself.
    const bool done = operation != nullptr && EVP_PKEY_sign_init(operation.get()) == 1 &&
                      EVP_PKEY_CTX_set_rsa_padding(operation.get(), RSA_PKCS1_PADDING) == 1 &&
                      EVP_PKEY_sign(operation.get(), out, &written, in, in_len) == 1;
    ERR_clear_error();
    if (!done) {
        return ZACERT_CryptErr;
    }
    *out_len = static_cast<uint32_t>(written);
    return 0;
}

void require_message_key(const SubjectKey &key) {
    if (key.kind != KeyKind::rsa && key.kind != KeyKind::sm2) {
        throw Failure("expected an RSA or SM2 key: signers of PKCS#7 have no ECDSA");
    }
    require_issuable(key);
}

void use_rsa(const MessageDigest *asked, SigningKey &signer) {
    const MessageDigest &digest = asked == nullptr ? digest_named("sha256") : *asked;
    signer.digest_algorithm = object_id_octets(std::string(digest.id));
    signer.signature_algorithm = object_id_octets("1.2.840.113549.1.1.1");
    signer.digest = ZA_DigestFunc_Ref;
    signer.digest_context = octets_of_record(digest.number);
}

// The algorithm of the signature stands in the place of a digest algorithm: that is how the library
// and whoever verifies see that the digest is signed as it is.
void use_sm2(const MessageDigest *asked, EVP_PKEY &key, SigningKey &signer) {
    if (asked != nullptr) {
        throw UsageError("expected no --digest: SM2 signs with SM3");
    }
    signer.digest_algorithm = object_id_octets("1.2.156.10197.1.501");
    signer.signature_algorithm = object_id_octets("1.2.156.10197.1.301.1");
    signer.sign = zacert_gm_sm2_sign_digest;
    signer.sign_context = gm_key_of(key);
    const auto record = record_in<zacert_gm_key>(signer.sign_context.data());
    signer.digest = zacert_gm_sm2_digest;
    signer.digest_context = octets_of_record(record.identity);
}

SigningKey key_of_file(const KeyOptions &options, const MessageDigest *digest) {
    EvpKey key = read_private_key(options.file, options.password);
    SigningKey signer;
    signer.key = subject_key(public_key_of(*key));
    require_message_key(signer.key);
    if (signer.key.kind == KeyKind::sm2) {
        use_sm2(digest, *key, signer);
        return signer;
    }
    use_rsa(digest, signer);
    signer.sign = sign_digest_info;
    signer.sign_context = octets_of_record(key.get());
    signer.owner = std::shared_ptr<EVP_PKEY>(std::move(key));
    return signer;
}

SigningKey key_of_token(const std::string &uri, const PasswordSource &password,
                        const MessageDigest *digest) {
    constexpr int32_t kDigested = 0;
    const auto key = open_token_key(uri, password, kDigested);
    SigningKey signer;
    signer.key = subject_key(public_key_of(*key));
    require_message_key(signer.key);
    if (signer.key.kind != KeyKind::rsa) {
        throw Failure("expected an RSA key on the token");
    }
    use_rsa(digest, signer);
    signer.sign = zacert_pkcs11_sign;
    signer.sign_context = octets_of_record(*key);
    signer.owner = key;
    return signer;
}

}  // namespace

SigningKey open_signing_key(const KeyOptions &options, const MessageDigest *digest) {
    const std::string uri = token_uri(options);
    return uri.empty() ? key_of_file(options, digest) : key_of_token(uri, options.password, digest);
}

Octets SigningKey::digest_of(View content) const {
    std::array<uint8_t, 64> octets{};
    uint32_t length = octets.size();
    Secret context(digest_context.view());
    check(static_cast<uint32_t>(digest(content.data(), static_cast<uint32_t>(content.size()),
                                       octets.data(), &length, context.data())));
    return {octets.begin(), octets.begin() + length};
}

void SigningKey::install_in(void *signer_info) const {
    const auto set = [signer_info](int32_t id, const Octets &value) {
        check(ZA_PKCS7_SetSignerInfoAttributeChar(signer_info, id, value.data(),
                                                  static_cast<uint32_t>(value.size())));
    };
    set(PKCS7_SIGNER_DIGEST_ALGO, digest_algorithm);
    set(PKCS7_SIGNER_DIGEST_ENC_ALG, signature_algorithm);
    check(ZA_PKCS7_SetSignerInfoDigestFunc(signer_info, digest, digest_context.view().data(),
                                           static_cast<uint32_t>(digest_context.size())));
    check(ZA_PKCS7_SetSignerInfoEncSignFunc(signer_info, sign, sign_context.view().data(),
                                            static_cast<uint32_t>(sign_context.size())));
}

}  // namespace tool
