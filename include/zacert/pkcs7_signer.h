/*
 * pkcs7_signer.h - SignerInfo: who signed, what, and the signature (RFC 2315, 9.2).
 *
 * One kind of context serves both directions. A message that takes a signer over owns it: see
 * pkcs7_signed.h and pkcs7_signed_enveloped.h.
 *
 * Example: a signer for content of type data, by the functions of crypto.h. `digest` is an int32_t
 * of 9 (SHA-256) and `key` a ZA_RSArefPrivateKey.
 *
 *     void *signer = NULL;
 *     int ready =
 *         ZA_PKCS7_CreateEncodeSignerInfo(&signer) == 0 &&
 *         ZA_PKCS7_SetSignerInfoAttributeChar(signer, PKCS7_SIGNER_DN, issuer, issuerLen) == 0 &&
 *         ZA_PKCS7_SetSignerInfoAttributeChar(signer, PKCS7_SIGNER_SERIAL, serial, serialLen) ==
 *             0 &&
 *         ZA_PKCS7_SetSignerInfoAttributeChar(signer, PKCS7_SIGNER_DIGEST_ALGO, sha256Oid,
 *                                             sha256OidLen) == 0 &&
 *         ZA_PKCS7_SetSignerInfoAttributeChar(signer, PKCS7_SIGNER_DIGEST_ENC_ALG, rsaOid,
 *                                             rsaOidLen) == 0 &&
 *         ZA_PKCS7_SetSignerAttribute(signer, contentTypeOid, 9, dataOidDer, 11) == 0 &&
 *         ZA_PKCS7_SetSignerInfoDigestFunc(signer, ZA_DigestFunc_Ref, (const uint8_t *)&digest,
 *                                          sizeof digest) == 0 &&
 *         ZA_PKCS7_SetSignerInfoEncSignFunc(signer, ZA_PrivateKeyEncFunc_Ref,
 *                                           (const uint8_t *)key, sizeof *key) == 0;
 *
 * Authenticated attributes
 *
 * The library adds messageDigest (1.2.840.113549.1.9.4) while it encodes attributes together with
 * content: in place of the value of an attribute of that type, else as the last one. All others are
 * the caller's to add, above all contentType (1.2.840.113549.1.9.3, value 06 09 and the OID of
 * data): without it `openssl cms`, Java and NSS refuse the message. Attributes are written in the
 * order they were added. GnuTLS verifies them only in ascending order of their encodings, which is
 * contentType, signingTime, messageDigest; where something longer has to stand behind
 * messageDigest, add that one too, with any value, at its place. Without content none is added: a
 * signer of detached content with attributes is encoded with
 * ZA_PKCS7_EncodeSignerInfoPutdata, or brings a messageDigest of its own.
 *
 * Content of another type than data needs attributes. What is digested is the content as it was
 * given, the whole DER element; others digest the octets inside it, and a caller who wants to agree
 * with them hands those to ZA_PKCS7_EncodeSignerInfoPutdata.
 *
 * Algorithms
 *
 * A function that signs gets the DigestInfo of PKCS7_SIGNER_DIGEST_ALGO and the digest. Where that
 * attribute is one of the signature algorithms of SM2 (1.2.156.10197.1.501 to 503) it gets the bare
 * digest, and signatures are checked by a ZA_PKCS7_EcVerifyFunc. SM3 itself (1.2.156.10197.1.401)
 * is a digest like any other here.
 */
#ifndef ZACERT_PKCS7_SIGNER_H
#define ZACERT_PKCS7_SIGNER_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/pkcs7_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * ZA_PKCS7_EcVerifyFunc: checks the signature `sig` of a bare digest. The signature is good when
 * the function returns 0 and sets `*verdict`, which is 0 before, to 1. `context` is a copy of what
 * the function was installed with, or NULL.
 */
typedef int32_t (*ZA_PKCS7_EcVerifyFunc)(const uint8_t *digest, uint32_t digestLen,
                                         const uint8_t *sig, uint32_t sigLen, uint32_t *verdict,
                                         void *context);

/* ---- SignerInfo ------------------------------------------------------------------------------ */

/*
 * ZA_PKCS7_CreateEncodeSignerInfo: a new signer context in `*ctx`, which the caller destroys with
 * ZA_PKCS7_DestoryEncodeSignerInfo unless a message takes it over. 100: no memory.
 */
ZACERT_API uint32_t ZA_PKCS7_CreateEncodeSignerInfo(void **ctx);

/* ZA_PKCS7_CreateDecodeSignerInfo: the same; destroyed with ZA_PKCS7_DestoryDecodeSignerInfo. */
ZACERT_API uint32_t ZA_PKCS7_CreateDecodeSignerInfo(void **ctx);

