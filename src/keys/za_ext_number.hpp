// Numbers of key structures: big-endian in fixed fields, right-aligned.
#pragma once

#include "asn1/za_asn2_reader.hpp"

namespace za::keys {

// Without leading zero octets.
Bytes significant(Bytes number);

// Fills the field, which holds zeros, from its end; false when the number is longer than it.
[[nodiscard]] bool right_align(Bytes number, std::span<uint8_t> field);

// The next element, an INTEGER, into its field. 113: there is none; 101: longer than the field.
Status read_number(asn1::Children &fields, std::span<uint8_t> out);

// The octets of a caller who counts them with a sign: none for NULL or a length of 0 or less.
inline Bytes view(const uint8_t *octets, int32_t len) {
    return octets != nullptr && len > 0 ? Bytes{octets, static_cast<size_t>(len)} : Bytes{};
}

}  // namespace za::keys
