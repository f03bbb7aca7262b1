/*
 * envelope_ready - puts an envelope together from what others have encrypted.
 *
 *     envelope_ready PARAMETER CIPHERTEXT MESSAGE {CERTIFICATE ENCRYPTED_KEY}...
 *
 * CIPHERTEXT is encrypted with AES-128-CBC; PARAMETER holds the parameters of the algorithm in DER:
 * an OCTET STRING with the IV. Each ENCRYPTED_KEY is the key under the RSA key of its CERTIFICATE,
 * in DER. No function of a cipher is installed anywhere: a hardware module, say, has done all of
 * that.
 */
#include "example.h"

#define AES128_CBC "2.16.840.1.101.3.4.1.2"

static void *encrypted_content(const char *parameter_file, const char *ciphertext_file) {
    const setter set = ZA_PKCS7_SetEncryptedContentAttributeChar;
    void *made = NULL;
    CALL(ZA_PKCS7_CreateEnocdeEncryptedContent(&made));
    set_oid(set, made, PKCS7_ENCRYPT_ALGO, AES128_CBC);
    set_octets(set, made, PKCS7_ENCRYPT_PARAMETER, read_file(parameter_file));
    set_octets(set, made, PKCS7_ENCRYPT_ENCRYPTEDCONTENT, read_file(ciphertext_file));
    return made;
}

static void *recipient(const char *certificate_file, const char *key_file) {
    const setter set = ZA_PKCS7_SetRecipientInfoAttributeChar;
    octets certificate = read_file(certificate_file);
    void *made = NULL;
    CALL(ZA_PKCS7_CreateEncodeRecipientInfo(&made));
    set_octets(set, made, PKCS7_RECIPIENT_DN, of_certificate(certificate, CERT_ISSUER_DERDN));
    set_octets(set, made, PKCS7_RECIPIENT_SERIAL, of_certificate(certificate, CERT_SERIALNUMBER));
    set_oid(set, made, PKCS7_RECIPIENT_KEYENCRYPTION_ALGO, RSA_ENCRYPTION);
    set_octets(set, made, PKCS7_RECIPIENT_ENCRYPTED_KEY, read_file(key_file));
    free(certificate.data);
    return made;
}

int main(int argc, char **argv) {
    /* A message wants a content. Without a function that encrypts, it goes nowhere. */
    const uint8_t content[] = {0};
    const setter set = ZA_PKCS7_SetEnvelopedDataAttributeChar;
    void *message = NULL;
    if (argc < 6 || argc % 2 != 0) {
        fprintf(stderr,
                "usage: envelope_ready PARAMETER CIPHERTEXT MESSAGE "
                "{CERTIFICATE ENCRYPTED_KEY}...\n");
        return 2;
    }
    CALL(ZA_PKCS7_CreateEnvelopedDataEncodeCtx(&message));
    CALL(ZA_PKCS7_SetEnvelopedDataAttributeInt(message, PKCS7_ENVELOPEDDATA_VERSION, 0));
    set_oid(set, message, PKCS7_ENVELOPEDDATA_CONTENTTYPE, PKCS7_DATA);
    CALL(set(message, PKCS7_ENVELOPEDDATA_ENCRYPTED_CONTENT, content, sizeof content));
    CALL(ZA_PKCS7_SetEnvelopedData_EncryptedContent(message, encrypted_content(argv[1], argv[2])));
    for (int i = 4; i < argc; i += 2) {
        CALL(ZA_PKCS7_SetEnvelopedData_RecipientInfo(message, recipient(argv[i], argv[i + 1])));
    }
    octets der = encoded(ZA_PKCS7_EncodePKCS7EnvelopedData, message);
    write_file(argv[3], der);

    free(der.data);
    CALL(ZA_PKCS7_DestroyEnvelopedDataEncodeCtx(message));
    return 0;
}
