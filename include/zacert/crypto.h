/*
 * crypto.h - RSA, digests and random octets in one call each; password-based encryption, AES, HMAC
 * and key derivation; ready-made functions of the type ZA_CryptFunc.
 *
 * Digests are numbered: 3 MD2 (16 octets), 5 MD5 (16), 7 SHA-1 (20), 9 SHA-256 (32), 11 SHA-384
 * (48), 13 SHA-512 (64). Several of them, RC2, RC4 and keys of 1024 bits are here to read and
 * write old objects; do not choose them for anything new.
 *
 * Example: sign octets and check the signature.
 *
 *     uint8_t sig[256];
 *     uint32_t sigLen = 0;
 *     uint32_t verdict = 0;
 *     if (ZA_PKCS7_SignedData(9, data, dataLen, sig, &sigLen, &priv) == 0 &&
 *         ZA_PKCS7_VerifySignature(9, data, dataLen, sig, sigLen, &pub, &verdict) == 0 &&
 *         verdict == 1) {
 *         use(sig, sigLen);
 *     }
 */
#ifndef ZACERT_CRYPTO_H
#define ZACERT_CRYPTO_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/keys.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- RSA, PKCS#1 v1.5 (RFC 8017) ---------------------------------------------------------------
 */

/*
 * ZA_PKCS7_GenRSAKeyPair: a new key of 1024 bits with the exponent 65537; both records are filled.
 * 124: none could be made.
 */
ZACERT_API uint32_t ZA_PKCS7_GenRSAKeyPair(ZA_RSArefPublicKey *pub, ZA_RSArefPrivateKey *priv);

/* ZA_PKCS7_GenRSAKeyPair_2048: the same with 2048 bits. */
ZACERT_API uint32_t ZA_PKCS7_GenRSAKeyPair_2048(ZA_RSArefPublicKey *pub, ZA_RSArefPrivateKey *priv);

/*
 * The four operations write up to 256 octets; a NULL `out` asks for the octets of the modulus. The
 * bit length in the record is not looked at. 126: no usable key, or the operation failed; then
 * `*outLen` is 0xFFFFFFFF.
 */

/* ZA_PKCS7_RSAPublicEncrypt: encrypts up to 11 octets less than the modulus (block type 2). */
ZACERT_API uint32_t ZA_PKCS7_RSAPublicEncrypt(uint8_t *out, uint32_t *outLen, const uint8_t *in,
                                              uint32_t inLen, const ZA_RSArefPublicKey *key);

/* ZA_PKCS7_RSAPublicDecrypt: opens a signature: what stands inside its block of type 1. */
ZACERT_API uint32_t ZA_PKCS7_RSAPublicDecrypt(uint8_t *out, uint32_t *outLen, const uint8_t *in,
                                              uint32_t inLen, const ZA_RSArefPublicKey *key);

/*
 * ZA_PKCS7_RSAPrivateEncrypt: signs the input as it is, without digest or DigestInfo (block type
 * 1). A private key without its private exponent is no usable key; one without any of its primes,
 * their exponents and the coefficient is.
 */
ZACERT_API uint32_t ZA_PKCS7_RSAPrivateEncrypt(uint8_t *out, uint32_t *outLen, const uint8_t *in,
                                               uint32_t inLen, const ZA_RSArefPrivateKey *key);

/*
 * ZA_PKCS7_RSAPrivateDecrypt: decrypts (block type 2). Recent releases of libcrypto answer a block
 * that does not open with octets made up from it and success instead of 126. Never tell an outsider
 * which of both it was.
 */
ZACERT_API uint32_t ZA_PKCS7_RSAPrivateDecrypt(uint8_t *out, uint32_t *outLen, const uint8_t *in,
                                               uint32_t inLen, const ZA_RSArefPrivateKey *key);

/* ---- Random octets, digests, signatures --------------------------------------------------------
 */

/*
 * ZA_PKCS7_GenerateBytes: `*count` random octets fit for keys. 126: the system has none to give,
 * and what stands in `out` must not be used.
 */
ZACERT_API uint32_t ZA_PKCS7_GenerateBytes(uint8_t *out, const uint32_t *count);

/*
 * ZA_PKCS7_DigestMessage: the digest of the data, up to 64 octets. 125: unknown digest number; 101:
 * negative length.
 */
