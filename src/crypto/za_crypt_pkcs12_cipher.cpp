#include "crypto/za_crypt_pkcs12_cipher.hpp"

#include <nettle/arcfour.h>
#include <nettle/arctwo.h>
#include <nettle/cbc.h>
#include <nettle/nettle-meta.h>

namespace za::crypto {
namespace {

bool triple_des(const uint8_t *key, const CipherKey &given, Direction direction, Bytes in,
                uint8_t *out) {
    BlockCipher cipher;
    return cipher.set_key(EVP_des_ede3_cbc(), direction, key, given.iv.data()) &&
           cipher.run(in, out);
}

}  // namespace

bool BlockCipher::set_key(const EVP_CIPHER *cipher, Direction direction, const uint8_t *key,
                          const uint8_t *iv) {
    return context_ != nullptr &&
           EVP_CipherInit_ex2(context_, cipher, key, iv, static_cast<int>(direction), nullptr) ==
               1 &&
           EVP_CIPHER_CTX_set_padding(context_, 0) == 1;
}

bool BlockCipher::run(Bytes in, uint8_t *out) {
    int written = 0;
    int rest = 0;
    return EVP_CipherUpdate(context_, out, &written, in.data(), static_cast<int>(in.size())) == 1 &&
           EVP_CipherFinal_ex(context_, out + written, &rest) == 1;
}

bool rc4(const CipherKey &key, Direction, Bytes in, uint8_t *out) {
    Wiped<arcfour_ctx> context;
    arcfour_set_key(&context.value, key.size, key.octets.data());
    arcfour_crypt(&context.value, in.size(), out, in.data());
    return true;
}

bool triple_des_of_two_keys(const CipherKey &key, Direction direction, Bytes in, uint8_t *out) {
    Wiped<std::array<uint8_t, 24>> whole;
    const Bytes keys(key.octets);
    put(put(whole.value.data(), keys.first(16)), keys.first(8));
    return triple_des(whole.value.data(), key, direction, in, out);
}

bool triple_des_of_three_keys(const CipherKey &key, Direction direction, Bytes in, uint8_t *out) {
    return triple_des(key.octets.data(), key, direction, in, out);
}

bool rc2(unsigned effective_bits, const CipherKey &key, Direction direction, Bytes in,
         uint8_t *out) {
    Wiped<arctwo_ctx> context;
    arctwo_set_key_ekb(&context.value, key.size, key.octets.data(), effective_bits);
    std::array<uint8_t, ARCTWO_BLOCK_SIZE> iv = key.iv;
    // Called through its table, nettle takes a cipher of its own without a cast.
    const nettle_cipher &table = nettle_arctwo128;
    if (direction == Direction::encrypt) {
        cbc_encrypt(&context.value, table.encrypt, iv.size(), iv.data(), in.size(), out, in.data());
    } else {
        cbc_decrypt(&context.value, table.decrypt, iv.size(), iv.data(), in.size(), out, in.data());
    }
    return true;
}

bool rc2_of_40_bits(const CipherKey &key, Direction direction, Bytes in, uint8_t *out) {
    return rc2(40, key, direction, in, out);
}

bool rc2_of_128_bits(const CipherKey &key, Direction direction, Bytes in, uint8_t *out) {
    return rc2(128, key, direction, in, out);
}

}  // namespace za::crypto
