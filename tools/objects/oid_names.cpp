#include "objects/oid_names.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

struct Row {
    std::string_view oid;
    std::string_view name;
};

constexpr auto kNames = std::to_array<Row>({
    // Attribute types of names
    {"2.5.4.3", "CN"},
    {"2.5.4.4", "SN"},
    {"2.5.4.5", "serialNumber"},
    {"2.5.4.6", "C"},
    {"2.5.4.7", "L"},
    {"2.5.4.8", "ST"},
    {"2.5.4.9", "street"},
    {"2.5.4.10", "O"},
    {"2.5.4.11", "OU"},
    {"2.5.4.12", "title"},
    {"2.5.4.13", "description"},
    {"2.5.4.15", "businessCategory"},
    {"2.5.4.16", "postalAddress"},
    {"2.5.4.17", "postalCode"},
    {"2.5.4.18", "postOfficeBox"},
    {"2.5.4.20", "telephoneNumber"},
    {"2.5.4.41", "name"},
    {"2.5.4.42", "GN"},
    {"2.5.4.43", "initials"},
    {"2.5.4.44", "generationQualifier"},
    {"2.5.4.45", "x500UniqueIdentifier"},
    {"2.5.4.46", "dnQualifier"},
    {"2.5.4.65", "pseudonym"},
    {"2.5.4.97", "organizationIdentifier"},
    {"0.9.2342.19200300.100.1.1", "UID"},
    {"0.9.2342.19200300.100.1.25", "DC"},
    {"1.2.840.113549.1.9.1", "emailAddress"},
    {"1.2.840.113549.1.9.2", "unstructuredName"},
    {"1.2.840.113549.1.9.8", "unstructuredAddress"},
    {"1.3.6.1.4.1.311.60.2.1.1", "jurisdictionL"},
    {"1.3.6.1.4.1.311.60.2.1.2", "jurisdictionST"},
    {"1.3.6.1.4.1.311.60.2.1.3", "jurisdictionC"},

    // Keys
    {"1.2.840.113549.1.1.1", "RSA"},
    {"1.2.840.113549.1.1.10", "RSA-PSS"},
    {"1.2.840.10045.2.1", "EC"},
    {"1.2.840.10040.4.1", "DSA"},
    {"1.2.840.10046.2.1", "DH"},
    {"1.3.101.110", "X25519"},
    {"1.3.101.111", "X448"},
    {"1.3.101.112", "Ed25519"},
    {"1.3.101.113", "Ed448"},

    // Signatures
    {"1.2.840.113549.1.1.2", "md2WithRSAEncryption"},
    {"1.2.840.113549.1.1.4", "md5WithRSAEncryption"},
    {"1.2.840.113549.1.1.5", "sha1WithRSAEncryption"},
    {"1.2.840.113549.1.1.11", "sha256WithRSAEncryption"},
    {"1.2.840.113549.1.1.12", "sha384WithRSAEncryption"},
    {"1.2.840.113549.1.1.13", "sha512WithRSAEncryption"},
    {"1.2.840.113549.1.1.14", "sha224WithRSAEncryption"},
    {"1.2.840.10045.4.1", "ecdsa-with-SHA1"},
    {"1.2.840.10045.4.3.1", "ecdsa-with-SHA224"},
    {"1.2.840.10045.4.3.2", "ecdsa-with-SHA256"},
    {"1.2.840.10045.4.3.3", "ecdsa-with-SHA384"},
    {"1.2.840.10045.4.3.4", "ecdsa-with-SHA512"},
    {"1.2.840.10040.4.3", "dsa-with-SHA1"},
    {"2.16.840.1.101.3.4.3.1", "dsa-with-SHA224"},
    {"2.16.840.1.101.3.4.3.2", "dsa-with-SHA256"},
    {"1.2.156.10197.1.301.1", "SM2-sign"},
    {"1.2.156.10197.1.501", "SM2-with-SM3"},
    {"1.2.156.10197.1.502", "SM2-with-SHA1"},
    {"1.2.156.10197.1.503", "SM2-with-SHA256"},

    // Digests
    {"1.2.840.113549.2.2", "MD2"},
    {"1.2.840.113549.2.5", "MD5"},
    {"1.3.14.3.2.26", "SHA-1"},
    {"2.16.840.1.101.3.4.2.4", "SHA-224"},
    {"2.16.840.1.101.3.4.2.1", "SHA-256"},
    {"2.16.840.1.101.3.4.2.2", "SHA-384"},
    {"2.16.840.1.101.3.4.2.3", "SHA-512"},
    {"1.2.156.10197.1.401", "SM3"},

    // Ciphers, and what keys are encrypted with
    {"1.2.840.113549.1.1.7", "RSA-OAEP"},
    {"1.3.14.3.2.7", "DES-CBC"},
    {"1.2.840.113549.3.2", "RC2-CBC"},
    {"1.2.840.113549.3.4", "RC4"},
    {"1.2.840.113549.3.7", "DES-EDE3-CBC"},
    {"2.16.840.1.101.3.4.1.2", "AES-128-CBC"},
    {"2.16.840.1.101.3.4.1.22", "AES-192-CBC"},
    {"2.16.840.1.101.3.4.1.42", "AES-256-CBC"},
    {"1.2.156.10197.1.104.2", "SM4-CBC"},
    {"1.2.840.113549.1.5.1", "PBE-MD2-DES"},
    {"1.2.840.113549.1.5.3", "PBE-MD5-DES"},
    {"1.2.840.113549.1.5.4", "PBE-MD2-RC2"},
    {"1.2.840.113549.1.5.6", "PBE-MD5-RC2"},
    {"1.2.840.113549.1.5.10", "PBE-SHA1-DES"},
    {"1.2.840.113549.1.5.11", "PBE-SHA1-RC2"},
    {"1.2.840.113549.1.5.13", "PBES2"},
    {"1.2.840.113549.1.5.14", "PBMAC1"},
    {"1.2.840.113549.1.12.1.1", "PBE-SHA1-RC4-128"},
    {"1.2.840.113549.1.12.1.2", "PBE-SHA1-RC4-40"},
    {"1.2.840.113549.1.12.1.3", "PBE-SHA1-DES-EDE3"},
    {"1.2.840.113549.1.12.1.4", "PBE-SHA1-DES-EDE2"},
    {"1.2.840.113549.1.12.1.5", "PBE-SHA1-RC2-128"},
    {"1.2.840.113549.1.12.1.6", "PBE-SHA1-RC2-40"},

    // Contents of PKCS#7 messages, and attributes of their signers
    {"1.2.840.113549.1.7.1", "data"},
    {"1.2.840.113549.1.7.2", "signedData"},
    {"1.2.840.113549.1.7.3", "envelopedData"},
    {"1.2.840.113549.1.7.4", "signedAndEnvelopedData"},
    {"1.2.840.113549.1.7.5", "digestedData"},
    {"1.2.840.113549.1.7.6", "encryptedData"},
    {"1.2.840.113549.1.9.16.1.4", "tSTInfo"},
    {"1.2.840.113549.1.9.16.1.9", "compressedData"},
    {"1.2.840.113549.1.9.16.1.23", "authEnvelopedData"},
    {"1.2.840.113549.1.9.3", "contentType"},
    {"1.2.840.113549.1.9.4", "messageDigest"},
    {"1.2.840.113549.1.9.5", "signingTime"},
    {"1.2.840.113549.1.9.6", "counterSignature"},
    {"1.2.840.113549.1.9.15", "smimeCapabilities"},
    {"1.2.840.113549.1.9.52", "cmsAlgorithmProtection"},
    {"1.2.840.113549.1.9.16.2.11", "encryptKeyPref"},
    {"1.2.840.113549.1.9.16.2.12", "signingCertificate"},
    {"1.2.840.113549.1.9.16.2.14", "timeStampToken"},
    {"1.2.840.113549.1.9.16.2.47", "signingCertificateV2"},

    // Bags of PKCS#12 files, what is in them, and their attributes
    {"1.2.840.113549.1.12.10.1.1", "keyBag"},
    {"1.2.840.113549.1.12.10.1.2", "pkcs8ShroudedKeyBag"},
    {"1.2.840.113549.1.12.10.1.3", "certBag"},
    {"1.2.840.113549.1.12.10.1.4", "crlBag"},
    {"1.2.840.113549.1.12.10.1.5", "secretBag"},
    {"1.2.840.113549.1.12.10.1.6", "safeContentsBag"},
    {"1.2.840.113549.1.9.22.1", "x509Certificate"},
    {"1.2.840.113549.1.9.22.2", "sdsiCertificate"},
    {"1.2.840.113549.1.9.23.1", "x509CRL"},
    {"1.2.840.113549.1.9.20", "friendlyName"},
    {"1.2.840.113549.1.9.21", "localKeyID"},
    {"1.3.6.1.4.1.311.17.1", "keyProviderName"},
    {"2.16.840.1.113894.746875.1.1", "trustedKeyUsage"},

    // Purposes of keys
    {"2.5.29.37.0", "anyExtendedKeyUsage"},
    {"1.3.6.1.5.5.7.3.1", "serverAuth"},
    {"1.3.6.1.5.5.7.3.2", "clientAuth"},
    {"1.3.6.1.5.5.7.3.3", "codeSigning"},
    {"1.3.6.1.5.5.7.3.4", "emailProtection"},
    {"1.3.6.1.5.5.7.3.5", "ipsecEndSystem"},
    {"1.3.6.1.5.5.7.3.6", "ipsecTunnel"},
    {"1.3.6.1.5.5.7.3.7", "ipsecUser"},
    {"1.3.6.1.5.5.7.3.8", "timeStamping"},
    {"1.3.6.1.5.5.7.3.9", "OCSPSigning"},
    {"1.3.6.1.5.5.7.3.17", "ipsecIKE"},
    {"1.3.6.1.4.1.311.20.2.2", "smartcardLogon"},
    {"1.3.6.1.4.1.311.10.3.3", "serverGatedCrypto"},
    {"2.16.840.1.113730.4.1", "stepUp"},

    // Access methods, policies and their qualifiers, kinds of otherName
    {"1.3.6.1.5.5.7.48.1", "ocsp"},
    {"1.3.6.1.5.5.7.48.1.1", "basicResponse"},
    {"1.3.6.1.5.5.7.48.2", "caIssuers"},
    {"1.3.6.1.5.5.7.48.3", "timeStamping"},
    {"1.3.6.1.5.5.7.48.5", "caRepository"},
    {"1.3.6.1.5.5.7.2.1", "cps"},
    {"1.3.6.1.5.5.7.2.2", "userNotice"},
    {"2.5.29.32.0", "anyPolicy"},
    {"2.23.140.1.1", "extendedValidation"},
    {"2.23.140.1.2.1", "domainValidated"},
    {"2.23.140.1.2.2", "organizationValidated"},
    {"2.23.140.1.2.3", "individualValidated"},
    {"1.3.6.1.4.1.311.20.2.3", "userPrincipalName"},
    {"1.3.6.1.5.5.7.8.7", "dnsSRV"},
    {"1.3.6.1.5.5.7.8.9", "smtpUTF8Mailbox"},

    // Instructions of entries on hold
    {"1.2.840.10040.2.1", "none"},
    {"1.2.840.10040.2.2", "callIssuer"},
    {"1.2.840.10040.2.3", "reject"},
});

