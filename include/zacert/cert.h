/*
 * cert.h - certificates (RFC 5280): one context for reading and for issuing.
 *
 * Example: the subject's common name of a certificate.
 *
 *     void *cert = NULL;
 *     uint32_t len = 0;
 *     if (ZACert_CreateCertDecodeCtx(&cert) == 0 && ZACert_DecodeCert(cert, der, derLen) == 0 &&
 *         ZACert_GetCertAttributeChar(cert, CERT_SUBJECT_COMMONNAME, NULL, &len) == 0 && len > 0) {
 *         uint8_t *name = malloc(len);
 *         if (name != NULL) {
 *             ZACert_GetCertAttributeChar(cert, CERT_SUBJECT_COMMONNAME, name, &len);
 *             use(name, len);
 *             free(name);
 *         }
 *     }
 *     ZACert_DestroyCertDecodeCtx(cert);
 */
#ifndef ZACERT_CERT_H
#define ZACERT_CERT_H

#include <zacert/base.h>
#include <zacert/cert_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Context --------------------------------------------------------------------------------- */

/*
 * ZACert_CreateCertEncodeCtx: a new certificate context in `*ctx`, which the caller destroys with
 * ZACert_DestroyCertEncodeCtx. 100: no memory.
 */
ZACERT_API uint32_t ZACert_CreateCertEncodeCtx(void **ctx);

/* ZACert_CreateCertDecodeCtx: the same; destroyed with ZACert_DestroyCertDecodeCtx. */
ZACERT_API uint32_t ZACert_CreateCertDecodeCtx(void **ctx);

/* ZACert_DestroyCertEncodeCtx: releases a context and all it holds; NULL is accepted. Returns 0. */
ZACERT_API uint32_t ZACert_DestroyCertEncodeCtx(void *ctx);

/* ZACert_DestroyCertDecodeCtx: the same. */
ZACERT_API uint32_t ZACert_DestroyCertDecodeCtx(void *ctx);

/* ---- Attributes ------------------------------------------------------------------------------ */

/*
 * ZACert_SetCertAttributeInt: sets version (4), notBefore (29) or notAfter (30). 110: any other
 * type. A time set this way is written as UTCTime.
 */
ZACERT_API uint32_t ZACert_SetCertAttributeInt(void *ctx, int32_t type, int32_t value);

/*
 * ZACert_GetCertAttributeInt: reads them. A version that is not there reads as 0. Times past
 * 2038-01-19 use the unsigned range; a time decoded from GeneralizedTime reads as 0 (its octets are
 * in attribute 1). 110: any other type.
 */
ZACERT_API uint32_t ZACert_GetCertAttributeInt(void *ctx, int32_t type, uint32_t *value);

/*
 * ZACert_SetCertAttributeChar: sets one attribute from a copy of `valueLen` octets; see
 * ZA_CertAttribute for the types. Values replace what was set before unless marked once (114) or
 * appended. Name entries are text in GB18030. 101: `valueLen` is 0 or less; 110: unknown type or
 * one that cannot be set; 114: set already, or a key usage of more than two octets, which is kept
 * all the same; 121: dotted text that is no OID; 108: a string-type table of more than 256 octets;
 * 100.
 */
ZACERT_API uint32_t ZACert_SetCertAttributeChar(void *ctx, int32_t type, const uint8_t *value,
                                                int32_t valueLen);

/*
 * ZACert_GetCertAttributeChar: reads one attribute; what is not there has length 0. Name entries
 * come as the first value of their kind: BMPString values as GB18030, every other string as it
 * stands in the certificate, so UTF8String values are UTF-8. On failure `*outLen` is 0. 110:
 * unknown type or one that cannot be read.
 */
ZACERT_API uint32_t ZACert_GetCertAttributeChar(void *ctx, int32_t type, uint8_t *out,
                                                uint32_t *outLen);

/* ---- Decoding -------------------------------------------------------------------------------- */

/*
 * ZACert_DecodeCert: fills a fresh context from one DER certificate. The length is taken from the
 * certificate's own header: a `derLen` that is smaller does not cut it, so the caller vouches for
 * the octets its header announces; check them against the octets you hold (ZAsn1_GetCertLength)
 * when the input is not trusted. A header that announces more than both `derLen` and 65536 gives
 * 101. Missing algorithm or signature stay empty; unknown extensions, critical or not, are kept in
 * the private list. Of an extension that occurs twice the first counts. After a failure the context
 * still has to be destroyed. 109: the TBSCertificate ends early; the readers' codes otherwise.
 */
ZACERT_API uint32_t ZACert_DecodeCert(void *ctx, const uint8_t *der, uint32_t derLen);

/* ZI_Cert_DecodeTBS: fills the context from one TBSCertificate element. 109: it ends early. */
ZACERT_API uint32_t ZI_Cert_DecodeTBS(void *ctx, Anybuf *tbs);

/*
 * ZI_Cert_DecodeExtensions: fills the context from the extensions inside their context tag (any).
 * `extBlock` is a certificate context here and in the functions below.
 */
ZACERT_API uint32_t ZI_Cert_DecodeExtensions(Anybuf *wrapper, void *extBlock);

