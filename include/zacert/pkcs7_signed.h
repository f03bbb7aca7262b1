/*
 * pkcs7_signed.h - the content type signedData (RFC 2315, section 9): content, or none, and
 * signatures, certificates and revocation lists in any number.
 *
 * NULL for a context, a place for a result or a part gives 101 here. What setters of this file
 * find wrong with their arguments is told by their result alone, without a line in the trace.
 *
 * Example: sign with one signer, which was filled by the functions of pkcs7_signer.h.
 *
 *     void *msg = NULL;
 *     uint32_t len = 0;
 *     if (ZA_PKCS7_CreateSignedDataEncodeCtx(&msg) == 0 &&
 *         ZA_PKCS7_SetSignedDataAttributeInt(msg, PKCS7_SIGNEDDATA_VERSION, 1) == 0 &&
 *         ZA_PKCS7_SetSignedDataAttributeChar(msg, PKCS7_SIGNEDDATA_DIGEST_ALGO, sha256, 9) == 0 &&
 *         ZA_PKCS7_SetSignedDataAttributeChar(msg, PKCS7_SIGNEDDATA_CONTENTTYPE, data, 9) == 0 &&
 *         ZA_PKCS7_SetSignedDataAttributeChar(msg, PKCS7_CONTENT, content, contentLen) == 0 &&
 *         ZA_PKCS7_SetSignedData_SignerInfo(msg, signer) == 0 &&
 *         ZA_PKCS7_EncodePKCS7SignedData(msg, NULL, &len) == 0) {
 *         uint8_t *der = malloc(len);
 *         if (der != NULL && ZA_PKCS7_EncodePKCS7SignedData(msg, der, &len) == 0) {
 *             use(der, len);
 *         }
 *         free(der);
 *     }
 *     ZA_PKCS7_DestroySignedDataEncodeCtx(msg);
 */
#ifndef ZACERT_PKCS7_SIGNED_H
#define ZACERT_PKCS7_SIGNED_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/pkcs7_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Context --------------------------------------------------------------------------------- */

/*
 * ZA_PKCS7_CreateSignedDataEncodeCtx: a new context in `*ctx`, which the caller destroys with
 * ZA_PKCS7_DestroySignedDataEncodeCtx. It writes and reads; the functions named for decoding do
 * the same. 100: no memory.
 */
ZACERT_API uint32_t ZA_PKCS7_CreateSignedDataEncodeCtx(void **ctx);

/*
 * ZA_PKCS7_DestroySignedDataEncodeCtx: releases a context with the signers attached to it, whose
 * handles are gone then; NULL is accepted. Returns 0.
 */
ZACERT_API uint32_t ZA_PKCS7_DestroySignedDataEncodeCtx(void *ctx);

/* ZA_PKCS7_CreateSignedDataDecodeCtx: the same as for encoding. */
ZACERT_API uint32_t ZA_PKCS7_CreateSignedDataDecodeCtx(void **ctx);

/* ZA_PKCS7_DestroySignedDataDecodeCtx: the same as for encoding. */
ZACERT_API uint32_t ZA_PKCS7_DestroySignedDataDecodeCtx(void *ctx);

/* ---- Fields ---------------------------------------------------------------------------------- */

/* ZA_PKCS7_SetSignedDataAttributeInt: sets the version (38), RFC 2315 has 1. 110: any other id. */
ZACERT_API uint32_t ZA_PKCS7_SetSignedDataAttributeInt(void *ctx, int32_t id, uint32_t value);

/*
 * ZA_PKCS7_SetSignedDataAttributeChar: sets 40 and 41, or appends to the lists 39, 42 and 43, a
 * copy of `len` octets; see ZA_Pkcs7Attribute. Certificates and revocation lists are not looked
 * at and are written as they stand. 101: a negative length, NULL beside a length, or no octets
 * where 40, 42 or 43 need some; 110: unknown id; 100.
 */
ZACERT_API uint32_t ZA_PKCS7_SetSignedDataAttributeChar(void *ctx, int32_t id, const uint8_t *value,
                                                        int32_t len);

/* ZA_PKCS7_GetSignedDataAttributeInt: the version (38), 0 where none is set. 110: any other id. */
ZACERT_API uint32_t ZA_PKCS7_GetSignedDataAttributeInt(void *ctx, int32_t id, uint32_t *value);

/*
 * ZA_PKCS7_GetSignedDataAttributeChar: reads 40 or 41, or item `index`, counted from 1, of a
 * list. An index that the list does not have gives 0 and writes nothing, not even a length, so
 * set `*outLen` before. PKCS7_CRL gives the first revocation list for every index there is; all
 * of them stand in the encoded message. A NULL `out` is refused with 101, but `*outLen` has the
 * length then. 101 besides: no content and no content type was set, no digest algorithm at all;
 * 110: unknown id.
 */
