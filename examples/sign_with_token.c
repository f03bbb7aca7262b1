/*
 * sign_with_token - signs a file with an RSA key that stays on its token.
 *
 *     sign_with_token URI CERTIFICATE CONTENT MESSAGE
 *
 * URI names the key (RFC 7512): "pkcs11:token=CA;object=key?module-path=...&pin-source=file:...".
 * CERTIFICATE is the key's, in DER. MESSAGE holds the content and the certificate, so that
 *
 *     openssl cms -verify -inform DER -in MESSAGE -CAfile CA -purpose any -binary
 *
 * needs nothing else.
 */
#define _DEFAULT_SOURCE /* explicit_bzero */

#include <zacert/pkcs11.h>

#include "example.h"

/* The signer: whose certificate, which algorithms, and the two functions that do the work. */
static void *signer(octets certificate, const zacert_pkcs11_key *key) {
    const int32_t sha256 = 9;
    void *made = NULL;
    const setter set = ZA_PKCS7_SetSignerInfoAttributeChar;
    CALL(ZA_PKCS7_CreateEncodeSignerInfo(&made));
    set_octets(set, made, PKCS7_SIGNER_DN, of_certificate(certificate, CERT_ISSUER_DERDN));
    set_octets(set, made, PKCS7_SIGNER_SERIAL, of_certificate(certificate, CERT_SERIALNUMBER));
    set_oid(set, made, PKCS7_SIGNER_DIGEST_ALGO, SHA256);
    set_oid(set, made, PKCS7_SIGNER_DIGEST_ENC_ALG, RSA_ENCRYPTION);
    CALL(ZA_PKCS7_SetSignerInfoDigestFunc(made, ZA_DigestFunc_Ref, (const uint8_t *)&sha256,
                                          sizeof sha256));
    /* The token gets a finished DigestInfo. The record is copied; the session in it is not. */
    CALL(ZA_PKCS7_SetSignerInfoEncSignFunc(made, zacert_pkcs11_sign, (const uint8_t *)key,
                                           sizeof *key));
    return made;
}

int main(int argc, char **argv) {
    zacert_pkcs11_key key;
    void *message = NULL;
    if (argc != 5) {
        fprintf(stderr, "usage: sign_with_token URI CERTIFICATE CONTENT MESSAGE\n");
        return 2;
    }
    octets certificate = read_file(argv[2]);
    /* Digest 0: what comes is signed as it stands. */
    CALL(zacert_pkcs11_open(argv[1], NULL, 0, 0, &key));

    CALL(ZA_PKCS7_CreateSignedDataEncodeCtx(&message));
    CALL(ZA_PKCS7_SetSignedDataAttributeInt(message, PKCS7_SIGNEDDATA_VERSION, 1));
    set_oid(set_signed_data, message, PKCS7_SIGNEDDATA_DIGEST_ALGO, SHA256);
    set_oid(set_signed_data, message, PKCS7_SIGNEDDATA_CONTENTTYPE, PKCS7_DATA);
    set_octets(set_signed_data, message, PKCS7_CONTENT, read_file(argv[3]));
    CALL(ZA_PKCS7_SetSignedData_SignerInfo(message, signer(certificate, &key)));
    set_octets(set_signed_data, message, PKCS7_SIGNEDDATA_CERTIFICATE, certificate);
    /* Asking for the length signs; the second call copies what the first has made. */
    octets der = encoded(ZA_PKCS7_EncodePKCS7SignedData, message);
    write_file(argv[4], der);

    free(der.data);
    CALL(ZA_PKCS7_DestroySignedDataEncodeCtx(message));
    CALL(zacert_pkcs11_close(&key));
    return 0;
}
