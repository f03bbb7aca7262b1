// What the tool knows of a certificate: filled once, shown in several forms.
#pragma once

#include "base/octets.hpp"

#include <chrono>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tool {

struct NamedId {
    std::string oid;   // dotted
    std::string name;  // empty when the tool has none
};

// A character string. `value` has the octets of the string in UTF-8; where they were no valid text
// of their type, it is not valid UTF-8 either. What is no character string at all, or cannot be
// converted, has the DER of its element instead, as "#" and hexadecimal digits.
struct Text {
    std::string value;
    std::string type;  // such as UTF8String
    bool is_text = true;
};

struct Attribute {
    NamedId type;  // the name is short, such as CN
    Text value;
};

using Rdn = std::vector<Attribute>;
using Name = std::vector<Rdn>;

struct GeneralName {
    std::string form;  // as RFC 5280 calls the choice, such as dNSName
    Text value;        // empty for a directoryName
    Name directory;    // directoryName alone
    NamedId type_id;   // otherName alone
};

using GeneralNames = std::vector<GeneralName>;

// ---- Values of extensions ----------------------------------------------------------------------

// Known by name at most: its octets are all there is to show.
struct Opaque {};

struct BasicConstraints {
    bool ca = false;
    std::optional<uint64_t> path_length;
};

struct KeyUsage {
    std::vector<std::string> usages;
};

struct Purposes {
    std::vector<NamedId> purposes;
};

struct KeyIdentifier {
    Octets key_id;
};

struct AuthorityKeyIdentifier {
    Octets key_id;  // empty when absent
    GeneralNames issuer;
    std::optional<Integer> serial;
};

struct AlternativeNames {
    GeneralNames names;
};

struct DistributionPoint {
    GeneralNames full_name;
    Rdn relative_name;
    std::vector<std::string> reasons;
    GeneralNames crl_issuer;
};

struct DistributionPoints {
    std::vector<DistributionPoint> points;
};

struct AccessDescription {
    NamedId method;
    GeneralName location;
};

struct AccessDescriptions {
    std::vector<AccessDescription> descriptions;
};

struct PolicyQualifier {
    NamedId id;
    Text cps;
    Text organization;
    std::vector<uint64_t> notice_numbers;
    Text explicit_text;
    Octets octets;  // of a qualifier that is neither a CPS URI nor a user notice
};

struct Policy {
    NamedId id;
    std::vector<PolicyQualifier> qualifiers;
};

struct Policies {
    std::vector<Policy> policies;
};

struct PolicyMapping {
    NamedId issuer;
    NamedId subject;
};

struct PolicyMappings {
    std::vector<PolicyMapping> mappings;
};

struct PolicyConstraints {
    std::optional<uint64_t> require_explicit_policy;
    std::optional<uint64_t> inhibit_policy_mapping;
};

struct InhibitAnyPolicy {
    uint64_t skip_certs = 0;
};

struct Subtree {
    GeneralName base;
    uint64_t minimum = 0;
    std::optional<uint64_t> maximum;
};

struct NameConstraints {
    std::vector<Subtree> permitted;
    std::vector<Subtree> excluded;
};

// A CRL's number, or that of the list a delta CRL builds upon.
struct CrlNumber {
    Integer number;
};

struct IssuingDistributionPoint {
    DistributionPoint point;  // without an issuer
    bool only_user_certificates = false;
    bool only_ca_certificates = false;
    bool only_attribute_certificates = false;
    bool indirect = false;
};

struct Reason {
    std::string name;
};

struct Instant {
    std::chrono::sys_seconds time;
};

struct Identifier {
    NamedId id;
};

// The numbers of a person's papers, in the order of the SET.
struct IdentityNumber {
    std::string title;
    std::string member;  // of the JSON
    Text value;
};

struct IdentityNumbers {
    std::vector<IdentityNumber> numbers;
};

using ExtensionValue =
    std::variant<Opaque, BasicConstraints, KeyUsage, Purposes, KeyIdentifier,
                 AuthorityKeyIdentifier, AlternativeNames, DistributionPoints, AccessDescriptions,
                 Policies, PolicyMappings, PolicyConstraints, InhibitAnyPolicy, NameConstraints,
                 CrlNumber, IssuingDistributionPoint, Reason, Instant, Identifier, IdentityNumbers,
                 Text>;

struct Extension {
    NamedId id;
    std::string title;       // for people
    std::string short_code;  // for narrow columns
    bool critical = false;
    Octets octets;  // content of the OCTET STRING
    ExtensionValue value;
    std::string problem;  // why a known extension is Opaque all the same

    bool decoded() const { return !std::holds_alternative<Opaque>(value); }
};

// ---- The certificate ---------------------------------------------------------------------------

struct PublicKey {
    NamedId algorithm;  // RSA, EC, Ed25519 ...
    size_t bits = 0;    // 0 when not known
    NamedId curve;      // EC; explicit parameters have no OID
    std::optional<Integer> modulus;
    std::optional<Integer> exponent;
    Octets octets;  // content of subjectPublicKey
};

struct Certificate {
    std::string file;
    size_t index = 1;  // in the file, from 1
    uint32_t version = 1;
    Integer serial;
    NamedId signature_algorithm;        // inside the signed part
    NamedId outer_signature_algorithm;  // behind it
    Name issuer;
    Name subject;
    std::chrono::sys_seconds not_before;
    std::chrono::sys_seconds not_after;
    PublicKey key;
    std::vector<Extension> extensions;
    Octets signature;
};

// Reads one DER certificate that fills `der` exactly. Throws LibraryError.
Certificate read_certificate(View der);

}  // namespace tool
