/*
 * crl.h - certificate revocation lists (RFC 5280, 5): one context for reading and for issuing.
 *
 * Example: every revoked serial number of a decoded CRL.
 *
 *     uint32_t len = 0;
 *     uint32_t more = 0;
 *     ZACert_GetCrlAttributeChar(crl, CRL_CERT_SERIALNUMBER, NULL, &len);
 *     for (more = len; more > 0;) {
 *         uint8_t *serial = malloc(len);
 *         if (serial != NULL) {
 *             ZACert_GetCrlAttributeChar(crl, CRL_CERT_SERIALNUMBER, serial, &len);
 *             use(serial, len);
 *             free(serial);
 *         }
 *         ZACert_GetCrlAttributeChar(crl, CRL_CERT_NEXT, NULL, &more);
 *         ZACert_GetCrlAttributeChar(crl, CRL_CERT_SERIALNUMBER, NULL, &len);
 *     }
 */
#ifndef ZACERT_CRL_H
#define ZACERT_CRL_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/crl_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Context --------------------------------------------------------------------------------- */

/*
 * ZACert_CreateCrlEncodeCtx: a new CRL context in `*ctx`, which the caller destroys with
 * ZACert_DestroyCrlEncodeCtx. 100: no memory.
 */
ZACERT_API uint32_t ZACert_CreateCrlEncodeCtx(void **ctx);

/*
 * ZACert_CreateCrlEncodeCtx_Ex: the same with the issuer taken from a CA certificate's subject, as
 * DER. Name entries set besides make ZACert_EncodeCrl fail. 108: no certificate; 101: its subject
 * is longer than 2048 octets; 102: it is cut off; codes of ZACert_DecodeCert.
 */
ZACERT_API uint32_t ZACert_CreateCrlEncodeCtx_Ex(void **ctx, const uint8_t *derIssuCert,
                                                 uint32_t derIssuCertLen);

/* ZACert_CreateCrlDecodeCtx: a new context, destroyed with ZACert_DestroyCrlDecodeCtx. */
ZACERT_API uint32_t ZACert_CreateCrlDecodeCtx(void **ctx);

/* ZACert_DestroyCrlEncodeCtx: releases a context and all it holds; NULL is accepted. Returns 0. */
ZACERT_API uint32_t ZACert_DestroyCrlEncodeCtx(void *ctx);

/* ZACert_DestroyCrlDecodeCtx: the same. */
ZACERT_API uint32_t ZACert_DestroyCrlDecodeCtx(void *ctx);

/* ---- Attributes ------------------------------------------------------------------------------ */

/*
 * ZACert_SetCrlAttributeInt: sets version (1004), thisUpdate (1027), nextUpdate (1028) or the
 * revocation date of the entry added last (1030). A time set this way is written as UTCTime. 100:
 * 1030 before any entry was added; 110: any other type.
 */
ZACERT_API uint32_t ZACert_SetCrlAttributeInt(void *ctx, int32_t type, int32_t value);

/*
 * ZACert_GetCrlAttributeInt: reads them, 1030 of the current entry. What is not there, and a time
 * decoded from GeneralizedTime, reads as 0; times past 2038-01-19 use the unsigned range. 110: any
 * other type.
 */
ZACERT_API uint32_t ZACert_GetCrlAttributeInt(void *ctx, int32_t type, uint32_t *value);

/*
 * ZACert_SetCrlAttributeChar: sets one attribute from a copy of `valueLen` octets; see
 * ZA_CrlAttribute for the types. Values replace what was set before; name entries (text in GB18030)
 * and revoked certificates are appended. Decoded entries are not changed: 1030 and 1063 act on
 * added ones alone. 101: `valueLen` is 0 or less; 110: unknown type or one that cannot be set; 100:
 * 1063 before any entry was added, or no memory.
 */
ZACERT_API uint32_t ZACert_SetCrlAttributeChar(void *ctx, int32_t type, const uint8_t *value,
                                               int32_t valueLen);

/*
 * ZACert_GetCrlAttributeChar: reads one attribute; what is not there has length 0. The cost of
 * reading an entry and of moving to the next does not depend on their number. On failure `*outLen`
 * is 0. 110: unknown type or one that cannot be read.
 */
