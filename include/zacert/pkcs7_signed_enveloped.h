/*
 * pkcs7_signed_enveloped.h - the content type signedAndEnvelopedData (RFC 2315, section 11):
 * content that is signed and encrypted in one layer. CMS dropped it: the command-line tools of
 * others print it at best. To reach them put signedData into envelopedData.
 *
 * NULL for a context, a place for a result or a part gives 101 here.
 *
 * Example: write a message from parts that were filled by the functions of pkcs7_signer.h and
 * pkcs7_recipient.h.
 *
 *     void *msg = NULL;
 *     uint32_t len = 0;
 *     if (ZA_PKCS7_CreateSignedAndEnvelopedDataEncodeCtx(&msg) == 0 &&
 *         ZA_PKCS7_SetSignedAndEnvelopedDataAttributeInt(msg, 44, 1) == 0 &&
 *         ZA_PKCS7_SetSignedAndEnvelopedDataAttributeChar(msg, 47, sha256, 9) == 0 &&
 *         ZA_PKCS7_SetSignedAndEnvelopedDataAttributeChar(msg, 48, content, contentLen) == 0 &&
 *         ZA_PKCS7_SetSignedAndEnvelopedDataAttributeChar(msg, 49, data, 9) == 0 &&
 *         ZA_PKCS7_SetSignedAndEnvelopedDataAttributeChar(msg, 50, key, keyLen) == 0 &&
 *         ZA_PKCS7_SetSignedAndEnvelopedData_RecipientInfo(msg, recipient) == 0 &&
 *         ZA_PKCS7_SetSignedAndEnvelopedData_EncryptedContent(msg, encrypted) == 0 &&
 *         ZA_PKCS7_SetSignedAndEnvelopedData_SignerInfo(msg, signer) == 0 &&
 *         ZA_PKCS7_EncodeSignedAndEnvelopedData(msg, NULL, &len) == 0) {
 *         uint8_t *der = malloc(len);
 *         if (der != NULL && ZA_PKCS7_EncodeSignedAndEnvelopedData(msg, der, &len) == 0) {
 *             use(der, len);
 *         }
 *         free(der);
 *     }
 *     ZA_PKCS7_DestorySignedAndEnvelopedDataEncodeCtx(msg);
 */
#ifndef ZACERT_PKCS7_SIGNED_ENVELOPED_H
#define ZACERT_PKCS7_SIGNED_ENVELOPED_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/pkcs7_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Context --------------------------------------------------------------------------------- */

/*
 * ZA_PKCS7_CreateSignedAndEnvelopedDataEncodeCtx: a new context in `*ctx`, which the caller
 * destroys with ZA_PKCS7_DestorySignedAndEnvelopedDataEncodeCtx. It writes and reads; the
 * functions named for decoding do the same. 100: no memory.
 */
ZACERT_API uint32_t ZA_PKCS7_CreateSignedAndEnvelopedDataEncodeCtx(void **ctx);

/*
 * ZA_PKCS7_DestorySignedAndEnvelopedDataEncodeCtx: releases a context with all parts attached to
 * it, whose handles are gone then, and wipes content and key; NULL is accepted. Returns 0.
 */
ZACERT_API uint32_t ZA_PKCS7_DestorySignedAndEnvelopedDataEncodeCtx(void *ctx);

/* ZA_PKCS7_CreateSignedAndEnvelopedDataDecodeCtx: the same as for encoding. */
ZACERT_API uint32_t ZA_PKCS7_CreateSignedAndEnvelopedDataDecodeCtx(void **ctx);

/* ZA_PKCS7_DestorySignedAndEnvelopedDataDecodeCtx: the same as for encoding. */
ZACERT_API uint32_t ZA_PKCS7_DestorySignedAndEnvelopedDataDecodeCtx(void *ctx);

/* ---- Fields ---------------------------------------------------------------------------------- */

/*
 * ZA_PKCS7_SetSignedAndEnvelopedDataAttributeInt: sets the version (44), RFC 2315 has 1. 110: any
 * other id.
 */
ZACERT_API uint32_t ZA_PKCS7_SetSignedAndEnvelopedDataAttributeInt(void *ctx, int32_t id,
                                                                   uint32_t value);

/*
 * ZA_PKCS7_GetSignedAndEnvelopedDataAttributeInt: the version (44), 0 where none is set. 110: any
 * other id.
 */
ZACERT_API uint32_t ZA_PKCS7_GetSignedAndEnvelopedDataAttributeInt(void *ctx, int32_t id,
                                                                   uint32_t *value);

/*
 * ZA_PKCS7_SetSignedAndEnvelopedDataAttributeChar: sets 48, 49 and 50, or appends to the lists
 * 45, 46 and 47, a copy of `len` octets; see ZA_Pkcs7Attribute. Certificates and revocation lists
 * are not looked at and are written as they stand. 101: NULL, or a length below 1; 110: unknown
 * id; 100.
 */
ZACERT_API uint32_t ZA_PKCS7_SetSignedAndEnvelopedDataAttributeChar(void *ctx, int32_t id,
                                                                    const uint8_t *value,
                                                                    int32_t len);

