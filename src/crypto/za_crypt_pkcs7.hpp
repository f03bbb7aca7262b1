// RSA, digests and random octets in one call each: the bodies of the exported functions.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

namespace za::crypto {

// ZA_PKCS7_DigestMessage; `out` has room for the longest digest, 64 octets. 125: unknown number.
Status digest_message(int32_t digest, Bytes data, std::span<uint8_t> out, uint32_t &out_len);

// ZA_PKCS7_VerifySignature. A signature that does not open is no match and no failure.
Status verify_signature(int32_t digest, Bytes data, Bytes signature, const ZA_RSArefPublicKey &key,
                        bool &match);

// ZA_PKCS7_GenerateBytes. 126: the generator has none to give.
Status random_bytes(std::span<uint8_t> out);

// The forms that functions installed by callers share with the exported ones: arguments as they
// come from outside, which may be NULL.
Status digest_message(int32_t digest, const uint8_t *data, int32_t data_len, uint8_t *out,
                      uint32_t *out_len);
Status rsa_public_encrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                          const ZA_RSArefPublicKey *key);
Status rsa_public_decrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                          const ZA_RSArefPublicKey *key);
Status rsa_private_encrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                           const ZA_RSArefPrivateKey *key);
Status rsa_private_decrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                           const ZA_RSArefPrivateKey *key);

}  // namespace za::crypto
