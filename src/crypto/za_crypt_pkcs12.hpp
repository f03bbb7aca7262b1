// Password-based encryption and what it is made of: the bodies of the exported functions.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

namespace za::crypto {

// Longer texts and passwords are refused, so that no length computed from one wraps.
constexpr size_t kMostText = 0x7FFFFF00;

constexpr size_t kBlock = 8;  // of triple DES and RC2

// What the octets derived from a password are for.
constexpr uint32_t kForKey = 1;
constexpr uint32_t kForIv = 2;
constexpr uint32_t kForMac = 3;

struct Derivation {
    uint32_t digest;
    Bytes password;
    Bytes salt;
    uint32_t iterations;
};

// ZA_PKCS12_GenRandomFromPassword: fills `out`, which holds nothing useful after a failure.
Status derive(const Derivation &from, uint32_t id, std::span<uint8_t> out);

constexpr size_t padded_size(size_t size) {
    return size + kBlock - size % kBlock;
}

Status add_pad(Bytes in, Octets &out);     // ZA_PKCS12_AddPad
Status remove_pad(Bytes in, Bytes &text);  // ZA_PKCS12_DecPad; `text` is a view of the input

// ZA_PKCS12_HMAC; `out` has room for 20 octets.
Status hmac(uint32_t digest, Bytes key, Bytes data, uint8_t *out, uint32_t &out_len);

// ZA_PKCS12_AESEncrypt, ZA_PKCS12_AESDecrypt: arguments as they come from outside, since each of
// them has a line of its own.
Status aes_encrypt(uint32_t mode, const uint8_t *key, uint32_t key_len, const uint8_t *iv,
                   uint32_t iv_len, const uint8_t *plain, uint32_t plain_len, uint8_t *out,
                   uint32_t *out_len);
Status aes_decrypt(uint32_t mode, const uint8_t *key, uint32_t key_len, const uint8_t *iv,
                   uint32_t iv_len, const uint8_t *cipher, uint32_t cipher_len, uint8_t *out,
                   uint32_t *out_len);

// The forms that functions installed by callers share with the exported ones.
Status pbe_encrypt(const ZA_PBE_RECORD &with, const uint8_t *plain, uint32_t plain_len,
                   uint8_t *out, uint32_t *out_len);
Status pbe_decrypt(const ZA_PBE_RECORD &with, const uint8_t *cipher, uint32_t cipher_len,
                   uint8_t *out, uint32_t *out_len);
Status hmac(uint32_t digest, const uint8_t *key, uint32_t key_len, const uint8_t *data,
            uint32_t data_len, uint8_t *out, uint32_t *out_len);

}  // namespace za::crypto
