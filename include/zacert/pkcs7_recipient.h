/*
 * pkcs7_recipient.h - RecipientInfo and EncryptedContentInfo: for whom and what is encrypted (RFC
 * 2315, sections 10.1 and 10.2).
 *
 * Both are parts of messages: they are made alone, filled, and attached. One context serves both
 * directions. A missing context, or a missing place for a length or a number, is 108 in every
 * function of this header. A part keeps its encoding from the first call of its encoder on, also
 * where that only asks for the length or comes through the message: functions of the caller's run
 * once, until a setter changes the part. A decoded part is written as it came until then. What may
 * be secret (keys, parameters of functions, content that was encrypted or decrypted) is wiped
 * before its memory is freed.
 *
 * Example: the content of a decoded message, for the owner of the key of its first recipient.
 * `decryptContent` is a function of the caller's; what `makeParameter` makes for it tells it key
 * and IV.
 *
 *     void *recipient = NULL;
 *     void *content = NULL;
 *     uint8_t key[512];
 *     uint32_t keyLen = 0;
 *     uint32_t len = 0;
 *     if (ZA_PKCS7_GetEnvelopedData_RecipientInfo(message, &recipient, 1) == 0 &&
 *         ZA_PKCS7_SetRecipientInfoKeyDecFunc(recipient, ZA_PrivateKeyDecryptFunc_Ref,
 *                                             (const uint8_t *)&rsa, sizeof rsa) == 0 &&
 *         ZA_PKCS7_DecryptDesKey(recipient, NULL, &keyLen) == 0 && keyLen <= sizeof key &&
 *         ZA_PKCS7_DecryptDesKey(recipient, key, &keyLen) == 0 &&
 *         ZA_PKCS7_GetEnvelopedData_EncryptedContent(message, &content) == 0) {
 *         makeParameter(key, keyLen, content, &parameter);
 *         if (ZA_PKCS7_SetEncryptContentDecFunc(content, decryptContent,
 *                                               (const uint8_t *)&parameter,
 *                                               sizeof parameter) == 0 &&
 *             ZA_PKCS7_GetEncryptedContentInformation(content, NULL, &len) == 0) {
 *             uint8_t *plain = malloc(len);
 *             if (plain != NULL) {
 *                 ZA_PKCS7_GetEncryptedContentInformation(content, plain, &len);
 *                 use(plain, len);
 *                 free(plain);
 *             }
 *         }
 *     }
 */
#ifndef ZACERT_PKCS7_RECIPIENT_H
#define ZACERT_PKCS7_RECIPIENT_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/pkcs7_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- RecipientInfo --------------------------------------------------------------------------- */

/*
 * ZA_PKCS7_CreateEncodeRecipientInfo: a new recipient in `*ctx`, which the caller destroys unless a
 * message takes it over. 100: no memory.
 */
ZACERT_API uint32_t ZA_PKCS7_CreateEncodeRecipientInfo(void **ctx);

/* ZA_PKCS7_CreateDecodeRecipientInfo: the same. */
ZACERT_API uint32_t ZA_PKCS7_CreateDecodeRecipientInfo(void **ctx);

