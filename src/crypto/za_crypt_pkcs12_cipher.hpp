// The ciphers: one call over a whole text that needs no padding.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

#include <array>
#include <openssl/evp.h>

namespace za::crypto {

// A key and the zeros behind it, and an IV: of every cipher as much as it needs. A secret.
constexpr size_t kMostCipherKey = 256;

struct CipherKey {
    std::array<uint8_t, kMostCipherKey> octets;
    size_t size;
    std::array<uint8_t, 8> iv;
};

enum class Direction { decrypt = 0, encrypt = 1 };

// Writes as many octets as `in` has to `out`, which may be the same place. False: libcrypto failed.
using Cipher = bool (*)(const CipherKey &key, Direction direction, Bytes in, uint8_t *out);

bool rc4(const CipherKey &key, Direction direction, Bytes in, uint8_t *out);
bool triple_des_of_two_keys(const CipherKey &key, Direction direction, Bytes in, uint8_t *out);
bool triple_des_of_three_keys(const CipherKey &key, Direction direction, Bytes in, uint8_t *out);
bool rc2(unsigned effective_bits, const CipherKey &key, Direction direction, Bytes in,
         uint8_t *out);
bool rc2_of_40_bits(const CipherKey &key, Direction direction, Bytes in, uint8_t *out);
bool rc2_of_128_bits(const CipherKey &key, Direction direction, Bytes in, uint8_t *out);

constexpr size_t kMostRc2Key = 128;

// A block cipher of libcrypto without padding.
class BlockCipher {
  public:
    BlockCipher() : context_(EVP_CIPHER_CTX_new()) {}
    ~BlockCipher() { EVP_CIPHER_CTX_free(context_); }
    BlockCipher(const BlockCipher &) = delete;
    BlockCipher &operator=(const BlockCipher &) = delete;

    [[nodiscard]] bool set_key(const EVP_CIPHER *cipher, Direction direction, const uint8_t *key,
                               const uint8_t *iv);
    // At most kMostText octets.
    [[nodiscard]] bool run(Bytes in, uint8_t *out);

  private:
    EVP_CIPHER_CTX *context_;
};

}  // namespace za::crypto