struct Curve {
    std::string_view oid;
    std::string_view name;
    size_t bits;
};

constexpr auto kCurves = std::to_array<Curve>({
    {"1.2.840.10045.3.1.1", "P-192", 192},
    {"1.3.132.0.33", "P-224", 224},
    {"1.2.840.10045.3.1.7", "P-256", 256},
    {"1.3.132.0.34", "P-384", 384},
    {"1.3.132.0.35", "P-521", 521},
    {"1.3.132.0.10", "secp256k1", 256},
    {"1.3.36.3.3.2.8.1.1.7", "brainpoolP256r1", 256},
    {"1.3.36.3.3.2.8.1.1.11", "brainpoolP384r1", 384},
    {"1.3.36.3.3.2.8.1.1.13", "brainpoolP512r1", 512},
    {"1.2.156.10197.1.301", "SM2", 256},
});

const Curve *find_curve(std::string_view oid) {
    const auto curve = std::find_if(kCurves.begin(), kCurves.end(),
                                    [oid](const Curve &row) { return row.oid == oid; });
    return curve == kCurves.end() ? nullptr : &*curve;
}

}  // namespace

std::string_view oid_name(std::string_view oid) {
    if (const Curve *curve = find_curve(oid)) {
        return curve->name;
    }
    const auto row =
        std::find_if(kNames.begin(), kNames.end(), [oid](const Row &r) { return r.oid == oid; });
    return row == kNames.end() ? std::string_view() : row->name;
}

NamedId named(std::string oid) {
    std::string name(oid_name(oid));
    return {std::move(oid), std::move(name)};
}

const std::string &label(const NamedId &id) {
    return id.name.empty() ? id.oid : id.name;
}

size_t curve_bits(std::string_view oid) {
    const Curve *curve = find_curve(oid);
    return curve == nullptr ? 0 : curve->bits;
}

}  // namespace tool
