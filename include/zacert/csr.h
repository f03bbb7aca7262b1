/*
 * csr.h - certificate requests (PKCS#10, RFC 2986): one context for reading and for writing.
 *
 * Example: a request for an RSA key, signed by a function of the caller's.
 *
 *     void *csr = NULL;
 *     uint32_t len = 0;
 *     if (ZACert_CreateCsrEncodeCtx(&csr) == 0 &&
 *         ZACert_SetCsrAttributeChar(csr, CSR_SUBJECT_COMMONNAME, name, nameLen) == 0 &&
 *         ZACert_SetCsrAttributeChar(csr, CSR_PUBLICKEY_ALGORITHM, rsaOid, rsaOidLen) == 0 &&
 *         ZACert_SetCsrAttributeChar(csr, CSR_SUBJECTPUBLICKEYINFO, key, keyLen) == 0 &&
 *         ZACert_SetCsrAttributeChar(csr, CSR_OUTER_SIGNATUREALGORITHM, oid, oidLen) == 0 &&
 *         ZACert_SetCsrSignFunc(csr, sign, privateKey, privateKeyLen) == 0 &&
 *         ZACert_EncodeCsr(csr, NULL, &len) == 0) {
 *         uint8_t *der = malloc(len);
 *         if (der != NULL) {
 *             ZACert_EncodeCsr(csr, der, &len);
 *             use(der, len);
 *             free(der);
 *         }
 *     }
 *     ZACert_DestroyCsrEncodeCtx(csr);
 */
#ifndef ZACERT_CSR_H
#define ZACERT_CSR_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/csr_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Context --------------------------------------------------------------------------------- */

/*
 * ZACert_CreateCsrEncodeCtx: a new request context in `*ctx`, which the caller destroys with
 * ZACert_DestroyCsrEncodeCtx. 100: no memory.
 */
ZACERT_API uint32_t ZACert_CreateCsrEncodeCtx(void **ctx);

/* ZACert_CreateCsrDecodeCtx: the same; destroyed with ZACert_DestroyCsrDecodeCtx. */
ZACERT_API uint32_t ZACert_CreateCsrDecodeCtx(void **ctx);

/* ZACert_DestroyCsrEncodeCtx: releases a context and all it holds; NULL is accepted. Returns 0. */
ZACERT_API uint32_t ZACert_DestroyCsrEncodeCtx(void *ctx);

/* ZACert_DestroyCsrDecodeCtx: the same. */
ZACERT_API uint32_t ZACert_DestroyCsrDecodeCtx(void *ctx);

/* ---- Fields ---------------------------------------------------------------------------------- */

/* ZACert_SetCsrAttributeInt: sets the version (2004). 110: any other type. */
ZACERT_API uint32_t ZACert_SetCsrAttributeInt(void *ctx, int32_t type, int32_t value);

/* ZACert_GetCsrAttributeInt: there is no number to be read: 110 for every type. */
ZACERT_API uint32_t ZACert_GetCsrAttributeInt(void *ctx, int32_t type, uint32_t *value);

/*
 * ZACert_SetCsrAttributeChar: sets one field from a copy of `valueLen` octets; see ZA_CsrAttribute
 * for the types. Name entries are appended and are text in GB18030; every other value replaces what
 * was set before. 100: `valueLen` is 0 or less (certificates: 101), or no memory; 110: unknown type
 * or one that cannot be set; 108: string types of more than 255 octets.
 */
ZACERT_API uint32_t ZACert_SetCsrAttributeChar(void *ctx, int32_t type, const uint8_t *value,
                                               int32_t valueLen);

/*
 * ZACert_GetCsrAttributeChar: reads one field; what is not there has length 0. Name entries come as
 * from ZACert_GetCertAttributeChar. On failure `*outLen` is 0. 110: unknown type or one that cannot
 * be read.
 */
ZACERT_API uint32_t ZACert_GetCsrAttributeChar(void *ctx, int32_t type, uint8_t *out,
                                               uint32_t *outLen);

