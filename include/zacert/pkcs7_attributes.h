/*
 * pkcs7_attributes.h - the identifiers of what stands in PKCS#7 messages and their parts.
 *
 * The comment behind each tells the accessor (Int or Char), whether it is settable (S) and readable
 * (G), and the value. Object identifiers are their DER content octets. Numbers of which several
 * contexts have one under the same name in the trace carry the content type here.
 */
#ifndef ZACERT_PKCS7_ATTRIBUTES_H
#define ZACERT_PKCS7_ATTRIBUTES_H

/* ZA_Pkcs7Attribute: what the setters and getters of PKCS#7 contexts take as identifier. */
typedef enum ZA_Pkcs7Attribute {
    /* SignerInfo */
    PKCS7_SIGNER_DN = 2, /* Char SG: DER of the issuer's Name, which wins over 3-10 */
    /*
     * Char SG, as all up to 10: an entry of the issuer's Name, appended, as text in GB18030. An
     * e-mail address is written as a PrintableString here, but as an IA5String in certificates:
     * Java and NSS do not find the certificate by such a Name, which 2 avoids.
     */
    PKCS7_ISSUER_COUNTRY = 3,
    PKCS7_ISSUER_STATEORPROVINCE = 4,
    PKCS7_ISSUER_LOCALITY = 5,
    PKCS7_ISSUER_ORGANIZATION = 6,
    PKCS7_ISSUER_ORGANIZATIONALUNIT = 7,
    PKCS7_ISSUER_COMMONNAME = 8,
    PKCS7_ISSUER_EMAIL = 9,
    PKCS7_ISSUER_POSTALADDRESS = 10,
    PKCS7_SIGNER_SERIAL = 11,         /* Char SG: serial number of the certificate, big-endian */
    PKCS7_SIGNER_DIGEST_ALGO = 12,    /* Char SG: digest algorithm OID; for SM2 the signature's */
    PKCS7_SIGNER_DIGEST_ENC_ALG = 13, /* Char SG: OID of the key, or of the signature */
    PKCS7_SIGNER_SIGNATURE = 14,      /* Char G: encryptedDigest */
    PKCS7_SIGNER_CONTENTTYPE = 15,    /* Char S: OID of the content's type */
    PKCS7_SIGNER_CONTENT = 16,        /* Char S: what is digested; a length of 0 clears it */

    /* EncryptedContentInfo */
    PKCS7_ENCRYPT_CONTENT_TYPE = 17,     /* Char SG: type of the content OID */
    PKCS7_ENCRYPT_ALGO = 18,             /* Char SG: content encryption algorithm OID */
    PKCS7_ENCRYPT_PARAMETER = 19,        /* Char SG: DER of the parameters, such as the IV's */
    PKCS7_ENCRYPT_ENCRYPTEDCONTENT = 20, /* Char SG: content encrypted already, or as decoded */
    PKCS7_ENCRYPT_CONTENT = 21,          /* Char SG: content to be encrypted, or decrypted */

    /* RecipientInfo */
    PKCS7_RECIPIENTINFO_VERSION = 23,    /* Int G: 0, or as decoded */
    PKCS7_RECIPIENT_DN = 24,             /* Char SG: whole DER Name of the certificate's issuer */
    PKCS7_RECIPIENT_ISSUER_COUNTRY = 25, /* Char SG, as all up to 32: a name entry, appended */
    PKCS7_RECIPIENT_ISSUER_STATEORPROVINCE = 26,
    PKCS7_RECIPIENT_ISSUER_LOCALITY = 27,
    PKCS7_RECIPIENT_ISSUER_ORGANIZATION = 28,
    PKCS7_RECIPIENT_ISSUER_ORGANIZATIONALUNIT = 29,
    PKCS7_RECIPIENT_ISSUER_COMMONNAME = 30,
    PKCS7_RECIPIENT_ISSUER_EMAIL = 31,
    PKCS7_RECIPIENT_ISSUER_POSTALADDRESS = 32,
    PKCS7_RECIPIENT_SERIAL = 33,             /* Char SG: serial number, without a leading 00 */
    PKCS7_RECIPIENT_KEYENCRYPTION_ALGO = 35, /* Char SG: key encryption algorithm OID */
    PKCS7_RECIPIENT_ENCRYPTED_KEY = 36,      /* Char SG: key encrypted already, or as decoded */
    PKCS7_RECIPIENT_KEY = 37,                /* Char SG: key to be encrypted, or decrypted */

    /*
     * signedData. What is set in a list is appended, and read by number. List every digest
     * algorithm (39) that a signer uses, each once: openssl refuses messages that do not.
     */
    PKCS7_SIGNEDDATA_VERSION = 38,     /* Int SG */
    PKCS7_SIGNEDDATA_DIGEST_ALGO = 39, /* Char SG, list: OID; an empty one counts, unwritten */
    PKCS7_SIGNEDDATA_CONTENTTYPE = 40, /* Char SG: OID */
    PKCS7_CONTENT = 41,                /* Char SG: content; empty for a detached signature */
    PKCS7_SIGNEDDATA_CERTIFICATE = 42, /* Char SG, list: DER */
    PKCS7_CRL = 43,                    /* Char SG, list: DER; read: always the first */

    /* signedAndEnvelopedData, with lists likewise. */
    PKCS7_SIGNEDANDENVELOPED_VERSION = 44,           /* Int SG */
    PKCS7_SIGNEDANDENVELOPED_CERTIFICATE = 45,       /* Char SG, list: DER */
    PKCS7_SIGNEDANDENVELOPED_CRL = 46,               /* Char SG, list: DER */
    PKCS7_SIGNEDANDENVELOPED_DIGEST_ALGO = 47,       /* Char SG, list: OID */
    PKCS7_SIGNEDANDENVELOPED_ENCRYPTED_CONTENT = 48, /* Char SG: content; decoded: encrypted */
    PKCS7_SIGNEDANDENVELOPED_CONTENTTYPE = 49,       /* Char SG: OID */
    PKCS7_SIGNEDANDENVELOPED_RECIPIENT_KEY = 50,     /* Char S: content-encryption key */

    /* EnvelopedData */
    PKCS7_ENVELOPEDDATA_VERSION = 51,           /* Int SG: 0 */
    PKCS7_ENVELOPEDDATA_ENCRYPTED_CONTENT = 52, /* Char SG: content; as decoded, encrypted still */
    PKCS7_ENVELOPEDDATA_CONTENTTYPE = 53,       /* Char SG: type of the content OID */
    PKCS7_ENVELOPEDDATA_RECIPIENT_KEY = 54,     /* Char SG: key, becomes 37 of each recipient */

    /* EncryptedData */
    PKCS7_ENCRYPTEDDATA_VERSION = 58,     /* Int SG: has to be set, 0 as a rule */
    PKCS7_ENCRYPTEDDATA_CONTENTTYPE = 59, /* Char SG: OID of what is encrypted */
    PKCS7_ENCRYPTEDDATA_CONTENT = 60, /* Char SG: to be encrypted; decoded: the encrypted content */

    /* DigestedData */
    PKCS7_DIGESTEDDATA_VERSION = 61,     /* Int SG: 0 when not set */
    PKCS7_DIGESTEDDATA_DIGEST_ALGO = 62, /* Char SG: digest algorithm OID */
    PKCS7_DIGESTEDDATA_CONTENTTYPE = 63, /* Char SG: OID of what is digested */
    /* Char SG: for data the octets of the OCTET STRING, for other types the whole element */
    PKCS7_DIGESTEDDATA_CONTENT = 64,
    PKCS7_DIGESTEDDATA_DIGEST = 65 /* Char G: received, or made by the last encoding */
} ZA_Pkcs7Attribute;

#endif
