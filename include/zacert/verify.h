/*
 * verify.h - is this certificate, CRL or request signed by that key?
 *
 * Every function decodes what it is given, checks one signature and keeps nothing. The RSA family
 * computes inside the library; the ECC family hands what is signed to a function of the caller's.
 * All return 0 when the signature is good.
 *
 * What no function here checks: that the issuer is a CA (basic constraints) and may sign (key
 * usage), that its own certificate is valid now, key identifiers, revocation, unknown critical
 * extensions, and that the signature algorithm inside the signed part equals the one outside. What
 * each one leaves out beyond that stands in its comment. A good signature is therefore one step of
 * path validation (RFC 5280, 6.1), not the whole.
 *
 * RSA signatures are PKCS#1 v1.5 (RFC 8017, 8.2) with MD2, MD5, SHA-1, SHA-256, SHA-384 or SHA-512
 * by keys of up to 2048 bits. As with ZA_PKCS7_VerifySignature the opened block must begin with the
 * expected DigestInfo; its length is not compared.
 *
 * Codes of all functions: 109: an argument is NULL, or a length is 0 or less; 128: the signature
 * does not verify; 100. RSA alone: 118: the signature algorithm is none of the above. Beyond these,
 * the codes of the decoders of certificates, CRLs, requests and keys. A header that announces more
 * octets than were passed gives 102, unlike in ZACert_DecodeCert.
 *
 * Example: a certificate against its issuer's.
 *
 *     if (ZA_VerifyCert(ca, caLen, user, userLen) == 0) {
 *         trust_further(user, userLen);
 *     }
 */
#ifndef ZACERT_VERIFY_H
#define ZACERT_VERIFY_H

#include <zacert/base.h>
#include <zacert/callbacks.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- RSA ------------------------------------------------------------------------------------- */

/*
 * ZA_VerifyCert: checks that the user certificate names the CA's subject as its issuer (116), that
 * its notBefore is not before the CA's and not in the future (117), and the CA's signature. Names
 * are compared as the texts of attributes 8 and 32, octet by octet: letter case counts, the order
 * of attributes of different types does not. Expiry is not checked: neither certificate's notAfter
 * is looked at. A time in GeneralizedTime counts as 0, which is before every other.
 */
ZACERT_API uint32_t ZA_VerifyCert(const uint8_t *derCaCert, uint32_t derCaCertLen,
                                  const uint8_t *derUserCert, uint32_t derUserCertLen);

/*
 * VerifyUserCertByCACert: checks a certificate's signature by an issuer's key, an RSAPublicKey (RFC
 * 8017, A.1.1; attribute 54 of the issuer's certificate). Neither names nor times are checked.
 */
ZACERT_API uint32_t VerifyUserCertByCACert(const uint8_t *derCert, int32_t derCertLen,
                                           const uint8_t *derPub, int32_t derPubLen);

/*
 * ZA_VerifyCrl: checks that the CRL names the CA's subject as its issuer (116) and the CA's
 * signature. Neither thisUpdate nor nextUpdate is looked at.
 */
ZACERT_API uint32_t ZA_VerifyCrl(const uint8_t *derCaCert, uint32_t derCaCertLen,
                                 const uint8_t *derCrl, uint32_t derCrlLen);

/*
 * ZA_VerifyCsr_Sign: checks that a request is signed by the key in it. The request is DER when its
 * first octet is 0x30 and PEM otherwise. 101: the PEM is broken, or stands for fewer than 128
 * octets.
 */
ZACERT_API uint32_t ZA_VerifyCsr_Sign(const uint8_t *csr, int32_t csrLen);

/* ---- Elliptic curves -------------------------------------------------------------------------
 *
 * `verifyFunc` is called once, when everything else is in order; see ZA_EccVerifyFunc for its
 * arguments, which are valid during the call alone. It gets the signed octets themselves, not their
 * digest, and is not told the signature algorithm: it chooses the digest. Any result but 0 with
 * `*result` 1 gives 128, and so does a signature that is not SEQUENCE { r, s } of up to 256 bits.
 *
 * Keys are those of attributes 54 and 2027: on curves of 256 bits, with an uncompressed point. Any
 * other key cannot be decoded: the functions for certificates then write a line to standard output
 * and return 1, those for CRLs and requests return the code of ZACERT_DecodeEccPubKey.
 */

/*
 * ZA_ECC_VerifyCert: as ZA_VerifyCert, and checks the validity in full: the user's notAfter is not
 * after the CA's and not in the past (117). A notAfter in GeneralizedTime counts as 0 and so gives
 * 117 always.
 */
ZACERT_API uint32_t ZA_ECC_VerifyCert(const uint8_t *derCaCert, uint32_t derCaCertLen,
                                      const uint8_t *derUserCert, uint32_t derUserCertLen,
                                      ZA_EccVerifyFunc verifyFunc);

/*
 * ZA_ECC_VerifyCertForSpeed: checks a certificate's signature by an issuer's key in the form of
 * ZACERT_EncodeEccPubKey (attribute 54 of the issuer's certificate), which saves decoding the
 * issuer's certificate. Neither names nor times are checked.
 */
ZACERT_API uint32_t ZA_ECC_VerifyCertForSpeed(const uint8_t *issuerPub, uint32_t issuerPubLen,
                                              const uint8_t *derUserCert, uint32_t derUserCertLen,
                                              ZA_EccVerifyFunc verifyFunc);

/* ZA_ECC_VerifyCrl: as ZA_VerifyCrl. */
ZACERT_API uint32_t ZA_ECC_VerifyCrl(const uint8_t *derCaCert, uint32_t derCaCertLen,
                                     const uint8_t *derCrl, uint32_t derCrlLen,
                                     ZA_EccVerifyFunc verifyFunc);

/* ZA_VerifyECCsr: as ZA_VerifyCsr_Sign. */
ZACERT_API uint32_t ZA_VerifyECCsr(const uint8_t *csr, int32_t csrLen, ZA_EccVerifyFunc verifyFunc);

#ifdef __cplusplus
}
#endif

#endif
