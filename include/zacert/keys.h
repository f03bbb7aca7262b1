/*
 * keys.h - RSA keys, elliptic-curve keys and signatures, SubjectPublicKeyInfo.
 *
 * RSA numbers and the halves of a signature are big-endian and right-aligned in fixed fields,
 * padded with zero octets on the left. Strings of elliptic-curve key records are the fields' 32
 * octets as they stand; a shorter string read fills the START of its field.
 *
 * Example: an RSAPublicKey to the record and back.
 *
 *     ZA_RSAPublicKey key;
 *     uint8_t der[600];
 *     uint32_t len = 0;
 *     if (ZA_Decode_PublicKey(&key, in, inLen) == 0 &&
 *         ZA_Encode_PublicKey(&key, NULL, &len) == 0 && len <= sizeof der) {
 *         ZA_Encode_PublicKey(&key, der, &len);
 *     }
 */
#ifndef ZACERT_KEYS_H
#define ZACERT_KEYS_H

#include <zacert/base.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- RSA (RFC 8017, appendix A.1) ------------------------------------------------------------ */

/* ZA_RSAPublicKey: modulus and public exponent, up to 2048 bits. */
typedef struct ZA_RSAPublicKey {
    uint8_t modulus[256];
    uint8_t exponent[256];
} ZA_RSAPublicKey;

/* ZA_RSAPrivateKey: all numbers of a two-prime key; primes of up to 1024 bits. */
typedef struct ZA_RSAPrivateKey {
    uint8_t modulus[256];
    uint8_t publicExponent[256];
    uint8_t exponent[256];
    uint8_t prime1[128];
    uint8_t prime2[128];
    uint8_t primeExponent1[128];
    uint8_t primeExponent2[128];
    uint8_t coefficient[128];
} ZA_RSAPrivateKey;

/*
 * ZA_RSArefPublicKey, ZA_RSArefPrivateKey: the same numbers behind the modulus length in bits: the
 * records of the one-shot RSA functions. They are other types than the two above; passing one for
 * the other shifts every field.
 */
typedef struct ZA_RSArefPublicKey {
    uint32_t bits;
    uint8_t modulus[256];
    uint8_t exponent[256];
} ZA_RSArefPublicKey;

typedef struct ZA_RSArefPrivateKey {
    uint32_t bits;
    uint8_t modulus[256];
    uint8_t publicExponent[256];
    uint8_t exponent[256];
    uint8_t prime1[128];
    uint8_t prime2[128];
    uint8_t primeExponent1[128];
    uint8_t primeExponent2[128];
    uint8_t coefficient[128];
} ZA_RSArefPrivateKey;

/* ZA_Encode_PublicKey: RSAPublicKey of a record. 100: `key` is NULL, or no memory. */
ZACERT_API uint32_t ZA_Encode_PublicKey(const ZA_RSAPublicKey *key, uint8_t *out, uint32_t *outLen);

/* ZA_Encode_PrivateKey: RSAPrivateKey, version 0, of a record. 100: `key` is NULL, or no memory. */
ZACERT_API uint32_t ZA_Encode_PrivateKey(const ZA_RSAPrivateKey *key, uint8_t *out,
                                         uint32_t *outLen);

/*
 * ZA_Decode_PublicKey: fills the record from an RSAPublicKey. 100: `key` is NULL; 101: `derLen` is
 * 0 or less, or a number longer than its field; 113: fewer than two numbers; the readers' codes.
 */
ZACERT_API uint32_t ZA_Decode_PublicKey(ZA_RSAPublicKey *key, const uint8_t *der, int32_t derLen);

/*
 * ZA_Decode_PrivateKey: fills the record from an RSAPrivateKey; its version is not looked at. Codes
 * as ZA_Decode_PublicKey; 113: fewer than eight numbers.
 */
ZACERT_API uint32_t ZA_Decode_PrivateKey(ZA_RSAPrivateKey *key, const uint8_t *der, int32_t derLen);

