/* base.h - result codes, the records every function shares, and DER tag numbers. */
#ifndef ZACERT_BASE_H
#define ZACERT_BASE_H

#include <stdint.h>

#if defined(__GNUC__)
#define ZACERT_API __attribute__((visibility("default")))
#else
#define ZACERT_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/*
 * ZACERT_Result: the failures of all functions; 0 is success. Comparisons that report an outcome
 * apart from failure use 200 (match) and 300 (mismatch), which are values and not failures.
 */
typedef enum ZACERT_Result {
    ZACERT_MemoryErr = 100,              /* no memory, or a time the calendar cannot convert */
    ZACERT_LengthErr = 101,              /* a length out of range */
    ZACERT_LengthNotEqualErr = 102,      /* the lengths inside an element do not add up */
    ZACERT_TimeFormatErr = 103,          /* a time field above 99 */
    ZACERT_InvalidTimeEndErr = 104,      /* a time text that does not end in "Z" */
    ZACERT_TagErr = 106,                 /* another tag than the one expected */
    ZACERT_InvalidSignatureLenErr = 107, /* a signing callback gave an unusable length */
    ZACERT_GeneralErr = 108,             /* a bad argument */
    ZACERT_CertNotEndErr = 109,          /* a certificate ended before a required element */
    ZACERT_AttributeNotSupportErr = 110, /* an identifier the accessor does not know */
    ZACERT_CrlNotEndErr = 111,           /* a CRL ended before a required element */
    ZACERT_CsrNotEndErr = 112,           /* a request ended before a required element */
    ZACERT_ItemMissingErr = 113,         /* a key structure with too few elements */
    ZACERT_AttributeAlreadySet = 114,    /* a value that may be set only once */
    ZACERT_InvalidTimeErr = 115,         /* a negative time is to be written */
    ZACERT_DnNotEqualErr = 116,          /* issuer name and subject of the issuer differ */
    ZACERT_TimeOutRangeErr = 117,        /* outside the validity period */
    ZACERT_InvalidSignatureAlgErr = 118, /* signature algorithm not supported */
    ZACERT_SignFuncNotSetErr = 119,      /* no signing callback installed */
    ZACERT_PrivateKeyErr = 120,          /* a PKCS#12 private key could not be prepared */
    ZACERT_InvalidItem = 121,            /* an item or content type outside the supported set */
    ZACERT_TypeErr = 122,                /* a content of the wrong type */
    ZACERT_IndefiniteErr = 123,          /* a broken indefinite-length encoding */
    ZACERT_RsaPublicKeyErr = 124,        /* an RSA public key that cannot be used */
    ZACERT_DigestedErr = 125,            /* a digest failed */
    ZACERT_CryptErr = 126,               /* a cipher, MAC or random operation failed */
    ZACERT_RsaPrivateKeyErr = 127,       /* an RSA private key that cannot be used */
    ZACERT_VerifyErr = 128,              /* a signature did not verify */
    ZACERT_IvaliedAlgo = 139             /* an unknown algorithm or a malformed identifier */
} ZACERT_Result;

/*
 * Anybuf: the one buffer record. `data` holds `dataLen` octets and belongs to the record. What a
 * writer returns is one complete DER element; what a reader returns is content octets. The children
 * of a SEQUENCE or SET are a chain of records linked by `next` and `prev`.
 * `dataType` is the tag: the tag number for universal and application class (16 for SEQUENCE), the
 * whole identifier octet for context-specific and private class (0xA0). `unusedBits` counts the
 * unused bits at the end of a BIT STRING. `bufFlag` is 2 in records made by the codec, else 0.
 */
typedef struct Anybuf {
    uint8_t *data;
    uint32_t dataLen;
    uint32_t unusedBits;
    uint32_t bufFlag;
    uint32_t dataType;
    struct Anybuf *next;
    struct Anybuf *prev;
} Anybuf;

/*
 * ZA_AlgorithmIdentifier: an algorithm number (0: identified by its octets) and its parameters,
 * empty when there are none. As ZA_ObjectIdentifier the embedded record holds an object
 * identifier's content octets, without tag and length.
 */
typedef struct ZA_AlgorithmIdentifier {
    uint32_t algorithm;
    Anybuf parameters;
} ZA_AlgorithmIdentifier;

typedef ZA_AlgorithmIdentifier ZA_ObjectIdentifier;

/* ZA_DER_ID_*: identifier octets. Context tags are 0x80 + n (primitive) and 0xA0 + n. */
enum {
    ZA_DER_ID_BOOLEAN = 0x01,
    ZA_DER_ID_INTEGER = 0x02,
    ZA_DER_ID_BITSTRING = 0x03,
    ZA_DER_ID_OCTETSTRING = 0x04,
    ZA_DER_ID_NULL = 0x05,
    ZA_DER_ID_OBJECTID = 0x06,
    ZA_DER_ID_ENUMERATED = 0x0A,
    ZA_DER_ID_UTF8STRING = 0x0C,
    ZA_DER_ID_PRINTABLESTRING = 0x13,
    ZA_DER_ID_IA5STRING = 0x16,
    ZA_DER_ID_UTCTIME = 0x17,
    ZA_DER_ID_GENERALIZEDTIME = 0x18,
    ZA_DER_ID_BMPSTRING = 0x1E,
    ZA_DER_ID_SEQUENCE = 0x30,
    ZA_DER_ID_SET = 0x31
};

#ifdef __cplusplus
}
#endif

#endif
