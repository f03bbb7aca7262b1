// RSA keys of libcrypto: made, loaded from records and written into them, used with PKCS#1 v1.5
// padding.
#pragma once

#include "runtime/bytes.hpp"

#include <array>
#include <openssl/evp.h>

namespace za::crypto {

constexpr size_t kMostModulus = 256;

// What one operation gives. It may be a secret.
struct RsaBlock {
    std::array<uint8_t, kMostModulus> octets;
    size_t size;

    Bytes bytes() const { return Bytes(octets).first(size); }
};

struct RsaOperation {
    int (*prepare)(EVP_PKEY_CTX *, const OSSL_PARAM *);
    int (*run)(EVP_PKEY_CTX *, uint8_t *, size_t *, const uint8_t *, size_t);
};

inline constexpr RsaOperation kPublicEncrypt{EVP_PKEY_encrypt_init_ex, EVP_PKEY_encrypt};
inline constexpr RsaOperation kPublicDecrypt{EVP_PKEY_verify_recover_init_ex,
                                             EVP_PKEY_verify_recover};
inline constexpr RsaOperation kPrivateEncrypt{EVP_PKEY_sign_init_ex, EVP_PKEY_sign};
inline constexpr RsaOperation kPrivateDecrypt{EVP_PKEY_decrypt_init_ex, EVP_PKEY_decrypt};

// A failure is false, and leaves nothing in libcrypto's queue of errors.
class RsaKey {
  public:
    RsaKey() = default;
    ~RsaKey() { EVP_PKEY_free(key_); }
    RsaKey(const RsaKey &) = delete;
    RsaKey &operator=(const RsaKey &) = delete;

    // Whether libcrypto can make keys at all.
    static bool available();

    // Of an empty object; the exponent is 65537.
    [[nodiscard]] bool generate(unsigned bits);

    // Into an empty object; the record's bit length is not looked at. NULL is no key, and neither
    // is a private key without its exponent, whose signatures would all be 1.
    [[nodiscard]] bool load(const ZA_RSArefPublicKey *record);
    [[nodiscard]] bool load(const ZA_RSArefPrivateKey *record);

    [[nodiscard]] bool store(ZA_RSArefPublicKey &record) const;
    [[nodiscard]] bool store(ZA_RSArefPrivateKey &record) const;

    uint32_t modulus_octets() const { return static_cast<uint32_t>(EVP_PKEY_get_size(key_)); }

    [[nodiscard]] bool run(const RsaOperation &operation, Bytes in, RsaBlock &out) const;

  private:
    EVP_PKEY *key_ = nullptr;
};

}  // namespace za::crypto
