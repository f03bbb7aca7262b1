/*
 * pkcs12_bags.h - what stands in PKCS#12 files (RFC 7292, 4.2): bags of keys, certificates, lists
 * and secrets, and SafeContents. See pkcs12.h for what all contexts have in common.
 *
 * Each kind has a context for encoding (create, set, encode, release) and one for decoding (create,
 * decode, get, release). Encoders write what is set at the moment, at every call.
 *
 * Example: a certificate with a name.
 *
 *     void *bag = NULL;
 *     uint8_t der[4096];
 *     uint32_t len = 0;
 *     if (ZA_PKCS12_CreateEncodeSafeBag(&bag) == 0 &&
 *         ZA_PKCS12_SetSafeBagOID(bag, kCertBag, sizeof kCertBag) == 0 &&
 *         ZA_PKCS12_SetSafeBagContent(bag, certBag, certBagLen) == 0 &&
 *         ZA_PKCS12_SetSafeBagAttribute(bag, kName, sizeof kName, set, setLen) == 0 &&
 *         ZA_PKCS12_EncodeSafeBag(bag, NULL, &len) == 0 && len <= sizeof der &&
 *         ZA_PKCS12_EncodeSafeBag(bag, der, &len) == 0) {
 *         use(der, len);
 *     }
 *     ZA_PKCS12_DestoryEncodeSafeBag(bag);
 */
#ifndef ZACERT_PKCS12_BAGS_H
#define ZACERT_PKCS12_BAGS_H

#include <zacert/base.h>
#include <zacert/callbacks.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- KeyBag ---------------------------------------------------------------------------------- */

/* PrivateKeyInfo (RFC 5208): a private key that is not encrypted. */

/* ZA_PKCS12_CreateEncodeKeyBag: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodeKeyBag(void **ctx);

/* ZA_PKCS12_SetKeyBagVersion: the version, 0 unless set. */
ZACERT_API uint32_t ZA_PKCS12_SetKeyBagVersion(void *ctx, uint32_t version);

/*
 * ZA_PKCS12_SetKeyBagAlgorithm: content octets of the identifier; it is written with NULL for
 * parameters.
 */
ZACERT_API uint32_t ZA_PKCS12_SetKeyBagAlgorithm(void *ctx, const uint8_t *oid, uint32_t oidLen);

/*
 * ZA_PKCS12_SetKeyBagKey: the key as its algorithm has it: RSAPrivateKey (RFC 8017) or ECPrivateKey
 * (RFC 5915).
 */
ZACERT_API uint32_t ZA_PKCS12_SetKeyBagKey(void *ctx, const uint8_t *key, uint32_t keyLen);

/*
 * ZA_PKCS12_SetKeyBagAttribute: appends an attribute: content octets of its type, and the DER of
 * its SET of values (31 ..), which is written as it is: without the SET no other program opens the
 * file.
 */
ZACERT_API uint32_t ZA_PKCS12_SetKeyBagAttribute(void *ctx, const uint8_t *type, uint32_t typeLen,
                                                 const uint8_t *value, uint32_t valueLen);

