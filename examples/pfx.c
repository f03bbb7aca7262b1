/*
 * pfx - writes a key and its certificate, which gets a name, into a PKCS#12 file and reads it back.
 *
 *     pfx KEY CERTIFICATE PASSWORD NAME PFX
 *
 * KEY is an RSAPrivateKey in DER (openssl rsa -traditional -outform DER), CERTIFICATE its
 * certificate, in DER too. NAME is a text in GB18030, of up to 61 characters here; it is what
 * programs call friendlyName, and is written out again as the file tells it. A password among the
 * arguments is for an example: everybody on the machine can see it.
 *
 *     openssl pkcs12 -in PFX -legacy -info -nodes -passin pass:PASSWORD
 */
#include "example.h"

#define FRIENDLY_NAME "1.2.840.113549.1.9.20"
#define MAC_IS_RIGHT 200

/* The values of an attribute stand in a SET; the one of a friendlyName is a BMPString. */
static octets friendly_name(const char *text) {
    const int32_t len = (int32_t)strlen(text);
    uint32_t bmp_len = 0;
    CALL(ZI_Chinese2BmpString((const uint8_t *)text, len, NULL, &bmp_len));
    check(bmp_len > 0 && bmp_len <= 2 * 61, "a name of 1 to 61 characters");
    octets set = room_for(4 + bmp_len);
    set.data[0] = ZA_DER_ID_SET;
    set.data[1] = (uint8_t)(2 + bmp_len);
    set.data[2] = ZA_DER_ID_BMPSTRING;
    set.data[3] = (uint8_t)bmp_len;
    CALL(ZI_Chinese2BmpString((const uint8_t *)text, len, set.data + 4, &bmp_len));
    return set;
}

static octets encoded_pfx(octets key, octets certificate, const char *password, const char *name) {
    const uint8_t *secret = (const uint8_t *)password;
    const uint32_t secret_len = (uint32_t)strlen(password);
    octets type = oid(FRIENDLY_NAME);
    octets value = friendly_name(name);
    octets der = {NULL, 0};
    void *pfx = NULL;
    CALL(ZA_PKCS12_CreateEncodePfx(&pfx));
    CALL(ZA_PKCS12_SetPrivateKey(pfx, key.data, key.len));
    CALL(ZA_PKCS12_SetCertificate(pfx, certificate.data, certificate.len));
    CALL(ZA_PKCS12_SetCertificateBag_Attribute(pfx, type.data, (int32_t)type.len, value.data,
                                               (int32_t)value.len, 1));
    CALL(ZA_PKCS12_EncodePFX(pfx, secret, secret_len, NULL, &der.len));
    der = room_for(der.len);
    CALL(ZA_PKCS12_EncodePFX(pfx, secret, secret_len, der.data, &der.len));
    CALL(ZA_PKCS12_DestroyEncodePFX(pfx));
    free(value.data);
    free(type.data);
    return der;
}

static void print_name(void *pfx) {
    octets type = {NULL, 0};
    octets value = {NULL, 0};
    octets text = {NULL, 0};
    CALL(ZA_PKCS12_GetCertificateBag_Attribute(pfx, NULL, &type.len, NULL, &value.len, 1, 1));
    type = room_for(type.len);
    value = room_for(value.len);
    CALL(ZA_PKCS12_GetCertificateBag_Attribute(pfx, type.data, &type.len, value.data, &value.len, 1,
                                               1));
    check(value.len > 4 && value.data[2] == ZA_DER_ID_BMPSTRING, "a friendlyName");
    const int32_t bmp_len = (int32_t)value.len - 4;
    CALL(ZI_BmpString2Chinese(value.data + 4, bmp_len, NULL, &text.len));
    text = room_for(text.len);
    CALL(ZI_BmpString2Chinese(value.data + 4, bmp_len, text.data, &text.len));
    printf("%.*s\n", (int)text.len, (const char *)text.data);
    free(text.data);
    free(value.data);
    free(type.data);
}

static void read_back(octets der, octets key, const char *password) {
    uint32_t mac = 0;
    octets found = {NULL, 0};
    void *pfx = NULL;
    CALL(ZA_PKCS12_CreateDecodePfx(&pfx));
    CALL(ZA_PKCS12_DecodePFX(pfx, (const uint8_t *)password, (uint32_t)strlen(password), der.data,
                             der.len, &mac));
    /* The result alone says nothing about the password: this does. */
    check(mac == MAC_IS_RIGHT, "the MAC of the file");
    CALL(ZA_PKCS12_GetPrivateKey(pfx, NULL, &found.len));
    found = room_for(found.len);
    CALL(ZA_PKCS12_GetPrivateKey(pfx, found.data, &found.len));
    check(found.len == key.len && memcmp(found.data, key.data, key.len) == 0, "the key");
    print_name(pfx);
    explicit_bzero(found.data, found.len);
    free(found.data);
    CALL(ZA_PKCS12_DestroyDecodePFX(pfx));
}

int main(int argc, char **argv) {
    if (argc != 6) {
        fprintf(stderr, "usage: pfx KEY CERTIFICATE PASSWORD NAME PFX\n");
        return 2;
    }
    octets key = read_file(argv[1]);
    octets certificate = read_file(argv[2]);
    octets written = encoded_pfx(key, certificate, argv[3], argv[4]);
    write_file(argv[5], written);
    octets der = read_file(argv[5]);
    read_back(der, key, argv[3]);

    explicit_bzero(key.data, key.len);
    free(der.data);
    free(written.data);
    free(certificate.data);
    free(key.data);
    return 0;
}
