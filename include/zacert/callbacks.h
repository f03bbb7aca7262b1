/*
 * callbacks.h - the functions that callers install for whatever needs a key or a cipher.
 *
 * The library signs, digests and encrypts nothing on its own initiative: it calls one of these and
 * passes a result other than 0 on unchanged. Ready-made ones for digests, RSA, passwords and MACs
 * are in crypto.h.
 */
#ifndef ZACERT_CALLBACKS_H
#define ZACERT_CALLBACKS_H

#include <zacert/base.h>
#include <zacert/keys.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * ZA_CryptFunc: turns `inLen` octets into others. `*outLen` is the room at `out` on entry and the
 * number of octets written on return. `out` may be NULL, which asks for the length alone. `context`
 * is what the function was installed with. Returns 0 or a code of the function's own choice.
 */
typedef int32_t (*ZA_CryptFunc)(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                                void *context);

/*
 * ZACertSignFunc: signs a certificate, CRL or request. `in` is the DER of what is signed: the
 * function digests it itself. `context` are the key octets it was installed with. It is called
 * twice: first with `out` NULL and `*outLen` 0 to learn the length, then with room.
 *
 * Certificates: the first call gets NULL for `context` too and its length is not used; the second
 * one gets room for 512 octets, which the function must respect.
 * CRLs and requests: both calls get the key octets; the second gets room for exactly the length the
 * first one announced, which must be below 10240 (107).
 */
typedef ZA_CryptFunc ZACertSignFunc;

/* ZA_ECCPOINT: an affine point of a 256-bit curve, big-endian and right-aligned. */
typedef struct ZA_ECCPOINT {
    uint8_t x[32];
    uint8_t y[32];
} ZA_ECCPOINT;

/*
 * ZA_EccVerifyFunc: checks a signature of `tbsLen` octets by an elliptic-curve key. `pass` points
 * to the key's whole record (ZACERT_EccPubKey), by which curves are told apart; `pub` is the point
 * at its end. The signature is good when the function returns 0 and sets `*result`, which is 0
 * before, to 1.
 */
typedef int32_t (*ZA_EccVerifyFunc)(const uint8_t *tbs, uint32_t tbsLen, void *pass,
                                    const ZA_ECCSignStruct *sig, const ZA_ECCPOINT *pub,
                                    uint32_t *result);

#ifdef __cplusplus
}
#endif

#endif
