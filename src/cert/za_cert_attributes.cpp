// One row per attribute.
#include "cert/za_cert_attributes.hpp"

#include "cert/za_cert_accessors.hpp"

#include <array>

namespace za::cert {
namespace {

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
