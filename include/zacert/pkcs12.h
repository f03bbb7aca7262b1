/*
 * pkcs12.h - PKCS#12 files (RFC 7292): a private key and certificates under a password. Bags are in
 * pkcs12_bags.h, containers and the MAC in pkcs12_safe.h, ciphers and key derivation in crypto.h.
 *
 * What holds for all of PKCS#12: a NULL context, or NULL where a value or a length is needed, is
 * 121, for the functions that release one too. Setters copy; NULL, or a length above 0x7FFFFFFF, is
 * 121. Files of writers that use indefinite lengths (BER) are read as they are. Passwords are the
 * caller's octets and are never converted: those of RFC 7292 are ASCII here, and any other is taken
 * octet by octet.
 *
 * Files are written with triple DES for the key, RC2 with 40 bits for the certificates and a MAC
 * over SHA-1, 2000 iterations each, because old programs read nothing else: none of that protects a
 * key from somebody with time. Elliptic-curve keys are written without the name of their curve
 * beside the algorithm: OpenSSL refuses such a file, NSS cannot use the key, certtool reads it.
 *
 * A MAC over MD5 or MD2 is read with a key of 20 octets; other programs use 16, so theirs are told
 * to be wrong (300).
 *
 * Example: a file written.
 *
 *     void *pfx = NULL;
 *     uint8_t *der = NULL;
 *     uint32_t len = 0;
 *     if (ZA_PKCS12_CreateEncodePfx(&pfx) == 0 &&
 *         ZA_PKCS12_SetPrivateKey(pfx, key, keyLen) == 0 &&
 *         ZA_PKCS12_SetCertificate(pfx, cert, certLen) == 0 &&
 *         ZA_PKCS12_EncodePFX(pfx, password, passwordLen, NULL, &len) == 0 &&
 *         (der = malloc(len)) != NULL &&
 *         ZA_PKCS12_EncodePFX(pfx, password, passwordLen, der, &len) == 0) {
 *         save(der, len);
 *     }
 *     free(der);
 *     ZA_PKCS12_DestroyEncodePFX(pfx);
 */
#ifndef ZACERT_PKCS12_H
#define ZACERT_PKCS12_H

#include <zacert/base.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Writing --------------------------------------------------------------------------------- */

/* ZA_PKCS12_CreateEncodePfx: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodePfx(void **ctx);

/*
 * ZA_PKCS12_SetPrivateKey: the private key in place of the one before: RSAPrivateKey (RFC 8017), or
 * an elliptic-curve key in the container form or as ECPrivateKey (RFC 5915).
 */
ZACERT_API uint32_t ZA_PKCS12_SetPrivateKey(void *ctx, const uint8_t *key, uint32_t keyLen);

/*
 * ZA_PKCS12_SetPrivateKey_Attribute: appends an attribute inside the encrypted key. An attribute is
 * the content octets of its type, and the DER of its SET of values (31 ..), which is written as it
 * is. 121: NULL, or a negative length.
 */
ZACERT_API uint32_t ZA_PKCS12_SetPrivateKey_Attribute(void *ctx, const uint8_t *type,
                                                      int32_t typeLen, const uint8_t *value,
                                                      int32_t valueLen);

/*
 * ZA_PKCS12_SetPrivateKeyBag_Attribute: appends an attribute to the bag of the key, where other
 * programs look for friendlyName and localKeyID.
 */
ZACERT_API uint32_t ZA_PKCS12_SetPrivateKeyBag_Attribute(void *ctx, const uint8_t *type,
                                                         int32_t typeLen, const uint8_t *value,
                                                         int32_t valueLen);

/* ZA_PKCS12_SetCertificate: appends a certificate; the one of the key comes first. */
ZACERT_API uint32_t ZA_PKCS12_SetCertificate(void *ctx, const uint8_t *cert, uint32_t certLen);

/*
 * ZA_PKCS12_SetCertificateBag_Attribute: appends an attribute to the certificate with this number,
 * from 1; a number above all is that of the last one. What is set with the number 0, or before
 * there is any certificate, is never written.
 */
ZACERT_API uint32_t ZA_PKCS12_SetCertificateBag_Attribute(void *ctx, const uint8_t *type,
                                                          int32_t typeLen, const uint8_t *value,
                                                          int32_t valueLen, uint32_t certNumber);

/*
 * ZA_PKCS12_EncodePFX: writes the file; may be called again, and the length is always the same. The
 * algorithm follows from the octets of the key: 601 to 628 or 1181 to 1201 are RSA (1024 and 2048
 * bits), 116 to 134 an elliptic curve; its container form becomes an ECPrivateKey. 120: any other
 * length; 108: no random octets; 121: no password but a length of one.
 */