/*
 * ZA_PKCS7_SetRecipientInfoAttributeChar: sets 24 to 33 or 35 to 37 of ZA_Pkcs7Attribute from a
 * copy of `len` octets. Entries of the issuer's name (25 to 32) are text in GB18030, appended and
 * written in the order of the calls; an e-mail address becomes a PrintableString, which some
 * programs do not match with the IA5String of a certificate: prefer the whole name (24), such as
 * CERT_ISSUER_DERDN of the recipient's certificate, which wins over entries. All other values
 * replace. 101: NULL, or a length of 0 or above INT32_MAX; 110: another identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_SetRecipientInfoAttributeChar(void *ctx, int32_t id,
                                                           const uint8_t *value, uint32_t len);

/*
 * ZA_PKCS7_GetRecipientInfoAttributeInt: reads the version (23): 0, or as decoded. 110: another
 * identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_GetRecipientInfoAttributeInt(void *ctx, int32_t id, uint32_t *value);

/*
 * ZA_PKCS7_GetRecipientInfoAttributeChar: reads 24 to 33 or 35 to 37; what is not there has length
 * 0. Name entries come as the first of their kind. 37 is the key that was set, handed over by the
 * message or decrypted by ZA_PKCS7_DecryptDesKey. 110: another identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_GetRecipientInfoAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                           uint32_t *outLen);

/*
 * ZA_PKCS7_EncodeRecipientInfo: writes the RecipientInfo. The function for encryption makes the
 * encrypted key of the key (37); where there is no function or no key, an encrypted key that was
 * set (36) is written as it is. The algorithm's parameters are NULL, or as decoded while the
 * algorithm is. 108: issuer, serial number, algorithm or key is missing, also a key without both
 * function and encrypted key; 126: the function claims more than its room; the function's own code.
 */
