/*
 * fast_parse.h - a handful of a certificate's fields in one call, into a record of the caller's.
 *
 * Example: until when a certificate is valid.
 *
 *     ZA_CERTINFO info;
 *     if (UserCertParse(6, der, derLen, &info) == 0) {
 *         use(info.notAfter);
 *     }
 */
#ifndef ZACERT_FAST_PARSE_H
#define ZACERT_FAST_PARSE_H

#include <zacert/base.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ZA_CERTINFO: what is read. Fields that a mode does not select stay as they are. */
typedef struct ZA_CERTINFO {
    uint8_t issuerCN[513];  /* first common name and a zero octet */
    uint8_t subjectCN[512]; /* likewise */
    uint8_t serial[131];    /* octets of the INTEGER, without a leading 00 */
    uint32_t serialLen;
    int32_t notBefore;       /* of a UTCTime; 0 of a GeneralizedTime */
    int32_t notAfter;        /* likewise */
    uint8_t publicKey[2048]; /* content of the BIT STRING, or a ZA_ECCKEYBLOCK */
    uint32_t publicKeyLen;
    uint8_t issuerDer[1024]; /* the issuer's Name */
    uint32_t issuerDerLen;
    uint8_t keyAlgOid[128]; /* content octets of the key algorithm's OID */
    uint32_t keyAlgOidLen;
} ZA_CERTINFO;

/*
 * ZA_ECCKEYBLOCK: the public key of an elliptic curve, 412 octets. `kind` is 12 where the
 * parameters are shorter than 30 octets, which a curve's OID is, and 11 otherwise.
 */
typedef struct ZA_ECCKEYBLOCK {
    uint32_t kind;
    uint32_t bitsLen;
    uint8_t bits[140]; /* content of the BIT STRING */
    uint32_t paramLen;
    uint8_t param[260]; /* content octets of the curve's OID, or whole explicit parameters */
} ZA_ECCKEYBLOCK;

/*
 * UserCertParse: reads the fields that `mode` selects, in the order of the certificate:
 *
 *     1  validity, key                              5  serial, issuer DER, issuer CN, validity, key
 *     2  issuer CN, validity, key                   6  validity
 *     3  serial, issuer CN, validity, key           7  key
 *     4  validity, subject CN, key                  any other: none
 *
 * where "key" is publicKey and keyAlgOid. A name that is selected and has no common name ends the
 * call with 0; what stands behind it in the certificate is not read. Extensions, signature and the
 * fields not selected are not looked into. A key of 140 or 270 octets is taken for RSA. On failure
 * the fields before the one that failed are filled. 108: NULL, or `derLen` below 1; 102: the
 * certificate goes beyond `derLen`; 109: it ends early; 101: a value longer than its field; 100.
 */
ZACERT_API uint32_t UserCertParse(uint32_t mode, const uint8_t *der, int32_t derLen,
                                  ZA_CERTINFO *info);

/*
 * ZI_Cert_DecodeTBS_ForSpead: the same from one TBSCertificate element. `scratchCtx` is a
 * certificate context; nothing of it is read or changed.
 */
ZACERT_API uint32_t ZI_Cert_DecodeTBS_ForSpead(uint32_t mode, ZA_CERTINFO *info, void *scratchCtx,
                                               Anybuf *tbs);

#ifdef __cplusplus
}
#endif

#endif