ZACERT_API uint32_t ZA_PKCS12_EncodePFX(void *ctx, const uint8_t *password, uint32_t passwordLen,
                                        uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS12_EncodePFXNEW: the same for a key of any length that is written as it is: `keyType` 0
 * RSA, 1 elliptic curve. 121: another type.
 */
ZACERT_API uint32_t ZA_PKCS12_EncodePFXNEW(void *ctx, uint32_t keyType, const uint8_t *password,
                                           uint32_t passwordLen, uint8_t *out, uint32_t *outLen);

/* ZA_PKCS12_DestroyEncodePFX: releases a context; keys are wiped. Returns 0; 121: NULL. */
ZACERT_API uint32_t ZA_PKCS12_DestroyEncodePFX(void *ctx);

/* ---- Reading --------------------------------------------------------------------------------- */

/* ZA_PKCS12_CreateDecodePfx: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodePfx(void **ctx);

/*
 * ZA_PKCS12_DecodePFX: reads a file once into a context. Look at `*macResult` before you trust
 * anything in it: 200 the MAC is right; 300 the password or the file is wrong, or there is no MAC,
 * although the result may be 0 and a key may have been found; so does it stay when reading fails.
 * Containers 1 and 2 are read, whose bags must be certificates or encrypted keys; others are passed
 * over. 126: the digest of the MAC is not MD2, MD5 or SHA-1; 139: an algorithm of encryption that
 * crypto.h does not list; otherwise the codes of decryption and of the DER readers. A failure
 * leaves the context as it was.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodePFX(void *ctx, const uint8_t *password, uint32_t passwordLen,
                                        const uint8_t *pfx, uint32_t pfxLen, uint32_t *macResult);

/*
 * ZA_PKCS12_GetPrivateKey: the key. 120: there is none, or its length is not 601 to 618, 1181 to
 * 1201 or 107 to 134.
 */
ZACERT_API uint32_t ZA_PKCS12_GetPrivateKey(void *ctx, uint8_t *key, uint32_t *keyLen);

/*
 * ZA_PKCS12_GetPrivateKey_Attribute: reads the attribute with this number, from 1. 121: there is
 * none. They are kept of a key in the second container.
 */
ZACERT_API uint32_t ZA_PKCS12_GetPrivateKey_Attribute(void *ctx, uint8_t *type, uint32_t *typeLen,
                                                      uint8_t *value, uint32_t *valueLen,
                                                      uint32_t number);

/* ZA_PKCS12_GetPrivateKeyBag_Attribute: the same for those of its bag. */
ZACERT_API uint32_t ZA_PKCS12_GetPrivateKeyBag_Attribute(void *ctx, uint8_t *type,
                                                         uint32_t *typeLen, uint8_t *value,
                                                         uint32_t *valueLen, uint32_t number);

/*
 * ZA_PKCS12_GetCertificateBag_Attribute: the same for the certificate with the number `certNumber`,
 * from 1. While reading, the attributes of a bag go to the certificate with the number of the bag,
 * which is another one where bags of keys stand before.
 */
ZACERT_API uint32_t ZA_PKCS12_GetCertificateBag_Attribute(void *ctx, uint8_t *type,
                                                          uint32_t *typeLen, uint8_t *value,
                                                          uint32_t *valueLen, uint32_t number,
                                                          uint32_t certNumber);

/*
 * ZA_PKCS12_GetCertificate: the certificate with this number, from 1; 0 is the first, too. Where
 * there is none the result is 0 and nothing is written, not even the length: set it to 0 before.
 */
ZACERT_API uint32_t ZA_PKCS12_GetCertificate(void *ctx, uint8_t *cert, uint32_t *certLen,
                                             uint32_t certNumber);

/* ZA_PKCS12_DestroyDecodePFX: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestroyDecodePFX(void *ctx);

/* ---- Parts of files in one call -------------------------------------------------------------- */

/*
 * ZA_PKCS12_DealWithEncKeyBag: takes an EncryptedPrivateKeyInfo apart: algorithm, encrypted key,
 * salt and iterations. No capacity is passed and every place is needed: give each `epkiLen` octets.
 * 108: a place is missing, or the parameters are others than salt and iterations.
 */
ZACERT_API uint32_t ZA_PKCS12_DealWithEncKeyBag(uint8_t *oid, uint32_t *oidLen, uint8_t *encKey,
                                                uint32_t *encKeyLen, uint8_t *salt,
                                                uint32_t *saltLen, uint32_t *iterations,
                                                const uint8_t *epkiDer, uint32_t epkiLen);

/*
 * ZA_PKCS12_GetKeyAndCertFromNspP12: the first encrypted key, decrypted (PrivateKeyInfo), and the
 * first certificate of a file; the MAC is not looked at. 0xFFFFFFFF: one of them is not there, or
 * the file is malformed or does not open; the codes of decryption.
 */
ZACERT_API uint32_t ZA_PKCS12_GetKeyAndCertFromNspP12(const uint8_t *pfx, uint32_t pfxLen,
                                                      const uint8_t *password, uint32_t passwordLen,
                                                      uint8_t *key, uint32_t *keyLen, uint8_t *cert,
                                                      uint32_t *certLen);

/*
 * ZA_PKCS12_Decode_TRLM: the key (as ZA_PKCS12_GetKeyBagKey) of the first bag of a key, encrypted
 * or not, and the first two certificates of a SafeContents; length 0: there is none.
 */
ZACERT_API uint32_t ZA_PKCS12_Decode_TRLM(const uint8_t *safeContents, uint32_t len,
                                          const uint8_t *password, uint32_t passwordLen,
                                          uint8_t *key, uint32_t *keyLen, uint8_t *cert1,
                                          uint32_t *cert1Len, uint8_t *cert2, uint32_t *cert2Len);

#ifdef __cplusplus
}
#endif

#endif
