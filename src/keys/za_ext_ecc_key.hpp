// Elliptic-curve public keys: the record and the library's own DER form.
#pragma once

#include "asn1/za_asn2_reader.hpp"
#include "keys/za_ext_der.hpp"

namespace za::keys {

Status encode_ecc_public_key(const ZACERT_EccPubKey &key, Octets &out);  // ZACERT_EncodeEccPubKey
Status decode_ecc_public_key(Bytes der, ZACERT_EccPubKey &out);          // ZACERT_DecodeEccPubKey

// What the forms of public and private keys have in common.

// Curve, x and y, in this order.
void write_curve_and_point(const ZACERT_EccPubKey &key, DerWriter &out);
Status read_curve_and_point(asn1::Children &fields, ZACERT_EccPubKey &out);

// A field as a string of its octets, or an empty one when all are zero.
void write_field(Bytes field, DerWriter &out);

// The next string, copied to the START of its field; `text` is the line of any failure.
Status read_field(asn1::Children &fields, std::span<uint8_t> out, const char *text);

// The elements of the outer SEQUENCE.
Status read_key_sequence(Bytes der, asn1::Children &out);

// The lines of a coordinate, which serve for the base point and for the key's own: "parameter gx".
constexpr const char *kTextX = "----->ZACERT_DecodeEccCurve: \262\316\312\375gx";
constexpr const char *kTextY = "----->ZACERT_DecodeEccCurve: \262\316\312\375gy";

}  // namespace za::keys
