/*
 * envelope_two - encrypts a file for two recipients.
 *
 *     envelope_two CERTIFICATE CERTIFICATE CONTENT MESSAGE
 *
 * The certificates are in DER, with RSA keys of up to 2048 bits. The content is encrypted once,
 * with AES-128-CBC under a fresh key, and the key once for each of the two:
 *
 *     openssl cms -decrypt -inform DER -in MESSAGE -recip CERTIFICATE -inkey KEY -binary
 */
#include "example.h"

#include <stddef.h>

#define AES128_CBC "2.16.840.1.101.3.4.1.2"

/* What the function below finds the key in. */
typedef struct content_key {
    uint8_t key[16];
    uint8_t iv[16];
} content_key;

/* Room is no concern here: the library offers 330 octets more than there are. */
static int32_t encrypt(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                       void *context) {
    const content_key *with = context;
    return (int32_t)ZA_PKCS12_AESEncrypt(2, with->key, 16, with->iv, 16, in, inLen, out, outLen);
}

static void *encrypted_content(const content_key *with) {
    const setter set = ZA_PKCS7_SetEncryptedContentAttributeChar;
    uint8_t parameter[2 + 16] = {0x04, 16}; /* OCTET STRING: the IV */
    void *made = NULL;
    memcpy(parameter + 2, with->iv, 16);
    CALL(ZA_PKCS7_CreateEnocdeEncryptedContent(&made));
    set_oid(set, made, PKCS7_ENCRYPT_ALGO, AES128_CBC);
    CALL(set(made, PKCS7_ENCRYPT_PARAMETER, parameter, sizeof parameter));
    CALL(ZA_PKCS7_SetEncryptContentEncFunc(made, encrypt, (const uint8_t *)with, sizeof *with));
    return made;
}

static void *recipient(const char *certificate_file) {
    const setter set = ZA_PKCS7_SetRecipientInfoAttributeChar;
    octets certificate = read_file(certificate_file);
    octets spki = of_certificate(certificate, CERT_SUBJECTPUBLICKEYINFO);
    ZA_RSAPublicKey numbers;
    ZA_RSArefPublicKey key = {0};
    void *made = NULL;
    CALL(ZA_Decode_PublicKey(&numbers, spki.data, (int32_t)spki.len));
    memcpy((uint8_t *)&key + offsetof(ZA_RSArefPublicKey, modulus), &numbers, sizeof numbers);
    CALL(ZA_PKCS7_CreateEncodeRecipientInfo(&made));
    set_octets(set, made, PKCS7_RECIPIENT_DN, of_certificate(certificate, CERT_ISSUER_DERDN));
    set_octets(set, made, PKCS7_RECIPIENT_SERIAL, of_certificate(certificate, CERT_SERIALNUMBER));
    set_oid(set, made, PKCS7_RECIPIENT_KEYENCRYPTION_ALGO, RSA_ENCRYPTION);
    CALL(ZA_PKCS7_SetRecipientInfoKeyEncFunc(made, ZA_PublicKeyEncryptFunc_Ref,
                                             (const uint8_t *)&key, sizeof key));
    free(spki.data);
    free(certificate.data);
    return made;
}

int main(int argc, char **argv) {
    const setter set = ZA_PKCS7_SetEnvelopedDataAttributeChar;
    const uint32_t key_len = sizeof(content_key);
    content_key fresh;
    void *message = NULL;
    if (argc != 5) {
        fprintf(stderr, "usage: envelope_two CERTIFICATE CERTIFICATE CONTENT MESSAGE\n");
        return 2;
    }
    CALL(ZA_PKCS7_GenerateBytes((uint8_t *)&fresh, &key_len));

    CALL(ZA_PKCS7_CreateEnvelopedDataEncodeCtx(&message));
    CALL(ZA_PKCS7_SetEnvelopedDataAttributeInt(message, PKCS7_ENVELOPEDDATA_VERSION, 0));
    set_oid(set, message, PKCS7_ENVELOPEDDATA_CONTENTTYPE, PKCS7_DATA);
    set_octets(set, message, PKCS7_ENVELOPEDDATA_ENCRYPTED_CONTENT, read_file(argv[3]));
    /* The message hands the key to its recipients, whose functions encrypt it. */
    CALL(set(message, PKCS7_ENVELOPEDDATA_RECIPIENT_KEY, fresh.key, sizeof fresh.key));
    CALL(ZA_PKCS7_SetEnvelopedData_EncryptedContent(message, encrypted_content(&fresh)));
    explicit_bzero(&fresh, sizeof fresh);
    CALL(ZA_PKCS7_SetEnvelopedData_RecipientInfo(message, recipient(argv[1])));
    CALL(ZA_PKCS7_SetEnvelopedData_RecipientInfo(message, recipient(argv[2])));
    octets der = encoded(ZA_PKCS7_EncodePKCS7EnvelopedData, message);
    write_file(argv[4], der);

    free(der.data);
    CALL(ZA_PKCS7_DestroyEnvelopedDataEncodeCtx(message));
    return 0;
}