ZACERT_API uint32_t ZA_PKCS7_EncodeRecipientInfo(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS7_DecodeRecipientInfo: reads one RecipientInfo, DER or with indefinite lengths, in the
 * place of all that was set or decoded; functions that are installed stay. 121: a field is missing;
 * 122: another field, or one too many, as in the kinds of recipients that CMS (RFC 5652) adds; 102:
 * octets behind it; 123 and the readers' codes. A failure changes nothing.
 */
ZACERT_API uint32_t ZA_PKCS7_DecodeRecipientInfo(void *ctx, const uint8_t *der, uint32_t derLen);

/*
 * ZA_PKCS7_DecryptDesKey: decrypts the encrypted key (36), of whatever algorithm, with the function
 * for decryption; the result becomes 37. The function runs once: asked again, the same key is
 * handed out until 36, 37 or the function is set. Without a function it returns 0 and writes
 * nothing, so set `*keyLen` to 0 before. 121: no encrypted key; 126: the function claims more than
 * its room; the function's own code.
 *
 * An error of an RSA function tells about the padding of what came: whoever lets strangers ask
 * again and again should go on with a random key instead of answering differently.
 */
ZACERT_API uint32_t ZA_PKCS7_DecryptDesKey(void *ctx, uint8_t *key, uint32_t *keyLen);

/*
 * ZA_PKCS7_DestoryEncodeRecipientInfo: releases a recipient and all it holds; NULL is accepted, and
 * one that belongs to a message stays until the message goes. Returns 0.
 */
ZACERT_API uint32_t ZA_PKCS7_DestoryEncodeRecipientInfo(void *ctx);

/* ZA_PKCS7_DestoryDecodeRecipientInfo: the same. */
ZACERT_API uint32_t ZA_PKCS7_DestoryDecodeRecipientInfo(void *ctx);

/* ---- EncryptedContentInfo -------------------------------------------------------------------- */

/*
 * ZA_PKCS7_CreateEnocdeEncryptedContent: a new part in `*ctx`, which the caller destroys unless a
 * message takes it over. 100: no memory.
 */
ZACERT_API uint32_t ZA_PKCS7_CreateEnocdeEncryptedContent(void **ctx);

/* ZA_PKCS7_CreateDeocdeEncryptedContent: the same. */
ZACERT_API uint32_t ZA_PKCS7_CreateDeocdeEncryptedContent(void **ctx);

/*
 * ZA_PKCS7_SetEncryptedContentAttributeChar: sets 17 to 21 of ZA_Pkcs7Attribute from a copy of
 * `len` octets, in the place of what was there. Content to be encrypted (21) and encrypted content
 * (20) stay beside each other. 101: NULL, or a length of 0 or above INT32_MAX; 122: another
 * identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_SetEncryptedContentAttributeChar(void *ctx, int32_t id,
                                                              const uint8_t *value, uint32_t len);

/*
 * ZA_PKCS7_GetEncryptedContentAttributeChar: reads 17 to 21; what is not there has length 0. 21 is
 * what was set or decrypted; where there is neither, a function for decryption runs as in
 * ZA_PKCS7_GetEncryptedContentInformation, whose codes may come. 122: another identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_GetEncryptedContentAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                              uint32_t *outLen);

/*
 * ZA_PKCS7_EncodeEncryptedContent: writes the EncryptedContentInfo. The function for encryption
 * makes the encrypted content of the content (21); where there is no function or no content,
 * encrypted content that was set (20) is written as it is, and without it none. Content that nobody
 * encrypts is never written. The algorithm's parameters are NULL where none are set. 108: type or
 * algorithm is missing; 126: the function claims more than its room; the function's own code.
 */
ZACERT_API uint32_t ZA_PKCS7_EncodeEncryptedContent(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS7_DecodeEncryptedContent: reads one EncryptedContentInfo, DER or with indefinite lengths,
 * in the place of all that was set or decoded; functions that are installed stay. Encrypted content
 * in pieces is joined. Codes as of ZA_PKCS7_DecodeRecipientInfo.
 */
ZACERT_API uint32_t ZA_PKCS7_DecodeEncryptedContent(void *ctx, const uint8_t *der, uint32_t derLen);

/*
 * ZA_PKCS7_GetEncryptedContentInformation: decrypts the encrypted content (20) with the function
 * for decryption; the result becomes 21. The function runs once: asked again, the same octets are
 * handed out until 20, 21 or the function is set. 121: no encrypted content, or no function; 126:
 * the function claims more than its room; the function's own code.
 */
ZACERT_API uint32_t ZA_PKCS7_GetEncryptedContentInformation(void *ctx, uint8_t *out,
                                                            uint32_t *outLen);

/*
 * ZA_PKCS7_DestoryEncodeEncryptedContent: releases a part and all it holds; NULL is accepted, and
 * one that belongs to a message stays until the message goes. Returns 0.
 */
ZACERT_API uint32_t ZA_PKCS7_DestoryEncodeEncryptedContent(void *ctx);

/* ZA_PKCS7_DestoryDecodeEncryptedContent: the same. */
ZACERT_API uint32_t ZA_PKCS7_DestoryDecodeEncryptedContent(void *ctx);

/* ---- Functions of the caller ----------------------------------------------------------------- */

/*
 * ZA_PKCS7_SetRecipientInfoKeyEncFunc: installs the function that encrypts the key, or none for
 * NULL, with a copy of `paramLen` octets at `param`. Each call of the function gets a copy of
 * these, or NULL where there are none; what they point to must live until then. Its room is the
 * length of its input and 330 octets, and never below 4096. 101: `paramLen` above INT32_MAX; 100:
 * no memory.
 */
ZACERT_API uint32_t ZA_PKCS7_SetRecipientInfoKeyEncFunc(void *ctx, ZA_CryptFunc func,
                                                        const uint8_t *param, uint32_t paramLen);

/*
 * ZA_PKCS7_SetRecipientInfoKeyDecFunc: likewise the function that decrypts the key. A key that the
 * one before made is forgotten.
 */
ZACERT_API uint32_t ZA_PKCS7_SetRecipientInfoKeyDecFunc(void *ctx, ZA_CryptFunc func,
                                                        const uint8_t *param, uint32_t paramLen);

/* ZA_PKCS7_SetEncryptContentEncFunc: likewise the function that encrypts the content. */
ZACERT_API uint32_t ZA_PKCS7_SetEncryptContentEncFunc(void *ctx, ZA_CryptFunc func,
                                                      const uint8_t *param, uint32_t paramLen);

/*
 * ZA_PKCS7_SetEncryptContentDecFunc: likewise the function that decrypts the content. Content that
 * the one before made is forgotten.
 */
ZACERT_API uint32_t ZA_PKCS7_SetEncryptContentDecFunc(void *ctx, ZA_CryptFunc func,
                                                      const uint8_t *param, uint32_t paramLen);

#ifdef __cplusplus
}
#endif

#endif
