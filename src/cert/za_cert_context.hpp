// The certificate context: one record for both directions, filled by setters or by decoding.
#pragma once

#include "cert/za_cert_parts.hpp"
#include "cert/za_cert_signer.hpp"
#include "runtime/list.hpp"

#include <array>

namespace za::cert {

struct KeyUsage {
    ExtensionState state;
    Field value;
    uint32_t unused_bits = 0;
};

struct ExtendedKeyUsage {
    ExtensionState state;
    Field value;  // the selection as attribute 129 gives it
    std::array<uint8_t, 4> decoded_mask{};
    List<Field> purposes;  // further ones, as OID content octets
};

struct BasicConstraints {
    ExtensionState state;
    bool authority_set = false;
    uint8_t authority = 0;
    Field path_length;
};

struct CertificatePolicies {
    ExtensionState state;
    Field policy;
    List<Field> cps_uris;
};

struct AlternativeName {
    ExtensionState state;
    names::NameList directory;
    Field other_name_type;
    Field other_name_value;
    uint8_t other_name_tag = 0;
    Field rfc822_name;
    Field dns_name;
    Field uri;
    Field ip_address;
};

struct DistributionPoints {
    ExtensionState state;
    List<Field> uris;
};

enum class AccessMethod { ocsp, ca_issuers };

struct AccessDescription {
    AccessMethod method;
    Field uri;
};

struct AuthorityInformationAccess {
    ExtensionState state;
    List<AccessDescription> descriptions;
};

struct PrivateExtension {
    Field oid;
    uint8_t critical = 0;
    Field value;  // content of the OCTET STRING
};

struct Certificate {
    Kept kept;

    Field whole;
    Field tbs;
    Field outer_algorithm;
    Field signature;
    bool has_version = false;
    uint32_t version = 0;
    Field serial;
    Field inner_algorithm;
    Name issuer;
    Time not_before;
    Time not_after;
    Name subject;
    PublicKey key;

    bool extensions_changed = false;
    bool extensions_present = false;
    AuthorityKeyIdentifier authority_key_identifier;
    KeyIdentifier subject_key_identifier;
    KeyUsage key_usage;
    ExtendedKeyUsage extended_key_usage;
    CertificatePolicies policies;
    AlternativeName subject_alternative_name;
    AlternativeName issuer_alternative_name;
    BasicConstraints basic_constraints;
    DistributionPoints distribution_points;
    AuthorityInformationAccess information_access;
    List<PrivateExtension> private_extensions;

    Signer signer;
};

}  // namespace za::cert
