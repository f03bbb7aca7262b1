/*
 * pkcs7.h - what all PKCS#7 messages share (RFC 2315), and the content type data.
 *
 * The parts of messages: pkcs7_signer.h (SignerInfo), pkcs7_recipient.h (RecipientInfo and
 * EncryptedContentInfo). The other content types: pkcs7_signed.h, pkcs7_enveloped.h,
 * pkcs7_signed_enveloped.h, pkcs7_digested.h, pkcs7_encrypted.h. The identifiers of their fields:
 * pkcs7_attributes.h. For all of them holds:
 *
 * Contexts. A context encodes and decodes, whatever the function is called that created it, and any
 * destroying function of its kind releases it; destroying NULL returns 0. Setters copy what they
 * are given. Object identifiers are their DER content octets. A length of 0, one above 0x7FFFFFFF
 * (a negative number of the caller's) and NULL octets stand for no octets.
 *
 * Parts. A message takes over the parts that are attached to it: they are destroyed with it, and
 * destroying one alone does nothing and returns 0. 121: the part belongs to a message already. A
 * handle that a message gives back is borrowed: it is good until the message is destroyed, decodes
 * again, or replaces the part.
 *
 * Encoding. With a NULL buffer the length alone is stored, else as many octets are written as that
 * tells: the buffer's size is not known here. What a caller's function made is kept with its part
 * until something in that is set, so that both calls agree and sign, digest or encrypt once. What
 * was decoded is encoded again as it came until it is changed. A failure changes nothing.
 *
 * Decoding. The input is one whole message: DER, or of indefinite lengths, which are rewritten on
 * the way in. A success replaces what the context held and keeps the functions installed in it;
 * parts come anew. 102 and 123: octets behind the message, or lengths that do not add up; 122: a
 * message or field of another type; 121: a missing field. Algorithm parameters may be missing or
 * anything.
 *
 * Functions of the caller's (ZA_CryptFunc, callbacks.h). Each gets as `context` a fresh copy of the
 * octets it was installed with, which is wiped after the call, or NULL where there were none.
 * Installing replaces function and octets; a NULL function removes them. `out` is never NULL and
 * has room for 4096 octets or more, as `*outLen` tells; one that claims more fails with 107
 * (signing), 125 (digests) or 126. Its own code is returned unchanged.
 *
 * Missing arguments: 108 from the functions of SignerInfo, RecipientInfo and EncryptedContentInfo
 * and those of this header without a context; 101 from SignedData, EnvelopedData and
 * SignedAndEnvelopedData; 121 from Data, DigestedData and EncryptedData.
 *
 * Example: the content of a message of type data.
 *
 *     void *data = NULL;
 *     uint32_t len = 0;
 *     if (ZA_PKCS7_CreateDataEncodeCtx(&data) == 0 &&
 *         ZA_PKCS7_DecodePKCS7Data(data, message, messageLen) == 0 &&
 *         ZA_PKCS7_GetDataContent(data, NULL, &len) == 0) {
 *         uint8_t *content = malloc(len);
 *         if (content != NULL) {
 *             ZA_PKCS7_GetDataContent(data, content, &len);
 *             use(content, len);
 *             free(content);
 *         }
 *     }
 *     ZA_PKCS7_DestoryDataDecodeCtx(data);
 */
#ifndef ZACERT_PKCS7_H
#define ZACERT_PKCS7_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/pkcs7_attributes.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * ZA_PKCS7_Attribute: one attribute of a linked list. `attrType` holds OID content octets (dataType
 * 6), `attrValue` the DER of its value, or of several in a row (dataType 52). `attrCount` is the
 * number of attributes in the first of them, and of no meaning in the others.
 */
typedef struct ZA_PKCS7_Attribute {
    struct ZA_PKCS7_Attribute *next;
    Anybuf attrType;
    Anybuf attrValue;
    uint32_t attrCount;
} ZA_PKCS7_Attribute;

/* ---- ContentInfo, DigestInfo, attributes ----------------------------------------------------- */

/*
 * ZI_MakeContentToSequence: ContentInfo SEQUENCE { contentType, [tag] EXPLICIT content } (RFC 2315,
 * 7), where `tag` is the number of the context tag: 0 in every message. The octets of `content` are
 * one element of DER and are written as they are, whatever its `dataType`; NULL, or a record
 * without octets, leaves the field out. `*out` is the caller's. 101: no octets of the type.
 */
ZACERT_API uint32_t ZI_MakeContentToSequence(Anybuf *content, const uint8_t *oid, uint32_t oidLen,
                                             Anybuf **out, uint32_t tag);

