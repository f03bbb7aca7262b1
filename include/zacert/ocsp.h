/*
 * ocsp.h - OCSP requests and responses (RFC 6960). Entries, one for each certificate, are in
 * ocsp_entries.h, what responses are made of in ocsp_records.h, identifiers in ocsp_attributes.h.
 *
 * What holds for all of OCSP: a NULL context, or NULL where a value or a length is needed, is 121,
 * for the functions that release one too. Setters copy, and take at least one octet and not more
 * than 0x7FFFFFFF (121). Hashing and signing are done by functions of the caller's.
 *
 * Plain requests are those of RFC 6960, and so are answers of a status alone. What follows is not,
 * on purpose, and other programs refuse it: the name of a requestor without the tag of a
 * GeneralName; signatures as OCTET STRING, with their algorithm as a bare OBJECT IDENTIFIER; the
 * identifier of a responder as a SEQUENCE of name and key hash; an unknown status with octets.
 * Times are written with 13 characters; others call them bad. So responses with a body are for
 * those who use this library on both sides.
 *
 * Example: a request for one certificate.
 *
 *     Anybuf *entry = NULL;
 *     void *request = NULL;
 *     uint8_t der[1024];
 *     uint32_t len = 0;
 *     if (ZA_OCSP_EncodeRequestList(asked, &entry) == 0 &&
 *         ZA_OCSP_CreateEncodeRequest(&request) == 0 &&
 *         ZA_OCSP_SetRequestSingleRequest(request, entry->data, entry->dataLen) == 0 &&
 *         ZA_OCSP_SetRequestAttributeChar(request, OCSP_EXT_NONCE, nonce, nonceLen) == 0 &&
 *         ZA_OCSP_EncodeRequest(request, NULL, &len) == 0 && len <= sizeof der &&
 *         ZA_OCSP_EncodeRequest(request, der, &len) == 0) {
 *         post(der, len);
 *     }
 *     ZA_OCSP_DestoryEncodeRequest(request);
 *     ZI_FreeAnybuf(entry);
 */
#ifndef ZACERT_OCSP_H
#define ZACERT_OCSP_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/ocsp_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Requests -------------------------------------------------------------------------------- */

/* ZA_OCSP_CreateEncodeRequest: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_OCSP_CreateEncodeRequest(void **ctx);

/*
 * ZA_OCSP_SetRequestAttributeInt: sets the version (33), the number (3) or the time (4) of the CRL
 * reference, or the archive cutoff (9); times are written as GeneralizedTime. 121: another
 * identifier.
 */
ZACERT_API uint32_t ZA_OCSP_SetRequestAttributeInt(void *ctx, int32_t id, int32_t value);

/*
 * ZA_OCSP_SetRequestAttributeChar: sets any other of 0 to 14 and 34 to 45. 121: no octets, or
 * another identifier.
 */
ZACERT_API uint32_t ZA_OCSP_SetRequestAttributeChar(void *ctx, int32_t id, const uint8_t *data,
                                                    uint32_t len);

/* ZA_OCSP_SetRequestSingleRequest: appends the DER of a Request (ZA_OCSP_EncodeRequestList). */
ZACERT_API uint32_t ZA_OCSP_SetRequestSingleRequest(void *ctx, const uint8_t *der, uint32_t derLen);

/*
 * ZA_OCSP_SetRequestSignFunc: installs the function that signs, and its argument, of which the
 * context keeps a copy; NULL, or a length of 0, leaves it without one. It gets the octets to be
 * signed and room for 4096. A request with a function is signed.
 */
ZACERT_API uint32_t ZA_OCSP_SetRequestSignFunc(void *ctx, ZA_CryptFunc signFunc, const uint8_t *arg,
                                               uint32_t argLen);

/* ZA_OCSP_SetRequestPrivateAttribute: is reserved and does nothing. Returns 0. */
ZACERT_API uint32_t ZA_OCSP_SetRequestPrivateAttribute(void);

/*
 * ZA_OCSP_EncodeRequest: writes the request, once: later calls give the same octets, whatever is
 * set in between, so that a signature whose length varies cannot outgrow the buffer. 121: a
 * negative version, or a mark or value of an extension without the other; 107: the function claims
 * more than 4096 octets, or nothing; its own code.
 */
ZACERT_API uint32_t ZA_OCSP_EncodeRequest(void *ctx, uint8_t *out, uint32_t *outLen);

/* ZA_OCSP_DestoryEncodeRequest: releases a context. Returns 0; 121: NULL. */
ZACERT_API uint32_t ZA_OCSP_DestoryEncodeRequest(void *ctx);

/* ZA_OCSP_CreateDecodeRequest: as for encoding. */
ZACERT_API uint32_t ZA_OCSP_CreateDecodeRequest(void **ctx);

/*
 * ZA_OCSP_DecodeRequest: reads a request. 121: a field is missing; 122: a field of another kind;
 * the codes of the DER readers. A signature is kept but not verified.
 */
ZACERT_API uint32_t ZA_OCSP_DecodeRequest(void *ctx, const uint8_t *der, uint32_t derLen);

/*
 * ZA_OCSP_GetRequestAttributeInt: reads 3, 4, 9 or 33; 0 where it is not there. 121: another
 * identifier.
 */
ZACERT_API uint32_t ZA_OCSP_GetRequestAttributeInt(void *ctx, int32_t id, int32_t *value);

/*
 * ZA_OCSP_GetRequestAttributeChar: reads any other; what is not there has length 0. 7 is the first
 * of the types, 45 all certificates one behind the other. 121: another identifier.
 */
ZACERT_API uint32_t ZA_OCSP_GetRequestAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                    uint32_t *outLen);

