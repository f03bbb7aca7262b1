/*
 * crl_attributes.h - the identifiers of a certificate revocation list's attributes.
 *
 * The comment behind each tells the accessor (Int or Char), whether it is settable (S) and readable
 * (G), and the value. Object identifiers are their DER content octets.
 */
#ifndef ZACERT_CRL_ATTRIBUTES_H
#define ZACERT_CRL_ATTRIBUTES_H

/* ZA_CrlAttribute: what ZACert_Set/GetCrlAttributeInt/Char take as attribute type. */
typedef enum ZA_CrlAttribute {
    CRL_TBS_CERTLIST = 1001,             /* Char G: DER of the TBSCertList, decoded or encoded */
    CRL_OUTER_SIGNATUREALGORITHM = 1002, /* Char SG: signature algorithm OID behind the TBS */
    CRL_CA_SIGNATURE = 1003,             /* Char SG: content of the signature BIT STRING */
    CRL_VERSION = 1004, /* Int SG: 1 for version 2, which others expect; always written */
    CRL_INNER_SIGNATUREALGORITHM = 1005, /* Char SG: signature algorithm OID inside the TBS */

    CRL_ISSUER_DN = 1006,          /* Char G: issuer as text (ZI_GetDN), made on first request */
    CRL_ISSUER_COUNTRYNAME = 1007, /* Char SG, as all up to 1016: a name entry, appended */
    CRL_ISSUER_STATEORPROVINCENAME = 1008,
    CRL_ISSUER_LOCALITYNAME = 1009,
    CRL_ISSUER_ORGANIZATIONNAME = 1010,
    CRL_ISSUER_ORGANIZATIONALUNITNAME = 1011, /* read: all of them, joined by ",OU=" */
    CRL_ISSUER_COMMONNAME = 1012,
    CRL_ISSUER_EMAIL = 1013,
    CRL_ISSUER_POSTALADDRESS = 1014,
    CRL_ISSUER_POSTALCODE = 1015,
    CRL_ISSUER_TELEPHONE = 1016,

    CRL_THISUPDATE = 1027, /* Int SG: 0 when it was a GeneralizedTime */
    CRL_NEXTUPDATE = 1028, /* Int SG: likewise; written when set, 0 when it is not there */

    /*
     * Revoked certificates. Setters act on the entry that 1029 added last, getters on the current
     * one: at first the first, then the one that 1031 moved to. Behind the last entry 1029 has
     * length 0 and 1030 is 0.
     */
    CRL_CERT_SERIALNUMBER = 1029, /* Char SG: octets of the INTEGER; set: adds an entry */
    CRL_REVOCATIONDATE = 1030,    /* Int SG: 0 when it was a GeneralizedTime */
    /*
     * Char G: moves to the next entry, on every call; writes nothing and gives length 1 when there
     * is a next entry, else 0.
     */
    CRL_CERT_NEXT = 1031,

    /* Criticality: the first octet of the value, 0 by default. */
    CRLEX_AUTHORITY_KEYIDENTIFIER_CRITICAL = 1032, /* Char S: counts when set after 1033 */
    CRLEX_AUTHORITY_KEYIDENTIFIER = 1033,          /* Char S: key identifier octets */
    CRLEX_CRLNUMBER_CRITICAL = 1052,               /* Char S */
    CRLEX_CRLNUMBER = 1053,                        /* Char SG: octets of the INTEGER */
    CRLEX_DELTACRLINDICATOR_CRITICAL = 1054,       /* Char S */
    CRLEX_DELTACRLINDICATOR = 1055,    /* Char SG: number of the base CRL, octets of the INTEGER */
    CRLEX_ISSUINGDIST_CRITICAL = 1056, /* Char S */
    CRLEX_ISSUINGDIST_FULLNAME = 1057, /* Char S: a URI */
    /*
     * Char SG: reason of an entry, content octets of the ENUMERATED. Read behind the last entry it
     * is the DER of the decoded revokedCertificates.
     */
    CRLEX_CRLREASON = 1063
} ZA_CrlAttribute;

#endif
