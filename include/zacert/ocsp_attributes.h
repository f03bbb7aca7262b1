/*
 * ocsp_attributes.h - the identifiers of what stands in OCSP requests, responses and their entries.
 *
 * The comment behind each tells the accessor (Int or Char), whether it is settable (S) and readable
 * (G), and the value. Object identifiers are their DER content octets; text is GB18030.
 */
#ifndef ZACERT_OCSP_ATTRIBUTES_H
#define ZACERT_OCSP_ATTRIBUTES_H

/* ZA_OcspAttribute: what the setters and getters of OCSP contexts take as identifier. */
typedef enum ZA_OcspAttribute {
    /*
     * Extensions of a request. A first octet that is not 0 marks the extension critical; a mark
     * without a value fails when the request is encoded.
     */
    OCSP_EXT_NONCE_CRITICAL = 0,             /* Char SG */
    OCSP_EXT_NONCE = 1,                      /* Char SG: octets that the answer repeats */
    OCSP_EXT_CRLID_CRITICAL = 2,             /* Char SG */
    OCSP_EXT_CRL_NUM = 3,                    /* Int SG: number of the list referred to */
    OCSP_EXT_CRL_TIME = 4,                   /* Int SG: time of the list referred to */
    OCSP_EXT_CRL_URL = 5,                    /* Char SG: where that list is, an IA5String */
    OCSP_EXT_ACCEPTABLERESON_CRITICAL = 6,   /* Char SG */
    OCSP_EXT_ACCEPTABLERESON = 7,            /* Char SG: type of response OID, appended */
    OCSP_EXT_ARCHIVECUTOFF_CRITICAL = 8,     /* Char SG */
    OCSP_EXT_ARCHIVECUTOFF = 9,              /* Int SG: how far back answers go */
    OCSP_EXT_CRLENTRY_CRITICAL = 10,         /* Char SG */
    OCSP_EXT_CRLENTRY = 11,                  /* Char SG: value of reasonCode, DER */
    OCSP_EXT_SERVICELOCATOR_CRITICAL = 12,   /* Char SG */
    OCSP_EXT_SERVICELOCATOR_ISSUERNAME = 13, /* Char SG: DER of the issuer's Name */
    OCSP_EXT_SERVICELOCATOR_LOCATOR = 14,    /* Char SG: DER of AuthorityInfoAccessSyntax */

    /* A request's entry. The two hashes are what the function made, or what was decoded. */
    OCSP_REQUESTLIST_SERIALNUMBER = 15,   /* Char SG: serial number, big-endian */
    OCSP_REQUESTLIST_ISSUERNAME = 16,     /* Char SG: DER of the issuer's Name */
    OCSP_REQUESTLIST_ISSUERKEY = 17,      /* Char SG: octets inside the issuer's public key */
    OCSP_REQUESTLIST_ISSUERHASHNAME = 18, /* Char G */
    OCSP_REQUESTLIST_ISSUERHASHKEY = 19,  /* Char G */
    OCSP_REQUESTLIST_HASHALGO = 20,       /* Char SG: hash algorithm OID */
    OCSP_REQUESTLIST_PARAM = 21,          /* Char SG: DER of its parameters; none need be set */
    OCSP_REQUESTLIST_CERTID = 22,         /* Char SG: the whole CertID; nothing is hashed then */

    /* A response's entry */
    OCSP_RESPONDERLIST_THISUPDATE = 23,     /* Int SG */
    OCSP_RESPONDERLIST_NEXTUPDATE = 24,     /* Int SG */
    OCSP_RESPONDERLIST_SERIALNUMBER = 25,   /* Char SG: as 15 */
    OCSP_RESPONDERLIST_ISSUERNAME = 26,     /* Char SG: as 16 */
    OCSP_RESPONDERLIST_ISSUERHASHNAME = 27, /* Char G */
    OCSP_RESPONDERLIST_ISSUERKEY = 28,      /* Char SG: as 17 */
    OCSP_RESPONDERLIST_ISSUERHASHKEY = 29,  /* Char G */
    OCSP_RESPONDERLIST_HASHALGO = 30,       /* Char SG: as 20 */
    OCSP_RESPONDERLIST_PARAM = 31,          /* Char SG: as 21 */
    OCSP_RESPONDERLIST_CERTID = 32,         /* Char SG: as 22 */

    /* A request */
    OCSP_REQUEST_VERSION = 33,           /* Int SG: written even where it is 0 */
    OCSP_REQUEST_REQUESTOR_DN = 34,      /* Char SG: DER of a Name, which wins over 35-42 */
    OCSP_REQUEST_REQUESTOR_COUNTRY = 35, /* Char SG, as all up to 42: a name entry, appended */
    OCSP_REQUEST_REQUESTOR_STATEORPROVINCE = 36,
    OCSP_REQUEST_REQUESTOR_LOCALITY = 37,
    OCSP_REQUEST_REQUESTOR_ORGANIZATION = 38,
    OCSP_REQUEST_REQUESTOR_ORGANIZATIONALUNIT = 39,
    OCSP_REQUEST_REQUESTOR_COMMONNAME = 40,
    OCSP_REQUEST_REQUESTOR_EMAIL = 41,
    OCSP_REQUEST_REQUESTOR_POSTALADDRESS = 42,
    OCSP_REQUEST_REQUESTOR_SIGNALGO = 43, /* Char SG: signature algorithm OID */
    OCSP_REQUEST_REQUESTOR_PARAM = 44,    /* Char SG: its parameters, which are never written */
    OCSP_REQUEST_REQUESTOR_CERTS = 45,    /* Char SG: certificate, appended */

    /* A response */
    OCSP_RESPONSE_VERSION = 46,        /* Int SG: written even where it is 0 */
    OCSP_RESPONSE_PRODUCEDAT = 47,     /* Int SG: time of the answer */
    OCSP_RESPONSE_STATUS = 48,         /* Char SG: content octets of an ENUMERATED, one usually */
    OCSP_RESPONSE_RESPONDERID_DN = 49, /* Char SG: DER of a Name, instead of 50-57 */
    OCSP_RESPONSE_RESPONDERID_COUNTRY = 50, /* Char SG, as all up to 57: a name entry, appended */
    OCSP_RESPONSE_RESPONDERID_STATEORPROVINCE = 51,
    OCSP_RESPONSE_RESPONDERID_LOCALITY = 52,
    OCSP_RESPONSE_RESPONDERID_ORGANIZATION = 53,
    OCSP_RESPONSE_RESPONDERID_ORGANIZATIONALUNIT = 54,
    OCSP_RESPONSE_RESPONDERID_COMMONNAME = 55,
    OCSP_RESPONSE_RESPONDERID_EMAIL = 56,
    OCSP_RESPONSE_RESPONDERID_POSTALADDRESS = 57,
    OCSP_RESPONSE_RESPONDERID_HASHKEY_COMPUTE = 58, /* Char SG: public key to be hashed */
    OCSP_RESPONSE_RESPONDERID_HASHKEY = 59,         /* Char SG: hash of the public key */
    OCSP_RESPONSE_SIGNALGO = 60,                    /* Char SG: signature algorithm OID */
    OCSP_RESPONSE_PARAM = 61,                       /* Char SG: as 44 */
    OCSP_RESPONSE_CERTS = 62,                       /* Char SG: certificate, appended */
    OCSP_RESPONSETYPE = 63                          /* Char SG: 1.3.6.1.5.5.7.48.1.1 */
} ZA_OcspAttribute;

#endif
