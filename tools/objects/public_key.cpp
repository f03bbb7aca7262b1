#include "objects/public_key.hpp"

#include "base/der.hpp"
#include "objects/oid_names.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

// The library hands out points of 256-bit curves in a form of its own; back to 04 || x || y.
Octets point_of(const Octets &library_form) {
    constexpr uint8_t kUncompressed = 0x04;
    ZACERT_EccPubKey key{};
    uint32_t length = 0;
    check(ZACERT_DecodeEccPubKey(library_form.data(), static_cast<int32_t>(library_form.size()),
                                 &key, &length));
    Octets point = {kUncompressed};
    point.insert(point.end(), std::begin(key.x), std::end(key.x));
    point.insert(point.end(), std::begin(key.y), std::end(key.y));
    return point;
}

// 02 or 03 || x, or 04 || x || y
size_t point_bits(View point) {
    if (point.size() < 2) {
        return 0;
    }
    const size_t coordinates = point.front() == 0x04 ? 2 : 1;
    return (point.size() - 1) / coordinates * 8;
}

// ECParameters ::= SEQUENCE { version, fieldID SEQUENCE { fieldType, prime INTEGER }, ... }
size_t explicit_curve_bits(const Anybuf &parameters) {
    constexpr std::string_view kPrimeField = "1.2.840.10045.1.1";
    Fields fields(sequence(parameters));
    fields.required(ZA_DER_ID_INTEGER);
    Fields field(sequence(fields.next()));
    if (object_id(field.next()) != kPrimeField) {
        return 0;
    }
    return Integer(content(field.required(ZA_DER_ID_INTEGER))).bits();
}

void read_ec(const Octets &parameters, PublicKey &key) {
    if (!key.octets.empty() && key.octets.front() == ZA_DER_ID_SEQUENCE) {
        key.octets = point_of(key.octets);
    }
    if (!parameters.empty() && parameters.front() == ZA_DER_ID_SEQUENCE) {
        key.curve.name = "explicit";
        key.bits = explicit_curve_bits(record_of(parameters));
    } else if (!parameters.empty()) {
        key.curve = named(object_id_text(parameters));
        key.bits = curve_bits(key.curve.oid);
    }
    if (key.bits == 0) {
        key.bits = point_bits(key.octets);
    }
}

void read_rsa(const Octets &, PublicKey &key) {
    // RSAPublicKey ::= SEQUENCE { modulus INTEGER, publicExponent INTEGER }
    Fields fields(sequence(record_of(key.octets)));
    key.modulus = Integer(content(fields.required(ZA_DER_ID_INTEGER)));
    key.exponent = Integer(content(fields.required(ZA_DER_ID_INTEGER)));
    key.bits = key.modulus->bits();
}

// Dss-Parms and DomainParameters ::= SEQUENCE { p INTEGER, ... }; DSA may inherit them.
void read_discrete_log(const Octets &parameters, PublicKey &key) {
    if (parameters.empty()) {
        return;
    }
    Fields fields(sequence(record_of(parameters)));
    key.bits = Integer(content(fields.required(ZA_DER_ID_INTEGER))).bits();
}

// RFC 8410: the octets themselves are the key.
void read_edwards(const Octets &, PublicKey &key) {
    key.bits = key.octets.size() * 8;
}

struct Kind {
    std::string_view oid;
    void (*read)(const Octets &parameters, PublicKey &key);
};

constexpr auto kKinds = std::to_array<Kind>({
    {"1.2.840.113549.1.1.1", read_rsa},
    {"1.2.840.113549.1.1.10", read_rsa},
    {"1.2.840.10045.2.1", read_ec},
    {"1.2.840.10040.4.1", read_discrete_log},
    {"1.2.840.10046.2.1", read_discrete_log},
    {"1.3.101.110", read_edwards},
    {"1.3.101.111", read_edwards},
    {"1.3.101.112", read_edwards},
    {"1.3.101.113", read_edwards},
});

}  // namespace

PublicKey read_public_key(const KeyParts &parts) {
    PublicKey key;
    key.algorithm = named(object_id_text(parts.algorithm));
    key.octets = parts.octets;
    const auto kind = std::find_if(kKinds.begin(), kKinds.end(),
                                   [&](const Kind &row) { return row.oid == key.algorithm.oid; });
    if (kind != kKinds.end()) {
        kind->read(parts.parameters, key);
    }
    return key;
}

}  // namespace tool
