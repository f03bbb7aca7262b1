#include "keys/za_ext_curves.hpp"

#include <zacert.h>

#include "keys/za_ext_number.hpp"
#include "names/za_low_oid_catalogue.hpp"

#include <array>

namespace za::keys {
namespace {

static_assert(sizeof(ZACERT_EccCurve) == 196);

// The lengths of p and n in bits.
constexpr uint16_t kBits = 256;

consteval void set(uint8_t (&field)[kCoordinate], std::string_view hex) {
    size_t digits = 0;
    for (const char c : hex) {
        if (c != ' ') {
            const int digit = c <= '9' ? c - '0' : c - 'A' + 10;
            uint8_t &octet = field[digits++ / 2];
            octet = static_cast<uint8_t>(octet << 4 | digit);
        }
    }
    if (digits != 2 * kCoordinate) {
        throw "a field has 64 digits";
    }
}

struct Domain {
    std::string_view p, a, b, gx, gy, n;
};

consteval ZACERT_EccCurve curve_of(const Domain &domain) {
    ZACERT_EccCurve curve{};
    set(curve.p, domain.p);
    set(curve.a, domain.a);
    set(curve.b, domain.b);
    set(curve.gx, domain.gx);
    set(curve.gy, domain.gy);
    set(curve.n, domain.n);
    curve.len1 = kBits;
    curve.len2 = kBits;
    return curve;
}

consteval ZACERT_EccCurve curve_without_domain() {
    ZACERT_EccCurve curve{};
    curve.len1 = kBits;
    curve.len2 = kBits;
    return curve;
}

constexpr ZACERT_EccCurve kUnknown = curve_without_domain();

constexpr ZACERT_EccCurve kP256 = curve_of({
    .p = "FFFFFFFF 00000001 00000000 00000000 00000000 FFFFFFFF FFFFFFFF FFFFFFFF",
    .a = "FFFFFFFF 00000001 00000000 00000000 00000000 FFFFFFFF FFFFFFFF FFFFFFFC",
    .b = "5AC635D8 AA3A93E7 B3EBBD55 769886BC 651D06B0 CC53B0F6 3BCE3C3E 27D2604B",
    .gx = "6B17D1F2 E12C4247 F8BCE6E5 63A440F2 77037D81 2DEB33A0 F4A13945 D898C296",
    .gy = "4FE342E2 FE1A7F9B 8EE7EB4A 7C0F9E16 2BCE3357 6B315ECE CBB64068 37BF51F5",
    .n = "FFFFFFFF 00000000 FFFFFFFF FFFFFFFF BCE6FAAD A7179E84 F3B9CAC2 FC632551",
});

constexpr ZACERT_EccCurve kSm2 = curve_of({
    .p = "FFFFFFFE FFFFFFFF FFFFFFFF FFFFFFFF FFFFFFFF 00000000 FFFFFFFF FFFFFFFF",
    .a = "FFFFFFFE FFFFFFFF FFFFFFFF FFFFFFFF FFFFFFFF 00000000 FFFFFFFF FFFFFFFC",
    .b = "28E9FA9E 9D9F5E34 4D5A9E4B CF6509A7 F39789F5 15AB8F92 DDBCBD41 4D940E93",
    .gx = "32C4AE2C 1F198119 5F990446 6A39C994 8FE30BBF F2660BE1 715A4589 334C74C7",
    .gy = "BC3736A2 F4F6779C 59BDCEE3 6B692153 D0A9877C C62A4740 02DF32E5 2139F0A0",
    .n = "FFFFFFFE FFFFFFFF FFFFFFFF FFFFFFFF 7203DF6B 21C6052B 53BBF409 39D54123",
});

struct CurveRow {
    Bytes oid;
    const ZACERT_EccCurve &curve;
};

// The first row of a curve has the identifier that is written for it.
constexpr CurveRow kCurves[] = {
    {oid::kPrime256v1, kP256},
    {oid::kSm2, kSm2},
    {oid::kSm2Short, kSm2},
    {oid::kFurtherCurves[0], kUnknown},
    {oid::kFurtherCurves[1], kUnknown},
    {oid::kFurtherCurves[2], kUnknown},
    {oid::kFurtherCurves[3], kUnknown},
    {oid::kFurtherCurves[4], kUnknown},
    {oid::kFurtherCurves[5], kUnknown},
    {oid::kFurtherCurves[6], kUnknown},
};

bool same_domain(const ZACERT_EccCurve &a, const ZACERT_EccCurve &b) {
    return equal(a.p, b.p) && equal(a.a, b.a) && equal(a.b, b.b) && equal(a.gx, b.gx) &&
           equal(a.gy, b.gy) && equal(a.n, b.n);
}

// The content of the next element when that has the type.
bool take(asn1::Children &fields, uint32_t type, Bytes &out) {
    asn1::Element field;
    asn1::Content content;
    if (!fields.next(field) || field.type != type ||
        asn1::read_string(field, content) != Status::ok) {
        return false;
    }
    out = content.octets;
    return true;
}

bool take_number(asn1::Children &fields, uint32_t type, std::span<uint8_t> out) {
    Bytes number;
    return take(fields, type, number) && right_align(number, out);
}

bool take_sequence(asn1::Children &fields, asn1::Children &out) {
    asn1::Element field;
    return fields.next(field) && field.type == asn1::kSequence &&
           asn1::read_sequence(field, out) == Status::ok;
}

constexpr oid::Oid kPrimeField = oid::make("1.2.840.10045.1.1");

// FieldID ::= SEQUENCE { fieldType OBJECT IDENTIFIER, parameters INTEGER }
bool take_prime(asn1::Children &fields, std::span<uint8_t> p) {
    asn1::Children field_id;
    Bytes type;
    return take_sequence(fields, field_id) && take(field_id, asn1::kObjectId, type) &&
           equal(type, kPrimeField) && take_number(field_id, asn1::kInteger, p);
}

// Curve ::= SEQUENCE { a OCTET STRING, b OCTET STRING, seed BIT STRING OPTIONAL }
bool take_coefficients(asn1::Children &fields, std::span<uint8_t> a, std::span<uint8_t> b) {
    asn1::Children curve;
    return take_sequence(fields, curve) && take_number(curve, asn1::kOctetString, a) &&
           take_number(curve, asn1::kOctetString, b);
}

}  // namespace

ZACERT_EccCurve unknown_curve() {
    return kUnknown;
}

bool find_curve(Bytes oid, ZACERT_EccCurve &out) {
    for (const CurveRow &row : kCurves) {
        if (equal(row.oid, oid)) {
            out = row.curve;
            return true;
        }
    }
    out = kUnknown;
    return false;
}

Bytes find_curve_oid(const ZACERT_EccCurve &curve) {
    if (same_domain(curve, kUnknown)) {
        return {};
    }
    for (const CurveRow &row : kCurves) {
        if (same_domain(row.curve, curve)) {
            return row.oid;
        }
    }
    return {};
}

// ECParameters ::= SEQUENCE { version INTEGER, fieldID FieldID, curve Curve, base OCTET STRING,
//     order INTEGER, cofactor INTEGER OPTIONAL }
bool read_explicit_curve(const asn1::Element &parameters, ZACERT_EccCurve &out) {
    asn1::Children fields;
    Bytes version;
    Bytes base;
    ZACERT_EccCurve curve = kUnknown;
    if (asn1::read_sequence(parameters, fields) != Status::ok ||
        !take(fields, asn1::kInteger, version) || !take_prime(fields, curve.p) ||
        !take_coefficients(fields, curve.a, curve.b) || !take(fields, asn1::kOctetString, base) ||
        !read_point(base, curve.gx, curve.gy) || !take_number(fields, asn1::kInteger, curve.n)) {
        return false;
    }
    out = curve;
    return true;
}

bool read_point(Bytes octets, std::span<uint8_t, kCoordinate> x,
                std::span<uint8_t, kCoordinate> y) {
    if (octets.size() != kPoint || octets[0] != kUncompressed) {
        return false;
    }
    put(x.data(), octets.subspan(1, kCoordinate));
    put(y.data(), octets.subspan(1 + kCoordinate));
    return true;
}

}  // namespace za::keys
