/*
 * pkcs12_safe.h - the containers of PKCS#12 files (RFC 7292, 4): ContentInfo of three types around
 * SafeContents, and AuthenticatedSafe of two types, which is the whole file. See pkcs12.h for what
 * all contexts have in common.
 *
 * Keys stay with the caller: functions of the type ZA_CryptFunc encrypt, decrypt and compute the
 * MAC. Each gets a copy of its parameter block at every call.
 *
 * Example: the MAC of a file checked with a key derived from the password.
 *
 *     void *safe = NULL;
 *     uint32_t result = 0;
 *     ZA_HMAC_RECORD record = {7, macKey, 20};
 *     if (ZA_PKCS12_CreateDecodeAuthSafeOfDataType(&safe) == 0 &&
 *         ZA_PKCS12_DecodeAuthSafeOfDataType(safe, file, fileLen) == 0 &&
 *         ZA_PKCS12_SetAuthSafeOfDataType_ParseMacFunc(safe, ZA_HMACFunc_Ref,
 *                                                      (const uint8_t *)&record,
 *                                                      sizeof record) == 0 &&
 *         ZA_PKCS12_GetAuthSafeOfDataType_MACVerifyResult(safe, &result) == 0 && result == 200) {
 *         trust(safe);
 *     }
 *     ZA_PKCS12_DestoryDecodeAuthSafeOfDataType(safe);
 */
#ifndef ZACERT_PKCS12_SAFE_H
#define ZACERT_PKCS12_SAFE_H

#include <zacert/base.h>
#include <zacert/callbacks.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Parameters and MacData ------------------------------------------------------------------ */

/*
 * ZA_PKCS12_EncodeParameter: writes the parameters of password-based encryption: SEQUENCE { salt
 * OCTET STRING, iterations INTEGER }. 121: a missing argument.
 */