/*
 * The decoders of single extensions take the chain of an Extension's elements as ZAsn1_ReadSequence
 * gives it (OBJECT IDENTIFIER, BOOLEAN where present, OCTET STRING) and store the value whatever
 * the identifier says. 109: an element is missing; the readers' codes otherwise.
 */

/* ZI_Cert_DecodeExtension_BasicConstraint: attributes 119, 120 and 121 (RFC 5280, 4.2.1.9). */
ZACERT_API uint32_t ZI_Cert_DecodeExtension_BasicConstraint(Anybuf *elements, void *extBlock);

/*
 * ZI_Cert_DecodeExtension_AuthorityKeyIdentifyer: attribute 65 (RFC 5280, 4.2.1.1), with issuer and
 * serial number kept beside it.
 */
ZACERT_API uint32_t ZI_Cert_DecodeExtension_AuthorityKeyIdentifyer(Anybuf *elements,
                                                                   void *extBlock);

/* ZI_Cert_DecodeExtension_SubjectKeyIdentifier: attribute 85 (RFC 5280, 4.2.1.2). */
ZACERT_API uint32_t ZI_Cert_DecodeExtension_SubjectKeyIdentifier(Anybuf *elements, void *extBlock);

/* ZI_Cert_DecodeExtension_KeyUsage: attributes 86 and 87 (RFC 5280, 4.2.1.3). */
ZACERT_API uint32_t ZI_Cert_DecodeExtension_KeyUsage(Anybuf *elements, void *extBlock);

/*
 * ZI_Cert_DecodeExtension_ExtKeyUsage: attribute 129 (RFC 5280, 4.2.1.12); purposes without a bit
 * of their own are kept as object identifiers.
 */
ZACERT_API uint32_t ZI_Cert_DecodeExtension_ExtKeyUsage(Anybuf *elements, void *extBlock);

/*
 * ZI_Cert_DecodeExtension_CrlDistributionPoint: attribute 131 (RFC 5280, 4.2.1.13), the first URI
 * of the first distribution point that has one.
 */
ZACERT_API uint32_t ZI_Cert_DecodeExtension_CrlDistributionPoint(Anybuf *elements, void *extBlock);

/*
 * ZI_Cert_DecodeExtension_SubjectAltName: attributes 504, 505, 509, 510, 106 and 107
 * (RFC 5280, 4.2.1.6); the first name of each form counts.
 */
ZACERT_API uint32_t ZI_Cert_DecodeExtension_SubjectAltName(Anybuf *elements, void *extBlock);

/* ZI_Cert_DecodeExtension_IssuerAltName: attributes 114 and 115 (RFC 5280, 4.2.1.7). */
ZACERT_API uint32_t ZI_Cert_DecodeExtension_IssuerAltName(Anybuf *elements, void *extBlock);

/*
 * ZI_Cert_DecodeExtension_Private: appends the extension to the private list; see
 * ZACert_GetCertAttributePrivate.
 */
ZACERT_API uint32_t ZI_Cert_DecodeExtension_Private(Anybuf *elements, void *extBlock);

/* ---- Private extensions ---------------------------------------------------------------------- */

/*
 * ZACert_SetCertAttributePrivate: appends an extension: OID content octets, criticality (the low
 * octet counts) and the DER that goes into its OCTET STRING. 101: a length of 0 or less; 100.
 */
ZACERT_API uint32_t ZACert_SetCertAttributePrivate(void *ctx, const uint8_t *oid, int32_t oidLen,
                                                   uint32_t critical, const uint8_t *value,
                                                   int32_t valueLen);

/*
 * ZACert_SetCertAttributePrivate_ForValue: encodes the value first: `valueType` 19 as
 * PrintableString, 12 as UTF8String from GB18030, any other number as OCTET STRING; then appends it
 * as above. A value of more than 2048 octets with type 12 gives 0 and adds nothing.
 */
ZACERT_API uint32_t ZACert_SetCertAttributePrivate_ForValue(void *ctx, const uint8_t *oid,
                                                            int32_t oidLen, uint32_t critical,
                                                            const uint8_t *value, int32_t valueLen,
                                                            uint32_t valueType);

/*
 * ZACert_GetCertAttributePrivate: extension number `*index`, counted from 1, of those without an
 * attribute of their own, in order. Buffers may be NULL to learn the lengths. `*critical` is the
 * octet as it stands (255 for a DER TRUE). An index of 0 or beyond the list stores the number of
 * extensions in `*index`, nothing else, and returns 0.
 */
ZACERT_API uint32_t ZACert_GetCertAttributePrivate(void *ctx, uint32_t *index, uint8_t *oid,
                                                   uint32_t *oidLen, uint32_t *critical,
                                                   uint8_t *value, uint32_t *valueLen);

/* ---- Thumbprints ----------------------------------------------------------------------------- */

/*
 * EnCodeThums: a digest and its algorithm as DigestInfo (RFC 8017, 9.2): the algorithm's OID as
 * dotted text (see ZACert_GetOIDValue) with NULL parameters, the digest as OCTET STRING. 101: an
 * empty digest; 139: not an object identifier.
 */
ZACERT_API uint32_t EnCodeThums(const char *algoOidText, uint32_t algoOidTextLen,
                                const uint8_t *thumb, uint32_t thumbLen, uint8_t *out,
                                uint32_t *outLen);

#ifdef __cplusplus
}
#endif

#endif