/*
 * ZI_MakeSequenceToContent: takes a ContentInfo of definite lengths apart. `*oid` gets the type's
 * content octets (`dataType` 6), `*content` the whole element inside [0], or NULL where there is no
 * [0]; both are the caller's. 121: no type, or not one element inside [0]; 122: another field.
 */
ZACERT_API uint32_t ZI_MakeSequenceToContent(Anybuf *contentInfo, Anybuf **oid, Anybuf **content);

/*
 * ZI_MakeDigestInfo: the DigestInfo that is signed for a digest: an algorithm, as OID content
 * octets in `alg->parameters`, with NULL for its parameters, and the digest. For the signature
 * algorithms of SM2 (1.2.156.10197.1.501 to 503) it is the digest as it is. A NULL `out` asks for
 * the length. 101: no digest, or an algorithm without octets.
 */
ZACERT_API uint32_t ZI_MakeDigestInfo(const ZA_AlgorithmIdentifier *alg, const uint8_t *digest,
                                      uint32_t digestLen, uint8_t *out, uint32_t *outLen);

/*
 * ZI_PKCS7_EncodeAttributes: the attributes as one SET (dataType 17) in the order of the list. The
 * library writes the SET around each value. `attrCount` and the records' types are not looked at.
 */
ZACERT_API uint32_t ZI_PKCS7_EncodeAttributes(ZA_PKCS7_Attribute *list, Anybuf **out);

/*
 * ZI_PKCS7_DecodeAttributes: a list from one such SET, NULL from an empty one. It is the caller's:
 * free `attrType.data`, `attrValue.data` and the record of each attribute with ZAPR_Free. 106: no
 * SET; 122, 121: an attribute is no SEQUENCE of an OID and a SET; the readers' codes.
 */
ZACERT_API uint32_t ZI_PKCS7_DecodeAttributes(Anybuf *set, ZA_PKCS7_Attribute **list);

/*
 * ZA_PKCS7_EncodePKCS7DerTypeData: the ContentInfo of a content that is DER already, with tag 0. A
 * `contentLen` of 0 leaves the content out. 101: no octets of the type, or a negative length.
 */
ZACERT_API uint32_t ZA_PKCS7_EncodePKCS7DerTypeData(const uint8_t *content, uint32_t contentLen,
                                                    const uint8_t *oid, uint32_t oidLen,
                                                    uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS7_DecodePKCS7DerTypeData: type and content of any message, to tell which function decodes
 * it: the type's content octets, and the whole element inside [0], with a length of 0 where there
 * is none. Either buffer may be NULL, neither length. Codes as for every message, but any type is
 * taken.
 */
ZACERT_API uint32_t ZA_PKCS7_DecodePKCS7DerTypeData(const uint8_t *der, uint32_t derLen,
                                                    uint8_t *oid, uint32_t *oidLen,
                                                    uint8_t *content, uint32_t *contentLen);

/* ---- Data ------------------------------------------------------------------------------------ */

/*
 * ZA_PKCS7_CreateDataEncodeCtx: a new context for the content type data (RFC 2315, 8), to encode
 * and to decode. 100: no memory.
 */
ZACERT_API uint32_t ZA_PKCS7_CreateDataEncodeCtx(void **ctx);

/* ZA_PKCS7_SetDataContent: sets the content from a copy. 121: no octets. */
ZACERT_API uint32_t ZA_PKCS7_SetDataContent(void *ctx, const uint8_t *content, uint32_t len);

/*
 * ZA_PKCS7_EncodePKCS7Data: ContentInfo { data, [0] OCTET STRING }. 108: no content was set or
 * decoded.
 */
ZACERT_API uint32_t ZA_PKCS7_EncodePKCS7Data(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS7_DecodePKCS7Data: keeps the content of a message of type data. An OCTET STRING in pieces
 * is joined. 122: another content type, or a content that is no OCTET STRING; 121: no content.
 */
ZACERT_API uint32_t ZA_PKCS7_DecodePKCS7Data(void *ctx, const uint8_t *der, uint32_t derLen);

/* ZA_PKCS7_GetDataContent: the content; of length 0 where there is none. */
ZACERT_API uint32_t ZA_PKCS7_GetDataContent(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS7_DestoryDataEncodeCtx: releases a context and all it holds; NULL is accepted. Returns 0.
 */
ZACERT_API uint32_t ZA_PKCS7_DestoryDataEncodeCtx(void *ctx);

/* ZA_PKCS7_DestoryDataDecodeCtx: the same. */
ZACERT_API uint32_t ZA_PKCS7_DestoryDataDecodeCtx(void *ctx);

#ifdef __cplusplus
}
#endif

#endif
