#include "issue/signer.hpp"

#include <zacert/gm.h>
#include <zacert/pkcs11.h>

#include "base/callback.hpp"
#include "base/der.hpp"
#include "base/der_writer.hpp"
#include "base/evp.hpp"
#include "base/failure.hpp"
#include "issue/private_key.hpp"
#include "issue/token_key.hpp"

#include <openssl/err.h>
#include <openssl/evp.h>

namespace tool {

namespace {

constexpr size_t kRoom = 512;  // what the library has for a certificate's signature

// RSA, PKCS#1 v1.5 with SHA-256. `context` holds a pointer to the key, at any address.
int32_t sign_rsa(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                 void *context) {
    auto *key = record_in<EVP_PKEY *>(context);
    const size_t size = key == nullptr ? kRoom : static_cast<size_t>(EVP_PKEY_get_size(key));
    if (out == nullptr) {
        *out_len = static_cast<uint32_t>(size);
        return 0;
    }
    if (key == nullptr || *out_len < size) {
        return ZACERT_LengthErr;
    }
    const EvpDigest digest(EVP_MD_CTX_new());
    size_t written = size;
    if (digest == nullptr ||
        EVP_DigestSignInit(digest.get(), nullptr, EVP_sha256(), nullptr, key) != 1 ||
        EVP_DigestSign(digest.get(), out, &written, in, in_len) != 1) {
        ERR_clear_error();
        return ZACERT_CryptErr;
    }
    *out_len = static_cast<uint32_t>(written);
    return 0;
}

Octets algorithm_for(KeyKind kind) {
    return object_id_octets(kind == KeyKind::rsa    ? "1.2.840.113549.1.1.11"
                            : kind == KeyKind::p256 ? "1.2.840.10045.4.3.2"
                                                    : "1.2.156.10197.1.501");
}

Signer signer_of_file(const KeyOptions &options) {
    EvpKey key = read_private_key(options.file, options.password);
    Signer signer;
    signer.key = subject_key(public_key_of(*key));
    require_issuable(signer.key);
    signer.algorithm = algorithm_for(signer.key.kind);
    if (signer.key.kind == KeyKind::rsa) {
        if (static_cast<size_t>(EVP_PKEY_get_size(key.get())) > kRoom) {
            throw Failure("expected an RSA key of at most 4096 bits for signing");
        }
        EVP_PKEY *pointer = key.get();
        signer.function = sign_rsa;
        signer.context = octets_of_record(pointer);
        signer.owner = std::shared_ptr<EVP_PKEY>(std::move(key));
        return signer;
    }
    signer.function = signer.key.kind == KeyKind::p256 ? zacert_gm_p256_sign : zacert_gm_sm2_sign;
    signer.context = gm_key_of(*key);
    return signer;
}

Signer signer_of_token(const std::string &uri, const PasswordSource &password) {
    constexpr int32_t kSha256 = 9;
    const auto key = open_token_key(uri, password, kSha256);
    Signer signer;
    signer.function = zacert_pkcs11_sign;
    signer.context = octets_of_record(*key);
    signer.owner = key;
    signer.key = subject_key(public_key_of(*key));
    require_issuable(signer.key);
    if (signer.key.kind == KeyKind::sm2) {
        throw Failure("expected an RSA or P-256 key on the token");
    }
    signer.algorithm = algorithm_for(signer.key.kind);
    return signer;
}

}  // namespace

void add_key_options(Arguments &command, const std::string &option, KeyOptions &options) {
    Arguments group = command.add_group("Key", "who signs", 1, 1);
    group.add_option(option, options.file, "private key: PEM or DER, or the URI of --pkcs11")
        .type_name("FILE");
    group
        .add_option("--pkcs11", options.uri,
                    "private key on a token instead: an RFC 7512 URI such as "
                    "\"pkcs11:token=CA;object=root?module-path=/usr/lib/token.so\"")
        .type_name("URI");
    add_password_options(command, options.password, "asked for where it is needed and not given");
}

std::string token_uri(const KeyOptions &options) {
    return options.file.starts_with("pkcs11:") ? options.file : options.uri;
}

Signer open_signer(const KeyOptions &options) {
    const std::string uri = token_uri(options);
    return uri.empty() ? signer_of_file(options) : signer_of_token(uri, options.password);
}

Octets signature_of(Signer &signer, View octets) {
    const auto size = static_cast<uint32_t>(octets.size());
    return fetched([&](uint8_t *out, uint32_t *length) {
        return static_cast<uint32_t>(
            signer.function(octets.data(), size, out, length, signer.context.data()));
    });
}

}  // namespace tool
