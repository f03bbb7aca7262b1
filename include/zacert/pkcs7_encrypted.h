/*
 * pkcs7_encrypted.h - the content type encryptedData (RFC 2315, 13). See pkcs7.h for what all
 * contexts have in common, and pkcs7_recipient.h for the part that encrypts and decrypts.
 *
 * Example: a content decrypted by a function of the caller's.
 *
 *     void *encrypted = NULL;
 *     void *part = NULL;
 *     uint32_t len = 0;
 *     if (ZA_PKCS7_CreateEncryptedDataDecodeCtx(&encrypted) == 0 &&
 *         ZA_PKCS7_DecodePKCS7EncryptedData(encrypted, message, messageLen) == 0 &&
 *         ZA_PKCS7_GetEncrytpedData_EncryptedContent(encrypted, &part) == 0 &&
 *         ZA_PKCS7_SetEncryptContentDecFunc(part, decrypt, key, keyLen) == 0 &&
 *         ZA_PKCS7_GetEncryptedContentInformation(part, NULL, &len) == 0) {
 *         uint8_t *content = malloc(len);
 *         if (content != NULL) {
 *             ZA_PKCS7_GetEncryptedContentInformation(part, content, &len);
 *             use(content, len);
 *             free(content);
 *         }
 *     }
 *     ZA_PKCS7_DestoryEncryptedDataDecodeCtx(encrypted);
 */
#ifndef ZACERT_PKCS7_ENCRYPTED_H
#define ZACERT_PKCS7_ENCRYPTED_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/pkcs7_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- EncryptedData --------------------------------------------------------------------------- */

/* ZA_PKCS7_CreateEncryptedDataEncodeCtx: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS7_CreateEncryptedDataEncodeCtx(void **ctx);

/* ZA_PKCS7_CreateEncryptedDataDecodeCtx: the same. */
ZACERT_API uint32_t ZA_PKCS7_CreateEncryptedDataDecodeCtx(void **ctx);

/* ZA_PKCS7_SetEncryptedDataAttributeInt: sets the version (58). 110: any other identifier. */
ZACERT_API uint32_t ZA_PKCS7_SetEncryptedDataAttributeInt(void *ctx, int32_t id, uint32_t value);

/* ZA_PKCS7_GetEncryptedDataAttributeInt: reads the version, 0 where none was set. 110. */
ZACERT_API uint32_t ZA_PKCS7_GetEncryptedDataAttributeInt(void *ctx, int32_t id, uint32_t *value);

/*
 * ZA_PKCS7_SetEncryptedDataAttributeChar: replaces the content type (59) or the content to be
 * encrypted (60) by a copy. 121: no octets; 110: another identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_SetEncryptedDataAttributeChar(void *ctx, int32_t id,
                                                           const uint8_t *value, uint32_t len);

/*
 * ZA_PKCS7_GetEncryptedDataAttributeChar: reads either; what is not there has length 0. After
 * decoding the content is the encrypted one. 110: another identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_GetEncryptedDataAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                           uint32_t *outLen);

/*
 * ZA_PKCS7_SetEncrytpedData_EncryptedContent: takes over the part that encrypts, with its
 * algorithm, parameters and function, in place of the one before, which is destroyed. 121: it
 * belongs to a message already.
 */
ZACERT_API uint32_t ZA_PKCS7_SetEncrytpedData_EncryptedContent(void *ctx, void *encryptedContent);

/*
 * ZA_PKCS7_GetEncrytpedData_EncryptedContent: the part, borrowed: to decrypt, install a function in
 * it and call ZA_PKCS7_GetEncryptedContentInformation. 121: there is none.
 */
ZACERT_API uint32_t ZA_PKCS7_GetEncrytpedData_EncryptedContent(void *ctx, void **encryptedContent);

/*
 * ZA_PKCS7_EncodePKCS7EncryptedData: gives content and content type to the part (its 21 and 17),
 * which encrypts, and writes the message. 121: no version, which must be set even if it is 0, no
 * content or no part; 108: no content type or no algorithm; the function's own code.
 */
ZACERT_API uint32_t ZA_PKCS7_EncodePKCS7EncryptedData(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS7_DecodePKCS7EncryptedData: reads a message and attaches a new part with what is
 * encrypted; nothing is decrypted. Fields behind the part are not looked at.
 */
ZACERT_API uint32_t ZA_PKCS7_DecodePKCS7EncryptedData(void *ctx, const uint8_t *der,
                                                      uint32_t derLen);

/*
 * ZA_PKCS7_DestoryEncryptedDataEncodeCtx: releases a context and its part; contents are wiped. NULL
 * is accepted. Returns 0.
 */
ZACERT_API uint32_t ZA_PKCS7_DestoryEncryptedDataEncodeCtx(void *ctx);

/* ZA_PKCS7_DestoryEncryptedDataDecodeCtx: the same. */
ZACERT_API uint32_t ZA_PKCS7_DestoryEncryptedDataDecodeCtx(void *ctx);

#ifdef __cplusplus
}
#endif

#endif
