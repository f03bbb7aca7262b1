// The certificate context: one record for both directions, filled by setters or by decoding.
#pragma once

#include "asn1/za_asn2_time.hpp"
#include "names/za_low_name.hpp"
#include "runtime/field.hpp"
#include "runtime/list.hpp"

#include <array>

namespace za::cert {

constexpr size_t kStringTypes = 256;

struct Name {
    Field der;
    names::NameList entries;
    Field text;  // made on first request
    bool text_made = false;
    Field joined_units;  // what the last request for organisational units got
    std::array<uint8_t, kStringTypes> string_types{};
};

// A time remembers which DER type it came from or is to be written as. One that was decoded keeps
// its text's fields until somebody asks for the seconds.
class Time {
  public:
    void set(int32_t utc);
    void decoded(const asn1::TimeFields &fields, bool is_utc);

    // The seconds of a UTCTime; 0 for a GeneralizedTime, which readers of the attribute rely on.
    Status utc(int32_t &out) const;

  private:
    bool is_utc_ = false;
    bool is_decoded_ = false;
    int32_t seconds_ = 0;
    asn1::TimeFields fields_;
};

// Key kinds: how the parameters of the key algorithm are written. 1 to 7 stand for an INTEGER.
constexpr uint32_t kExplicitCurve = 11;
constexpr uint32_t kNamedCurve = 12;

struct PublicKey {
    Field algorithm;
    Field parameters;
    Field bits;      // what attribute 54 holds
    Field raw_bits;  // the BIT STRING as it stood
    uint32_t kind = 0;
};

// `set` asks the encoder to write the extension; `decoded` says that it was read, which the first
// occurrence in a certificate does for good.
struct ExtensionState {
    bool set = false;
    bool decoded = false;
    uint8_t critical = 0;

    bool present() const { return set || decoded; }
};

struct KeyIdentifier {
    ExtensionState state;
    Field value;
};

struct AuthorityKeyIdentifier {
    ExtensionState state;
    Field value;
    names::NameList issuer;
    Field serial;
};

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
    // Octets that fields refer to: they stay until the context goes.
    List<Octets> kept;

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

    // Copies octets into the context.
    Status keep(Bytes octets, Bytes &out);
};

}  // namespace za::cert
