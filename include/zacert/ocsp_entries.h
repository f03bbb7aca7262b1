/*
 * ocsp_entries.h - what an OCSP request asks of one certificate, and what a response says of it
 * (RFC 6960, 4.1.1 and 4.2.1). See ocsp.h for what all contexts have in common.
 *
 * A certificate is named by hashes of its issuer's name and key, which a function of the caller's
 * makes, and by its serial number.
 *
 * Example: an entry that asks.
 *
 *     void *asked = NULL;
 *     Anybuf *entry = NULL;
 *     const int32_t sha1 = 7;
 *     if (ZA_OCSP_CreateEncodeRequestList(&asked) == 0 &&
 *         ZA_OCSP_SetRequestListHashFunc(asked, ZA_DigestFunc_Ref, (const uint8_t *)&sha1,
 *                                        sizeof sha1) == 0 &&
 *         ZA_OCSP_SetRequestListAttributeChar(asked, OCSP_REQUESTLIST_HASHALGO, kSha1Oid,
 *                                             sizeof kSha1Oid) == 0 &&
 *         ZA_OCSP_SetRequestListAttributeChar(asked, OCSP_REQUESTLIST_ISSUERNAME, name,
 *                                             nameLen) == 0 &&
 *         ZA_OCSP_SetRequestListAttributeChar(asked, OCSP_REQUESTLIST_ISSUERKEY, key,
 *                                             keyLen) == 0 &&
 *         ZA_OCSP_SetRequestListAttributeChar(asked, OCSP_REQUESTLIST_SERIALNUMBER, serial,
 *                                             serialLen) == 0 &&
 *         ZA_OCSP_EncodeRequestList(asked, &entry) == 0) {
 *         use(entry->data, entry->dataLen);
 *     }
 *     ZI_FreeAnybuf(entry);
 *     ZA_OCSP_DestroyEncodeRequestList(asked);
 */
#ifndef ZACERT_OCSP_ENTRIES_H
#define ZACERT_OCSP_ENTRIES_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/ocsp_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Request entries ------------------------------------------------------------------------- */

/* ZA_OCSP_CreateEncodeRequestList: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_OCSP_CreateEncodeRequestList(void **ctx);

/*
 * ZA_OCSP_SetRequestListAttributeChar: sets 15 to 17 or 20 to 22 to a copy of at least one octet.
 * 121: any other identifier.
 */
ZACERT_API uint32_t ZA_OCSP_SetRequestListAttributeChar(void *ctx, int32_t id, const uint8_t *data,
                                                        uint32_t len);

/*
 * ZA_OCSP_SetRequestListHashFunc: installs the function that hashes issuer name and issuer key,
 * such as ZA_DigestFunc_Ref, and its argument, of which the context keeps a copy; NULL, or a length
 * of 0, leaves it without one.
 */
ZACERT_API uint32_t ZA_OCSP_SetRequestListHashFunc(void *ctx, ZA_CryptFunc hashFunc,
                                                   const uint8_t *arg, uint32_t argLen);

/*
 * ZA_OCSP_EncodeRequestList: a Request, SEQUENCE { CertID }, in a record of the caller's; made anew
 * at every call. 121: no function, hash algorithm, issuer name, issuer key or serial number, but
 * with a whole CertID (22); 108: the function claims more than 512 octets, or nothing; its own
 * code.
 */
ZACERT_API uint32_t ZA_OCSP_EncodeRequestList(void *ctx, Anybuf **out);

/* ZA_OCSP_DestroyEncodeRequestList: releases a context. Returns 0; 121: NULL. */
ZACERT_API uint32_t ZA_OCSP_DestroyEncodeRequestList(void *ctx);

/* ZA_OCSP_CreateDecodeRequestList: as for encoding. */
ZACERT_API uint32_t ZA_OCSP_CreateDecodeRequestList(void **ctx);

/*
 * ZA_OCSP_DecodeRequestList: reads a Request; its extensions are let pass. 121: a field is missing;
 * 122: a field of another kind; the codes of the DER readers.
 */
ZACERT_API uint32_t ZA_OCSP_DecodeRequestList(void *ctx, const uint8_t *der, uint32_t derLen);

/*
 * ZA_OCSP_GetRequestListAttributeChar: reads any of 15 to 22; what is not there has length 0. 121:
 * another identifier.
 */
ZACERT_API uint32_t ZA_OCSP_GetRequestListAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                        uint32_t *outLen);

/* ZA_OCSP_DestroyDecodeRequestList: as for encoding. */
ZACERT_API uint32_t ZA_OCSP_DestroyDecodeRequestList(void *ctx);

/* ---- Response entries ------------------------------------------------------------------------ */