/*
 * ZA_PKCS7_SetSignerInfoAttributeChar: sets one field (2-13, 15, 16) from a copy of `len` octets;
 * see ZA_Pkcs7Attribute. Issuer entries are appended; every other value replaces the one before. A
 * length of 0 clears the content (16). The version becomes 1, and a signature that was made or
 * decoded is made anew when the signer is encoded. 110: unknown identifier, or the signature (14);
 * 101: no octets, or more than 0x7FFFFFFF.
 */
ZACERT_API uint32_t ZA_PKCS7_SetSignerInfoAttributeChar(void *ctx, int32_t id, const uint8_t *value,
                                                        uint32_t len);

/*
 * ZA_PKCS7_GetSignerInfoAttributeChar: reads one field (2-14); what is not there has length 0. Of
 * issuer entries it gives the first of their kind; those of a decoded signer are read from its
 * Name. The signature is there after encoding. 110: any other identifier.
 */
ZACERT_API uint32_t ZA_PKCS7_GetSignerInfoAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                        uint32_t *outLen);

/*
 * ZA_PKCS7_SetSignerAttribute: appends an authenticated attribute: OID content octets and the whole
 * DER of one value, around which the library writes the SET. 101: a length of 0, or no octets.
 */
ZACERT_API uint32_t ZA_PKCS7_SetSignerAttribute(void *ctx, const uint8_t *oid, uint32_t oidLen,
                                                const uint8_t *value, uint32_t valueLen);

/* ZA_PKCS7_SetSignerUnAttribute: the same for an unauthenticated attribute, which is not signed. */
ZACERT_API uint32_t ZA_PKCS7_SetSignerUnAttribute(void *ctx, const uint8_t *oid, uint32_t oidLen,
                                                  const uint8_t *value, uint32_t valueLen);

/*
 * ZA_PKCS7_GetSignerAttribute: authenticated attribute number `index`, counted from 1: its OID and
 * all that stands in its SET of values, which is one DER value or several in a row. Buffers may be
 * NULL to learn the lengths. 101: no attribute of this number; nothing is written.
 */
ZACERT_API uint32_t ZA_PKCS7_GetSignerAttribute(void *ctx, uint8_t *oid, uint32_t *oidLen,
                                                uint8_t *value, uint32_t *valueLen, int32_t index);

/* ZA_PKCS7_GetSignerUnAttribute: the same for unauthenticated attributes. */
ZACERT_API uint32_t ZA_PKCS7_GetSignerUnAttribute(void *ctx, uint8_t *oid, uint32_t *oidLen,
                                                  uint8_t *value, uint32_t *valueLen,
                                                  int32_t index);

/*
 * ZA_PKCS7_GetSignerInfoAttributesNum: how many authenticated attributes were set or decoded. One
 * that only encoding adds does not count.
 */
ZACERT_API uint32_t ZA_PKCS7_GetSignerInfoAttributesNum(void *ctx, uint32_t *num);

/* ZA_PKCS7_GetSignerInfoUnAttributesNum: the same for unauthenticated attributes. */
ZACERT_API uint32_t ZA_PKCS7_GetSignerInfoUnAttributesNum(void *ctx, uint32_t *num);

/*
 * ZA_PKCS7_EncodeSignerInfo: signs content (16), attributes or both, and writes the SignerInfo. The
 * octets are kept: asking for the length and then for them signs once, and a decoded signer gives
 * what it was read from, until something is set. Without attributes the type (15) must be data.
 * 108: a field is missing, content of another type without attributes, or nothing to sign; 121: no
 * function that digests; 119: none that signs; 125, 107: a digest or a signature without octets, or
 * with more than there is room for; 100; the functions' own codes.
 */
