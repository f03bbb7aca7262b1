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
 *
 * Example: issuing. `sign` is a ZACertSignFunc and `key` what it is handed.
 *
 *     void *cert = NULL;
 *     uint32_t len = 0;
 *     uint32_t result = ZACert_CreateCertEncodeCtx_Ex(&cert, caDer, caDerLen);
 *     result = result != 0 ? result : ZACert_SetCertAttributeInt(cert, CERT_VERSION, 2);
 *     ... serial number, both signature algorithms, times, subject, key, extensions ...
 *     result = result != 0 ? result : ZACert_SetCertSignFunc(cert, sign, key, keyLen);
 *     result = result != 0 ? result : ZACert_EncodeCert(cert, NULL, &len);
 *     if (result == 0) {
 *         uint8_t *der = malloc(len);
 *         if (der != NULL) {
 *             ZACert_EncodeCert(cert, der, &len);
 *             use(der, len);
 *             free(der);
 *         }
 *     }
 *     ZACert_DestroyCertEncodeCtx(cert);
 */
#ifndef ZACERT_CERT_H
#define ZACERT_CERT_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
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

/*
 * ZACert_CreateCertEncodeCtx_Ex: the same for a certificate to be issued by a CA: the subject of
 * its certificate becomes the issuer (attribute 7), octet for octet. 108: the CA's certificate is
 * NULL or its length 0; 101: its subject is longer than 2048 octets, or missing; the codes of
 * decoding. The certificate must lie wholly within `derIssuCertLen` (102).
 */
ZACERT_API uint32_t ZACert_CreateCertEncodeCtx_Ex(void **ctx, const uint8_t *derIssuCert,
                                                  uint32_t derIssuCertLen);

/*
 * ZACert_CreateCertEncodeCtx_Ex_ForAKid: the same, and an authority key identifier with three
 * parts: the CA's subject key identifier where it has one, its serial number, and a directory name
 * of its subject's country, state, locality, organisation, organisational units (as one entry),
 * common name and e-mail, followed by a dnQualifier with the Base64 of the SHA-1 of its key
 * (attribute 54). That name is not the issuer name of the CA's certificate, so `openssl verify`
 * refuses what is issued this way; serial numbers of 80 and above come out negative in it. Set
 * attribute 65 on a context of ZACert_CreateCertEncodeCtx_Ex where such verifiers matter.
 */
ZACERT_API uint32_t ZACert_CreateCertEncodeCtx_Ex_ForAKid(void **ctx, const uint8_t *derIssuCert,
                                                          uint32_t derIssuCertLen);

/*
 * ZACert_CreateCertDecodeCtx: the same as ZACert_CreateCertEncodeCtx; destroyed with
 * ZACert_DestroyCertDecodeCtx.
 */
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

/* ---- Encoding -------------------------------------------------------------------------------- */

/*
 * ZACert_SetCertSignFunc: the function that signs, NULL too, and a copy of the key octets it is
 * handed. Without key octets (NULL, or a length of 0 or less) those of an earlier call stay. 100.
 */
ZACERT_API uint32_t ZACert_SetCertSignFunc(void *ctx, ZACertSignFunc func, const uint8_t *key,
                                           int32_t keyLen);

/*
 * ZACert_EncodeCert: the certificate of a filled context. The first call encodes it and has it
 * signed, see ZACertSignFunc; it is kept, and later calls give the same octets whatever is set
 * meanwhile. A context that decoded a certificate gives that certificate. After a failure the
 * context can be corrected and encoded again. Issuer and subject are each given either as DER or as
 * entries, which are written in the order they were set.
 *
 * What issued certificates look like, for those who must please other tools:
 * - The version is always there; set 2, since without it [0] INTEGER 0 is written, which many tools
 *   refuse, above all in a certificate with extensions.
 * - The parameters of signature algorithms are NULL, those of elliptic curves too.
 * - Times from ZACert_SetCertAttributeInt are UTCTime. A time never set is a GeneralizedTime of two
 *   year digits, which most tools refuse.
 * - Basic constraints say FALSE where they are not critical; strict DER readers refuse that.
 * - A key with explicit curve parameters, as decoding gives them, cannot be issued again through
 *   attribute 3003: 108.
 *
 * 108: a name in both forms or in none, or a key that ZACERT_DecodeEccPubKey refuses; 115: a
 * negative time; 119: no signing function; 107: it reports more than 10240 octets; 101: it reports
 * none; its own result; those of ZI_EncodeCertIssuerSuject and ZI_EncodeGeneralNameS; 100.
 */
ZACERT_API uint32_t ZACert_EncodeCert(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * The encoders of parts write what ZACert_EncodeCert writes and hand out records that the caller
 * releases with ZI_FreeAnybuf. The context is that of the certificate, also where the argument has
 * another name.
 */

/* ZI_Cert_EncodeValidity: the Validity of the context's two times (RFC 5280, 4.1.2.5). */
ZACERT_API uint32_t ZI_Cert_EncodeValidity(void *ctx, Anybuf **out);

/*
 * ZI_Cert_EncodeExtensions: the extensions inside [3], in this order: authority key identifier,
 * subject key identifier, policies, issuer and subject alternative name, basic constraints, key
 * usage, extended key usage, distribution points, authority information access, private ones. NULL
 * when no setter changed one or none is set.
 */
ZACERT_API uint32_t ZI_Cert_EncodeExtensions(void *ctx, Anybuf **out);

/* ZI_Cert_EncodeExtension_Private: the private extensions in order, one record each, or NULL. */
ZACERT_API uint32_t ZI_Cert_EncodeExtension_Private(void *ctx, Anybuf **out);

/*
 * ZI_CERT_EncodeDiscriptList: the SEQUENCE OF AccessDescription (RFC 5280, 4.2.2.1) of attributes
 * 136 and 137 of the context `descriptionList`; 30 00 when there are none.
 */
ZACERT_API uint32_t ZI_CERT_EncodeDiscriptList(void *descriptionList, Anybuf **out);

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