/*
 * ZA_PKCS7_GetSignedAndEnvelopedDataAttributeChar: reads 48 or 49, or item `index`, counted from
 * 1, of a list; the key (50) is not read. Of a decoded message 48 is the encrypted content. An
 * index that the list does not have gives 0 and writes nothing, not even a length, so set
 * `*outLen` before. A NULL `out` asks for the length. 110: unknown id.
 */
ZACERT_API uint32_t ZA_PKCS7_GetSignedAndEnvelopedDataAttributeChar(void *ctx, int32_t id,
                                                                    uint8_t *out, uint32_t *outLen,
                                                                    int32_t index);

/* ---- Parts ----------------------------------------------------------------------------------- */

/*
 * ZA_PKCS7_SetSignedAndEnvelopedData_RecipientInfo: appends a recipient, which belongs to this
 * context from then on and is destroyed with it; its handle stays good. 121: the part belongs to
 * a message already.
 */
ZACERT_API uint32_t ZA_PKCS7_SetSignedAndEnvelopedData_RecipientInfo(void *ctx,
                                                                     void *recipientInfo);

/* ZA_PKCS7_SetSignedAndEnvelopedData_SignerInfo: the same for a signer. */
ZACERT_API uint32_t ZA_PKCS7_SetSignedAndEnvelopedData_SignerInfo(void *ctx, void *signerInfo);

/*
 * ZA_PKCS7_SetSignedAndEnvelopedData_EncryptedContent: the same for the encrypted content, of
 * which there is one: the one before is destroyed.
 */
ZACERT_API uint32_t ZA_PKCS7_SetSignedAndEnvelopedData_EncryptedContent(void *ctx,
                                                                        void *encryptedContent);

/* ZA_PKCS7_GetSignedAndEnvelopedData_RecipientInfoNum: how many recipients there are. */
ZACERT_API uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_RecipientInfoNum(void *ctx, uint32_t *num);

/*
 * ZA_PKCS7_GetSignedAndEnvelopedData_RecipientInfo: the handle of recipient `index`, counted from
 * 1. It stays the context's. 101: no such recipient.
 */
ZACERT_API uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_RecipientInfo(void *ctx,
                                                                     void **recipientInfo,
                                                                     int32_t index);

/*
 * ZA_PKCS7_GetSignedAndEnvelopedData_EncryptedContent: the handle of the encrypted content, which
 * stays the context's. 121: there is none.
 */
ZACERT_API uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_EncryptedContent(void *ctx,
                                                                        void **encryptedContent);

/* ZA_PKCS7_GetSignedAndEnvelopedData_SignerInfoNum: how many signers there are. */
ZACERT_API uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_SignerInfoNum(void *ctx, uint32_t *num);

/*
 * ZA_PKCS7_GetSignedAndEnvelopedData_SignerInfo: the handle of signer `index`, counted from 1. It
 * stays the context's. A decoded signer has no content, which is encrypted: without authenticated
 * attributes the decrypted content goes to ZA_PKCS7_VerifySignerSignature2, with them it is set
 * as PKCS7_SIGNER_CONTENT before ZA_PKCS7_VerifySignerSignature. 101: no such signer.
 */
ZACERT_API uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_SignerInfo(void *ctx, void **signerInfo,
                                                                  int32_t index);

/* ZA_PKCS7_GetSignedAndEnvelopedData_CertificatesNum: how many certificates there are. */
ZACERT_API uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_CertificatesNum(void *ctx, uint32_t *num);

/* ZA_PKCS7_GetSignedAndEnvelopedData_CrlsNum: how many revocation lists there are. */
ZACERT_API uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_CrlsNum(void *ctx, uint32_t *num);

/* ---- Encoding and decoding ------------------------------------------------------------------- */

/*
 * ZA_PKCS7_EncodeSignedAndEnvelopedData: writes the message as a ContentInfo: every recipient
 * gets the key, the encrypted content gets content and type, and every signer signs the content
 * as it was before encryption. Asking for the length and then for the octets calls each function
 * once, and both calls agree. Signatures stand there as the signing functions return them: RFC
 * 2315 encrypts them with the content-encryption key besides, which a signing function can do.
 * 121: version, recipients, signers, content or the encrypted content's part is missing; the
 * codes of the parts' encoders and of their functions.
 */
ZACERT_API uint32_t ZA_PKCS7_EncodeSignedAndEnvelopedData(void *ctx, uint8_t *out,
                                                          uint32_t *outLen);

/*
 * ZA_PKCS7_DecodeSignedAndEnvelopedData: reads a message, one element that is all of `der`, in
 * DER or with indefinite lengths, and keeps one copy of it. It replaces all the context had,
 * parts too; their handles are gone then. Nothing is decrypted or verified. 122: another content
 * type, a field of another type, a recipient or signer named otherwise than by issuer and serial
 * number, or a field behind the last one; 121: a field is missing, there is no recipient, or the
 * certificates are there and empty; 123: malformed indefinite lengths; the readers' codes
 * otherwise.
 */
ZACERT_API uint32_t ZA_PKCS7_DecodeSignedAndEnvelopedData(void *ctx, const uint8_t *der,
                                                          uint32_t derLen);

#ifdef __cplusplus
}
#endif

#endif