ZACERT_API uint32_t ZA_PKCS12_EncodeParameter(const uint8_t *salt, uint32_t saltLen,
                                              uint32_t iterations, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS12_DecodeParameter: reads them. 121: a field is missing. The kinds of the fields are not
 * looked at: whether parameters are of this form is told by the identifier they stand beside.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeParameter(const uint8_t *der, uint32_t derLen, uint8_t *salt,
                                              uint32_t *saltLen, uint32_t *iterations);

/*
 * ZA_PKCS12_EncodeMac: runs a function of the caller's over the data and writes MacData { { {
 * digestOid, NULL }, MAC }, salt, iterations }. 121: no function, digest or data; 126: it claims
 * more octets than it had room for; its own code.
 */
ZACERT_API uint32_t ZA_PKCS12_EncodeMac(ZA_CryptFunc macFunc, const uint8_t *macParam,
                                        uint32_t macParamLen, const uint8_t *digestOid,
                                        uint32_t digestOidLen, const uint8_t *data,
                                        uint32_t dataLen, const uint8_t *salt, uint32_t saltLen,
                                        uint32_t iterations, uint8_t *out, uint32_t *outLen);

/* ZA_PKCS12_DecodeMac: reads MacData; nothing is compared. Without iterations there is one. */
ZACERT_API uint32_t ZA_PKCS12_DecodeMac(const uint8_t *der, uint32_t derLen, uint8_t *digestOid,
                                        uint32_t *digestOidLen, uint8_t *mac, uint32_t *macLen,
                                        uint8_t *salt, uint32_t *saltLen, uint32_t *iterations);

/* ---- ContentInfo of type data ---------------------------------------------------------------- */

/* A SafeContents that is not encrypted as a whole. */

/* ZA_PKCS12_CreateEncodeContentInfoOfDataType: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodeContentInfoOfDataType(void **ctx);

/* ZA_PKCS12_SetContentInfoOfDataType_SafeContent: DER of a SafeContents. */
ZACERT_API uint32_t ZA_PKCS12_SetContentInfoOfDataType_SafeContent(void *ctx,
                                                                   const uint8_t *safeContents,
                                                                   uint32_t len);

/* ZA_PKCS12_EncodeContentInfoOfDataType: writes the DER. 121: no SafeContents. */
ZACERT_API uint32_t ZA_PKCS12_EncodeContentInfoOfDataType(void *ctx, uint8_t *out,
                                                          uint32_t *outLen);

/*
 * ZA_PKCS12_DestoryEncodeContentInfoOfDataType: releases a context; what it holds is wiped. Returns
 * 0; 121: NULL.
 */
ZACERT_API uint32_t ZA_PKCS12_DestoryEncodeContentInfoOfDataType(void *ctx);

/* ZA_PKCS12_CreateDecodeContentInfoOfDataType: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodeContentInfoOfDataType(void **ctx);

/*
 * ZA_PKCS12_DecodeContentInfoOfDataType: reads one; what the context held is replaced. 121: no
 * octets, or a field is missing; 122: a field of another kind; the codes of the DER readers.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeContentInfoOfDataType(void *ctx, const uint8_t *der,
                                                          uint32_t derLen);

/* ZA_PKCS12_GetContentInfoOfDataType_SafeContent: the same, read. */
ZACERT_API uint32_t ZA_PKCS12_GetContentInfoOfDataType_SafeContent(void *ctx, uint8_t *safeContents,
                                                                   uint32_t *len);

/* ZA_PKCS12_DestoryDecodeContentInfoOfDataType: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestoryDecodeContentInfoOfDataType(void *ctx);

/* ---- ContentInfo of type encryptedData ------------------------------------------------------- */

/* A SafeContents encrypted under a password. */

/* ZA_PKCS12_CreateEncodeContentInfoOfEncryptedType: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodeContentInfoOfEncryptedType(void **ctx);

/*
 * ZA_PKCS12_SetContentInfoOfEncryptedType_SafeContent: DER of a SafeContents, which is to be
 * encrypted.
 */
ZACERT_API uint32_t ZA_PKCS12_SetContentInfoOfEncryptedType_SafeContent(void *ctx,
                                                                        const uint8_t *safeContents,
                                                                        uint32_t len);

/*
 * ZA_PKCS12_SetContentInfoOfEncryptedType_DesAlgorithm: content octets of the algorithm of
 * password-based encryption, as they are written. The function has a copy of its own in its
 * parameter block; nothing compares them.
 */
ZACERT_API uint32_t ZA_PKCS12_SetContentInfoOfEncryptedType_DesAlgorithm(void *ctx,
                                                                         const uint8_t *oid,
                                                                         uint32_t oidLen);

/*
 * ZA_PKCs12_SetContentInfoOfEncryptedType_DesParameter: salt and iterations, as they are written.
 */
ZACERT_API uint32_t ZA_PKCs12_SetContentInfoOfEncryptedType_DesParameter(void *ctx,
                                                                         const uint8_t *salt,
                                                                         uint32_t saltLen,
                                                                         uint32_t iterations);

/*
 * ZA_PKCS12_SetContentInfoOfEncryptedType_EncContentFunc: the function that encrypts, such as
 * ZA_EncryptFunc_Ref, and its parameter block. Of a block that holds pointers, as ZA_PBE_RECORD
 * does, what they point to must live until the encoder returns.
 */
ZACERT_API uint32_t ZA_PKCS12_SetContentInfoOfEncryptedType_EncContentFunc(void *ctx,
                                                                           ZA_CryptFunc func,
                                                                           const uint8_t *param,
                                                                           uint32_t paramLen);

/*
 * ZA_PKCS12_SetContentInfoOfEncryptedType_DecContentFunc: the function that decrypts, such as
 * ZA_DecryptFunc_Ref, before or after decoding.
 */
ZACERT_API uint32_t ZA_PKCS12_SetContentInfoOfEncryptedType_DecContentFunc(void *ctx,
                                                                           ZA_CryptFunc func,
                                                                           const uint8_t *param,
                                                                           uint32_t paramLen);

/*
 * ZA_PKCS12_EncodeContentInfoOfEncryptedType: encrypts and writes the DER. 121: no SafeContents,
 * algorithm or function; 126: the function claims more octets than it had room for; its own code.
 */
ZACERT_API uint32_t ZA_PKCS12_EncodeContentInfoOfEncryptedType(void *ctx, uint8_t *out,
                                                               uint32_t *outLen);

/*
 * ZA_PKCS12_DestoryEncodeContentInfoOfEncryptedType: releases a context; what it holds is wiped.
 * Returns 0; 121: NULL.
 */
ZACERT_API uint32_t ZA_PKCS12_DestoryEncodeContentInfoOfEncryptedType(void *ctx);

/* ZA_PKCS12_CreateDecodeContentInfoOfEncryptedType: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodeContentInfoOfEncryptedType(void **ctx);

/*
 * ZA_PKCS12_DecodeContentInfoOfEncryptedType: reads one; what the context held is replaced. 121: no
 * octets, or a field is missing; 122: a field of another kind; the codes of the DER readers.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeContentInfoOfEncryptedType(void *ctx, const uint8_t *der,
                                                               uint32_t derLen);

/* ZA_PKCS12_GetContentInfoOfEncryptedType_DesAlgorithm: content octets of the algorithm. */
ZACERT_API uint32_t ZA_PKCS12_GetContentInfoOfEncryptedType_DesAlgorithm(void *ctx, uint8_t *oid,
                                                                         uint32_t *oidLen);

/*
 * ZA_PKCS12_GetContentInfoOfEncryptedType_DesParameter: salt and iterations, as
 * ZA_PKCS12_DecodeParameter. 121: there are no parameters.
 */
ZACERT_API uint32_t ZA_PKCS12_GetContentInfoOfEncryptedType_DesParameter(void *ctx, uint8_t *salt,
                                                                         uint32_t *saltLen,
                                                                         uint32_t *iterations);

/*
 * ZA_PKCS12_GetContentInfoOfEncryptedType_SafeContent: decrypts at every call; without a function
 * the octets as they are encrypted. 126: the function claims more octets than it had room for; its
 * own code.
 */
ZACERT_API uint32_t ZA_PKCS12_GetContentInfoOfEncryptedType_SafeContent(void *ctx,
                                                                        uint8_t *safeContents,
                                                                        uint32_t *len);

/* ZA_PKCS12_DestoryDecodeContentInfoOfEncryptedType: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestoryDecodeContentInfoOfEncryptedType(void *ctx);

/* ---- ContentInfo of type envelopedData ------------------------------------------------------- */

/*
 * A SafeContents encrypted for recipients. Those of a decoded one cannot be had here: read it with
 * pkcs7_enveloped.h where their keys are needed.
 */

/* ZA_PKCS12_CreateEncodeContentInfoOfEnvelopedType: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodeContentInfoOfEnvelopedType(void **ctx);

/*
 * ZA_PKCS12_SetContentInfoOfEnvelopedType_SafeContent: DER of a SafeContents, which is to be
 * encrypted.
 */
ZACERT_API uint32_t ZA_PKCS12_SetContentInfoOfEnvelopedType_SafeContent(void *ctx,
                                                                        const uint8_t *safeContents,
                                                                        uint32_t len);

/*
 * ZA_PKCS12_SetContentInfoOfEnvelopedType_DesAlgorithm: content octets of the algorithm that
 * encrypts the content.
 */
ZACERT_API uint32_t ZA_PKCS12_SetContentInfoOfEnvelopedType_DesAlgorithm(void *ctx,
                                                                         const uint8_t *oid,
                                                                         uint32_t oidLen);

/*
 * ZA_PKCS12_SetContentInfoOfEnvelopedType_DesParameter: DER of its parameters; without any, NULL is
 * written.
 */
ZACERT_API uint32_t ZA_PKCS12_SetContentInfoOfEnvelopedType_DesParameter(void *ctx,
                                                                         const uint8_t *paramDer,
                                                                         uint32_t paramLen);

/*
 * ZA_PKCS12_SetContentInfoOfEnvelopedType_EncContentFunc: the function that encrypts, and its
 * parameter block; in a context for decoding the one that decrypts.
 */
ZACERT_API uint32_t ZA_PKCS12_SetContentInfoOfEnvelopedType_EncContentFunc(void *ctx,
                                                                           ZA_CryptFunc func,
                                                                           const uint8_t *param,
                                                                           uint32_t paramLen);

/*
 * ZA_PKCS12_SetContentInfoOfEnvelopedType_EncContentKey: the key that is given to every recipient
 * to be encrypted.
 */
ZACERT_API uint32_t ZA_PKCS12_SetContentInfoOfEnvelopedType_EncContentKey(void *ctx,
                                                                          const uint8_t *key,
                                                                          uint32_t keyLen);

/*
 * ZA_PKCS12_SetContentInfoOfEnvelopedType_RecipientInfo: takes over a recipient
 * (pkcs7_recipient.h), which is released with the context. 121: it belongs to a message already.
 */
ZACERT_API uint32_t ZA_PKCS12_SetContentInfoOfEnvelopedType_RecipientInfo(void *ctx,
                                                                          void *recipientInfoCtx);

/*
 * ZA_PKCS12_EncodeContentInfoOfEnvelopedType: encrypts and writes the DER. 121: no SafeContents,
 * algorithm or function; 126: the function claims more octets than it had room for; the codes of
 * the recipients; its own code.
 */
ZACERT_API uint32_t ZA_PKCS12_EncodeContentInfoOfEnvelopedType(void *ctx, uint8_t *out,
                                                               uint32_t *outLen);

/*
 * ZA_PKCS12_DestoryEncodeContentInfoOfEnvelopedType: releases a context; what it holds is wiped.
 * Returns 0; 121: NULL.
 */
ZACERT_API uint32_t ZA_PKCS12_DestoryEncodeContentInfoOfEnvelopedType(void *ctx);

/* ZA_PKCS12_CreateDecodeContentInfoOfEnvelopedType: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodeContentInfoOfEnvelopedType(void **ctx);

/*
 * ZA_PKCS12_DecodeContentInfoOfEnvelopedType: reads one; what the context held is replaced. 121: no
 * octets, or a field is missing; 122: a field of another kind; the codes of the DER readers.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeContentInfoOfEnvelopedType(void *ctx, const uint8_t *der,
                                                               uint32_t derLen);

/* ZA_PKCS12_GetContentInfoOfEnvelopedType_DesAlgorithm: content octets of the algorithm. */
ZACERT_API uint32_t ZA_PKCS12_GetContentInfoOfEnvelopedType_DesAlgorithm(void *ctx, uint8_t *oid,
                                                                         uint32_t *oidLen);

/*
 * ZA_PKCS12_GetContentInfoOfEnvelopedType_DesParameter: DER of its parameters; length 0: there are
 * none.
 */
ZACERT_API uint32_t ZA_PKCS12_GetContentInfoOfEnvelopedType_DesParameter(void *ctx,
                                                                         uint8_t *paramDer,
                                                                         uint32_t *paramLen);

/*
 * ZA_PKCS12_GetContentInfoOfEnvelopedType_SafeContent: as
 * ZA_PKCS12_GetContentInfoOfEncryptedType_SafeContent.
 */
ZACERT_API uint32_t ZA_PKCS12_GetContentInfoOfEnvelopedType_SafeContent(void *ctx,
                                                                        uint8_t *safeContents,
                                                                        uint32_t *len);

/* ZA_PKCS12_DestoryDecodeContentInfoOfEnvelopedType: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestoryDecodeContentInfoOfEnvelopedType(void *ctx);

/* ---- AuthenticatedSafe of type data ---------------------------------------------------------- */

/* The whole file, under a password. */

/* ZA_PKCS12_CreateEncodeAuthSafeOfDataType: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodeAuthSafeOfDataType(void **ctx);

/* ZA_PKCS12_SetAuthSafeOfDataType_ContentInfo: appends the DER of a ContentInfo. */
ZACERT_API uint32_t ZA_PKCS12_SetAuthSafeOfDataType_ContentInfo(void *ctx,
                                                                const uint8_t *contentInfo,
                                                                uint32_t len);

/*
 * ZA_PKCS12_SetAuthSafeOfDataType_DigestAlgorithm: content octets of the digest of the MAC, as they
 * are written.
 */
ZACERT_API uint32_t ZA_PKCS12_SetAuthSafeOfDataType_DigestAlgorithm(void *ctx, const uint8_t *oid,
                                                                    uint32_t oidLen);

/* ZA_PKCS12_SetAuthSafeOfDataType_MacParameter: salt and iterations, as they are written. */
ZACERT_API uint32_t ZA_PKCS12_SetAuthSafeOfDataType_MacParameter(void *ctx, const uint8_t *salt,
                                                                 uint32_t saltLen,
                                                                 uint32_t iterations);

/*
 * ZA_PKCS12_SetAuthSafeOfDataType_GenMacFunc: the function that computes the MAC, such as
 * ZA_HMACFunc_Ref, and its parameter block. What a block points to must live until the encoder
 * returns.
 */
ZACERT_API uint32_t ZA_PKCS12_SetAuthSafeOfDataType_GenMacFunc(void *ctx, ZA_CryptFunc func,
                                                               const uint8_t *param,
                                                               uint32_t paramLen);

/*
 * ZA_PKCS12_SetAuthSafeOfDataType_ParseMacFunc: the same for
 * ZA_PKCS12_GetAuthSafeOfDataType_MACVerifyResult; what was found before is forgotten.
 */
ZACERT_API uint32_t ZA_PKCS12_SetAuthSafeOfDataType_ParseMacFunc(void *ctx, ZA_CryptFunc func,
                                                                 const uint8_t *param,
                                                                 uint32_t paramLen);

/*
 * ZA_PKCS12_EncodeAuthSafeOfDataType: computes the MAC and writes the file; may be called again.
 * 121: no function, no digest or no ContentInfo; 126: the function claims more octets than it had
 * room for; its own code.
 */
ZACERT_API uint32_t ZA_PKCS12_EncodeAuthSafeOfDataType(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS12_DestoryEncodeAuthSafeOfDataType: releases a context; what it holds is wiped. Returns 0;
 * 121: NULL.
 */
ZACERT_API uint32_t ZA_PKCS12_DestoryEncodeAuthSafeOfDataType(void *ctx);

/* ZA_PKCS12_CreateDecodeAuthSafeOfDataType: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodeAuthSafeOfDataType(void **ctx);

/*
 * ZA_PKCS12_DecodeAuthSafeOfDataType: reads one; what the context held is replaced. 121: no octets,
 * or a field is missing; 122: a field of another kind; the codes of the DER readers. The version is
 * not looked at, and MacData may be missing.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeAuthSafeOfDataType(void *ctx, const uint8_t *der,
                                                       uint32_t derLen);

/*
 * ZA_PKCS12_GetAuthSafeOfDataType_ContentInfo: the ContentInfo with this number, from 1; length 0:
 * there is none.
 */
ZACERT_API uint32_t ZA_PKCS12_GetAuthSafeOfDataType_ContentInfo(void *ctx, uint8_t *contentInfo,
                                                                uint32_t *len, uint32_t number);

/*
 * ZA_PKCS12_GetAuthSafeOfDataType_DigestAlgorithm: content octets of the digest; length 0: there is
 * no MacData.
 */
ZACERT_API uint32_t ZA_PKCS12_GetAuthSafeOfDataType_DigestAlgorithm(void *ctx, uint8_t *oid,
                                                                    uint32_t *oidLen);

/*
 * ZA_PKCS12_GetAuthSafeOfDataType_MacParameter: salt and iterations; 0 iterations: there is no
 * MacData.
 */
ZACERT_API uint32_t ZA_PKCS12_GetAuthSafeOfDataType_MacParameter(void *ctx, uint8_t *salt,
                                                                 uint32_t *saltLen,
                                                                 uint32_t *iterations);

/*
 * ZA_PKCS12_GetAuthSafeOfDataType_MACVerifyResult: computes the MAC and compares: `*result` is 200
 * where it is the same, 300 where it is another or there is none in the file, 100 where no function
 * is installed and nothing was compared. The result of the call is 0 then. A match is remembered.
 * 126: the function claims more octets than it had room for; its own code.
 */
ZACERT_API uint32_t ZA_PKCS12_GetAuthSafeOfDataType_MACVerifyResult(void *ctx, uint32_t *result);

/* ZA_PKCS12_DestoryDecodeAuthSafeOfDataType: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestoryDecodeAuthSafeOfDataType(void *ctx);

/* ---- AuthenticatedSafe of type signedData ---------------------------------------------------- */

/* The whole file, signed instead of under a MAC. */

/* ZA_PKCS12_CreateEncodeAuthSafeOfSignedType: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodeAuthSafeOfSignedType(void **ctx);

/* ZA_PKCS12_SetAuthSafeOfSignedType_ContentInfo: appends the DER of a ContentInfo. */
ZACERT_API uint32_t ZA_PKCS12_SetAuthSafeOfSignedType_ContentInfo(void *ctx,
                                                                  const uint8_t *contentInfo,
                                                                  uint32_t len);

/* ZA_PKCS12_SetAuthSafeOfSignedType_DigestAlgorithm: appends the content octets of a digest. */
ZACERT_API uint32_t ZA_PKCS12_SetAuthSafeOfSignedType_DigestAlgorithm(void *ctx, const uint8_t *oid,
                                                                      uint32_t oidLen);

/*
 * ZA_PKCS12_SetAuthSafeOfSignedType_SignerInfo: takes over a signer (pkcs7_signer.h), which is
 * released with the context. 121: it belongs to a message already.
 */
ZACERT_API uint32_t ZA_PKCS12_SetAuthSafeOfSignedType_SignerInfo(void *ctx, void *signerInfoCtx);

/* ZA_PKCS12_SetAuthSafeOfSignedType_Cert: appends a certificate. */
ZACERT_API uint32_t ZA_PKCS12_SetAuthSafeOfSignedType_Cert(void *ctx, const uint8_t *cert,
                                                           uint32_t certLen);

/* ZA_PKCS12_SetAuthSafeOfSignedType_Crl: appends a revocation list. */
ZACERT_API uint32_t ZA_PKCS12_SetAuthSafeOfSignedType_Crl(void *ctx, const uint8_t *crl,
                                                          uint32_t crlLen);

/*
 * ZA_PKCS12_EncodeAuthSafeOfSignedType: signs and writes the file. 121: no ContentInfo; otherwise
 * the codes of signedData.
 */
ZACERT_API uint32_t ZA_PKCS12_EncodeAuthSafeOfSignedType(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS12_DestoryEncodeAuthSafeOfSignedType: releases a context. What is signed is not wiped: it
 * stands in the file for everybody. Returns 0; 121: NULL.
 */
ZACERT_API uint32_t ZA_PKCS12_DestoryEncodeAuthSafeOfSignedType(void *ctx);

/* ZA_PKCS12_CreateDecodeAuthSafeOfSignedType: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodeAuthSafeOfSignedType(void **ctx);

/*
 * ZA_PKCS12_DecodeAuthSafeOfSignedType: reads one; what the context held is replaced. 121: no
 * octets, or a field is missing; 122: a field of another kind; the codes of the DER readers.
 * Signers are verified one by one (pkcs7_signer.h).
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeAuthSafeOfSignedType(void *ctx, const uint8_t *der,
                                                         uint32_t derLen);

/*
 * ZA_PKCS12_GetAuthSafeOfSignedType_ContentInfo: the ContentInfo with this number, from 1; length
 * 0: there is none.
 */
ZACERT_API uint32_t ZA_PKCS12_GetAuthSafeOfSignedType_ContentInfo(void *ctx, uint8_t *contentInfo,
                                                                  uint32_t *len, uint32_t number);

/*
 * ZA_PKCS12_GetAuthSafeOfSignedType_DigestAlgorithm: the digest with this number, from 1; length 0:
 * there is none.
 */
ZACERT_API uint32_t ZA_PKCS12_GetAuthSafeOfSignedType_DigestAlgorithm(void *ctx, uint8_t *oid,
                                                                      uint32_t *oidLen,
                                                                      uint32_t number);

/*
 * ZA_PKCS12_GetAuthSafeOfSignedType_SignerInfo: the signer with this number, from 1, borrowed: it
 * belongs to the context. 121: there is none.
 */
ZACERT_API uint32_t ZA_PKCS12_GetAuthSafeOfSignedType_SignerInfo(void *ctx, void **signerInfoCtx,
                                                                 uint32_t number);

/*
 * ZA_PKCS12_GetAuthSafeOfSignedType_Cert: the certificate with this number, from 1; length 0: there
 * is none.
 */
ZACERT_API uint32_t ZA_PKCS12_GetAuthSafeOfSignedType_Cert(void *ctx, uint8_t *cert,
                                                           uint32_t *certLen, uint32_t number);

/*
 * ZA_PKCS12_GetAuthSafeOfSignedType_Crl: the revocation list with this number, from 1; length 0:
 * there is none.
 */
ZACERT_API uint32_t ZA_PKCS12_GetAuthSafeOfSignedType_Crl(void *ctx, uint8_t *crl, uint32_t *crlLen,
                                                          uint32_t number);

/* ZA_PKCS12_DestoryDecodeAuthSafeOfSignedType: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestoryDecodeAuthSafeOfSignedType(void *ctx);

#ifdef __cplusplus
}
#endif

#endif
