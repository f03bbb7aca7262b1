/*
 * cert_attributes.h - the identifiers of a certificate's attributes.
 *
 * The comment behind each tells the accessor (Int or Char), whether it is settable (S) and readable
 * (G), and the value. Object identifiers are their DER content octets unless "dotted" is said.
 */
#ifndef ZACERT_CERT_ATTRIBUTES_H
#define ZACERT_CERT_ATTRIBUTES_H

/* ZA_CertAttribute: what ZACert_Set/GetCertAttributeInt/Char take as attribute type. */
typedef enum ZA_CertAttribute {
    CERT_TBS_CERTIFICATE = 1,          /* Char G: DER of the decoded TBSCertificate */
    CERT_OUTER_SIGNATUREALGORITHM = 2, /* Char SG: signature algorithm OID behind the TBS */
    CERT_CA_SIGNATURE = 3,             /* Char SG: content of the signature BIT STRING */
    CERT_VERSION = 4,                  /* Int SG: 0, 1 or 2 for versions 1, 2 and 3 */
    CERT_SERIALNUMBER = 5,             /* Char SG: octets of the INTEGER, without a leading 00 */
    CERT_INNER_SIGNATUREALGORITHM = 6, /* Char SG: signature algorithm OID inside the TBS */
    CERT_ISSUER_DERDN = 7,             /* Char SG: whole DER Name of the issuer; replaces */

    CERT_ISSUER_DN = 8, /* Char G: issuer as text, in the form of ZI_GetDN, made on first request */
    CERT_ISSUER_COUNTRYNAME = 9, /* Char SG, as all up to 18: a name entry, appended */
    CERT_ISSUER_STATEORPROVINCENAME = 10,
    CERT_ISSUER_LOCALITYNAME = 11,
    CERT_ISSUER_ORGANIZATIONNAME = 12,
    CERT_ISSUER_ORGANIZATIONALUNITNAME = 13, /* read: all of them, joined by ",OU=" */
    CERT_ISSUER_COMMONNAME = 14,
    CERT_ISSUER_EMAIL = 15,
    CERT_ISSUER_POSTALADDRESS = 16,
    CERT_ISSUER_POSTALCODE = 17,
    CERT_ISSUER_TELEPHONE = 18,

    CERT_VALIDFROM = 29,           /* Int SG: notBefore; 0 when it was a GeneralizedTime */
    CERT_VALIDTO = 30,             /* Int SG: notAfter, likewise */
    CERT_SUBJECT_DERDN = 31,       /* Char SG: whole DER Name of the subject */
    CERT_SUBJECT_DN = 32,          /* Char G: subject as text */
    CERT_SUBJECT_COUNTRYNAME = 33, /* Char SG, as all up to 42: a name entry, appended */
    CERT_SUBJECT_STATEORPROVINCENAME = 34,
    CERT_SUBJECT_LOCALITYNAME = 35,
    CERT_SUBJECT_ORGANIZATIONNAME = 36,
    CERT_SUBJECT_ORGANIZATIONALUNITNAME = 37, /* read: all of them, joined by ",OU=" */
    CERT_SUBJECT_COMMONNAME = 38,
    CERT_SUBJECT_EMAIL = 39,
    CERT_SUBJECT_POSTALADDRESS = 40,
    CERT_SUBJECT_POSTALCODE = 41,
    CERT_SUBJECT_TELEPHONE = 42,

    CERT_PUBLICKEY_ALGORITHM = 53, /* Char SG: key algorithm OID */
    /*
     * Char SG: for RSA the content of the subjectPublicKey BIT STRING (RSAPublicKey). For a 256-bit
     * elliptic-curve key, set and read, the form of ZACERT_EncodeEccPubKey. For every other key the
     * content of the BIT STRING.
     */
    CERT_SUBJECTPUBLICKEYINFO = 54,

    /* Criticality: the first octet of the value. It counts when set after the extension's value. */
    CERTEX_AUTHORITYKEYIDENTIFIER_CRITICAL = 64, /* Char S */
    CERTEX_AUTHORITYKEYIDENTIFIER = 65,          /* Char SG, once: key identifier octets */
    CERTEX_SUBJECTKEYIDENTIFIER_CRITICAL = 84,   /* Char S */
    CERTEX_SUBJECTKEYIDENTIFIER = 85,            /* Char SG, once: key identifier octets */
    CERTEX_KEYUSAGE_CRITICAL = 86,               /* Char SG; 1 by default */
    CERTEX_KEYUSAGE = 87, /* Char SG, once: 1 or 2 octets, 0x80 of the first being bit 0 */
    CERTEX_CERTPOLICY_CRITICAL = 91, /* Char S */
    CERTEX_CERTPOLICYID = 92,        /* Char S: policy OID; the first one counts */
    CERTEX_CERTPOLICY_CPS = 93,      /* Char S: a CPS URI, appended */

    CERT_SUBJECT_ALT_COUNTRYNAME = 101, /* Char S: directoryName entries of the SAN, appended */
    CERT_SUBJECT_ALT_STATEORPROVINCENAME = 102,
    CERT_SUBJECT_ALT_LOCALITYNAME = 103,
    CERT_SUBJECT_ALT_ORGANIZATIONNAME = 104,
    CERT_SUBJECT_ALT_ORGANIZATIONALUNITNAME = 105,
    CERT_SUBJECT_ALT_COMMONNAME = 106, /* Char SG */
    CERT_SUBJECT_ALT_EMAIL = 107,      /* Char SG */
    CERT_ISSUER_ALT_COUNTRYNAME = 109, /* Char S: directoryName entries of the IAN, appended */
    CERT_ISSUER_ALT_STATEORPROVINCENAME = 110,
    CERT_ISSUER_ALT_LOCALITYNAME = 111,
    CERT_ISSUER_ALT_ORGANIZATIONNAME = 112,
    CERT_ISSUER_ALT_ORGANIZATIONALUNITNAME = 113,
    CERT_ISSUER_ALT_COMMONNAME = 114, /* Char SG */
    CERT_ISSUER_ALT_EMAIL = 115,      /* Char SG */

    CERTEX_BASICCONSTRAINTS_CRITICAL = 119, /* Char SG; sets the extension too */
    CERTEX_AUTHORITY = 120,                 /* Char SG: cA flag; makes the extension critical */
    CERTEX_PATHLENCONSTRAINT = 121,         /* Char SG: path length, octets of the INTEGER */
    CERTEX_EXTKEY_CRITICAL = 128,           /* Char S */
    /*
     * Char SG, once: four octets, little-endian: 0x40 serverAuth, 0x80 clientAuth, 0x100
     * codeSigning, 0x200 emailProtection, 0x400 ipsecEndSystem, 0x800 ipsecTunnel, 0x1000
     * ipsecUser, 0x2000 timeStamping. A shorter value fills the most significant octets. Read from
     * a decoded certificate it holds the purposes recognised.
     */
    CERTEX_EXTKEY_USAGE = 129,
    CERTEX_CRLDIST_CRITICAL = 130,        /* Char S */
    CERTEX_CRLDIST_FULLNAME = 131,        /* Char SG: a URI, appended; read: the first one */
    CERTEX_AUTHORITYINFO_CRITICAL = 135,  /* Char S */
    CERTEX_AUTHORITYINFO_OCSP = 136,      /* Char S: a URI, appended */
    CERTEX_AUTHORITYINFO_CAISSUERS = 137, /* Char S: a URI, appended */
    CERTEX_EXTKEY_USAGE_OID_DEFINE = 155, /* Char S: a purpose's OID, dotted, appended */

    CERT_SUBJECT_ALT_OTHERNAME_TYPEID = 501,          /* Char S: otherName type OID, dotted */
    CERT_SUBJECT_ALT_OTHERNAME_VALUE = 502,           /* Char S: otherName value */
    CERT_SUBJECT_ALT_OTHERNAME_VALUE_TAG = 503,       /* Char S: first octet: its universal tag */
    CERT_SUBJECT_ALT_RFC822NAME = 504,                /* Char SG, once */
    CERT_SUBJECT_ALT_DNSNAME = 505,                   /* Char SG, once */
    CERT_SUBJECT_ALT_UNIFORMRESOURCEIDENTIFIER = 509, /* Char SG, once */
    CERT_SUBJECT_ALT_IPADDRESS = 510,                 /* Char SG: address octets */
    CERT_SUBJECT_ALT_CRITICAL = 512,                  /* Char S */

    CERT_SUBJECT_dnQualifier = 533,              /* Char S: subject name entry, appended */
    CERT_ISSUER_dnQualifier = 534,               /* Char S: issuer name entry, appended */
    CERT_ISSUER_PUBLICKEYINFO_SN = 537,          /* Char S: authorityCertSerialNumber */
    CERT_ISSUER_PUBLICKEYINFO_COUNTRYNAME = 538, /* Char S: authorityCertIssuer, up to 545 */
    CERT_ISSUER_PUBLICKEYINFO_STATEORPROVINCENAME = 539,
    CERT_ISSUER_PUBLICKEYINFO_LOCALITYNAME = 540,
    CERT_ISSUER_PUBLICKEYINFO_ORGANIZATIONNAME = 541,
    CERT_ISSUER_PUBLICKEYINFO_ORGANIZATIONALUNITNAME = 542,
    CERT_ISSUER_PUBLICKEYINFO_COMMONNAME = 543,
    CERT_ISSUER_PUBLICKEYINFO_EMAIL = 544,
    CERT_ISSUER_PUBLICKEYINFO_dnQualifier = 545,

    CERT_ISSUER_DN_DER_ID_TAG = 3001,  /* Char S: string types of the issuer's entries, up to 256;
                                          see ZI_EncodeCertIssuerSuject */
    CERT_SUBJCET_DN_DER_ID_TAG = 3002, /* Char S: string types of the subject's entries */
    /*
     * Char SG: parameters of the key algorithm: the curve's OID. Setting it makes the key an
     * elliptic-curve one. Read from a decoded certificate: OID content octets, or the whole element
     * of explicit parameters (which cannot be set again as an OID), or nothing for NULL.
     */
    CERT_ECC_PUBLICKEY_OID = 3003
} ZA_CertAttribute;

#endif