/* ZA_OCSP_CreateEncodeResponseList: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_OCSP_CreateEncodeResponseList(void **ctx);

/*
 * ZA_OCSP_SetResponseListAttributeChar: sets 25, 26, 28 or 30 to 32 to a copy of at least one
 * octet. 121: any other identifier.
 */
ZACERT_API uint32_t ZA_OCSP_SetResponseListAttributeChar(void *ctx, int32_t id, const uint8_t *data,
                                                         uint32_t len);

/*
 * ZA_OCSP_SetResponseListAttributeInt: sets thisUpdate (23) or nextUpdate (24), written as
 * GeneralizedTime. 121: negative, or another identifier.
 */
ZACERT_API uint32_t ZA_OCSP_SetResponseListAttributeInt(void *ctx, int32_t id, int32_t value);

/* ZA_OCSP_SetResponseListHashFunc: as ZA_OCSP_SetRequestListHashFunc. */
ZACERT_API uint32_t ZA_OCSP_SetResponseListHashFunc(void *ctx, ZA_CryptFunc hashFunc,
                                                    const uint8_t *arg, uint32_t argLen);

/*
 * ZA_OCSP_SetResponseList_CertStatusGood: the certificate is good. The last of the three calls
 * wins.
 */
ZACERT_API uint32_t ZA_OCSP_SetResponseList_CertStatusGood(void *ctx);

/*
 * ZA_OCSP_SetResponseList_CertStatusRevoke: it was revoked at this time, for the reason with these
 * content octets of an ENUMERATED (RFC 5280, 5.3.1; one octet) or, with NULL or a length of 0, for
 * none that is told. `reserved` is not looked at. 121: the time is 0.
 */
ZACERT_API uint32_t ZA_OCSP_SetResponseList_CertStatusRevoke(void *ctx, uint32_t revocationTime,
                                                             uint32_t reserved,
                                                             const uint8_t *reason,
                                                             uint32_t reasonLen);

/*
 * ZA_OCSP_SetResponseList_CertStatusUnInfo: the responder does not know it; the octets tell more.
 * They are written where RFC 6960 has NULL: other programs refuse such a response. 121: no octets.
 */
ZACERT_API uint32_t ZA_OCSP_SetResponseList_CertStatusUnInfo(void *ctx, const uint8_t *content,
                                                             uint32_t contentLen);

/*
 * ZA_OCSP_EncodeResponseList: a SingleResponse in a record of the caller's; made anew at every
 * call. A thisUpdate that was not set is the time 0. 115: the time of revocation is above
 * 0x7FFFFFFF; 121: no status; otherwise as ZA_OCSP_EncodeRequestList.
 */
ZACERT_API uint32_t ZA_OCSP_EncodeResponseList(void *ctx, Anybuf **out);

/* ZA_OCSP_DestroyEncodeResponseList: releases a context. Returns 0; 121: NULL. */
ZACERT_API uint32_t ZA_OCSP_DestroyEncodeResponseList(void *ctx);

/* ZA_OCSP_CreateDecodeResponseList: as for encoding. */
ZACERT_API uint32_t ZA_OCSP_CreateDecodeResponseList(void **ctx);

/*
 * ZA_OCSP_DecodeResponseList: reads a SingleResponse. 121: a field is missing; 122: a field of
 * another kind; the codes of the DER readers.
 */
ZACERT_API uint32_t ZA_OCSP_DecodeResponseList(void *ctx, const uint8_t *der, uint32_t derLen);

/*
 * ZA_OCSP_GetResponseListAttributeChar: reads any of 25 to 32; what is not there has length 0. 121:
 * another identifier.
 */
ZACERT_API uint32_t ZA_OCSP_GetResponseListAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                         uint32_t *outLen);

/*
 * ZA_OCSP_GetResponseListAttributeInt: reads thisUpdate (23) or nextUpdate (24), 0 where it is not
 * there. 121: another identifier.
 */
ZACERT_API uint32_t ZA_OCSP_GetResponseListAttributeInt(void *ctx, int32_t id, int32_t *value);

/*
 * ZA_OCSP_GetResponseListCertSatus: 1 good, 2 revoked, 3 unknown. Time, reason and octets are read
 * with ZI_DecodeCertStatus from the second field of the SingleResponse. 121: there is none.
 */
ZACERT_API uint32_t ZA_OCSP_GetResponseListCertSatus(void *ctx, uint32_t *status);

/* ZA_OCSP_DestroyDecodeResponseList: as for encoding. */
ZACERT_API uint32_t ZA_OCSP_DestroyDecodeResponseList(void *ctx);

#ifdef __cplusplus
}
#endif

#endif
