/*
 * gm.h - ready callbacks for SM2 with SM3, and for ECDSA on P-256 beside them: the library
 * zacert-gm.
 *
 * Example: a certificate signed with a PKCS#8 key.
 *
 *     zacert_gm_key key;
 *     if (zacert_gm_key_from_der(der, derLen, &key) == 0) {
 *         ZACert_SetCertSignFunc(cert, zacert_gm_sm2_sign, (uint8_t *)&key, sizeof key);
 *     }
 *
 * What holds for every function unless its own comment says otherwise:
 *
 * Results   0 is success. 101: room too small or a length out of range; 108: NULL where a value is
 *           needed; 122: the context is not the record the function wants; 125: the digest failed;
 *           126: libcrypto refused key or operation. A failure writes nothing.
 * Callbacks `out` NULL gives 0 and the most octets the function ever writes, and looks at neither
 *           input nor context, which may then be NULL. Otherwise `*outLen` must be at least that
 *           number and is set to what was written.
 * Context   Records are flat: the octets of a copy serve as well, at any address. They hold no
 *           pointer, and nothing needs to be released; wipe a zacert_gm_key after use.
 * Threads   Every function may be called by several threads at once. The only state is the
 *           identifier of zacert_gm_set_verify_id, which each thread has for itself.
 */
#ifndef ZACERT_GM_H
#define ZACERT_GM_H

#include <zacert/callbacks.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ZACERT_GM_*: sizes in octets; 72 is the longest SEQUENCE { r, s } of a 256-bit curve. */
enum {
    ZACERT_GM_DIGEST_LEN = 32,
    ZACERT_GM_SIGNATURE_LEN = 72,
    ZACERT_GM_SCALAR_LEN = 32,
    ZACERT_GM_MAX_ID_LEN = 256
};

/* ZACERT_GM_CURVE_*: what a key is for: SM2 with SM3, or ECDSA on P-256 with SHA-256. */
enum { ZACERT_GM_CURVE_SM2 = 1, ZACERT_GM_CURVE_P256 = 2 };

/* ZACERT_GM_DEFAULT_ID: the distinguishing identifier that GM/T 0009 gives to signers without. */
#define ZACERT_GM_DEFAULT_ID "1234567812345678"

/*
 * zacert_gm_identity: who signs with SM2: public point and distinguishing identifier, of which
 * `idLen` octets count. Filled by zacert_gm_identity_set; `tag` says that it was.
 */
typedef struct zacert_gm_identity {
    uint32_t tag;
    uint32_t idLen;
    uint8_t id[ZACERT_GM_MAX_ID_LEN];
    ZA_ECCPOINT pub;
} zacert_gm_identity;

/*
 * zacert_gm_key: a private key: the secret number `d`, big-endian, and who signs with it; P-256
 * ignores the identifier. Filled by zacert_gm_key_from_scalar or zacert_gm_key_from_der. The whole
 * record is what signing callbacks take as their key octets.
 */
typedef struct zacert_gm_key {
    uint32_t tag;
    uint32_t curve;
    zacert_gm_identity identity;
    uint8_t d[ZACERT_GM_SCALAR_LEN];
} zacert_gm_key;

/* ---- Records -----------------------------------------------------------------------------------
 */

/*
 * zacert_gm_identity_set: fills `out` with a point of the SM2 curve and an identifier; `idLen` 0
 * gives the default one. The point is not checked. 101: more than 256 octets.
 */
ZACERT_API uint32_t zacert_gm_identity_set(const ZA_ECCPOINT *pub, const uint8_t *id,
                                           uint32_t idLen, zacert_gm_identity *out);

/*
 * zacert_gm_key_from_scalar: fills `out` from the secret number of a key on `curve`, calculating
 * the point; the identifier is the default one. 118: no such curve; 120: the number is 0 or not
 * below the order (SM2: the order less one).
 */
ZACERT_API uint32_t zacert_gm_key_from_scalar(uint32_t curve, const uint8_t d[ZACERT_GM_SCALAR_LEN],
                                              zacert_gm_key *out);

/*
 * zacert_gm_key_from_der: the same from an unencrypted PrivateKeyInfo (RFC 5208) or ECPrivateKey
 * (RFC 5915). 118: another curve or kind of key; 120: no private key, octets behind it, or a number
 * out of range.
 */
ZACERT_API uint32_t zacert_gm_key_from_der(const uint8_t *der, uint32_t derLen, zacert_gm_key *out);

/*
 * zacert_gm_key_set_id: changes the identifier a key signs under; `idLen` 0 gives the default one.
 * 101: more than 256 octets.
 */
ZACERT_API uint32_t zacert_gm_key_set_id(zacert_gm_key *key, const uint8_t *id, uint32_t idLen);

/* ---- Digests (ZA_CryptFunc) --------------------------------------------------------------------
 */

