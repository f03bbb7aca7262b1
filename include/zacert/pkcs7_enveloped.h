/*
 * pkcs7_enveloped.h - the content type envelopedData (RFC 2315, section 10).
 *
 * The library chooses no algorithm and makes no key and no IV: the key is set here and handed to
 * every recipient, whose function encrypts it; key and IV reach the function of the content as its
 * parameters. A missing context, or a missing place for a result, is 101 in every function of this
 * header.
 *
 * An envelope around ready pieces: set the encrypted content (20) and each recipient's encrypted
 * key (36), install no function for encryption, set no key (54), and set the content (52) to
 * anything: it must be there and is not written.
 *
 * Example: an envelope for one recipient; `encryptContent` is a function of the caller's.
 *
 *     void *message = NULL;
 *     void *content = NULL;
 *     void *recipient = NULL;
 *     uint32_t len = 0;
 *     if (ZA_PKCS7_CreateEnvelopedDataEncodeCtx(&message) == 0 &&
 *         ZA_PKCS7_SetEnvelopedDataAttributeInt(message, PKCS7_ENVELOPEDDATA_VERSION, 0) == 0 &&
 *         ZA_PKCS7_SetEnvelopedDataAttributeChar(message, PKCS7_ENVELOPEDDATA_CONTENTTYPE, dataOid,
 *                                                sizeof dataOid) == 0 &&
 *         ZA_PKCS7_SetEnvelopedDataAttributeChar(message, PKCS7_ENVELOPEDDATA_ENCRYPTED_CONTENT,
 *                                                plain, plainLen) == 0 &&
 *         ZA_PKCS7_SetEnvelopedDataAttributeChar(message, PKCS7_ENVELOPEDDATA_RECIPIENT_KEY, key,
 *                                                keyLen) == 0 &&
 *         ZA_PKCS7_CreateEnocdeEncryptedContent(&content) == 0 &&
 *         ZA_PKCS7_SetEnvelopedData_EncryptedContent(message, content) == 0 &&
 *         ZA_PKCS7_SetEncryptedContentAttributeChar(content, PKCS7_ENCRYPT_ALGO, aesOid,
 *                                                   sizeof aesOid) == 0 &&
 *         ZA_PKCS7_SetEncryptedContentAttributeChar(content, PKCS7_ENCRYPT_PARAMETER, ivDer,
 *                                                   ivDerLen) == 0 &&
 *         ZA_PKCS7_SetEncryptContentEncFunc(content, encryptContent, keyAndIv, keyAndIvLen) == 0 &&
 *         ZA_PKCS7_CreateEncodeRecipientInfo(&recipient) == 0 &&
 *         ZA_PKCS7_SetEnvelopedData_RecipientInfo(message, recipient) == 0 &&
 *         ZA_PKCS7_SetRecipientInfoAttributeChar(recipient, PKCS7_RECIPIENT_DN, issuer,
 *                                                issuerLen) == 0 &&
 *         ZA_PKCS7_SetRecipientInfoAttributeChar(recipient, PKCS7_RECIPIENT_SERIAL, serial,
 *                                                serialLen) == 0 &&
 *         ZA_PKCS7_SetRecipientInfoAttributeChar(recipient, PKCS7_RECIPIENT_KEYENCRYPTION_ALGO,
 *                                                rsaOid, sizeof rsaOid) == 0 &&
 *         ZA_PKCS7_SetRecipientInfoKeyEncFunc(recipient, ZA_PublicKeyEncryptFunc_Ref,
 *                                             (const uint8_t *)&rsa, sizeof rsa) == 0 &&
 *         ZA_PKCS7_EncodePKCS7EnvelopedData(message, NULL, &len) == 0) {
 *         uint8_t *der = malloc(len);
 *         if (der != NULL) {
 *             ZA_PKCS7_EncodePKCS7EnvelopedData(message, der, &len);
 *             use(der, len);
 *             free(der);
 *         }
 *     }
 *     ZA_PKCS7_DestroyEnvelopedDataEncodeCtx(message);
 *
 * (A part that was made and could not be attached is the caller's to destroy.)
 */
#ifndef ZACERT_PKCS7_ENVELOPED_H
#define ZACERT_PKCS7_ENVELOPED_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/pkcs7_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- EnvelopedData --------------------------------------------------------------------------- */

/*
 * ZA_PKCS7_CreateEnvelopedDataEncodeCtx: a new message in `*ctx`, which the caller destroys with
 * ZA_PKCS7_DestroyEnvelopedDataEncodeCtx. 100: no memory.
 */
ZACERT_API uint32_t ZA_PKCS7_CreateEnvelopedDataEncodeCtx(void **ctx);

/*
 * ZA_PKCS7_DestroyEnvelopedDataEncodeCtx: releases a message of either kind with all parts attached
 * to it; NULL is accepted. Returns 0.
 */
ZACERT_API uint32_t ZA_PKCS7_DestroyEnvelopedDataEncodeCtx(void *ctx);

