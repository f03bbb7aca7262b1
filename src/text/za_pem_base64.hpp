// Base64 (RFC 4648, section 4): octets to characters and back.
#pragma once

#include "runtime/bytes.hpp"

#include <cstdint>

namespace za::text {

// The characters that stand for so many octets.
constexpr uint64_t base64_size(uint64_t octets) {
    return (octets + 2) / 3 * 4;
}

// Writes that many characters, without line breaks, and returns the place behind them.
uint8_t *base64_encode(Bytes octets, uint8_t *to);

// Characters other than those of the alphabet and "=" are passed over. The first quartet with a "="
// is the last, its octets fewer by one for each; characters that make no whole quartet at the end
// stand for nothing.
uint64_t base64_decoded_size(Bytes text);

// Writes that many octets and returns the place behind them.
uint8_t *base64_decode(Bytes text, uint8_t *to);

}  // namespace za::text