/*
 * ZI_PKCS1to8KEY: wraps an RSAPrivateKey as PrivateKeyInfo (RFC 5208) with rsaEncryption and NULL
 * parameters. 108: no octets; 113: fewer than nine elements; 122: the first two are not INTEGERs.
 */
ZACERT_API uint32_t ZI_PKCS1to8KEY(const uint8_t *pkcs1, uint32_t pkcs1Len, uint8_t *out,
                                   uint32_t *outLen);

/* ---- Elliptic-curve signatures --------------------------------------------------------------- */

/* ZA_ECCSignStruct: the two halves of an ECDSA or SM2 signature on a 256-bit curve. */
typedef struct ZA_ECCSignStruct {
    uint8_t r[32];
    uint8_t s[32];
} ZA_ECCSignStruct;

/*
 * ZA_Encode_ECCSignStructToDerData: SEQUENCE { INTEGER r, INTEGER s } (RFC 3279, 2.2.3). 100: `sig`
 * is NULL or r is zero. When s is zero the result is 0 but nothing is written and `*outLen` stays:
 * preset it to 0 and take 0 for "no signature".
 */
ZACERT_API uint32_t ZA_Encode_ECCSignStructToDerData(const ZA_ECCSignStruct *sig, uint8_t *out,
                                                     uint32_t *outLen);

/*
 * ZA_Decode_DerDataToECCSignStruct: fills the record from SEQUENCE { INTEGER r, INTEGER s }. 100:
 * `sig` is NULL; 101: `derLen` is 0 or less, or a half longer than 32 octets; 113: fewer than two
 * numbers.
 */
ZACERT_API uint32_t ZA_Decode_DerDataToECCSignStruct(ZA_ECCSignStruct *sig, const uint8_t *der,
                                                     int32_t derLen);

/* ---- Elliptic-curve keys --------------------------------------------------------------------- */

/*
 * ZACERT_EccCurve: domain parameters of a prime curve of 256 bits. In records filled by the library
 * `len1` and `len2` are 256, and the fields are zero for curves it knows by identifier alone.
 */
typedef struct ZACERT_EccCurve {
    uint8_t p[32];
    uint8_t a[32];
    uint8_t b[32];
    uint8_t gx[32];
    uint8_t gy[32];
    uint8_t n[32];
    uint16_t len1;
    uint16_t len2;
} ZACERT_EccCurve;

/* ZACERT_EccPubKey: a curve and a point on it. */
typedef struct ZACERT_EccPubKey {
    ZACERT_EccCurve curve;
    uint8_t x[32];
    uint8_t y[32];
} ZACERT_EccPubKey;

/* ZACERT_EccPriKey: a public key and its secret number. Wipe it after use. */
typedef struct ZACERT_EccPriKey {
    ZACERT_EccPubKey pub;
    uint8_t d[32];
} ZACERT_EccPriKey;

/*
 * ZACERT_EncodeEccPubKey: the library's own DER form of a public key: SEQUENCE { SEQUENCE { p, a,
 * b, gx, gy, n, INTEGER len1, INTEGER len2 }, x, y }, every field a PrintableString of its 32
 * octets, or an empty one when all are zero. `recLen` must be 260. 108: NULL record or `recLen`
 * below 1; 101.
 */
ZACERT_API uint32_t ZACERT_EncodeEccPubKey(const ZACERT_EccPubKey *rec, int32_t recLen,
                                           uint8_t *out, uint32_t *outLen);

/*
 * ZACERT_DecodeEccPubKey: reads that form; `rec` may be NULL, `*outLen` is 260. 108: no DER,
 * another first octet than 0x30, or a curve given as NULL; 101: a string longer than 32 octets;
 * 113: too few elements; the readers' codes.
 */
