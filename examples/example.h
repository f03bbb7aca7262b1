/*
 * example.h - what the examples share: files, object identifiers, and what they need of a
 * certificate. They end at the first failure; a program that goes on destroys its contexts first.
 */
#ifndef EXAMPLE_H
#define EXAMPLE_H

/* For explicit_bzero: sources that include something before this file define it themselves. */
#ifndef _DEFAULT_SOURCE
#define _DEFAULT_SOURCE
#endif

#include <zacert.h>

#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define RSA_ENCRYPTION "1.2.840.113549.1.1.1"
#define SHA256 "2.16.840.1.101.3.4.2.1"
#define PKCS7_DATA "1.2.840.113549.1.7.1"

typedef struct octets {
    uint8_t *data;
    uint32_t len;
} octets;

static inline void check(int good, const char *what) {
    if (!good) {
        fprintf(stderr, "failed: %s\n", what);
        exit(1);
    }
}

static inline void check_result(uint32_t result, const char *call) {
    if (result != 0) {
        fprintf(stderr, "%u from %s\n", (unsigned)result, call);
        exit(1);
    }
}

/* CALL: a function of the library that must give 0. */
#define CALL(call) check_result((call), #call)

static inline octets room_for(uint32_t len) {
    octets made = {malloc(len == 0 ? 1 : len), len};
    check(made.data != NULL, "malloc");
    return made;
}

static inline octets read_file(const char *path) {
    FILE *file = fopen(path, "rb");
    check(file != NULL && fseek(file, 0, SEEK_END) == 0, path);
    const long size = ftell(file);
    check(size >= 0 && size <= INT32_MAX && fseek(file, 0, SEEK_SET) == 0, path);
    octets content = room_for((uint32_t)size);
    check(fread(content.data, 1, content.len, file) == content.len, path);
    fclose(file);
    return content;
}

static inline void write_file(const char *path, octets content) {
    FILE *file = fopen(path, "wb");
    check(file != NULL, path);
    check(fwrite(content.data, 1, content.len, file) == content.len, path);
    check(fclose(file) == 0, path);
}

/* oid: "1.2.3" as the setters take it. */
static inline octets oid(const char *dotted) {
    octets made = room_for(0);
    CALL(ZACert_GetOIDValue(dotted, (uint32_t)strlen(dotted), NULL, &made.len));
    free(made.data);
    made = room_for(made.len);
    CALL(ZACert_GetOIDValue(dotted, (uint32_t)strlen(dotted), made.data, &made.len));
    return made;
}

/* encoded: what a function of two calls writes. */
static inline octets encoded(uint32_t (*encode)(void *, uint8_t *, uint32_t *), void *context) {
    octets der = {NULL, 0};
    CALL(encode(context, NULL, &der.len));
    der = room_for(der.len);
    CALL(encode(context, der.data, &der.len));
    return der;
}

/* getter: the type of all getters of octets. */
typedef uint32_t (*getter)(void *, int32_t, uint8_t *, uint32_t *);

/* attribute_of: an attribute of a context, which must be there. */
static inline octets attribute_of(void *context, getter get, int32_t attribute) {
    octets value = {NULL, 0};
    CALL(get(context, attribute, NULL, &value.len));
    check(value.len > 0, "an attribute that is there");
    value = room_for(value.len);
    CALL(get(context, attribute, value.data, &value.len));
    return value;
}

/* of_certificate: an attribute, which must be there. */
static inline octets of_certificate(octets certificate, int32_t attribute) {
    void *context = NULL;
    uint32_t measured = 0;
    /* The decoder believes the certificate's own header. */
    check(certificate.len >= 16, "a certificate");
    CALL(ZAsn1_GetCertLength(certificate.data, &measured));
    check(measured <= certificate.len, "the whole of a certificate");
    CALL(ZACert_CreateCertDecodeCtx(&context));
    CALL(ZACert_DecodeCert(context, certificate.data, measured));
    octets value = attribute_of(context, ZACert_GetCertAttributeChar, attribute);
    CALL(ZACert_DestroyCertDecodeCtx(context));
    return value;
}

/* setter: the type of all setters of octets but that of signedData, whose length has a sign. */
typedef uint32_t (*setter)(void *, int32_t, const uint8_t *, uint32_t);

static inline uint32_t set_signed_data(void *message, int32_t attribute, const uint8_t *value,
                                       uint32_t len) {
    return ZA_PKCS7_SetSignedDataAttributeChar(message, attribute, value, (int32_t)len);
}

/* set_octets: sets an attribute and frees the octets. */
static inline void set_octets(setter set, void *part, int32_t attribute, octets value) {
    char what[40];
    snprintf(what, sizeof what, "the setter of attribute %d", (int)attribute);
    check_result(set(part, attribute, value.data, value.len), what);
    free(value.data);
}

static inline void set_oid(setter set, void *part, int32_t attribute, const char *dotted) {
    set_octets(set, part, attribute, oid(dotted));
}

/*
 * read_key: an RSAPrivateKey as the functions that sign take it: the numbers behind a length that
 * nobody reads.
 */
static inline void read_key(const char *path, ZA_RSArefPrivateKey *key) {
    ZA_RSAPrivateKey numbers;
    octets der = read_file(path);
    CALL(ZA_Decode_PrivateKey(&numbers, der.data, (int32_t)der.len));
    memset(key, 0, sizeof *key);
    memcpy((uint8_t *)key + offsetof(ZA_RSArefPrivateKey, modulus), &numbers, sizeof numbers);
    explicit_bzero(&numbers, sizeof numbers);
    explicit_bzero(der.data, der.len);
    free(der.data);
}

#endif