ZACERT_API uint32_t ZA_PKCS7_EncodeSignerInfo(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS7_EncodeSignerInfoPutdata: the same for content that is an argument, of which no copy is
 * made. Every call digests it; it is signed again only where its length or its digest is another
 * one. A length of 0 stands for no content. 101: a length above 0x7FFFFFFF.
 */
ZACERT_API uint32_t ZA_PKCS7_EncodeSignerInfoPutdata(void *ctx, const uint8_t *content,
                                                     uint32_t contentLen, uint8_t *out,
                                                     uint32_t *outLen);

/*
 * ZA_PKCS7_DecodeSignerInfo: reads one SignerInfo, which is all of `der`; indefinite lengths are
 * taken too. The context keeps a copy and the functions installed before; what it held else is
 * replaced, or stays where decoding fails. Nothing is verified. 122: another element than expected,
 * such as a signer told by a key identifier; 121: an element is missing; 101: no octets; 123:
 * broken indefinite lengths; the readers' codes otherwise.
 */
ZACERT_API uint32_t ZA_PKCS7_DecodeSignerInfo(void *ctx, const uint8_t *der, uint32_t derLen);

/*
 * ZA_PKCS7_VerifySignerSignature: whether the signature of a decoded signer is good (one that is
 * being built lacks the messageDigest that encoding adds): `*result` is 200, or 300 for a bad one.
 * Set it to 300 before: a failure leaves it as it was, and with ZA_PublicKeyDecryptFunc_Ref a
 * changed signature or another key is no 300 but the code 126.
 *
 * With attributes it is they that are signed. Their messageDigest is then compared with the digest
 * of the content (16), which signers of a decoded message have: one that is missing, or of other
 * content, is 300. Where there is no content, 200 tells of the attributes alone: for a detached
 * signature with attributes set the content (16) before. Of content of another type than data
 * messageDigest may cover the whole element or, as others write it, the octets inside it, without
 * its identifier and length. The attribute contentType is compared with nothing: who reads content
 * by its type compares them. 100 in `*result` and the code 121: a function is missing that the
 * algorithm needs; 108: no context, no place for the result, or nothing that could be signed; 125;
 * the functions' own codes.
 */
ZACERT_API uint32_t ZA_PKCS7_VerifySignerSignature(void *ctx, uint32_t *result);

/*
 * ZA_PKCS7_VerifySignerSignature2: the same for content that is an argument and takes the place of
 * attributes and content in the context: for detached signatures without attributes. Those with
 * attributes always give 300 here. Without an argument (NULL, or a length of 0) it is
 * ZA_PKCS7_VerifySignerSignature. No context: 0, and 108 in `*result`. 101: a length above
 * 0x7FFFFFFF.
 */
ZACERT_API uint32_t ZA_PKCS7_VerifySignerSignature2(void *ctx, const uint8_t *content,
                                                    uint32_t contentLen, uint32_t *result);

/*
 * ZA_PKCS7_DestoryEncodeSignerInfo: releases a context and all it holds; NULL is accepted. A signer
 * that belongs to a message stays until the message goes. Returns 0.
 */
ZACERT_API uint32_t ZA_PKCS7_DestoryEncodeSignerInfo(void *ctx);

/* ZA_PKCS7_DestoryDecodeSignerInfo: the same. */
ZACERT_API uint32_t ZA_PKCS7_DestoryDecodeSignerInfo(void *ctx);

/* ---- Functions of the caller ----------------------------------------------------------------- */

/*
 * ZA_PKCS7_SetSignerInfoDigestFunc: the function that digests content and attributes. It and the
 * three below replace what was installed before, together with its parameters: a copy of `paramLen`
 * octets at `param`, wiped with the context, of which every call gets a copy of its own that it may
 * change; none (NULL) where there are no octets. What pointers inside them point to must stay until
 * the last call. Functions get room for at least 4096 octets. Without a context nothing happens and
 * the result is 0. 101: `paramLen` is above 0x7FFFFFFF; 100.
 */
ZACERT_API uint32_t ZA_PKCS7_SetSignerInfoDigestFunc(void *ctx, ZA_CryptFunc func,
                                                     const uint8_t *param, uint32_t paramLen);

/*
 * ZA_PKCS7_SetSignerInfoEncSignFunc: the function that signs. It has one place in common with the
 * one that opens signatures: the last that was set is called for both. A signature that was made or
 * decoded is made anew. 108: no context.
 */
ZACERT_API uint32_t ZA_PKCS7_SetSignerInfoEncSignFunc(void *ctx, ZA_CryptFunc func,
                                                      const uint8_t *param, uint32_t paramLen);

/*
 * ZA_PKCS7_SetSignerInfoDecSignFunc: the function that opens signatures: what it gives must be the
 * DigestInfo, octet for octet. A context without a signature of its own that is encoded afterwards
 * would sign with it. Without a context nothing happens and the result is 0.
 */
ZACERT_API uint32_t ZA_PKCS7_SetSignerInfoDecSignFunc(void *ctx, ZA_CryptFunc func,
                                                      const uint8_t *param, uint32_t paramLen);

/*
 * ZA_PKCS7_SetSignerInfoDecEcVerifyFunc: the function that checks SM2 signatures. Without a context
 * nothing happens and the result is 0.
 */
ZACERT_API uint32_t ZA_PKCS7_SetSignerInfoDecEcVerifyFunc(void *ctx, ZA_PKCS7_EcVerifyFunc func,
                                                          const uint8_t *param, uint32_t paramLen);

#ifdef __cplusplus
}
#endif

#endif
