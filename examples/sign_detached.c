/*
 * sign_detached - signs a file and writes the signature alone.
 *
 *     sign_detached KEY CERTIFICATE CONTENT SIGNATURE
 *
 * KEY is an RSAPrivateKey in DER (openssl rsa -traditional -outform DER), CERTIFICATE its
 * certificate, in DER too. The three attributes make a signature that programs of every kind
 * verify:
 *
 *     openssl cms -verify -inform DER -in SIGNATURE -content CONTENT -CAfile CA -purpose any -binary
 */
#include "example.h"

#include <time.h>

#define CONTENT_TYPE "1.2.840.113549.1.9.3"
#define SIGNING_TIME "1.2.840.113549.1.9.5"

static void add_attribute(void *signer, const char *type, const uint8_t *value, size_t len) {
    octets identifier = oid(type);
    CALL(
        ZA_PKCS7_SetSignerAttribute(signer, identifier.data, identifier.len, value, (uint32_t)len));
    free(identifier.data);
}

/*
 * In ascending order of their encodings, because not everybody verifies another one. The third,
 * messageDigest, is the longest, and the library adds it behind these.
 */
static void add_attributes(void *signer) {
    uint8_t type[2 + 9] = {0x06, 9};   /* OBJECT IDENTIFIER data */
    char now[2 + 13 + 1] = {0x17, 13}; /* UTCTime, which ends in 2049 */
    const time_t seconds = time(NULL);
    octets data = oid(PKCS7_DATA);
    check(data.len == 9, "the length of an object identifier");
    memcpy(type + 2, data.data, data.len);
    free(data.data);
    check(strftime(now + 2, 14, "%y%m%d%H%M%SZ", gmtime(&seconds)) == 13, "the time");
    add_attribute(signer, CONTENT_TYPE, type, sizeof type);
    add_attribute(signer, SIGNING_TIME, (const uint8_t *)now, 2 + 13);
}

static void *signer(octets certificate, const char *key_file) {
    const int32_t sha256 = 9;
    const setter set = ZA_PKCS7_SetSignerInfoAttributeChar;
    ZA_RSArefPrivateKey key;
    void *made = NULL;
    CALL(ZA_PKCS7_CreateEncodeSignerInfo(&made));
    set_octets(set, made, PKCS7_SIGNER_DN, of_certificate(certificate, CERT_ISSUER_DERDN));
    set_octets(set, made, PKCS7_SIGNER_SERIAL, of_certificate(certificate, CERT_SERIALNUMBER));
    set_oid(set, made, PKCS7_SIGNER_DIGEST_ALGO, SHA256);
    set_oid(set, made, PKCS7_SIGNER_DIGEST_ENC_ALG, RSA_ENCRYPTION);
    add_attributes(made);
    CALL(ZA_PKCS7_SetSignerInfoDigestFunc(made, ZA_DigestFunc_Ref, (const uint8_t *)&sha256,
                                          sizeof sha256));
    read_key(key_file, &key);
    CALL(ZA_PKCS7_SetSignerInfoEncSignFunc(made, ZA_PrivateKeyEncFunc_Ref, (const uint8_t *)&key,
                                           sizeof key));
    explicit_bzero(&key, sizeof key);
    return made;
}

int main(int argc, char **argv) {
    void *message = NULL;
    octets der = {NULL, 0};
    if (argc != 5) {
        fprintf(stderr, "usage: sign_detached KEY CERTIFICATE CONTENT SIGNATURE\n");
        return 2;
    }
    octets certificate = read_file(argv[2]);
    octets content = read_file(argv[3]);

    CALL(ZA_PKCS7_CreateSignedDataEncodeCtx(&message));
    CALL(ZA_PKCS7_SetSignedDataAttributeInt(message, PKCS7_SIGNEDDATA_VERSION, 1));
    set_oid(set_signed_data, message, PKCS7_SIGNEDDATA_DIGEST_ALGO, SHA256);
    set_oid(set_signed_data, message, PKCS7_SIGNEDDATA_CONTENTTYPE, PKCS7_DATA);
    CALL(ZA_PKCS7_SetSignedData_SignerInfo(message, signer(certificate, argv[1])));
    set_octets(set_signed_data, message, PKCS7_SIGNEDDATA_CERTIFICATE, certificate);
    /*
     * The content is an argument, so the message does not hold it, and it is not copied. Both calls
     * digest it, and the first one signs: with a large content make one call, with room enough.
     */
    CALL(ZA_PKCS7_EncodePKCS7SignedDataPutData(message, content.data, content.len, NULL, &der.len));
    der = room_for(der.len);
    CALL(ZA_PKCS7_EncodePKCS7SignedDataPutData(message, content.data, content.len, der.data,
                                               &der.len));
    write_file(argv[4], der);

    free(der.data);
    free(content.data);
    CALL(ZA_PKCS7_DestroySignedDataEncodeCtx(message));
    return 0;
}
