/*
 * pkcs7_digested.h - the content type digestedData (RFC 2315, 12). See pkcs7.h for what all
 * contexts have in common.
 *
 * What is digested is the whole contentInfo inside, tag and length included, and not the content
 * octets alone, as RFC 2315 has it. Messages of this library compare equal here alone; those of
 * other programs are decoded and compare as different.
 *
 * Example: is the content what was digested?
 *
 *     const int32_t sha256 = 9;
 *     void *digested = NULL;
 *     uint32_t result = 0;
 *     if (ZA_PKCS7_CreateDigestedDataDecodeCtx(&digested) == 0 &&
 *         ZA_PKCS7_SetDigestedDataHashFunc(digested, ZA_DigestFunc_Ref, (const uint8_t *)&sha256,
 *                                          sizeof sha256) == 0 &&
 *         ZA_PKCS7_DecodePKCS7DigestedData(digested, message, messageLen) == 0 &&
 *         ZA_PKCS7_GetDigestedDataHashResult(digested, &result) == 0) {
 *         accept(result == 200);
 *     }
 *     ZA_PKCS7_DestoryDigestedDataDecodeCtx(digested);
 */
#ifndef ZACERT_PKCS7_DIGESTED_H
#define ZACERT_PKCS7_DIGESTED_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/pkcs7_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- DigestedData ---------------------------------------------------------------------------- */

/* ZA_PKCS7_CreateDigestedDataEncodeCtx: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS7_CreateDigestedDataEncodeCtx(void **ctx);

/* ZA_PKCS7_CreateDigestedDataDecodeCtx: the same. */
ZACERT_API uint32_t ZA_PKCS7_CreateDigestedDataDecodeCtx(void **ctx);

/* ZA_PKCS7_SetDigestedDataAttributeInt: sets the version (61). 110: any other identifier. */
ZACERT_API uint32_t ZA_PKCS7_SetDigestedDataAttributeInt(void *ctx, int32_t id, uint32_t value);

/* ZA_PKCS7_GetDigestedDataAttributeInt: reads the version, 0 where none was set. 110. */
ZACERT_API uint32_t ZA_PKCS7_GetDigestedDataAttributeInt(void *ctx, int32_t id, uint32_t *value);

/*
 * ZA_PKCS7_SetDigestedDataAttributeChar: replaces a field (62 to 64) by a copy, and drops the
 * digest that was made or received. 121: no octets; 110: another identifier, the digest too.
 */
ZACERT_API uint32_t ZA_PKCS7_SetDigestedDataAttributeChar(void *ctx, int32_t id,
                                                          const uint8_t *value, uint32_t len);

/*
 * ZA_PKCS7_GetDigestedDataAttributeChar: reads a field (62 to 65); what is not there has length 0.
 * 110: another identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_GetDigestedDataAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                          uint32_t *outLen);

/*
 * ZA_PKCS7_SetDigestedDataHashFunc: installs the function that digests, for encoding and for
 * decoding; see pkcs7.h. ZA_DigestFunc_Ref fits, with its digest number as parameter. 101: more
 * than 0x7FFFFFFF octets.
 */
ZACERT_API uint32_t ZA_PKCS7_SetDigestedDataHashFunc(void *ctx, ZA_CryptFunc func,
                                                     const uint8_t *param, uint32_t paramLen);

/*
 * ZA_PKCS7_EncodePKCS7DigestedData: the message. The content stands in an OCTET STRING when the
 * type is data; for another type whose identifier has nine octets it is taken for DER and stands as
 * it is; for any other type, or when it is empty, there is none. The algorithm is written without
 * parameters. An unset version is 0. 121: no algorithm, no content type or no function.
 */
ZACERT_API uint32_t ZA_PKCS7_EncodePKCS7DigestedData(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS7_DecodePKCS7DigestedData: reads a message and, where a function is installed, digests the
 * contentInfo that was received and compares. Digests that differ are no failure: see
 * ZA_PKCS7_GetDigestedDataHashResult. The algorithm is not looked at: choosing the function that
 * belongs to it is the caller's part.
 */
ZACERT_API uint32_t ZA_PKCS7_DecodePKCS7DigestedData(void *ctx, const uint8_t *der,
                                                     uint32_t derLen);

/*
 * ZA_PKCS7_GetDigestedDataHashResult: what the last decoding found: 200 the digests are equal, 300
 * they differ, 100 nothing was compared.
 */
ZACERT_API uint32_t ZA_PKCS7_GetDigestedDataHashResult(void *ctx, uint32_t *result);

/* ZA_PKCS7_DestoryDigestedDataEncodeCtx: releases a context; NULL is accepted. Returns 0. */
ZACERT_API uint32_t ZA_PKCS7_DestoryDigestedDataEncodeCtx(void *ctx);

/* ZA_PKCS7_DestoryDigestedDataDecodeCtx: the same. */
ZACERT_API uint32_t ZA_PKCS7_DestoryDigestedDataDecodeCtx(void *ctx);

#ifdef __cplusplus
}
#endif

#endif
