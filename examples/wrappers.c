/*
 * wrappers - a package for somebody else, by the functions that take files: signed, and encrypted
 * under a key of its own, which is encrypted for the receiver.
 *
 *     wrappers send RECEIVER_CERTIFICATE SENDER_PFX PASSWORD CONTENT PACKAGE
 *     wrappers receive SENDER_CERTIFICATE RECEIVER_PFX PASSWORD PACKAGE CONTENT
 *
 * CONTENT has at most 8191 octets. PACKAGE is three lines of hexadecimal digits: the signature, the
 * encrypted key and the encrypted content. A password among the arguments is for an example:
 * everybody on the machine can see it. SHA-1 and ECB are what these functions have; new formats
 * take envelope_two.c and sign_detached.c for their model.
 *
 *     sed -n 1p PACKAGE | xxd -r -p > SIGNATURE
 *     openssl dgst -sha1 -verify SENDER_PUBLIC_KEY -signature SIGNATURE CONTENT
 */
#include "example.h"

#define MOST_CONTENT 8191
#define KEY_DIGITS 32

typedef struct line {
    char digits[2 * (MOST_CONTENT + 1)];
    uint32_t len;
} line;

typedef struct package {
    line signature;
    line key;
    line content;
} package;

static void write_package(const char *path, const package *from) {
    FILE *file = fopen(path, "wb");
    check(file != NULL, path);
    fprintf(file, "%.*s\n", (int)from->signature.len, from->signature.digits);
    fprintf(file, "%.*s\n", (int)from->key.len, from->key.digits);
    fprintf(file, "%.*s\n", (int)from->content.len, from->content.digits);
    check(ferror(file) == 0 && fclose(file) == 0, path);
}

static line read_line(FILE *file) {
    char text[sizeof((line *)0)->digits + 2];
    line made = {{0}, 0};
    check(fgets(text, sizeof text, file) != NULL, "a line of the package");
    const size_t len = strcspn(text, "\n");
    check(text[len] == '\n', "the end of a line");
    memcpy(made.digits, text, len);
    made.len = (uint32_t)len;
    return made;
}

static package read_package(const char *path) {
    package made;
    FILE *file = fopen(path, "rb");
    check(file != NULL, path);
    made.signature = read_line(file);
    made.key = read_line(file);
    made.content = read_line(file);
    fclose(file);
    return made;
}

/* The key goes to the other side as the digits that it is given in. */
static void make_key(char digits[KEY_DIGITS + 1]) {
    uint8_t key[KEY_DIGITS / 2];
    const uint32_t len = sizeof key;
    CALL(ZA_PKCS7_GenerateBytes(key, &len));
    for (size_t i = 0; i < sizeof key; i++) {
        snprintf(digits + 2 * i, 3, "%02X", key[i]);
    }
    explicit_bzero(key, sizeof key);
}

static package packed(const char *certificate, const char *pfx, const char *password,
                      octets content) {
    package made;
    char key[KEY_DIGITS + 1];
    check(content.len <= MOST_CONTENT, "a content of at most 8191 octets");
    make_key(key);
    CALL(Pfx_SignData_KOVA(pfx, password, (uint32_t)strlen(password), content.data, content.len,
                           made.signature.digits, &made.signature.len));
    CALL(PubKey_Encrypt_KOVA(certificate, (const uint8_t *)key, KEY_DIGITS, made.key.digits,
                             &made.key.len));
    CALL(PkgEncrypt_KOVA(key, KEY_DIGITS, content.data, content.len, made.content.digits,
                         &made.content.len));
    explicit_bzero(key, sizeof key);
    return made;
}

static octets unpacked(const char *certificate, const char *pfx, const char *password,
                       const package *from) {
    uint8_t key[256]; /* what RSA of 2048 bits can give at most */
    uint32_t key_len = 0;
    octets content = room_for(from->content.len / 2);
    CALL(PrivateKey_Decrypt_KOVA(pfx, password, (uint32_t)strlen(password), from->key.digits,
                                 from->key.len, key, &key_len));
    CALL(PkgDecrypt_KOVA((const char *)key, (int32_t)key_len, from->content.digits,
                         from->content.len, content.data, &content.len));
    CALL(Pfx_VerifyData_KOVA(certificate, content.data, content.len, from->signature.digits,
                             from->signature.len));
    explicit_bzero(key, sizeof key);
    return content;
}

int main(int argc, char **argv) {
    octets content;
    const int sends = argc == 7 && strcmp(argv[1], "send") == 0;
    if (!sends && (argc != 7 || strcmp(argv[1], "receive") != 0)) {
        fprintf(stderr,
                "usage: wrappers send CERTIFICATE PFX PASSWORD CONTENT PACKAGE\n"
                "       wrappers receive CERTIFICATE PFX PASSWORD PACKAGE CONTENT\n");
        return 2;
    }
    if (sends) {
        content = read_file(argv[5]);
        const package made = packed(argv[2], argv[3], argv[4], content);
        write_package(argv[6], &made);
    } else {
        const package from = read_package(argv[5]);
        content = unpacked(argv[2], argv[3], argv[4], &from);
        write_file(argv[6], content);
    }
    explicit_bzero(content.data, content.len);
    free(content.data);
    return 0;
}