ZACERT_API uint32_t ZACERT_DecodeEccPubKey(const uint8_t *der, int32_t derLen,
                                           ZACERT_EccPubKey *rec, uint32_t *outLen);

/*
 * ZACERT_EncodeEccPriKey: the form of ZACERT_EncodeEccPubKey with the secret number as a further
 * string behind y. `recLen` must be 292. Codes as there.
 */
ZACERT_API uint32_t ZACERT_EncodeEccPriKey(const ZACERT_EccPriKey *rec, int32_t recLen,
                                           uint8_t *out, uint32_t *outLen);

/* ZACERT_DecodeEccPriKey: reads what ZACERT_EncodeEccPriKey writes; `*outLen` is 292. */
ZACERT_API uint32_t ZACERT_DecodeEccPriKey(const uint8_t *der, int32_t derLen,
                                           ZACERT_EccPriKey *rec, uint32_t *outLen);

/*
 * ZACERT_DecodeEccPriKey_New: reads a private key in any of three forms: the one above; the
 * container SEQUENCE { INTEGER 1, curve OBJECT IDENTIFIER, d, x, y } with strings of tag 19, 4 or
 * 2; or ECPrivateKey (RFC 5915), whose point stays zero when it is left out or not in the
 * uncompressed form of 65 octets. Strings fill the START of their field; INTEGERs and the number of
 * an ECPrivateKey stand at its end. 122: none of them; 101: a number longer than 32 octets; 113:
 * too few elements.
 */
ZACERT_API uint32_t ZACERT_DecodeEccPriKey_New(const uint8_t *der, int32_t derLen,
                                               ZACERT_EccPriKey *rec, uint32_t *outLen);

/*
 * ZACERT_EcPrivateZqcspDerToCertDer: turns a private key of any of the three forms into
 * ECPrivateKey (RFC 5915) with the curve where it is known and the point; an ECPrivateKey comes
 * back unchanged. 108: no octets; 113: the point is missing or zero; 122: a curve given by its
 * parameters that is neither prime256v1 nor the SM2 curve, or none of the three forms.
 */
ZACERT_API uint32_t ZACERT_EcPrivateZqcspDerToCertDer(const uint8_t *der, uint32_t derLen,
                                                      uint8_t *out, uint32_t *outLen);

/* ---- SubjectPublicKeyInfo -------------------------------------------------------------------- */

/*
 * ZI_PubKey: a SubjectPublicKeyInfo (RFC 5280, 4.1.2.7) taken apart. `algorithm` holds the key
 * algorithm's OID content octets. `keyKind` tells the form of `parameters`: 12 the content octets
 * of a curve's OID, 11 a whole SEQUENCE, 1 to 7 a whole INTEGER of that value, 0 anything else
 * (whole) or nothing (NULL or absent). `rawBits` is the content of the BIT STRING. For an
 * elliptic-curve key with an uncompressed point of 65 octets `hasEcc` is 1, `ecc` is filled, and
 * `keyBits` is its ZACERT_EncodeEccPubKey form; for every other key `keyBits` equals `rawBits`.
 * `tag` is 16. The caller clears the four records with ZI_ClearAnybuf.
 */
typedef struct ZI_PubKey {
    uint32_t tag;
    Anybuf algorithm;
    Anybuf parameters;
    uint32_t keyKind;
    Anybuf keyBits;
    Anybuf rawBits;
    uint32_t hasEcc;
    ZACERT_EccPubKey ecc;
} ZI_PubKey;

/*
 * ZI_DecodePubKey: fills `out`, whose former content is not freed, from a SubjectPublicKeyInfo. An
 * unknown algorithm or curve is no failure: the fields of `ecc.curve` are zero then. 113: fewer
 * than two elements, or no algorithm; the readers' codes.
 */
ZACERT_API uint32_t ZI_DecodePubKey(const Anybuf *spki, ZI_PubKey *out);

#ifdef __cplusplus
}
#endif

#endif
