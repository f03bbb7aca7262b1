// The ciphers that encrypt contents, behind the callbacks of an EncryptedContentInfo.
#pragma once

#include "base/arguments.hpp"
#include "base/secret.hpp"

#include <openssl/evp.h>
#include <string>
#include <string_view>

namespace tool {

struct CipherKind {
    std::string_view name;  // of the option
    std::string_view id;
    const EVP_CIPHER *(*cipher)();
    size_t key_size;
};

// By name; by the object identifier, nullptr for none that is known here; the one of AES by the size
// of its key. Throw Failure.
const CipherKind &cipher_named(std::string_view name);
const CipherKind *cipher_of_id(std::string_view id);
const CipherKind &aes_with_key(size_t key_size);

Option add_cipher_option(Arguments &command, std::string &name);

// A cipher with key and IV. It must live as long as the contexts it is installed in are used.
class ContentCipher {
  public:
    // With a key and an IV of its own.
    explicit ContentCipher(const CipherKind &kind);
    // With a given key and a new IV.
    ContentCipher(const CipherKind &kind, Secret key);
    // With the IV of a message: `parameters` is the DER beside the algorithm. Throws Failure.
    ContentCipher(const CipherKind &kind, Secret key, View parameters);

    ContentCipher(const ContentCipher &) = delete;
    ContentCipher &operator=(const ContentCipher &) = delete;

    const Secret &key() const { return key_; }

    // Algorithm, IV and the encrypting callback.
    void encrypt_in(void *encrypted_content) const;

    void decrypt_in(void *encrypted_content) const;

  private:
    static int32_t encrypt(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                           void *context);
    static int32_t decrypt(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                           void *context);
    int32_t transform(View in, uint8_t *out, uint32_t *out_len, int encrypting) const;

    const CipherKind &kind_;
    Secret key_;
    Octets iv_;
};

// Octets for keys of this cipher.
Secret random_key(const CipherKind &kind);

}  // namespace tool