/* zacert_gm_sm3: the SM3 digest (GB/T 32905) of the input, 32 octets; `context` is not used. */
ZACERT_API int32_t zacert_gm_sm3(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                                 void *context);

/*
 * zacert_gm_sm2_digest: what SM2 signs (GB/T 32918.2): SM3 of Z and the input, 32 octets, where Z
 * is the digest of identifier, curve and public point. For the digest slot of a PKCS#7 signer; the
 * `context` is a zacert_gm_identity.
 */
ZACERT_API int32_t zacert_gm_sm2_digest(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                        uint32_t *outLen, void *context);

/* ---- Signing (ZACertSignFunc) ------------------------------------------------------------------
 */

/*
 * zacert_gm_sm2_sign: the SM2 signature of the input under the key's identifier, as DER SEQUENCE
 * { INTEGER r, INTEGER s }. `context` is a zacert_gm_key on SM2. A query gives 72; the signature is
 * of 72 octets or a few fewer, and differs from call to call.
 */
ZACERT_API int32_t zacert_gm_sm2_sign(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                      uint32_t *outLen, void *context);

/*
 * zacert_gm_sm2_sign_digest: the same of a digest made by zacert_gm_sm2_digest, as PKCS#7 signers
 * get it. 101: the input is not of 32 octets.
 */
ZACERT_API int32_t zacert_gm_sm2_sign_digest(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                             uint32_t *outLen, void *context);

/*
 * zacert_gm_p256_sign: the ECDSA signature (FIPS 186-4) of the input's SHA-256 digest, in the same
 * form and length. `context` is a zacert_gm_key on P-256.
 */
ZACERT_API int32_t zacert_gm_p256_sign(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                       uint32_t *outLen, void *context);

/* ---- Verifying (ZA_EccVerifyFunc) --------------------------------------------------------------
 *
 * `*result` becomes 1 for a good signature and stays as it was otherwise. A signature that does not
 * match is no failure: 0. A point that is not on the curve gives 126.
 */

/*
 * zacert_gm_set_verify_id: the identifier under which zacert_gm_sm2_verify and zacert_gm_verify
 * check in the calling thread from now on; it is copied. `idLen` 0 goes back to the default one.
 * Verifiers call back in the thread that called them: set it before and go back after, whatever
 * other threads do. 101: more than 256 octets, and the former one stays.
 */
ZACERT_API uint32_t zacert_gm_set_verify_id(const uint8_t *id, uint32_t idLen);

/* zacert_gm_sm2_verify: over the signed octets, SM2 with SM3; `pass` is not used. */
ZACERT_API int32_t zacert_gm_sm2_verify(const uint8_t *tbs, uint32_t tbsLen, void *pass,
                                        const ZA_ECCSignStruct *sig, const ZA_ECCPOINT *pub,
                                        uint32_t *result);

/* zacert_gm_p256_verify: over the signed octets, P-256 with SHA-256; `pass` is not used. */
ZACERT_API int32_t zacert_gm_p256_verify(const uint8_t *tbs, uint32_t tbsLen, void *pass,
                                         const ZA_ECCSignStruct *sig, const ZA_ECCPOINT *pub,
                                         uint32_t *result);

/*
 * zacert_gm_verify: the one of the two that the key's curve asks for; `pass` is the key's whole
 * record (ZACERT_EccPubKey). 118: another curve.
 */
ZACERT_API int32_t zacert_gm_verify(const uint8_t *tbs, uint32_t tbsLen, void *pass,
                                    const ZA_ECCSignStruct *sig, const ZA_ECCPOINT *pub,
                                    uint32_t *result);

/*
 * zacert_gm_sm2_verify_digest, zacert_gm_p256_verify_digest: over a digest made before (for SM2 by
 * zacert_gm_sm2_digest), given as `tbs`. 101: it is not of 32 octets.
 */
ZACERT_API int32_t zacert_gm_sm2_verify_digest(const uint8_t *tbs, uint32_t tbsLen, void *pass,
                                               const ZA_ECCSignStruct *sig, const ZA_ECCPOINT *pub,
                                               uint32_t *result);

ZACERT_API int32_t zacert_gm_p256_verify_digest(const uint8_t *tbs, uint32_t tbsLen, void *pass,
                                                const ZA_ECCSignStruct *sig, const ZA_ECCPOINT *pub,
                                                uint32_t *result);

/*
 * zacert_gm_sm2_verify_pkcs7: the verify slot of a PKCS#7 signer: the digest is one made by
 * zacert_gm_sm2_digest, the signature DER, `context` a zacert_gm_identity whose identifier is in
 * the digest already. A signature that is no such DER does not match. 101: the digest is not of 32
 * octets.
 */
ZACERT_API int32_t zacert_gm_sm2_verify_pkcs7(const uint8_t *digest, uint32_t digestLen,
                                              const uint8_t *sig, uint32_t sigLen, uint32_t *result,
                                              void *context);

#ifdef __cplusplus
}
#endif

#endif
