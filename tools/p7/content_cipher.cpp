#include "p7/content_cipher.hpp"

#include <zacert.h>

#include "base/callback.hpp"
#include "base/der_writer.hpp"
#include "base/elements.hpp"
#include "base/evp.hpp"
#include "base/failure.hpp"

#include <algorithm>
#include <array>
#include <climits>
#include <openssl/err.h>
#include <utility>

namespace tool {

namespace {

constexpr auto kCiphers = std::to_array<CipherKind>({
    {"aes-128-cbc", "2.16.840.1.101.3.4.1.2", EVP_aes_128_cbc, 16},
    {"aes-192-cbc", "2.16.840.1.101.3.4.1.22", EVP_aes_192_cbc, 24},
    {"aes-256-cbc", "2.16.840.1.101.3.4.1.42", EVP_aes_256_cbc, 32},
    {"des-ede3-cbc", "1.2.840.113549.3.7", EVP_des_ede3_cbc, 24},
});

template <class Matches>
const CipherKind *find_cipher(const Matches &matches) {
    const auto row = std::find_if(kCiphers.begin(), kCiphers.end(), matches);
    return row == kCiphers.end() ? nullptr : &*row;
}

size_t iv_size(const CipherKind &kind) {
    return static_cast<size_t>(EVP_CIPHER_get_iv_length(kind.cipher()));
}

Octets random_octets(size_t size) {
    Octets octets(size);
    const auto count = static_cast<uint32_t>(size);
    check(ZA_PKCS7_GenerateBytes(octets.data(), &count));
    return octets;
}

Secret of_size(const CipherKind &kind, Secret key) {
    if (key.size() != kind.key_size) {
        throw Failure("expected a key of " + std::to_string(kind.key_size) + " octets for " +
                      std::string(kind.name) + ", found " + std::to_string(key.size()));
    }
    return key;
}

Octets iv_in(const CipherKind &kind, View parameters) {
    try {
        const View iv = only_element(parameters, ZA_DER_ID_OCTETSTRING).content;
        if (iv.size() == iv_size(kind)) {
            return {iv.begin(), iv.end()};
        }
    } catch (const LibraryError &) {
        // Said below.
    }
    throw Failure("expected an IV of " + std::to_string(iv_size(kind)) + " octets beside " +
                  std::string(kind.name));
}

}  // namespace

const CipherKind &cipher_named(std::string_view name) {
    const CipherKind *kind = find_cipher([name](const CipherKind &r) { return r.name == name; });
    if (kind == nullptr) {
        throw UsageError("no such cipher: " + std::string(name));
    }
    return *kind;
}

const CipherKind *cipher_of_id(std::string_view id) {
    return find_cipher([id](const CipherKind &r) { return r.id == id; });
}

const CipherKind &aes_with_key(size_t key_size) {
    const CipherKind *kind =
        find_cipher([key_size](const CipherKind &r) { return r.key_size == key_size; });
    if (kind == nullptr) {
        throw Failure("expected a secret key of 16, 24 or 32 octets, found " +
                      std::to_string(key_size));
    }
    return *kind;
}

Option add_cipher_option(Arguments &command, std::string &name) {
    return command
        .add_option("--cipher", name, "aes-128-cbc, aes-192-cbc, aes-256-cbc or des-ede3-cbc")
        .one_of({"aes-128-cbc", "aes-192-cbc", "aes-256-cbc", "des-ede3-cbc"});
}

Secret random_key(const CipherKind &kind) {
    const EvpCipher context(EVP_CIPHER_CTX_new());
    Secret key(kind.key_size);
    // Keys of DES have parity bits, which libcrypto sets.
    if (context == nullptr ||
        EVP_EncryptInit_ex2(context.get(), kind.cipher(), nullptr, nullptr, nullptr) != 1 ||
        EVP_CIPHER_CTX_rand_key(context.get(), key.data()) != 1) {
        ERR_clear_error();
        throw Failure("libcrypto made no key");
    }
    return key;
}

ContentCipher::ContentCipher(const CipherKind &kind) : ContentCipher(kind, random_key(kind)) {}

ContentCipher::ContentCipher(const CipherKind &kind, Secret key)
    : kind_(kind), key_(of_size(kind, std::move(key))), iv_(random_octets(iv_size(kind))) {}

ContentCipher::ContentCipher(const CipherKind &kind, Secret key, View parameters)
    : kind_(kind), key_(of_size(kind, std::move(key))), iv_(iv_in(kind, parameters)) {}

void ContentCipher::encrypt_in(void *encrypted_content) const {
    const auto set = [encrypted_content](int32_t id, const Octets &value) {
        check(ZA_PKCS7_SetEncryptedContentAttributeChar(encrypted_content, id, value.data(),
                                                        static_cast<uint32_t>(value.size())));
    };
    set(PKCS7_ENCRYPT_ALGO, object_id_octets(std::string(kind_.id)));
    set(PKCS7_ENCRYPT_PARAMETER, der(ZA_DER_ID_OCTETSTRING, {iv_}));
    const Secret context = octets_of_record(this);
    check(ZA_PKCS7_SetEncryptContentEncFunc(encrypted_content, encrypt, context.view().data(),
                                            static_cast<uint32_t>(context.size())));
}

void ContentCipher::decrypt_in(void *encrypted_content) const {
    const Secret context = octets_of_record(this);
    check(ZA_PKCS7_SetEncryptContentDecFunc(encrypted_content, decrypt, context.view().data(),
                                            static_cast<uint32_t>(context.size())));
}

int32_t ContentCipher::encrypt(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                               void *context) {
    constexpr int kEncrypting = 1;
    return record_in<const ContentCipher *>(context)->transform({in, in_len}, out, out_len,
                                                                kEncrypting);
}

int32_t ContentCipher::decrypt(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                               void *context) {
    constexpr int kDecrypting = 0;
    return record_in<const ContentCipher *>(context)->transform({in, in_len}, out, out_len,
                                                                kDecrypting);
}

int32_t ContentCipher::transform(View in, uint8_t *out, uint32_t *out_len, int encrypting) const {
    if (in.size() > INT_MAX - EVP_MAX_BLOCK_LENGTH || *out_len < in.size() + EVP_MAX_BLOCK_LENGTH) {
        return ZACERT_LengthErr;
    }
    const EvpCipher context(EVP_CIPHER_CTX_new());
    int written = 0;
    int rest = 0;
    const bool done = context != nullptr &&
                      EVP_CipherInit_ex2(context.get(), kind_.cipher(), key_.view().data(),
                                         iv_.data(), encrypting, nullptr) == 1 &&
                      EVP_CipherUpdate(context.get(), out, &written, in.data(),
                                       static_cast<int>(in.size())) == 1 &&
                      EVP_CipherFinal_ex(context.get(), out + written, &rest) == 1;
    ERR_clear_error();
    if (!done) {
        return ZACERT_CryptErr;
    }
    *out_len = static_cast<uint32_t>(written + rest);
    return 0;
}

}  // namespace tool
