/*
 * pkcs11.h - signing with keys that never leave a token (PKCS#11): the library zacert-pkcs11.
 *
 * Example: a certificate signed with an RSA key of a token.
 *
 *     const char *uri = "pkcs11:token=CA;object=root?module-path=/usr/lib/token.so";
 *     zacert_pkcs11_key key;
 *     if (zacert_pkcs11_open(uri, pin, pinLen, 9, &key) == 0) {
 *         ZACert_SetCertSignFunc(cert, zacert_pkcs11_sign, (uint8_t *)&key, sizeof key);
 *         result = ZACert_EncodeCert(cert, NULL, &len);
 *         zacert_pkcs11_close(&key);
 *     }
 *
 * Results   0 is success. A failure writes nothing.
 *           100  no memory
 *           101  room too small, or a PIN, digest or file of a length that cannot be
 *           108  NULL where a value is needed, or a text that is no PKCS#11 URI
 *           110  the URI names an attribute this library does not look at
 *           113  no token, key or public key is what the URI names
 *           118  neither key nor token can sign in this way
 *           120  the PIN is missing, cannot be read or was refused
 *           121  more than one token or key is what the URI names
 *           122  the record is not one of zacert_pkcs11_open, or the URI names another kind of
 *                object
 *           125  the digest failed
 *           126  the module cannot be loaded, or the token refused
 *           zacert_pkcs11_token_result tells by which code of PKCS#11 it did.
 * Threads   Every function may be called by several threads at once; the operations of one key
 *           take turns. A process that forks opens its keys afterwards.
 */
#ifndef ZACERT_PKCS11_H
#define ZACERT_PKCS11_H

#include <zacert/callbacks.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ZACERT_PKCS11_QUERY_LEN: what a size query without a key announces, enough for RSA of 4096 bits.
 */
enum { ZACERT_PKCS11_QUERY_LEN = 512 };

/* zacert_pkcs11_session: an open session with a token. */
typedef struct zacert_pkcs11_session zacert_pkcs11_session;

/*
 * zacert_pkcs11_key: a key of a token, as signing callbacks take it. `session` belongs to whoever
 * opened it: copies of the record's octets, such as encoders keep, share it and serve until
 * zacert_pkcs11_close. `digest` may be changed in a copy: 7 SHA-1, 9 SHA-256, 11 SHA-384,
 * 13 SHA-512, or 0 for input that is signed as it stands.
 */
typedef struct zacert_pkcs11_key {
    uint32_t tag;
    int32_t digest;
    zacert_pkcs11_session *session;
} zacert_pkcs11_key;

/*
 * zacert_pkcs11_open: opens the private key, RSA or elliptic curve, that an RFC 7512 URI names. The
 * one token the URI fits is found first, and only then is a PIN given to it. The PIN is `pin`, or
 * with `pin` NULL the URI's pin-value, or what the file of its pin-source holds up to a line end; a
 * token with a key pad of its own asks for it there. PINs of up to 255 octets are copied, and the
 * copy is wiped before the call returns unless the key asks for the PIN at each signature.
 *
 * Attributes: token, manufacturer, serial, model, library-manufacturer, library-description,
 * library-version, slot-manufacturer, slot-description, slot-id, object, id, and type, which must
 * be "private"; module-path, pin-value, pin-source ("file:" or an absolute path). Other attributes
 * of the path give 110, as does module-name; others of the query are passed over. Without
 * module-path the system's modules are asked through p11-kit-proxy.so. The module becomes part of
 * the process: open no URI of a stranger.
 */
ZACERT_API uint32_t zacert_pkcs11_open(const char *uri, const uint8_t *pin, uint32_t pinLen,
                                       int32_t digest, zacert_pkcs11_key *out);

/*
 * zacert_pkcs11_close: ends the session, for every copy of the record, and clears `key`. NULL and a
 * cleared record are accepted. The module is finalized with its last session if it was this library
 * that initialized it.
 */
ZACERT_API uint32_t zacert_pkcs11_close(zacert_pkcs11_key *key);

/*
 * zacert_pkcs11_sign (ZACertSignFunc): signs the input: RSA by PKCS#1 v1.5 (RFC 8017, 8.2),
 * elliptic curves by ECDSA as DER SEQUENCE { INTEGER r, INTEGER s } (RFC 3279, 2.2.3). `context` is
 * a zacert_pkcs11_key. The input is digested outside the token; where the token signs only together
 * with the digest, it gets the input whole.
 *
 * `out` NULL gives 0 and the most octets the function ever writes, without asking the token: RSA
 * the modulus' length, P-256 72; with `context` NULL too ZACERT_PKCS11_QUERY_LEN. Otherwise
 * `*outLen` must be at least that number and is set to what was written, for elliptic curves often
 * less. With digest 0 the input is for RSA a DigestInfo, as PKCS#7 signers get it, of at most the
 * modulus' length less 11 octets (101); for ECDSA the digest, of at most 64 octets.
 */
ZACERT_API int32_t zacert_pkcs11_sign(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                      uint32_t *outLen, void *context);

/*
 * zacert_pkcs11_public_key: the SubjectPublicKeyInfo (RFC 5280, 4.1) of the key: from the token's
 * public key with the same identifier, else from the private key itself (RSA), else from the
 * certificate with the same identifier. `out` NULL gives the length; `*outLen` is the room
 * otherwise (101).
 */
ZACERT_API uint32_t zacert_pkcs11_public_key(const zacert_pkcs11_key *key, uint8_t *out,
                                             uint32_t *outLen);

/*
 * zacert_pkcs11_token_result: the CKR_ code by which a module refused last in the calling thread;
 * 0 when it never did.
 */
ZACERT_API uint32_t zacert_pkcs11_token_result(void);

#ifdef __cplusplus
}
#endif

#endif