ZACERT_API uint32_t ZA_PKCS7_DigestMessage(int32_t digest, const uint8_t *data, int32_t dataLen,
                                           uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS7_SignedData: the RSA signature of the data's DigestInfo (RFC 8017, 8.2), up to 256
 * octets; no PKCS#7 object despite the name. 125: unknown digest number; 101: negative length; 127:
 * no key, or an unusable one; 126: the operation failed, and `*sigLen` is 0xFFFFFFFF.
 */
ZACERT_API uint32_t ZA_PKCS7_SignedData(int32_t digest, const uint8_t *data, int32_t dataLen,
                                        uint8_t *sig, uint32_t *sigLen,
                                        const ZA_RSArefPrivateKey *key);

/*
 * ZA_PKCS7_VerifySignature: whether `sig` is such a signature: the result is 0 whatever it is, and
 * `*verdict` is 1 or 0. Octets behind the DigestInfo are not looked at; who needs that opens the
 * signature with ZA_PKCS7_RSAPublicDecrypt. 125: unknown digest number; 101: negative length; 128:
 * no key, or an unusable one.
 */
ZACERT_API uint32_t ZA_PKCS7_VerifySignature(int32_t digest, const uint8_t *data, int32_t dataLen,
                                             const uint8_t *sig, uint32_t sigLen,
                                             const ZA_RSArefPublicKey *key, uint32_t *verdict);

/* ---- Password-based encryption (RFC 7292, appendix B) ------------------------------------------
 */

/*
 * Passwords are octets in whatever character set the caller has; they are never converted, so a
 * file opens with the octets it was written with. Algorithms are named by OID content octets
 * (ZACert_GetOIDValue):
 *
 *     1.2.840.113549.1.12.1.1  RC4, 128 bits            1.2.840.113549.1.5.1   MD2,   triple DES
 *     1.2.840.113549.1.12.1.2  RC4, 40 bits             1.2.840.113549.1.5.4   MD2,   RC2
 *     1.2.840.113549.1.12.1.3  triple DES, three keys   1.2.840.113549.1.5.3   MD5,   triple DES
 *     1.2.840.113549.1.12.1.4  triple DES, two keys     1.2.840.113549.1.5.6   MD5,   RC2
 *     1.2.840.113549.1.12.1.5  RC2, 128 bits            1.2.840.113549.1.5.10  SHA-1, triple DES
 *     1.2.840.113549.1.12.1.6  RC2, 40 bits             1.2.840.113549.1.5.11  SHA-1, RC2
 *
 * Those on the left use SHA-1 and are the ones of RFC 7292. Those on the right are not PBES1 of RFC
 * 8018 although their identifiers are its: key and IV come from the key derivation below, the
 * cipher is triple DES with two keys, or RC2 with a key of 128 bits of which 40 are effective.
 */

/*
 * ZA_PKCS12_ACIItoUNI: the password as the key derivation takes it: each octet behind a zero octet,
 * then two zero octets: 2 * passwordLen + 2 octets. Always 0; for a length above 0x7FFFFFF0 nothing
 * is written and `*outLen` is 0.
 */
ZACERT_API uint32_t ZA_PKCS12_ACIItoUNI(const uint8_t *password, uint32_t passwordLen, uint8_t *out,
                                        uint32_t *outLen);

/*
 * ZA_PKCS12_GenRandomFromPassword: `wanted` octets of key material (RFC 7292, B.2, with blocks of
 * 64 octets for every digest, so that SHA-384 and SHA-512 give other octets than elsewhere).
 * `idByte`: 1 key, 2 IV, 3 MAC key. 0 iterations count as 1; there is no upper limit. 126: unknown
 * digest number, or any other failure.
 */
ZACERT_API uint32_t ZA_PKCS12_GenRandomFromPassword(uint32_t digestCode, const uint8_t *password,
                                                    uint32_t passwordLen, const uint8_t *salt,
                                                    uint32_t saltLen, uint32_t idByte,
                                                    uint32_t iterations, uint8_t *out,
                                                    uint32_t wanted);

/*
 * ZA_PKCS12_PbeWithDigestAlgoAndEncrypt: writes `plainLen` octets with RC4, otherwise up to 8 more.
 * A NULL `cipher` asks for the length. 139: unknown OID; 100; the codes of the key derivation.
 */
ZACERT_API uint32_t ZA_PKCS12_PbeWithDigestAlgoAndEncrypt(const uint8_t *oid, uint32_t oidLen,
                                                          const uint8_t *password,
                                                          uint32_t passwordLen, const uint8_t *salt,
                                                          uint32_t saltLen, uint32_t iterations,
                                                          const uint8_t *plain, uint32_t plainLen,
                                                          uint8_t *cipher, uint32_t *cipherLen);

/*
 * ZA_PKCS12_PbeWithDigestAlgoAndDecrypt: writes at most `cipherLen` octets; with a NULL `plain` it
 * decrypts to learn the length. A wrong password is not told apart with certainty: 101 (see
 * ZA_PKCS12_DecPad) or meaningless octets. An encrypted empty text cannot be decrypted (101).
 * 139: unknown OID; 101: also a length that is not a multiple of 8 or, but with RC4, is 0; 100; the
 * codes of the key derivation.
 */
ZACERT_API uint32_t ZA_PKCS12_PbeWithDigestAlgoAndDecrypt(const uint8_t *oid, uint32_t oidLen,
                                                          const uint8_t *password,
                                                          uint32_t passwordLen, const uint8_t *salt,
                                                          uint32_t saltLen, uint32_t iterations,
                                                          const uint8_t *cipher, uint32_t cipherLen,
                                                          uint8_t *plain, uint32_t *plainLen);

/*
 * ZA_PKCS12_DESEncrypt: the same ciphers under the caller's own key and IV. Triple DES takes the
 * first 16 or 24 octets of the key, RC2 and RC4 all of it; a short key or IV is filled up with
 * zeros, and of an IV the first 8 octets count. 139: unknown OID; 108: no key or one above 256
 * octets, with RC2 above 128, with RC2 and RC4 an empty one; no IV, but with RC4; 100.
 */
ZACERT_API uint32_t ZA_PKCS12_DESEncrypt(const uint8_t *oid, uint32_t oidLen, const uint8_t *key,
                                         uint32_t keyLen, const uint8_t *iv, uint32_t ivLen,
                                         const uint8_t *plain, uint32_t plainLen, uint8_t *cipher,
                                         uint32_t *cipherLen);

/*
 * ZA_PKCS12_DESDecrypt: decrypts what ZA_PKCS12_DESEncrypt made. 139: also an empty input; 101: as
 * ZA_PKCS12_PbeWithDigestAlgoAndDecrypt.
 */
ZACERT_API uint32_t ZA_PKCS12_DESDecrypt(const uint8_t *oid, uint32_t oidLen, const uint8_t *key,
                                         uint32_t keyLen, const uint8_t *iv, uint32_t ivLen,
                                         const uint8_t *cipher, uint32_t cipherLen, uint8_t *plain,
                                         uint32_t *plainLen);

/* ---- AES-128, HMAC, padding --------------------------------------------------------------------
 */

/*
 * ZA_PKCS12_AESEncrypt: AES with a key of 16 octets, `mode` 1 ECB or 2 CBC with an IV of 16 octets,
 * padded by 1 to 16 octets. Neither NULL outputs nor an empty text are taken. 108: a bad argument.
 */
ZACERT_API uint32_t ZA_PKCS12_AESEncrypt(uint32_t mode, const uint8_t *key, uint32_t keyLen,
                                         const uint8_t *iv, uint32_t ivLen, const uint8_t *plain,
                                         uint32_t plainLen, uint8_t *cipher, uint32_t *cipherLen);

/*
 * ZA_PKCS12_AESDecrypt: decrypts 16 to 8192 octets, a multiple of 16. Of the padding only the last
 * octet is looked at: as many octets are taken off; 0 takes off nothing. 108: a bad argument, or a
 * last octet greater than the length.
 */
ZACERT_API uint32_t ZA_PKCS12_AESDecrypt(uint32_t mode, const uint8_t *key, uint32_t keyLen,
                                         const uint8_t *iv, uint32_t ivLen, const uint8_t *cipher,
                                         uint32_t cipherLen, uint8_t *plain, uint32_t *plainLen);

/*
 * ZA_PKCS12_HMAC: HMAC (RFC 2104) with MD2, MD5 or SHA-1 over blocks of 64 octets: 16 or 20 octets.
 * A NULL key is an empty one. 126: another digest number, or a key above 256 octets.
 */
ZACERT_API uint32_t ZA_PKCS12_HMAC(uint32_t digestCode, const uint8_t *key, uint32_t keyLen,
                                   const uint8_t *data, uint32_t dataLen, uint8_t *mac,
                                   uint32_t *macLen);

/* ZA_PKCS12_AddPad: appends 1 to 8 octets of that value up to a multiple of 8. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_AddPad(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                     uint32_t *outLen);

/*
 * ZA_PKCS12_DecPad: takes off as many octets as the last one says; 0 takes off nothing, and the
 * others are not looked at. 101: it says as many as there are, or more.
 */
ZACERT_API uint32_t ZA_PKCS12_DecPad(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                     uint32_t *outLen);

/* ---- Functions of the type ZA_CryptFunc --------------------------------------------------------
 */

/*
 * ZA_PBE_RECORD: what password-based encryption needs: OID content octets, password, salt,
 * iterations. Where a record is installed only its own 48 octets are copied: what it points to must
 * live until the function was called for the last time.
 */
typedef struct ZA_PBE_RECORD {
    const uint8_t *algoOid;
    uint32_t algoOidLen;
    const uint8_t *password;
    uint32_t passwordLen;
    const uint8_t *salt;
    uint32_t saltLen;
    uint32_t iterations;
} ZA_PBE_RECORD;

/* ZA_HMAC_RECORD: digest number and key, up to 200 octets, which is not copied either. */
typedef struct ZA_HMAC_RECORD {
    int32_t digest;
    const uint8_t *key;
    uint32_t keyLen;
} ZA_HMAC_RECORD;

/*
 * Each calls one function of this header and gives its result; 121: `context` is NULL. None of them
 * looks at the room that `*outLen` tells.
 */

/* ZA_DigestFunc_Ref: ZA_PKCS7_DigestMessage; `context` is an int32_t with the digest number. */
ZACERT_API int32_t ZA_DigestFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                     uint32_t *outLen, void *context);