/* ---- Attributes of PKCS#10 ------------------------------------------------------------------- */

/*
 * ZACert_SetCsrAttributePrivate: appends an attribute: OID content octets and one value, which is
 * written as an OCTET STRING whatever the attribute is. Programs that know an attribute by another
 * type refuse it so: Java a challengePassword or an extensionRequest; openssl verifies the request
 * and cannot print the value. Attributes are written in the order they were added. DER wants them
 * ascending by their encoding: GnuTLS and python's cryptography refuse others, so add them in that
 * order. 101: a length of 0 or less; 100.
 */
ZACERT_API uint32_t ZACert_SetCsrAttributePrivate(void *ctx, const uint8_t *oid, int32_t oidLen,
                                                  const uint8_t *value, int32_t valueLen);

/*
 * ZACert_GetCsrAttributePrivate: attribute number `*index`, counted from 1, in order. Its value is
 * the first of its SET: the content of an OCTET STRING, or the whole element of any other type.
 * Buffers may be NULL to learn the lengths. An index of 0 or beyond the list stores the number of
 * attributes in `*index`, nothing else, and returns 0.
 */
ZACERT_API uint32_t ZACert_GetCsrAttributePrivate(void *ctx, uint32_t *index, uint8_t *oid,
                                                  uint32_t *oidLen, uint8_t *value,
                                                  uint32_t *valueLen);

/* ---- Encoding -------------------------------------------------------------------------------- */

/*
 * ZACert_SetCsrSignFunc: installs the function that signs; see ZACertSignFunc. A copy of `keyLen`
 * octets at `key` is handed to it and wiped with the context; where there are none, those of an
 * earlier call stay. 100: no memory.
 */
ZACERT_API uint32_t ZACert_SetCsrSignFunc(void *ctx, ZACertSignFunc func, const uint8_t *key,
                                          int32_t keyLen);

/*
 * ZACert_EncodeCsr: writes and signs the request. The function that signs is called when the
 * context has no request yet; from then on the same octets are handed out, also those that were
 * decoded. The algorithm's parameters are NULL for every algorithm. After a failure the context can
 * be corrected and encoded again. 119: no function installed; 107: a signature of 10240 octets or
 * more, or of more than announced; 100: an empty signature, or no memory; the function's own code;
 * the code of ZACERT_DecodeEccPubKey where a curve is set and the key has another form.
 */
ZACERT_API uint32_t ZACert_EncodeCsr(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZI_Csr_EncodeAttributes: the attributes as the element of a request, with its context tag; it is
 * empty, but there, where the context has none.
 */
ZACERT_API uint32_t ZI_Csr_EncodeAttributes(void *ctx, Anybuf **out);

/* ---- Decoding -------------------------------------------------------------------------------- */

/*
 * ZACert_DecodeCsr: fills a fresh context from one DER request at the start of `der`; octets behind
 * it are not looked at. Missing algorithm, signature or attributes stay empty. The signature is not
 * verified. After a failure the context still has to be destroyed. 102: the request goes beyond
 * `derLen`; 112: version, subject or key is missing; 106: something else where the attributes
 * belong; the readers' codes otherwise.
 */
ZACERT_API uint32_t ZACert_DecodeCsr(void *ctx, const uint8_t *der, uint32_t derLen);

/* ZI_CSR_DecodeTBS: fills the context from one CertificationRequestInfo element. */
ZACERT_API uint32_t ZI_CSR_DecodeTBS(void *ctx, Anybuf *tbs);

/*
 * ZI_CSR_DecodeAttributes: appends attributes from their element: Attribute after Attribute in the
 * context tag [0], or in a SET inside it. 112: an attribute ends early; 106: another tag.
 */
ZACERT_API uint32_t ZI_CSR_DecodeAttributes(void *ctx, Anybuf *attributes);

#ifdef __cplusplus
}
#endif

#endif