ZACERT_API uint32_t ZACert_GetCrlAttributeChar(void *ctx, int32_t type, uint8_t *out,
                                               uint32_t *outLen);

/* ---- Decoding -------------------------------------------------------------------------------- */

/*
 * ZACert_DecodeCrl: fills a fresh context from the DER CRL at the start of `derLen` octets; what
 * stands behind it is not looked at. One copy of the CRL is kept and every entry is checked. A
 * missing outer algorithm or signature stays empty; extensions that have no attribute are passed
 * over, critical or not. After a failure the context still has to be destroyed. 102: the CRL is cut
 * off; 111: the TBSCertList or one of its entries ends early; the readers' codes otherwise.
 */
ZACERT_API uint32_t ZACert_DecodeCrl(void *ctx, const uint8_t *der, uint32_t derLen);

/*
 * setCRL2Context: keeps a copy of the CRL at the start of `derLen` octets without reading it, for
 * ZACert_EncodeCrl to give out. 102: the CRL is cut off.
 */
ZACERT_API uint32_t setCRL2Context(void *ctx, const uint8_t *der, uint32_t derLen);

/* ZI_CRL_DecodeTBS: fills the context from one TBSCertList element. 111: it ends early. */
ZACERT_API uint32_t ZI_CRL_DecodeTBS(void *ctx, Anybuf *tbs);

/*
 * ZI_CRL_DecodeRevokedCerts: checks and keeps the entries of one revokedCertificates element. 111:
 * one ends early.
 */
ZACERT_API uint32_t ZI_CRL_DecodeRevokedCerts(void *ctx, Anybuf *revoked);

/*
 * ZI_Crl_DecodeExtensions: fills the context from the CRL's extensions inside their context tag.
 * 111: one ends early.
 */
ZACERT_API uint32_t ZI_Crl_DecodeExtensions(Anybuf *wrapper, void *ctx);

/* ---- Encoding -------------------------------------------------------------------------------- */

/*
 * ZACert_SetCrlSignFunc: installs the function that signs, which may be NULL, and a copy of its key
 * octets. Without key octets (NULL, or a length below 1) those of an earlier call stay. 100.
 */
ZACERT_API uint32_t ZACert_SetCrlSignFunc(void *ctx, ZACertSignFunc func, const uint8_t *key,
                                          int32_t keyLen);

/*
 * ZACert_EncodeCrl: writes and signs the CRL in the first call and gives the same octets from then
 * on; a context that was decoded gives what was decoded. The version is always written, 0 unless
 * set; the parameters of both algorithms are NULL. 108: the issuer is there in both forms or in
 * none; 115: a time below 0; 119: no signing function; 107: a signature of 10240 octets or more, or
 * longer than announced; 101: an empty signature; the signing function's own code; 100. After a
 * failure nothing is kept and the context can be corrected.
 */
ZACERT_API uint32_t ZACert_EncodeCrl(void *ctx, uint8_t *out, uint32_t *outLen);

/* ZI_CRL_EncodeRevokedCRL: the SEQUENCE of the entries; NULL in `*out` when there is none. 115. */
ZACERT_API uint32_t ZI_CRL_EncodeRevokedCRL(void *ctx, Anybuf **out);

/*
 * ZI_CRL_WriteEntryExtension: the extensions of an entry with a reason code, whose content octets
 * `reason` holds (RFC 5280, 5.3.1).
 */
ZACERT_API uint32_t ZI_CRL_WriteEntryExtension(Anybuf *reason, Anybuf **out);

/*
 * ZI_Crl_EncodeExtensions: the extensions that were set inside their context tag: CRL number, delta
 * CRL indicator, authority key identifier, issuing distribution point (RFC 5280, 5.2). NULL in
 * `*out` when there is none.
 */
ZACERT_API uint32_t ZI_Crl_EncodeExtensions(void *ctx, Anybuf **out);

/* ZI_Crl_EncodeCRLDPs: the issuing distribution point alone; NULL in `*out` when it is not set. */
ZACERT_API uint32_t ZI_Crl_EncodeCRLDPs(void *ctx, Anybuf **out);

#ifdef __cplusplus
}
#endif

#endif
