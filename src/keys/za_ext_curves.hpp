// Elliptic curves over a prime field of 256 bits: known by identifier, or given by their
// parameters.
#pragma once

#include "asn1/za_asn2_reader.hpp"

namespace za::keys {

constexpr size_t kCoordinate = 32;
constexpr size_t kPoint = 1 + 2 * kCoordinate;
constexpr uint8_t kUncompressed = 4;

// A curve the library knows nothing of: its fields are zero.
ZACERT_EccCurve unknown_curve();

// Whether the identifier is that of a curve. `out` gets its domain parameters; for a curve known by
// its identifier alone, and for any other identifier, it gets the unknown curve.
bool find_curve(Bytes oid, ZACERT_EccCurve &out);

// The identifier of a curve with these domain parameters; empty when there is none.
Bytes find_curve_oid(const ZACERT_EccCurve &curve);

// ECParameters of a curve that fits the record. Anything else is no failure: false, `out`
// untouched.
bool read_explicit_curve(const asn1::Element &parameters, ZACERT_EccCurve &out);

// The coordinates of an uncompressed point (SEC 1, 2.3.3); false for any other form or size.
bool read_point(Bytes octets, std::span<uint8_t, kCoordinate> x, std::span<uint8_t, kCoordinate> y);

}  // namespace za::keys