/*
 * ZA_PKCS7_CreateEnvelopedDataDecodeCtx: the same as ZA_PKCS7_CreateEnvelopedDataEncodeCtx, and
 * destroyed by the same function.
 */
ZACERT_API uint32_t ZA_PKCS7_CreateEnvelopedDataDecodeCtx(void **ctx);

/*
 * ZA_PKCS7_SetEnvelopedDataAttributeInt: sets the version (51), which must be set before encoding
 * and is 0 in RFC 2315. 110: another identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_SetEnvelopedDataAttributeInt(void *ctx, int32_t id, uint32_t value);

/*
 * ZA_PKCS7_SetEnvelopedDataAttributeChar: sets 52 to 54 of ZA_Pkcs7Attribute from a copy of `len`
 * octets, in the place of what was there. 101: NULL, or a length of 0 or above INT32_MAX; 110:
 * another identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_SetEnvelopedDataAttributeChar(void *ctx, int32_t id,
                                                           const uint8_t *value, uint32_t len);

/*
 * ZA_PKCS7_GetEnvelopedDataAttributeInt: reads the version (51); 0 where there is none. 110:
 * another identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_GetEnvelopedDataAttributeInt(void *ctx, int32_t id, uint32_t *value);

/*
 * ZA_PKCS7_GetEnvelopedDataAttributeChar: reads 52 to 54; what is not there has length 0. Of a
 * decoded message 52 is the ENCRYPTED content: ZA_PKCS7_GetEncryptedContentInformation decrypts it.
 * 110: another identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_GetEnvelopedDataAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                           uint32_t *outLen);

/*
 * ZA_PKCS7_SetEnvelopedData_RecipientInfo: takes over a recipient, behind those that are there,
 * also of a decoded message. The caller may go on setting it, and does not destroy it. 121: it
 * belongs to a message already; 100. After a failure it is the caller's still.
 */
ZACERT_API uint32_t ZA_PKCS7_SetEnvelopedData_RecipientInfo(void *ctx, void *recipientInfo);

/* ZA_PKCS7_GetEnvelopedData_RecipientInfoNum: the number of recipients. */
ZACERT_API uint32_t ZA_PKCS7_GetEnvelopedData_RecipientInfoNum(void *ctx, uint32_t *num);

/*
 * ZA_PKCS7_GetEnvelopedData_RecipientInfo: recipient number `index`, counted from 1. It stays the
 * message's and goes with it, or with the next successful decode. 101: there is none of this
 * number; `*recipientInfo` is left alone.
 */
ZACERT_API uint32_t ZA_PKCS7_GetEnvelopedData_RecipientInfo(void *ctx, void **recipientInfo,
                                                            int32_t index);

/*
 * ZA_PKCS7_SetEnvelopedData_EncryptedContent: takes over the encrypted content and destroys the one
 * before. Otherwise as ZA_PKCS7_SetEnvelopedData_RecipientInfo.
 */
ZACERT_API uint32_t ZA_PKCS7_SetEnvelopedData_EncryptedContent(void *ctx, void *encryptedContent);

/*
 * ZA_PKCS7_GetEnvelopedData_EncryptedContent: the encrypted content, which stays the message's.
 * 121: there is none; `*encryptedContent` is left alone.
 */
ZACERT_API uint32_t ZA_PKCS7_GetEnvelopedData_EncryptedContent(void *ctx, void **encryptedContent);

/*
 * ZA_PKCS7_EncodePKCS7EnvelopedData: writes the ContentInfo. Each recipient is handed the key (54)
 * as its 37, the encrypted content the content (52) and its type (53) as its 21 and 17; without a
 * key or type of the message the parts' own hold. The message is put together at every call; the
 * functions run once, see pkcs7_recipient.h. A decoded message is written with its encrypted
 * content, also to further recipients, for whom the decrypted key is set as 54. 121: no version,
 * recipient, content or encrypted content; the codes of ZA_PKCS7_EncodeRecipientInfo and
 * ZA_PKCS7_EncodeEncryptedContent.
 */
ZACERT_API uint32_t ZA_PKCS7_EncodePKCS7EnvelopedData(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS7_DecodePKCS7EnvelopedData: reads one message, DER or with indefinite lengths, into new
 * parts, in the place of all that was set, attached or decoded. Nothing is decrypted. Attributes
 * behind the encrypted content, which CMS may write, are left out. 121: a field is missing, or
 * there is no recipient; 122: another content type, information about the originator, or a
 * recipient told by anything but issuer and serial number (RFC 5652), even if there are others;
 * 102: octets behind the message; 123 and the readers' codes. A failure changes nothing.
 */
ZACERT_API uint32_t ZA_PKCS7_DecodePKCS7EnvelopedData(void *ctx, const uint8_t *der,
                                                      uint32_t derLen);

#ifdef __cplusplus
}
#endif

#endif
