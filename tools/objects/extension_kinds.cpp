#include "objects/extension_kinds.hpp"

#include "objects/extension_values.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

constexpr auto kKinds = std::to_array<ExtensionKind>({
    {"2.5.29.14", "subjectKeyIdentifier", "Subject key identifier", "SKI",
     read_subject_key_identifier},
    {"2.5.29.15", "keyUsage", "Key usage", "KU", read_key_usage},
    {"2.5.29.17", "subjectAltName", "Subject alternative name", "SAN", read_alternative_names},
    {"2.5.29.18", "issuerAltName", "Issuer alternative name", "IAN", read_alternative_names},
    {"2.5.29.19", "basicConstraints", "Basic constraints", "BC", read_basic_constraints},
    {"2.5.29.31", "cRLDistributionPoints", "CRL distribution points", "CDP",
     read_distribution_points},
    {"2.5.29.35", "authorityKeyIdentifier", "Authority key identifier", "AKI",
     read_authority_key_identifier},
    {"2.5.29.37", "extKeyUsage", "Extended key usage", "EKU", read_purposes},
    {"2.5.29.9", "subjectDirectoryAttributes", "Subject directory attributes", "SDA", read_nothing},
    {"2.5.29.16", "privateKeyUsagePeriod", "Private key usage period", "PKUP", read_nothing},
    {"2.5.29.30", "nameConstraints", "Name constraints", "NC", read_name_constraints},
    {"2.5.29.32", "certificatePolicies", "Certificate policies", "CP", read_policies},
    {"2.5.29.33", "policyMappings", "Policy mappings", "PM", read_policy_mappings},
    {"2.5.29.36", "policyConstraints", "Policy constraints", "PC", read_policy_constraints},
    {"2.5.29.46", "freshestCRL", "Freshest CRL", "FCRL", read_distribution_points},
    {"2.5.29.54", "inhibitAnyPolicy", "Inhibit any policy", "IAP", read_inhibit_any_policy},
    {"1.3.6.1.5.5.7.1.1", "authorityInfoAccess", "Authority information access", "AIA",
     read_access_descriptions},
    {"1.3.6.1.5.5.7.1.3", "qcStatements", "Qualified certificate statements", "QC", read_nothing},
    {"1.3.6.1.5.5.7.1.11", "subjectInfoAccess", "Subject information access", "SIA",
     read_access_descriptions},
    {"1.3.6.1.5.5.7.1.12", "logotype", "Logotype", "LOGO", read_nothing},
    {"1.3.6.1.5.5.7.1.24", "tlsFeature", "TLS feature", "TLSF", read_nothing},
    {"1.3.6.1.5.5.7.48.1.5", "ocspNoCheck", "OCSP no check", "ONC", read_nothing},
    {"1.3.6.1.4.1.11129.2.4.2", "signedCertificateTimestampList", "Signed certificate timestamps",
     "SCT", read_nothing},
    {"1.3.6.1.4.1.11129.2.4.3", "precertificatePoison", "Precertificate poison", "CTP",
     read_nothing},
    {"1.3.6.1.4.1.311.20.2", "enrollCertType", "Enrolment certificate type", "MSCT", read_string},
    {"1.3.6.1.4.1.311.21.1", "caVersion", "CA version", "MSCV", read_nothing},
    {"1.3.6.1.4.1.311.21.2", "previousCaCertHash", "Previous CA certificate hash", "MSPC",
     read_nothing},
    {"1.2.840.113533.7.65.0", "versionInfo", "Version information", "VI", read_nothing},
    {"2.16.840.1.113730.1.1", "netscapeCertType", "Netscape certificate type", "NCT", read_nothing},
    {"2.16.840.1.113730.1.13", "netscapeComment", "Netscape comment", "NCOM", read_string},

    // CRLs and their entries
    {"2.5.29.20", "cRLNumber", "CRL number", "CRLN", read_crl_number},
    {"2.5.29.21", "reasonCode", "Reason", "RC", read_reason},
    {"2.5.29.23", "holdInstructionCode", "Hold instruction", "HIC", read_identifier},
    {"2.5.29.24", "invalidityDate", "Invalidity date", "ID", read_instant},
    {"2.5.29.27", "deltaCRLIndicator", "Delta CRL indicator", "DCI", read_crl_number},
    {"2.5.29.28", "issuingDistributionPoint", "Issuing distribution point", "IDP",
     read_issuing_distribution_point},
    {"2.5.29.29", "certificateIssuer", "Certificate issuer", "CI", read_alternative_names},
    {"2.5.29.60", "expiredCertsOnCRL", "Expired certificates on CRL", "ECOC", read_instant},

    // OCSP requests and responses
    {"1.3.6.1.5.5.7.48.1.2", "ocspNonce", "OCSP nonce", "NON", read_nothing},
    {"1.3.6.1.5.5.7.48.1.3", "ocspCrlReference", "OCSP CRL reference", "OCR", read_nothing},
    {"1.3.6.1.5.5.7.48.1.4", "ocspResponseTypes", "OCSP response types", "ORT", read_nothing},
    {"1.3.6.1.5.5.7.48.1.6", "ocspArchiveCutoff", "OCSP archive cutoff", "OAC", read_instant},
    {"1.3.6.1.5.5.7.48.1.7", "ocspServiceLocator", "OCSP service locator", "OSL", read_nothing},

    // The national certificate standard; its two arcs number the middle ones in opposite order.
    {"1.2.86.11.7.1", "identityNumbers", "Identity numbers", "IDNO", read_identity_numbers},
    {"1.2.86.11.7.2", "insuranceNumber", "Insurance number", "INS", read_string},
    {"1.2.86.11.7.3", "organizationCode", "Organisation code", "ORG", read_string},
    {"1.2.86.11.7.4", "businessRegistrationNumber", "Business registration number", "BRN",
     read_string},
    {"1.2.86.11.7.5", "taxationNumber", "Taxation number", "TAX", read_string},
    {"1.2.156.10260.4.1.1", "identityNumbers", "Identity numbers", "IDNO", read_identity_numbers},
    {"1.2.156.10260.4.1.2", "insuranceNumber", "Insurance number", "INS", read_string},
    {"1.2.156.10260.4.1.3", "businessRegistrationNumber", "Business registration number", "BRN",
     read_string},
    {"1.2.156.10260.4.1.4", "organizationCode", "Organisation code", "ORG", read_string},
    {"1.2.156.10260.4.1.5", "taxationNumber", "Taxation number", "TAX", read_string},
});

}  // namespace

const ExtensionKind *find_extension_kind(std::string_view oid) {
    const auto *kind = std::find_if(kKinds.begin(), kKinds.end(),
                                    [oid](const ExtensionKind &row) { return row.oid == oid; });
    return kind == kKinds.end() ? nullptr : kind;
}

}  // namespace tool