ZACERT_API uint32_t ZA_PKCS7_GetSignedDataAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                        uint32_t *outLen, int32_t index);

/* ---- Signers --------------------------------------------------------------------------------- */

/*
 * ZA_PKCS7_SetSignedData_SignerInfo: appends a signer, which belongs to this context from then on
 * and is destroyed with it; its handle stays good. A message that was decoded takes further
 * signers: the ones that came with it are written as they came. 121: the signer belongs to a
 * message already.
 */
ZACERT_API uint32_t ZA_PKCS7_SetSignedData_SignerInfo(void *ctx, void *signerInfo);

/*
 * ZA_PKCS7_GetSignedData_SignerInfo: the handle of signer `index`, counted from 1. It stays the
 * context's. Decoded signers know content and content type of their message: give them their
 * functions and call ZA_PKCS7_VerifySignerSignature. Of a detached signature the caller has the
 * content: without authenticated attributes it goes to ZA_PKCS7_VerifySignerSignature2, with them
 * it is set as PKCS7_SIGNER_CONTENT first. A message is verified when every signer's result is
 * 200, there is a signer, and the caller knows whose keys those were. 101: no such signer.
 */
ZACERT_API uint32_t ZA_PKCS7_GetSignedData_SignerInfo(void *ctx, void **signerInfo, int32_t index);

/* ZA_PKCS7_GetSignedData_SignerInfoNum: how many signers there are. */
ZACERT_API uint32_t ZA_PKCS7_GetSignedData_SignerInfoNum(void *ctx, uint32_t *num);

/* ZA_PKCS7_GetSignedData_DigestAlgoNum: how many digest algorithms there are, empty ones too. */
ZACERT_API uint32_t ZA_PKCS7_GetSignedData_DigestAlgoNum(void *ctx, uint32_t *num);

/* ZA_PKCS7_GetSignedData_CertificatesNum: how many certificates there are. */
ZACERT_API uint32_t ZA_PKCS7_GetSignedData_CertificatesNum(void *ctx, uint32_t *num);

/* ZA_PKCS7_GetSignedData_CrlsNum: how many revocation lists there are. */
ZACERT_API uint32_t ZA_PKCS7_GetSignedData_CrlsNum(void *ctx, uint32_t *num);

/* ---- Encoding and decoding ------------------------------------------------------------------- */

/*
 * ZA_PKCS7_EncodePKCS7SignedData: writes the message as a ContentInfo. Every signer gets content
 * type and content of the message and signs them, unless it has done so already: asking for the
 * length and then for the octets calls each function once, and both calls agree. Lists are
 * written in the order of the calls, which DER would sort. Content of data stands in an OCTET
 * STRING. Content of another type whose identifier has nine octets must be DER and stands there
 * as it is; of any other type, and empty content, it is left out. A context without signers makes
 * a file of certificates. 121: version, content type, or both of content and type were never set;
 * the codes of ZA_PKCS7_EncodeSignerInfo and of the signers' functions.
 */
ZACERT_API uint32_t ZA_PKCS7_EncodePKCS7SignedData(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS7_EncodePKCS7SignedDataPutData: the same with the content to be signed as an argument,
 * which is not copied. What stands in the message is still PKCS7_CONTENT, so that one left empty
 * gives a detached signature; the content type must be set. Call it with the same content for the
 * length and for the octets: the content is digested in both calls and signed in one. It is also
 * the way to sign a type other than data as RFC 2315 and CMS do: set PKCS7_CONTENT to the DER and
 * pass its content octets alone. 101: NULL beside a length, or a length above 0x7FFFFFFF.
 */
ZACERT_API uint32_t ZA_PKCS7_EncodePKCS7SignedDataPutData(void *ctx, const uint8_t *content,
                                                          uint32_t contentLen, uint8_t *out,
                                                          uint32_t *outLen);

/*
 * ZA_PKCS7_DecodeSignedData: reads a message, one element that is all of `der`, in DER or with
 * indefinite lengths, and keeps one copy of it. It replaces all the context had, signers too;
 * their handles are gone then. Nothing is verified. Elements of the certificates that are no
 * certificates (RFC 2315, 6.6 and CMS) are kept as they are. 122: another content type, a field
 * of another type, a signer named by a key identifier, or a field behind the last one; 121: a
 * field is missing; 123: malformed indefinite lengths; the readers' codes otherwise.
 */
ZACERT_API uint32_t ZA_PKCS7_DecodeSignedData(void *ctx, const uint8_t *der, uint32_t derLen);

#ifdef __cplusplus
}
#endif

#endif