/* ZA_OCSP_GetRequestPrivateAttribute: is reserved and does nothing. Returns 0. */
ZACERT_API uint32_t ZA_OCSP_GetRequestPrivateAttribute(void);

/* ZA_OCSP_GetRequestSingleRequestNum: how many there are. */
ZACERT_API uint32_t ZA_OCSP_GetRequestSingleRequestNum(void *ctx, uint32_t *num);

/*
 * ZA_OCSP_GetRequestSingleRequest: the DER of the one with this number, from 1, for
 * ZA_OCSP_DecodeRequestList. 121: there is none.
 */
ZACERT_API uint32_t ZA_OCSP_GetRequestSingleRequest(void *ctx, uint8_t *out, uint32_t *outLen,
                                                    uint32_t number);

/* ZA_OCSP_DestoryDecodeRequest: as for encoding. */
ZACERT_API uint32_t ZA_OCSP_DestoryDecodeRequest(void *ctx);

/* ---- Responses ------------------------------------------------------------------------------- */

/* ZA_OCSP_CreateEncodeResponse: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_OCSP_CreateEncodeResponse(void **ctx);

/*
 * ZA_OCSP_SetResponseAttributeInt: sets the version (46) or producedAt (47), written as
 * GeneralizedTime. 121: another identifier.
 */
ZACERT_API uint32_t ZA_OCSP_SetResponseAttributeInt(void *ctx, int32_t id, int32_t value);

/*
 * ZA_OCSP_SetResponseAttributeChar: sets any of 48 to 63. 121: no octets, another identifier, or a
 * component of the name (50 to 57) behind the whole name (49).
 */
ZACERT_API uint32_t ZA_OCSP_SetResponseAttributeChar(void *ctx, int32_t id, const uint8_t *data,
                                                     uint32_t len);

/*
 * ZA_OCSP_SetResponseSingleResponse: appends the DER of a SingleResponse
 * (ZA_OCSP_EncodeResponseList).
 */
ZACERT_API uint32_t ZA_OCSP_SetResponseSingleResponse(void *ctx, const uint8_t *der,
                                                      uint32_t derLen);

/*
 * ZA_OCSP_SetResponseSignFunc: installs the function that signs, and its argument, of which the
 * context keeps a copy; NULL, or a length of 0, leaves it without one. It gets the octets to be
 * signed and room for 4096.
 */
ZACERT_API uint32_t ZA_OCSP_SetResponseSignFunc(void *ctx, ZA_CryptFunc signFunc,
                                                const uint8_t *arg, uint32_t argLen);

/*
 * ZA_OCSP_SetResponseHashFunc: installs the function that hashes the responder's key (58), and its
 * argument.
 */
ZACERT_API uint32_t ZA_OCSP_SetResponseHashFunc(void *ctx, ZA_CryptFunc hashFunc,
                                                const uint8_t *arg, uint32_t argLen);

/* ZA_OCSP_SetResponsePrivateAttribute: is reserved and does nothing. Returns 0. */
ZACERT_API uint32_t ZA_OCSP_SetResponsePrivateAttribute(void);

/*
 * ZA_OCSP_EncodeResponse: writes the response, once, as ZA_OCSP_EncodeRequest does. Only an
 * identifier of the responder (49 to 59) makes it carry a body: without any, the status stands
 * alone, whatever else is set. 121: no status; with a body no type, function or algorithm, or a key
 * both to be hashed and hashed (58, 59); 108: the name whole and in components; 107, 108: the
 * functions claim more octets than they had room for, or nothing; their own codes.
 */
ZACERT_API uint32_t ZA_OCSP_EncodeResponse(void *ctx, uint8_t *out, uint32_t *outLen);

/* ZA_OCSP_DestoryEncodeResponse: releases a context. Returns 0; 121: NULL. */
ZACERT_API uint32_t ZA_OCSP_DestoryEncodeResponse(void *ctx);

/* ZA_OCSP_CreateDecodeResponse: as for encoding. */
ZACERT_API uint32_t ZA_OCSP_CreateDecodeResponse(void **ctx);

/*
 * ZA_OCSP_DecodeResponse: reads a response. 121: a field is missing; 122: a field of another kind;
 * the codes of the DER readers. The signature is not verified: ZI_DecodeBasicResponse gives it with
 * the octets it covers.
 */
ZACERT_API uint32_t ZA_OCSP_DecodeResponse(void *ctx, const uint8_t *der, uint32_t derLen);

/*
 * ZA_OCSP_GetResponseAttributeInt: reads 46 or 47; 0 where it is not there. 121: another
 * identifier.
 */
ZACERT_API uint32_t ZA_OCSP_GetResponseAttributeInt(void *ctx, int32_t id, int32_t *value);

/*
 * ZA_OCSP_GetResponseAttributeChar: reads any of 48 to 63; what is not there has length 0, and 62
 * is all certificates one behind the other. 121: another identifier.
 */
ZACERT_API uint32_t ZA_OCSP_GetResponseAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                     uint32_t *outLen);

/*
 * ZA_OCSP_GetResponseSingleResponse: the DER of the one with this number, from 1, for
 * ZA_OCSP_DecodeResponseList. 121: there is none.
 */
ZACERT_API uint32_t ZA_OCSP_GetResponseSingleResponse(void *ctx, uint8_t *out, uint32_t *outLen,
                                                      uint32_t number);

/* ZA_OCSP_GetResponsePrivateAttribute: is reserved and does nothing. Returns 0. */
ZACERT_API uint32_t ZA_OCSP_GetResponsePrivateAttribute(void);

/* ZA_OCSP_DestoryDecodeResponse: as for encoding. */
ZACERT_API uint32_t ZA_OCSP_DestoryDecodeResponse(void *ctx);

#ifdef __cplusplus
}
#endif

#endif
