/*
 * csr_attributes.h - the identifiers of a request's attributes.
 *
 * The comment behind each tells the accessor (Int or Char), whether it is settable (S) and readable
 * (G), and the value. Object identifiers are their DER content octets. These are the fields of a
 * request; what PKCS#10 calls attributes is set with ZACert_SetCsrAttributePrivate.
 */
#ifndef ZACERT_CSR_ATTRIBUTES_H
#define ZACERT_CSR_ATTRIBUTES_H

/* ZA_CsrAttribute: what ZACert_Set/GetCsrAttributeInt/Char take as attribute type. */
typedef enum ZA_CsrAttribute {
    CSR_TBS_CSR = 2001,                  /* Char G: DER of the CertificationRequestInfo */
    CSR_OUTER_SIGNATUREALGORITHM = 2002, /* Char SG: signature algorithm OID */
    CSR_SELF_SIGNATURE = 2003,           /* Char SG: content of the signature BIT STRING */
    CSR_VERSION = 2004,                  /* Int S: 0, the only version there is, when not set */

    CSR_SUBJECT_COUNTRYNAME = 2006, /* Char SG, as all up to 2015: a name entry, appended */
    CSR_SUBJECT_STATEORPROVINCENAME = 2007,
    CSR_SUBJECT_LOCALITYNAME = 2008,
    CSR_SUBJECT_ORGANIZATIONNAME = 2009,
    CSR_SUBJECT_ORGANIZATIONALUNITNAME = 2010, /* read: all of them, joined by ",OU=" */
    CSR_SUBJECT_COMMONNAME = 2011,
    CSR_SUBJECT_EMAIL = 2012,
    CSR_SUBJECT_POSTALADDRESS = 2013,
    CSR_SUBJECT_POSTALCODE = 2014,
    CSR_SUBJECT_TELEPHONE = 2015,

    CSR_PUBLICKEY_ALGORITHM = 2026, /* Char SG: key algorithm OID */
    /*
     * Char SG: for RSA the content of the subjectPublicKey BIT STRING (RSAPublicKey). For a 256-bit
     * elliptic-curve key, set and read, the form of ZACERT_EncodeEccPubKey. For every other key the
     * content of the BIT STRING.
     */
    CSR_SUBJECTPUBLICKEYINFO = 2027,

    /*
     * Char SG: curve OID; setting it makes the key an elliptic-curve key on a named curve. Explicit
     * curve parameters are read as their whole DER, which cannot be set again.
     */
    CSR_ECC_PUBLICKEY_OID = 3004,
    /*
     * Char S: string types of the subject's entries, one octet each, at most 255; see
     * CERT_ISSUER_DN_DER_ID_TAG.
     */
    CSR_DN_DER_ID_TAG = 3005
} ZA_CsrAttribute;

#endif
