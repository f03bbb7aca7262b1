#include "extensions.hpp"

#include "der.hpp"
#include "extension_values.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

struct Kind {
    std::string_view oid;
    std::string_view name;  // as the standards write it
    std::string_view title;
    std::string_view short_code;
    ExtensionValue (*read)(const ExtensionSource &);
};

constexpr auto kKinds = std::to_array<Kind>({
    // The first eight have attributes of their own in the library; it lists all others as private.
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
});

constexpr size_t kNumOwnAttributes = 8;

const Kind *find_kind(std::string_view oid) {
    const auto kind = std::find_if(kKinds.begin(), kKinds.end(),
                                   [oid](const Kind &row) { return row.oid == oid; });
    return kind == kKinds.end() ? nullptr : &*kind;
}

bool has_own_attribute(const Kind *kind) {
    return kind != nullptr && kind < kKinds.data() + kNumOwnAttributes;
}

RawExtension read_raw(const Anybuf &element) {
    // Extension ::= SEQUENCE { extnID, critical BOOLEAN DEFAULT FALSE, extnValue OCTET STRING }
    Fields fields(sequence(element));
    RawExtension extension;
    extension.oid = object_id(fields.next());
    if (const Anybuf *critical = fields.optional(ZA_DER_ID_BOOLEAN)) {
        extension.critical = boolean(*critical);
    }
    extension.octets = content(fields.required(ZA_DER_ID_OCTETSTRING));
    return extension;
}

// All extensions in their order; those of the private list as the library keeps them.
std::vector<RawExtension> raw_extensions(const Context &context, const Anybuf &wrapper) {
    std::vector<RawExtension> listed = context.private_extensions();
    auto next_listed = listed.begin();
    std::vector<RawExtension> extensions;
    const Octets inner = content(wrapper);
    for (const Anybuf &element : sequence(record_of(inner))) {
        RawExtension extension = read_raw(element);
        if (!has_own_attribute(find_kind(extension.oid))) {
            if (next_listed == listed.end() || next_listed->oid != extension.oid) {
                throw LibraryError(ZACERT_InvalidItem);
            }
            extension = std::move(*next_listed++);
        }
        extensions.push_back(std::move(extension));
    }
    return extensions;
}

void decode(const Context &context, const Kind &kind, Extension &extension) {
    extension.id.name = kind.name;
    extension.title = kind.title;
    extension.short_code = kind.short_code;
    try {
        extension.value = kind.read({context, extension.octets});
    } catch (const LibraryError &error) {
        extension.problem = error.what();
    }
}

}  // namespace

std::vector<Extension> read_extensions(const Context &context, const Anybuf &wrapper) {
    std::vector<Extension> extensions;
    for (RawExtension &raw : raw_extensions(context, wrapper)) {
        const bool repeated =
            std::any_of(extensions.begin(), extensions.end(),
                        [&](const Extension &earlier) { return earlier.id.oid == raw.oid; });
        Extension extension;
        extension.id.oid = std::move(raw.oid);
        extension.critical = raw.critical;
        extension.octets = std::move(raw.octets);
        if (repeated) {
            extension.problem = "the extension is there twice";
        } else if (const Kind *kind = find_kind(extension.id.oid)) {
            decode(context, *kind, extension);
        }
        extensions.push_back(std::move(extension));
    }
    return extensions;
}

}  // namespace tool