/*
 * ZA_PrivateKeyEncFunc_Ref: ZA_PKCS7_RSAPrivateEncrypt; `context` is a ZA_RSArefPrivateKey. It
 * signs what it gets: a function that signs certificates digests the octets and makes the
 * DigestInfo first. It cannot be installed for certificates as it is.
 */
ZACERT_API int32_t ZA_PrivateKeyEncFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                            uint32_t *outLen, void *context);

/* ZA_PrivateKeyDecryptFunc_Ref: ZA_PKCS7_RSAPrivateDecrypt; a ZA_RSArefPrivateKey. */
ZACERT_API int32_t ZA_PrivateKeyDecryptFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                                uint32_t *outLen, void *context);

/* ZA_PublicKeyDecryptFunc_Ref: ZA_PKCS7_RSAPublicDecrypt; a ZA_RSArefPublicKey. */
ZACERT_API int32_t ZA_PublicKeyDecryptFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                               uint32_t *outLen, void *context);

/* ZA_PublicKeyEncryptFunc_Ref: ZA_PKCS7_RSAPublicEncrypt; a ZA_RSArefPublicKey. */
ZACERT_API int32_t ZA_PublicKeyEncryptFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                               uint32_t *outLen, void *context);

/* ZA_DecryptFunc_Ref: ZA_PKCS12_PbeWithDigestAlgoAndDecrypt; a ZA_PBE_RECORD. */
ZACERT_API int32_t ZA_DecryptFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                      uint32_t *outLen, void *context);

/* ZA_EncryptFunc_Ref: ZA_PKCS12_PbeWithDigestAlgoAndEncrypt; a ZA_PBE_RECORD. */
ZACERT_API int32_t ZA_EncryptFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                      uint32_t *outLen, void *context);

/* ZA_HMACFunc_Ref: ZA_PKCS12_HMAC; a ZA_HMAC_RECORD. 126: also a key above 200 octets. */
ZACERT_API int32_t ZA_HMACFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                   uint32_t *outLen, void *context);

#ifdef __cplusplus
}
#endif

#endif