/* ZA_PKCS12_EncodeKeyBag: writes the DER. 121: no algorithm or no key. */
ZACERT_API uint32_t ZA_PKCS12_EncodeKeyBag(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS12_DestroyEncodeKeyBag: releases a context; what it holds is wiped. Returns 0; 121: NULL.
 */
ZACERT_API uint32_t ZA_PKCS12_DestroyEncodeKeyBag(void *ctx);

/* ZA_PKCS12_CreateDecodeKeyBag: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodeKeyBag(void **ctx);

/*
 * ZA_PKCS12_DecodeKeyBag: reads one; what the context held is replaced. 121: no octets, or a field
 * is missing; 122: a field of another kind; the codes of the DER readers. Whatever stands behind
 * the identifier of the algorithm is let pass.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeKeyBag(void *ctx, const uint8_t *der, uint32_t derLen);

/* ZA_PKCS12_GetKeyBagVersion: the version. */
ZACERT_API uint32_t ZA_PKCS12_GetKeyBagVersion(void *ctx, uint32_t *version);

/* ZA_PKCS12_GetKeyBagAlgorithm: content octets of the identifier. */
ZACERT_API uint32_t ZA_PKCS12_GetKeyBagAlgorithm(void *ctx, uint8_t *oid, uint32_t *oidLen);

/* ZA_PKCS12_GetKeyBagKey: the key. */
ZACERT_API uint32_t ZA_PKCS12_GetKeyBagKey(void *ctx, uint8_t *key, uint32_t *keyLen);

/* ZA_PKCS12_GetKeyBagAttributeNum: how many attributes there are. */
ZACERT_API uint32_t ZA_PKCS12_GetKeyBagAttributeNum(void *ctx, uint32_t *num);

/*
 * ZA_PKCS12_GetKeyBagAttribute: reads the attribute with this number, from 1: type and SET of
 * values. 121: there is none.
 */
ZACERT_API uint32_t ZA_PKCS12_GetKeyBagAttribute(void *ctx, uint8_t *type, uint32_t *typeLen,
                                                 uint8_t *value, uint32_t *valueLen,
                                                 uint32_t number);

/* ZA_PKCS12_DestroyDecodeKeyBag: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestroyDecodeKeyBag(void *ctx);

/* ---- EncKeyBag ------------------------------------------------------------------------------- */

/*
 * EncryptedPrivateKeyInfo (RFC 5208), the content of a pkcs8ShroudedKeyBag. Nothing is encrypted or
 * decrypted here; see ZA_PKCS12_GenEncKeyBag.
 */

/* ZA_PKCS12_CreateEncodeEncKeyBag: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodeEncKeyBag(void **ctx);

/* ZA_PKCS12_SetEncKeyBagAlgo: content octets of the identifier. */
ZACERT_API uint32_t ZA_PKCS12_SetEncKeyBagAlgo(void *ctx, const uint8_t *oid, uint32_t oidLen);

/*
 * ZA_PKCS12_SetEncKeyBagParameter: DER of its parameters (ZA_PKCS12_EncodeParameter); without any,
 * NULL is written.
 */
ZACERT_API uint32_t ZA_PKCS12_SetEncKeyBagParameter(void *ctx, const uint8_t *paramDer,
                                                    uint32_t paramLen);

/* ZA_PKCS12_SetEncKeyBagEncKey: the encrypted DER of a KeyBag. */
ZACERT_API uint32_t ZA_PKCS12_SetEncKeyBagEncKey(void *ctx, const uint8_t *encKey,
                                                 uint32_t encKeyLen);

/* ZA_PKCS12_EncodeEncKeyBag: writes the DER. 121: no algorithm or no encrypted key. */
ZACERT_API uint32_t ZA_PKCS12_EncodeEncKeyBag(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS12_DestoryEncodeEncKeyBag: releases a context; what it holds is wiped. Returns 0; 121:
 * NULL.
 */
ZACERT_API uint32_t ZA_PKCS12_DestoryEncodeEncKeyBag(void *ctx);

/* ZA_PKCS12_CreateDecodeEncKeyBag: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodeEncKeyBag(void **ctx);

/*
 * ZA_PKCS12_DecodeEncKeyBag: reads one; what the context held is replaced. 121: no octets, or a
 * field is missing; 122: a field of another kind; the codes of the DER readers.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeEncKeyBag(void *ctx, const uint8_t *der, uint32_t derLen);

/* ZA_PKCS12_GetEncKeyBagAlgo: content octets of the identifier. */
ZACERT_API uint32_t ZA_PKCS12_GetEncKeyBagAlgo(void *ctx, uint8_t *oid, uint32_t *oidLen);

/* ZA_PKCS12_GetEncKeyBagParameter: DER of the parameters; length 0: there are none. */
ZACERT_API uint32_t ZA_PKCS12_GetEncKeyBagParameter(void *ctx, uint8_t *paramDer,
                                                    uint32_t *paramLen);

/* ZA_PKCS12_GetEncKeyBagEncKey: what is encrypted. */
ZACERT_API uint32_t ZA_PKCS12_GetEncKeyBagEncKey(void *ctx, uint8_t *encKey, uint32_t *encKeyLen);

/* ZA_PKCS12_DestoryDecodeEncKeyBag: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestoryDecodeEncKeyBag(void *ctx);

/* ---- CertBag --------------------------------------------------------------------------------- */

/* ZA_PKCS12_CreateEncodeCertBag: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodeCertBag(void **ctx);

/*
 * ZA_PKCS12_SetCertBagID: content octets of the type (x509Certificate 1.2.840.113549.1.9.22.1), and
 * the certificate.
 */
ZACERT_API uint32_t ZA_PKCS12_SetCertBagID(void *ctx, const uint8_t *oid, uint32_t oidLen,
                                           const uint8_t *cert, uint32_t certLen);

/* ZA_PKCS12_EncodeCertBag: writes the DER. 121: no type or no certificate. */
ZACERT_API uint32_t ZA_PKCS12_EncodeCertBag(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS12_DestoryEncodeCertBag: releases a context; what it holds is wiped. Returns 0; 121: NULL.
 */
ZACERT_API uint32_t ZA_PKCS12_DestoryEncodeCertBag(void *ctx);

/* ZA_PKCS12_CreateDecodeCertBag: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodeCertBag(void **ctx);

/*
 * ZA_PKCS12_DecodeCertBag: reads one; what the context held is replaced. 121: no octets, or a field
 * is missing; 122: a field of another kind; the codes of the DER readers.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeCertBag(void *ctx, const uint8_t *der, uint32_t derLen);

/* ZA_PKCS12_GetCertBagID: both of them. */
ZACERT_API uint32_t ZA_PKCS12_GetCertBagID(void *ctx, uint8_t *oid, uint32_t *oidLen, uint8_t *cert,
                                           uint32_t *certLen);

/* ZA_PKCS12_DestoryDecodeCertBag: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestoryDecodeCertBag(void *ctx);

/* ---- CrlBag ---------------------------------------------------------------------------------- */

/* ZA_PKCS12_CreateEncodeCrlBag: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodeCrlBag(void **ctx);

/* ZA_PKCS12_SetCrlBagID: content octets of the type (x509CRL 1.2.840.113549.1.9.23.1). */
ZACERT_API uint32_t ZA_PKCS12_SetCrlBagID(void *ctx, const uint8_t *oid, uint32_t oidLen);

/* ZA_PKCS12_SetCrlBagCrl: the revocation list. */
ZACERT_API uint32_t ZA_PKCS12_SetCrlBagCrl(void *ctx, const uint8_t *crl, uint32_t crlLen);

/* ZA_PKCS12_EncodeCrlBag: writes the DER. 121: no type or no list. */
ZACERT_API uint32_t ZA_PKCS12_EncodeCrlBag(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS12_DestoryEncodeCrlBag: releases a context; what it holds is wiped. Returns 0; 121: NULL.
 */
ZACERT_API uint32_t ZA_PKCS12_DestoryEncodeCrlBag(void *ctx);

/* ZA_PKCS12_CreateDecodeCrlBag: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodeCrlBag(void **ctx);

/*
 * ZA_PKCS12_DecodeCrlBag: reads one; what the context held is replaced. 121: no octets, or a field
 * is missing; 122: a field of another kind; the codes of the DER readers.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeCrlBag(void *ctx, const uint8_t *der, uint32_t derLen);

/* ZA_PKCS12_GetCrlBagID: content octets of the type. */
ZACERT_API uint32_t ZA_PKCS12_GetCrlBagID(void *ctx, uint8_t *oid, uint32_t *oidLen);

/* ZA_PKCS12_GetCrlBagCrl: the revocation list. */
ZACERT_API uint32_t ZA_PKCS12_GetCrlBagCrl(void *ctx, uint8_t *crl, uint32_t *crlLen);

/* ZA_PKCS12_DestoryDecodeCrlBag: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestoryDecodeCrlBag(void *ctx);

/* ---- SecretContentsBag ----------------------------------------------------------------------- */

/* ZA_PKCS12_CreateEncodeSecretContentsBag: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodeSecretContentsBag(void **ctx);

/* ZA_PKCS12_SetSecretContentsBagID: content octets of a type of the caller's. */
ZACERT_API uint32_t ZA_PKCS12_SetSecretContentsBagID(void *ctx, const uint8_t *oid,
                                                     uint32_t oidLen);

/* ZA_PKCS12_SetSecretContentsBagContents: octets, written as an OCTET STRING. */
ZACERT_API uint32_t ZA_PKCS12_SetSecretContentsBagContents(void *ctx, const uint8_t *contents,
                                                           uint32_t contentsLen);

/* ZA_PKCS12_EncodeSecretContentsBag: writes the DER. 121: no type or no contents. */
ZACERT_API uint32_t ZA_PKCS12_EncodeSecretContentsBag(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS12_DestoryEncodeSecretContentsBag: releases a context; what it holds is wiped. Returns 0;
 * 121: NULL.
 */
ZACERT_API uint32_t ZA_PKCS12_DestoryEncodeSecretContentsBag(void *ctx);

/* ZA_PKCS12_CreateDecodeSecretContentsBag: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodeSecretContentsBag(void **ctx);

/*
 * ZA_PKCS12_DecodeSecretContentsBag: reads one; what the context held is replaced. 121: no octets,
 * or a field is missing; 122: a field of another kind; the codes of the DER readers.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeSecretContentsBag(void *ctx, const uint8_t *der,
                                                      uint32_t derLen);

/* ZA_PKCS12_GetSecretContentsBagID: content octets of the type. */
ZACERT_API uint32_t ZA_PKCS12_GetSecretContentsBagID(void *ctx, uint8_t *oid, uint32_t *oidLen);

/* ZA_PKCS12_GetSecretContentsBagContents: the octets. */
ZACERT_API uint32_t ZA_PKCS12_GetSecretContentsBagContents(void *ctx, uint8_t *contents,
                                                           uint32_t *contentsLen);

/* ZA_PKCS12_DestoryDecodeSecretContentsBag: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestoryDecodeSecretContentsBag(void *ctx);

/* ---- SafeBag --------------------------------------------------------------------------------- */

/* Any bag, with its type and its attributes. */

/* ZA_PKCS12_CreateEncodeSafeBag: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodeSafeBag(void **ctx);

/*
 * ZA_PKCS12_SetSafeBagOID: content octets of the bag's type: 1.2.840.113549.1.12.10.1.1 KeyBag, .2
 * EncKeyBag, .3 CertBag, .4 CrlBag, .5 SecretContentsBag, .6 SafeContents.
 */
ZACERT_API uint32_t ZA_PKCS12_SetSafeBagOID(void *ctx, const uint8_t *oid, uint32_t oidLen);

/* ZA_PKCS12_SetSafeBagContent: DER of the bag. */
ZACERT_API uint32_t ZA_PKCS12_SetSafeBagContent(void *ctx, const uint8_t *bagDer, uint32_t bagLen);

/*
 * ZA_PKCS12_SetSafeBagAttribute: appends an attribute: content octets of its type, and the DER of
 * its SET of values (31 ..), which is written as it is: without the SET no other program opens the
 * file.
 */
ZACERT_API uint32_t ZA_PKCS12_SetSafeBagAttribute(void *ctx, const uint8_t *type, uint32_t typeLen,
                                                  const uint8_t *value, uint32_t valueLen);

/* ZA_PKCS12_EncodeSafeBag: writes the DER. 121: no type or no content. */
ZACERT_API uint32_t ZA_PKCS12_EncodeSafeBag(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS12_DestoryEncodeSafeBag: releases a context; what it holds is wiped. Returns 0; 121: NULL.
 */
ZACERT_API uint32_t ZA_PKCS12_DestoryEncodeSafeBag(void *ctx);

/* ZA_PKCS12_CreateDecodeSafeBag: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodeSafeBag(void **ctx);

/*
 * ZA_PKCS12_DecodeSafeBag: reads one; what the context held is replaced. 121: no octets, or a field
 * is missing; 122: a field of another kind; the codes of the DER readers.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeSafeBag(void *ctx, const uint8_t *der, uint32_t derLen);

/* ZA_PKCS12_GetSafeBagOID: content octets of the type. */
ZACERT_API uint32_t ZA_PKCS12_GetSafeBagOID(void *ctx, uint8_t *oid, uint32_t *oidLen);

/* ZA_PKCS12_GetSafeBagContent: DER of the bag. */
ZACERT_API uint32_t ZA_PKCS12_GetSafeBagContent(void *ctx, uint8_t *bagDer, uint32_t *bagLen);

/* ZA_PKCS12_GetSafeBagAttributeNum: how many attributes there are. */
ZACERT_API uint32_t ZA_PKCS12_GetSafeBagAttributeNum(void *ctx, uint32_t *num);

/*
 * ZA_PKCS12_GetSafeBagAttribute: reads the attribute with this number, from 1: type and SET of
 * values. 121: there is none.
 */
ZACERT_API uint32_t ZA_PKCS12_GetSafeBagAttribute(void *ctx, uint8_t *type, uint32_t *typeLen,
                                                  uint8_t *value, uint32_t *valueLen,
                                                  uint32_t number);

/* ZA_PKCS12_DestoryDecodeSafeBag: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestoryDecodeSafeBag(void *ctx);

/* ---- SafeContents ---------------------------------------------------------------------------- */

/* The SafeBags of one container, in the order in which they were added. */

/* ZA_PKCS12_CreateEncodeSafeContents: a new context in `*ctx`. 100: no memory. */
ZACERT_API uint32_t ZA_PKCS12_CreateEncodeSafeContents(void **ctx);

/* ZA_PKCS12_SetSafeContents_SafeBag: appends the DER of a SafeBag. */
ZACERT_API uint32_t ZA_PKCS12_SetSafeContents_SafeBag(void *ctx, const uint8_t *bagDer,
                                                      uint32_t bagLen);

/* ZA_PKCS12_EncodeSafeContents: writes the DER; one without bags is no failure. */
ZACERT_API uint32_t ZA_PKCS12_EncodeSafeContents(void *ctx, uint8_t *out, uint32_t *outLen);

/*
 * ZA_PKCS12_DestoryEncodeSafeContents: releases a context; what it holds is wiped. Returns 0; 121:
 * NULL.
 */
ZACERT_API uint32_t ZA_PKCS12_DestoryEncodeSafeContents(void *ctx);

/* ZA_PKCS12_CreateDecodeSafeContents: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_CreateDecodeSafeContents(void **ctx);

/*
 * ZA_PKCS12_DecodeSafeContents: reads one; what the context held is replaced. 121: no octets; the
 * codes of the DER readers.
 */
ZACERT_API uint32_t ZA_PKCS12_DecodeSafeContents(void *ctx, const uint8_t *der, uint32_t derLen);

/* ZA_PKCS12_GetSafeContents_SafeBagNum: how many there are. */
ZACERT_API uint32_t ZA_PKCS12_GetSafeContents_SafeBagNum(void *ctx, uint32_t *num);

/*
 * ZA_PKCS12_GetSafeContents_SafeBag: the SafeBag with this number, from 1; length 0: there is none.
 */
ZACERT_API uint32_t ZA_PKCS12_GetSafeContents_SafeBag(void *ctx, uint8_t *bagDer, uint32_t *bagLen,
                                                      uint32_t number);

/* ZA_PKCS12_DestoryDecodeSafeContents: as for encoding. */
ZACERT_API uint32_t ZA_PKCS12_DestoryDecodeSafeContents(void *ctx);

/* ---- Bags in one call ------------------------------------------------------------------------ */

/*
 * `reserved` is not looked at. Those that read take NULL for octets that are not wanted; the
 * lengths are needed.
 */

/*
 * ZA_PKCS12_GenKeyBag: writes a KeyBag of version 0 without attributes. 121: as
 * ZA_PKCS12_EncodeKeyBag.
 */
ZACERT_API uint32_t ZA_PKCS12_GenKeyBag(const uint8_t *key, uint32_t keyLen, const uint8_t *algoOid,
                                        uint32_t algoOidLen, uint32_t reserved, uint8_t *out,
                                        uint32_t *outLen);

/*
 * ZA_PKCS12_GenEncKeyBag: encrypts the DER of a KeyBag with a function of the caller's and writes
 * the EncKeyBag. The function gets a copy of the `encParamLen` octets at `encParam` at every call,
 * one per call of this. 121: a missing argument; 126: it claims more octets than it had room for;
 * its own code.
 */
ZACERT_API uint32_t ZA_PKCS12_GenEncKeyBag(const uint8_t *keyBag, uint32_t keyBagLen,
                                           const uint8_t *algoOid, uint32_t algoOidLen,
                                           const uint8_t *paramDer, uint32_t paramLen,
                                           ZA_CryptFunc encFunc, const uint8_t *encParam,
                                           uint32_t encParamLen, uint8_t *out, uint32_t *outLen);

/* ZA_PKCS12_GenCertBag: writes a CertBag. */
ZACERT_API uint32_t ZA_PKCS12_GenCertBag(const uint8_t *cert, uint32_t certLen,
                                         const uint8_t *typeOid, uint32_t typeOidLen,
                                         uint32_t reserved, uint8_t *out, uint32_t *outLen);

/* ZA_PKCS12_GenCrlBag: writes a CrlBag. */
ZACERT_API uint32_t ZA_PKCS12_GenCrlBag(const uint8_t *crl, uint32_t crlLen, const uint8_t *typeOid,
                                        uint32_t typeOidLen, uint32_t reserved, uint8_t *out,
                                        uint32_t *outLen);

/* ZA_PKCS12_GenSecretContentsBag: writes a SecretContentsBag. */
ZACERT_API uint32_t ZA_PKCS12_GenSecretContentsBag(const uint8_t *contents, uint32_t contentsLen,
                                                   const uint8_t *typeOid, uint32_t typeOidLen,
                                                   uint32_t reserved, uint8_t *out,
                                                   uint32_t *outLen);

/* ZA_PKCS12_ParseKeyBag: reads a KeyBag. */
ZACERT_API uint32_t ZA_PKCS12_ParseKeyBag(const uint8_t *der, uint32_t derLen, uint8_t *key,
                                          uint32_t *keyLen, uint8_t *algoOid, uint32_t *algoOidLen);

/* ZA_PKCS12_ParseEncKeyBag: reads an EncKeyBag; nothing is decrypted. */
ZACERT_API uint32_t ZA_PKCS12_ParseEncKeyBag(const uint8_t *der, uint32_t derLen, uint8_t *encKey,
                                             uint32_t *encKeyLen, uint8_t *algoOid,
                                             uint32_t *algoOidLen, uint8_t *paramDer,
                                             uint32_t *paramLen);

/* ZA_PKCS12_ParseCertBag: reads a CertBag. */
ZACERT_API uint32_t ZA_PKCS12_ParseCertBag(const uint8_t *der, uint32_t derLen, uint8_t *cert,
                                           uint32_t *certLen, uint8_t *typeOid,
                                           uint32_t *typeOidLen);

/* ZA_PKCS12_ParseCrlBag: reads a CrlBag. */
ZACERT_API uint32_t ZA_PKCS12_ParseCrlBag(const uint8_t *der, uint32_t derLen, uint8_t *crl,
                                          uint32_t *crlLen, uint8_t *typeOid, uint32_t *typeOidLen);

/* ZA_PKCS12_ParseSecretContentsBag: reads a SecretContentsBag. */
ZACERT_API uint32_t ZA_PKCS12_ParseSecretContentsBag(const uint8_t *der, uint32_t derLen,
                                                     uint8_t *contents, uint32_t *contentsLen,
                                                     uint8_t *typeOid, uint32_t *typeOidLen);

#ifdef __cplusplus
}
#endif

#endif
