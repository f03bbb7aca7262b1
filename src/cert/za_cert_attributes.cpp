// One row per attribute, and the setters and getters that the rows name.
#include "cert/za_cert_attributes.hpp"

#include "names/za_low_oid.hpp"
#include "runtime/trace.hpp"

#include <array>
#include <bit>

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

}  // namespace

namespace za::cert {
namespace {

using Row = AttributeRow<Certificate>;

// The member of a member of a context.
template <auto First, auto... Rest>
auto &member(auto &object) {
    if constexpr (sizeof...(Rest) == 0) {
        return object.*First;
    } else {
        return member<Rest...>(object.*First);
    }
}

// ---- Plain values

template <auto... Path>
Status set_field(Certificate &cert, const Row &, Bytes value) {
    return member<Path...>(cert).assign(value);
}

template <auto... Path>
Status get_field(Certificate &cert, const Row &, Bytes &out) {
    out = member<Path...>(cert).bytes();
    return Status::ok;
}

void set_version(Certificate &cert, int32_t value) {
    cert.has_version = true;
    cert.version = static_cast<uint32_t>(value);
}

Status get_version(const Certificate &cert, uint32_t &out) {
    out = cert.version;
    return Status::ok;
}

template <auto Which>
void set_time(Certificate &cert, int32_t value) {
    (cert.*Which).set(value);
}

template <auto Which>
Status get_time(const Certificate &cert, uint32_t &out) {
    int32_t seconds = 0;
    ZA_PASS((cert.*Which).utc(seconds));
    out = static_cast<uint32_t>(seconds);
    return Status::ok;
}

// ---- Names

Status set_issuer_der(Certificate &cert, const Row &, Bytes value) {
    if (cert.issuer.der.holds_empty_storage()) {
        return trace.fail(Status::general);
    }
    return cert.issuer.der.assign(value);
}

template <auto Which, uint32_t kStringType = 0>
Status add_entry(Certificate &cert, const Row &row, Bytes value) {
    return (cert.*Which).entries.append(row.kind, value, kStringType);
}

Bytes first_of_kind(const names::NameList &entries, uint32_t kind) {
    const ZI_NameEntry *entry = entries.first();
    while (entry != nullptr && entry->attrKind != kind) {
        entry = entry->nextEntry;
    }
    return entry == nullptr ? Bytes{} : bytes_of(entry->attrValue);
}

template <auto Which>
Status get_entry(Certificate &cert, const Row &row, Bytes &out) {
    out = first_of_kind((cert.*Which).entries, row.kind);
    return Status::ok;
}

// All organisational units, joined as in the text form of a name.
template <auto Which>
Status get_units(Certificate &cert, const Row &row, Bytes &out) {
    constexpr std::string_view kJoint = ",OU=";
    Name &name = cert.*Which;
    size_t size = 0;
    size_t num_units = 0;
    for (auto *entry = name.entries.first(); entry != nullptr; entry = entry->nextEntry) {
        if (entry->attrKind == row.kind) {
            size += bytes_of(entry->attrValue).size() + (num_units > 0 ? kJoint.size() : 0);
            ++num_units;
        }
    }
    if (num_units <= 1) {
        out = first_of_kind(name.entries, row.kind);
        return Status::ok;
    }
    Octets joined;
    ZA_PASS(joined.allocate(size));
    uint8_t *place = joined.data();
    bool is_first = true;
    for (auto *entry = name.entries.first(); entry != nullptr; entry = entry->nextEntry) {
        if (entry->attrKind == row.kind) {
            place = put(place, bytes_of(is_first ? std::string_view() : kJoint));
            place = put(place, bytes_of(entry->attrValue));
            is_first = false;
        }
    }
    name.joined_units.take(std::move(joined));
    out = name.joined_units.bytes();
    return Status::ok;
}

template <auto Which>
Status get_text(Certificate &cert, const Row &, Bytes &out) {
    Name &name = cert.*Which;
    if (!name.text_made) {
        Octets text;
        if (names::get_dn(name.entries.first(), text) != Status::ok) {
            trace.note("======>Get ZI_GetDN Len");
            out = {};
            return Status::ok;
        }
        name.text.take(std::move(text));
        name.text_made = true;
    }
    out = name.text.bytes();
    return Status::ok;
}

template <auto Which>
Status set_string_types(Certificate &cert, const Row &, Bytes value) {
    if (value.size() > kStringTypes) {
        return trace.fail(Status::general);
    }
    put((cert.*Which).string_types.data(), value);
    return Status::ok;
}

// ---- Keys

Status set_curve(Certificate &cert, const Row &, Bytes value) {
    if (cert.key.parameters.holds_empty_storage()) {
        return trace.fail(Status::general, "--------->ZACert_SetECCCertPublicKey Error");
    }
    ZA_PASS(cert.key.parameters.assign(value));
    cert.key.kind = kNamedCurve;
    return Status::ok;
}

// ---- Extensions

// What setting a value does to the criticality of its extension.
enum class Criticality { kept, cleared, raised };

template <auto Extension, Criticality kCriticality = Criticality::kept>
void mark_set(Certificate &cert) {
    ExtensionState &state = (cert.*Extension).state;
    state.set = true;
    if constexpr (kCriticality != Criticality::kept) {
        state.critical = kCriticality == Criticality::raised ? 1 : 0;
    }
    cert.extensions_changed = true;
}

template <auto Extension>
Status set_critical(Certificate &cert, const Row &, Bytes value) {
    (cert.*Extension).state.critical = value[0];
    return Status::ok;
}

template <auto Extension>
Status get_critical(Certificate &cert, const Row &, Bytes &out) {
    const ExtensionState &state = (cert.*Extension).state;
    out = state.present() ? Bytes(&state.critical, 1) : Bytes{};
    return Status::ok;
}

template <auto Extension, auto Value, Criticality kCriticality = Criticality::kept>
Status set_value(Certificate &cert, const Row &, Bytes value) {
    ZA_PASS(((cert.*Extension).*Value).assign(value));
    mark_set<Extension, kCriticality>(cert);
    return Status::ok;
}

template <auto Extension, auto Value, Criticality kCriticality = Criticality::kept>
Status set_value_once(Certificate &cert, const Row &row, Bytes value) {
    if (!((cert.*Extension).*Value).empty()) {
        const bool is_dns_text = row.id == CERT_SUBJECT_ALT_DNSNAME ||
                                 row.id == CERT_SUBJECT_ALT_UNIFORMRESOURCEIDENTIFIER;
        return trace.fail(Status::attribute_already_set,
                          is_dns_text ? "------>CERT_SUBJECT_ALT_DNSNAME ZACERT_AttributeAlreadySet"
                                      : "------>ZACERT_AttributeAlreadySet");
    }
    return set_value<Extension, Value, kCriticality>(cert, row, value);
}

// The unused bits of a key usage: two octets hold nine bits; of one octet those below its lowest
// set bit are unused.
Status count_unused_bits(Bytes value, uint32_t &out) {
    if (value.empty() || value.size() > 2) {
        return trace.fail(Status::general, "------>CertTex_KeyUsage_SetUnuseBit  Err");
    }
    constexpr uint32_t kUnusedOfTwoOctets = 7;
    const uint32_t lowest = value[0] == 0 ? 0 : static_cast<uint32_t>(std::countr_zero(value[0]));
    out = value.size() == 2 ? kUnusedOfTwoOctets : lowest;
    return Status::ok;
}

// A value that is too long is kept all the same; the result alone says so.
Status set_key_usage(Certificate &cert, const Row &row, Bytes value) {
    ZA_PASS((set_value_once<&Certificate::key_usage, &KeyUsage::value, Criticality::raised>(
        cert, row, value)));
    cert.key_usage.unused_bits = 0;
    if (count_unused_bits(value, cert.key_usage.unused_bits) != Status::ok) {
        return trace.fail(Status::attribute_already_set, "----->Set CertTex_KeyUsage_SetUnuseBit");
    }
    return Status::ok;
}

Status add_purpose(Certificate &cert, const Row &, Bytes dotted) {
    Octets oid;
    if (names::oid_from_text(dotted, oid) != Status::ok) {
        return trace.fail(Status::invalid_item,
                          "------>CERTEX_EXTKEY_USAGE_OID_DEFINE: input oid is invalid.");
    }
    Field purpose;
    purpose.take(std::move(oid));
    ZA_PASS(cert.extended_key_usage.purposes.append(trace, std::move(purpose)));
    mark_set<&Certificate::extended_key_usage>(cert);
    return Status::ok;
}

Status set_policy(Certificate &cert, const Row &row, Bytes oid) {
    if (cert.policies.state.set) {
        return Status::ok;
    }
    return set_value<&Certificate::policies, &CertificatePolicies::policy>(cert, row, oid);
}

// Qualifiers may come before the policy they qualify, which alone sets the extension.
Status add_cps_uri(Certificate &cert, const Row &, Bytes uri) {
    Field copy;
    ZA_PASS(copy.assign(uri));
    ZA_PASS(cert.policies.cps_uris.append(trace, std::move(copy)));
    cert.extensions_changed = true;
    return Status::ok;
}

template <auto Which>
Status add_directory_entry(Certificate &cert, const Row &row, Bytes value) {
    ZA_PASS((cert.*Which).directory.append(row.kind, value));
    mark_set<Which>(cert);
    return Status::ok;
}

template <auto Which>
Status get_directory_entry(Certificate &cert, const Row &row, Bytes &out) {
    out = first_of_kind((cert.*Which).directory, row.kind);
    return Status::ok;
}

Status set_other_name_tag(Certificate &cert, const Row &, Bytes value) {
    cert.subject_alternative_name.other_name_tag = value[0];
    mark_set<&Certificate::subject_alternative_name>(cert);
    return Status::ok;
}

Status set_basic_constraints_critical(Certificate &cert, const Row &, Bytes value) {
    mark_set<&Certificate::basic_constraints>(cert);
    cert.basic_constraints.state.critical = value[0];
    return Status::ok;
}

Status set_authority(Certificate &cert, const Row &, Bytes value) {
    cert.basic_constraints.authority = value[0];
    cert.basic_constraints.authority_set = true;
    mark_set<&Certificate::basic_constraints, Criticality::raised>(cert);
    return Status::ok;
}

Status get_authority(Certificate &cert, const Row &, Bytes &out) {
    const BasicConstraints &constraints = cert.basic_constraints;
    out = constraints.state.present() ? Bytes(&constraints.authority, 1) : Bytes{};
    return Status::ok;
}

Status add_distribution_point(Certificate &cert, const Row &, Bytes uri) {
    Field copy;
    ZA_PASS(copy.assign(uri));
    ZA_PASS(cert.distribution_points.uris.append(trace, std::move(copy)));
    mark_set<&Certificate::distribution_points, Criticality::cleared>(cert);
    return Status::ok;
}

Status get_distribution_point(Certificate &cert, const Row &, Bytes &out) {
    const List<Field> &uris = cert.distribution_points.uris;
    out = uris.empty() ? Bytes{} : uris.front().bytes();
    return Status::ok;
}

template <AccessMethod kMethod>
Status add_access(Certificate &cert, const Row &, Bytes uri) {
    AccessDescription description{kMethod, {}};
    ZA_PASS(description.uri.assign(uri));
    ZA_PASS(cert.information_access.descriptions.append(trace, std::move(description)));
    mark_set<&Certificate::information_access>(cert);
    return Status::ok;
}

Status add_authority_issuer_entry(Certificate &cert, const Row &row, Bytes value) {
    ZA_PASS(cert.authority_key_identifier.issuer.append(row.kind, value));
    mark_set<&Certificate::authority_key_identifier>(cert);
    return Status::ok;
}

// ---- Rows

using C = Certificate;

#define ROW(identifier, ...)                                    \
    Row {                                                       \
        identifier, ZA_ATTRIBUTE_TEXTS(identifier), __VA_ARGS__ \
    }
#define FIELD(identifier, ...) ROW(identifier, set_field<__VA_ARGS__>, get_field<__VA_ARGS__>)
#define ENTRY(identifier, which, kind) ROW(identifier, add_entry<which>, get_entry<which>, kind)
#define CRITICAL(identifier, which) ROW(identifier, set_critical<which>)

constexpr auto kIssuer = &C::issuer;
constexpr auto kSubject = &C::subject;
constexpr auto kAuthorityKey = &C::authority_key_identifier;
constexpr auto kSubjectKey = &C::subject_key_identifier;
constexpr auto kSubjectAlt = &C::subject_alternative_name;
constexpr auto kIssuerAlt = &C::issuer_alternative_name;

constexpr std::array kRows{
    ROW(CERT_TBS_CERTIFICATE, nullptr, get_field<&C::tbs>),
    FIELD(CERT_OUTER_SIGNATUREALGORITHM, &C::outer_algorithm),
    FIELD(CERT_CA_SIGNATURE, &C::signature),
    ROW(CERT_VERSION, nullptr, nullptr, 0, set_version, get_version),
    FIELD(CERT_SERIALNUMBER, &C::serial),
    FIELD(CERT_INNER_SIGNATUREALGORITHM, &C::inner_algorithm),

    ROW(CERT_ISSUER_DERDN, set_issuer_der, get_field<kIssuer, &Name::der>),
    ROW(CERT_ISSUER_DN, nullptr, get_text<kIssuer>),
    ENTRY(CERT_ISSUER_COUNTRYNAME, kIssuer, names::kCountry),
    ENTRY(CERT_ISSUER_STATEORPROVINCENAME, kIssuer, names::kState),
    ENTRY(CERT_ISSUER_LOCALITYNAME, kIssuer, names::kLocality),
    ENTRY(CERT_ISSUER_ORGANIZATIONNAME, kIssuer, names::kOrganization),
    ROW(CERT_ISSUER_ORGANIZATIONALUNITNAME, add_entry<kIssuer>, get_units<kIssuer>,
        names::kOrganizationalUnit),
    ENTRY(CERT_ISSUER_COMMONNAME, kIssuer, names::kCommonName),
    ENTRY(CERT_ISSUER_EMAIL, kIssuer, names::kEmail),
    ENTRY(CERT_ISSUER_POSTALADDRESS, kIssuer, names::kPostalAddress),
    ENTRY(CERT_ISSUER_POSTALCODE, kIssuer, names::kPostalCode),
    ENTRY(CERT_ISSUER_TELEPHONE, kIssuer, names::kTelephone),

    ROW(CERT_VALIDFROM, nullptr, nullptr, 0, set_time<&C::not_before>, get_time<&C::not_before>),
    ROW(CERT_VALIDTO, nullptr, nullptr, 0, set_time<&C::not_after>, get_time<&C::not_after>),

    FIELD(CERT_SUBJECT_DERDN, kSubject, &Name::der),
    ROW(CERT_SUBJECT_DN, nullptr, get_text<kSubject>),
    ENTRY(CERT_SUBJECT_COUNTRYNAME, kSubject, names::kCountry),
    ENTRY(CERT_SUBJECT_STATEORPROVINCENAME, kSubject, names::kState),
    ENTRY(CERT_SUBJECT_LOCALITYNAME, kSubject, names::kLocality),
    ENTRY(CERT_SUBJECT_ORGANIZATIONNAME, kSubject, names::kOrganization),
    ROW(CERT_SUBJECT_ORGANIZATIONALUNITNAME, add_entry<kSubject>, get_units<kSubject>,
        names::kOrganizationalUnit),
    ENTRY(CERT_SUBJECT_COMMONNAME, kSubject, names::kCommonName),
    ENTRY(CERT_SUBJECT_EMAIL, kSubject, names::kEmail),
    ENTRY(CERT_SUBJECT_POSTALADDRESS, kSubject, names::kPostalAddress),
    ROW(CERT_SUBJECT_POSTALCODE, add_entry<kSubject, asn1::kPrintableString>, get_entry<kSubject>,
        names::kPostalCode),
    ROW(CERT_SUBJECT_TELEPHONE, add_entry<kSubject, asn1::kPrintableString>, get_entry<kSubject>,
        names::kTelephone),

    FIELD(CERT_PUBLICKEY_ALGORITHM, &C::key, &PublicKey::algorithm),
    FIELD(CERT_SUBJECTPUBLICKEYINFO, &C::key, &PublicKey::bits),

    CRITICAL(CERTEX_AUTHORITYKEYIDENTIFIER_CRITICAL, kAuthorityKey),
    ROW(CERTEX_AUTHORITYKEYIDENTIFIER,
        set_value_once<kAuthorityKey, &AuthorityKeyIdentifier::value, Criticality::cleared>,
        get_field<kAuthorityKey, &AuthorityKeyIdentifier::value>),
    CRITICAL(CERTEX_SUBJECTKEYIDENTIFIER_CRITICAL, kSubjectKey),
    ROW(CERTEX_SUBJECTKEYIDENTIFIER,
        set_value_once<kSubjectKey, &KeyIdentifier::value, Criticality::cleared>,
        get_field<kSubjectKey, &KeyIdentifier::value>),
    ROW(CERTEX_KEYUSAGE_CRITICAL, set_critical<&C::key_usage>, get_critical<&C::key_usage>),
    ROW(CERTEX_KEYUSAGE, set_key_usage, get_field<&C::key_usage, &KeyUsage::value>),
    CRITICAL(CERTEX_CERTPOLICY_CRITICAL, &C::policies),
    ROW(CERTEX_CERTPOLICYID, set_policy),
    ROW(CERTEX_CERTPOLICY_CPS, add_cps_uri),

    ROW(CERT_SUBJECT_ALT_COUNTRYNAME, add_directory_entry<kSubjectAlt>, nullptr, names::kCountry),
    ROW(CERT_SUBJECT_ALT_STATEORPROVINCENAME, add_directory_entry<kSubjectAlt>, nullptr,
        names::kState),
    ROW(CERT_SUBJECT_ALT_LOCALITYNAME, add_directory_entry<kSubjectAlt>, nullptr, names::kLocality),
    ROW(CERT_SUBJECT_ALT_ORGANIZATIONNAME, add_directory_entry<kSubjectAlt>, nullptr,
        names::kOrganization),
    ROW(CERT_SUBJECT_ALT_ORGANIZATIONALUNITNAME, add_directory_entry<kSubjectAlt>, nullptr,
        names::kOrganizationalUnit),
    ROW(CERT_SUBJECT_ALT_COMMONNAME, add_directory_entry<kSubjectAlt>,
        get_directory_entry<kSubjectAlt>, names::kCommonName),
    ROW(CERT_SUBJECT_ALT_EMAIL, add_directory_entry<kSubjectAlt>, get_directory_entry<kSubjectAlt>,
        names::kEmail),
    ROW(CERT_ISSUER_ALT_COUNTRYNAME, add_directory_entry<kIssuerAlt>, nullptr, names::kCountry),
    ROW(CERT_ISSUER_ALT_STATEORPROVINCENAME, add_directory_entry<kIssuerAlt>, nullptr,
        names::kState),
    ROW(CERT_ISSUER_ALT_LOCALITYNAME, add_directory_entry<kIssuerAlt>, nullptr, names::kLocality),
    ROW(CERT_ISSUER_ALT_ORGANIZATIONNAME, add_directory_entry<kIssuerAlt>, nullptr,
        names::kOrganization),
    ROW(CERT_ISSUER_ALT_ORGANIZATIONALUNITNAME, add_directory_entry<kIssuerAlt>, nullptr,
        names::kOrganizationalUnit),
    ROW(CERT_ISSUER_ALT_COMMONNAME, add_directory_entry<kIssuerAlt>,
        get_directory_entry<kIssuerAlt>, names::kCommonName),
    ROW(CERT_ISSUER_ALT_EMAIL, add_directory_entry<kIssuerAlt>, get_directory_entry<kIssuerAlt>,
        names::kEmail),

    ROW(CERTEX_BASICCONSTRAINTS_CRITICAL, set_basic_constraints_critical,
        get_critical<&C::basic_constraints>),
    ROW(CERTEX_AUTHORITY, set_authority, get_authority),
    ROW(CERTEX_PATHLENCONSTRAINT, set_value<&C::basic_constraints, &BasicConstraints::path_length>,
        get_field<&C::basic_constraints, &BasicConstraints::path_length>),
    CRITICAL(CERTEX_EXTKEY_CRITICAL, &C::extended_key_usage),
    ROW(CERTEX_EXTKEY_USAGE,
        set_value_once<&C::extended_key_usage, &ExtendedKeyUsage::value, Criticality::cleared>,
        get_field<&C::extended_key_usage, &ExtendedKeyUsage::value>),
    CRITICAL(CERTEX_CRLDIST_CRITICAL, &C::distribution_points),
    ROW(CERTEX_CRLDIST_FULLNAME, add_distribution_point, get_distribution_point),
    CRITICAL(CERTEX_AUTHORITYINFO_CRITICAL, &C::information_access),
    ROW(CERTEX_AUTHORITYINFO_OCSP, add_access<AccessMethod::ocsp>),
    ROW(CERTEX_AUTHORITYINFO_CAISSUERS, add_access<AccessMethod::ca_issuers>),
    ROW(CERTEX_EXTKEY_USAGE_OID_DEFINE, add_purpose),

    ROW(CERT_SUBJECT_ALT_OTHERNAME_TYPEID,
        set_value<kSubjectAlt, &AlternativeName::other_name_type>),
    ROW(CERT_SUBJECT_ALT_OTHERNAME_VALUE,
        set_value<kSubjectAlt, &AlternativeName::other_name_value>),
    ROW(CERT_SUBJECT_ALT_OTHERNAME_VALUE_TAG, set_other_name_tag),
    ROW(CERT_SUBJECT_ALT_RFC822NAME, set_value_once<kSubjectAlt, &AlternativeName::rfc822_name>,
        get_field<kSubjectAlt, &AlternativeName::rfc822_name>),
    ROW(CERT_SUBJECT_ALT_DNSNAME, set_value_once<kSubjectAlt, &AlternativeName::dns_name>,
        get_field<kSubjectAlt, &AlternativeName::dns_name>),
    ROW(CERT_SUBJECT_ALT_UNIFORMRESOURCEIDENTIFIER,
        set_value_once<kSubjectAlt, &AlternativeName::uri>,
        get_field<kSubjectAlt, &AlternativeName::uri>),
    ROW(CERT_SUBJECT_ALT_IPADDRESS, set_value<kSubjectAlt, &AlternativeName::ip_address>,
        get_field<kSubjectAlt, &AlternativeName::ip_address>),
    CRITICAL(CERT_SUBJECT_ALT_CRITICAL, kSubjectAlt),

    ROW(CERT_SUBJECT_dnQualifier, add_entry<kSubject, asn1::kPrintableString>, nullptr,
        names::kDnQualifier),
    ROW(CERT_ISSUER_dnQualifier, add_entry<kIssuer>, nullptr, names::kDnQualifier),
    ROW(CERT_ISSUER_PUBLICKEYINFO_SN, set_value<kAuthorityKey, &AuthorityKeyIdentifier::serial>),
    ROW(CERT_ISSUER_PUBLICKEYINFO_COUNTRYNAME, add_authority_issuer_entry, nullptr,
        names::kCountry),
    ROW(CERT_ISSUER_PUBLICKEYINFO_STATEORPROVINCENAME, add_authority_issuer_entry, nullptr,
        names::kState),
    ROW(CERT_ISSUER_PUBLICKEYINFO_LOCALITYNAME, add_authority_issuer_entry, nullptr,
        names::kLocality),
    ROW(CERT_ISSUER_PUBLICKEYINFO_ORGANIZATIONNAME, add_authority_issuer_entry, nullptr,
        names::kOrganization),
    ROW(CERT_ISSUER_PUBLICKEYINFO_ORGANIZATIONALUNITNAME, add_authority_issuer_entry, nullptr,
        names::kOrganizationalUnit),
    ROW(CERT_ISSUER_PUBLICKEYINFO_COMMONNAME, add_authority_issuer_entry, nullptr,
        names::kCommonName),
    ROW(CERT_ISSUER_PUBLICKEYINFO_EMAIL, add_authority_issuer_entry, nullptr, names::kEmail),
    ROW(CERT_ISSUER_PUBLICKEYINFO_dnQualifier, add_authority_issuer_entry, nullptr,
        names::kDnQualifier),

    ROW(CERT_ISSUER_DN_DER_ID_TAG, set_string_types<kIssuer>),
    ROW(CERT_SUBJCET_DN_DER_ID_TAG, set_string_types<kSubject>),
    Row{CERT_ECC_PUBLICKEY_OID,
        {"CERT_ECC_PUBLICKEY_OID", "======>Set CERT_ECC_PUBLICKEY_OID", "======>Get ECC OID End",
         "======>Get ECC OID LEN"},
        set_curve,
        get_field<&C::key, &PublicKey::parameters>},
};

#undef CRITICAL
#undef ENTRY
#undef FIELD
#undef ROW

constexpr AttributeTable<Certificate> kAttributes{kRows};
static_assert(kAttributes.ascending());

}  // namespace

const AttributeTable<Certificate> &attributes() {
    return kAttributes;
}

}  // namespace za::cert
