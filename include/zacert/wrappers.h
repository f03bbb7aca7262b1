/*
 * wrappers.h - one call each for programs that keep certificates and keys in files: encryption,
 * signatures and their reverse, with ciphertext and signatures as hexadecimal digits.
 *
 * Digits are written in upper case, two for each octet and no zero behind them, and read in both
 * cases. Capacities are not passed and there is no call for the length alone: give as much as is
 * said. Paths end in a zero octet. Files are DER, RSA keys have 1024 or 2048 bits, and of a file
 * the first 5000 octets are read: what is longer than that is malformed. Nobody looks at the MAC of
 * a PKCS#12 file: one that is wrong, or is not there, is not told.
 *
 *     1000  the file cannot be opened             1012  no memory for the PKCS#12 file
 *     1001  it is empty or cannot be read         1013  it does not open: password or file
 *     1002  it is no certificate, or no memory    1014  it has no private key of these sizes
 *     1003  the key is no RSA key of these sizes  1016  the private key is no RSA key
 *     1004  this one is none, despite its size    1017  its numbers are no key
 *
 * Other codes are those of the functions that do the work. Example:
 *
 *     char digits[512];
 *     uint32_t len = 0;
 *     if (Pfx_SignData_KOVA("me.p12", password, passwordLen, data, dataLen, digits, &len) == 0 &&
 *         Pfx_VerifyData_KOVA("me.der", data, dataLen, digits, len) == 0) {
 *         send(digits, len);
 *     }
 */
#ifndef ZACERT_WRAPPERS_H
#define ZACERT_WRAPPERS_H

#include <zacert/base.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Octets ---------------------------------------------------------------------------------- */

/*
 * PkgEncrypt_KOVA: AES-128, ECB, padded: a key of 32 hexadecimal digits, 1 to 8192 octets of data;
 * writes 2 digits for each octet of the ciphertext, which is the data filled up to the next
 * multiple of 16. 1999: another number of digits; 1998: more data; 2000: no digits; 108: no data.
 */
ZACERT_API uint32_t PkgEncrypt_KOVA(const char *keyHex, int32_t keyHexLen, const uint8_t *data,
                                    uint32_t dataLen, char *cipherHex, uint32_t *cipherHexLen);

/*
 * PkgDecrypt_KOVA: the reverse; writes at most `cipherHexLen` / 2 octets. The digits are converted
 * before their number is looked at. Codes as above, but 1998: more than 16384 digits, so that only
 * 8191 octets of data come back; 108: also a length that is no multiple of 16, or a bad padding.
 */
ZACERT_API uint32_t PkgDecrypt_KOVA(const char *keyHex, int32_t keyHexLen, const char *cipherHex,
                                    uint32_t cipherHexLen, uint8_t *plain, uint32_t *plainLen);

/* ---- Certificates and PKCS#12 files ---------------------------------------------------------- */

/*
 * PubKey_Encrypt_KOVA: RSA with PKCS#1 v1.5 padding under the key of a certificate; writes 256 or
 * 512 digits. 1000 to 1004; 126: more data than the key's octets less 11.
 */
ZACERT_API uint32_t PubKey_Encrypt_KOVA(const char *certPath, const uint8_t *data, uint32_t dataLen,
                                        char *cipherHex, uint32_t *cipherHexLen);

/*
 * PrivateKey_Decrypt_KOVA: the reverse with the key of a PKCS#12 file; writes at most 245 octets.
 * 1000, 1001, 1012 to 1017; 1998: more than 16384 digits; 2000: no digits; 126: it does not open.
 */
ZACERT_API uint32_t PrivateKey_Decrypt_KOVA(const char *pfxPath, const char *password,
                                            uint32_t passwordLen, const char *cipherHex,
                                            uint32_t cipherHexLen, uint8_t *plain,
                                            uint32_t *plainLen);

/*
 * Pfx_SignData_KOVA: the RSA signature (ZA_PKCS7_SignedData) over SHA-1 of the data with the key of
 * a PKCS#12 file; writes 256 or 512 digits. 1000, 1001, 1012 to 1017; 101: 2 GiB of data.
 */
ZACERT_API uint32_t Pfx_SignData_KOVA(const char *pfxPath, const char *password,
                                      uint32_t passwordLen, const uint8_t *data, uint32_t dataLen,
                                      char *signHex, uint32_t *signHexLen);

/*
 * Pfx_VerifyData_KOVA: verifies such a signature with the key of a certificate: 0 where it is
 * right, 0xFFFFFFFF where it is not. 1000 to 1004; 2000: no digits, or more than 8192 of them.
 */
ZACERT_API uint32_t Pfx_VerifyData_KOVA(const char *certPath, const uint8_t *data, uint32_t dataLen,
                                        const char *signHex, uint32_t signHexLen);

#ifdef __cplusplus
}
#endif

#endif
