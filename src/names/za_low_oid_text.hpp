// Dotted text to content octets: one set of rules for texts of callers and, while compiling, for
// the catalogue.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace za::names {

constexpr bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// Calls `take` with every number to be encoded; false: not an object identifier. Arcs wrap at 32
// bits, and only under the first arc 0 is the second limited to 39.
template <class Take>
constexpr bool each_subidentifier(std::string_view text, Take &&take) {
    if (text.size() < 3 || text[0] < '0' || text[0] > '2') {
        return false;
    }
    const auto first = static_cast<uint32_t>(text[0] - '0');
    bool is_second = true;
    for (size_t at = 1; at < text.size();) {
        if (text[at] != '.' && text[at] != ' ') {
            return false;
        }
        const size_t start = ++at;
        uint32_t arc = 0;
        for (; at < text.size() && is_digit(text[at]); ++at) {
            arc = arc * 10 + static_cast<uint32_t>(text[at] - '0');
        }
        if (at == start || (is_second && first == 0 && arc >= 40)) {
            return false;
        }
        take(is_second ? first * 40 + arc : arc);
        is_second = false;
    }
    return true;
}

constexpr size_t base128_octets(uint32_t number) {
    size_t octets = 1;
    while ((number >>= 7) != 0) {
        ++octets;
    }
    return octets;
}

// Most significant group first; all octets but the last have the high bit.
constexpr uint8_t *put_base128(uint8_t *to, uint32_t number) {
    for (size_t left = base128_octets(number); left > 1; --left) {
        *to++ = static_cast<uint8_t>(0x80 | (number >> 7 * (left - 1) & 0x7F));
    }
    *to++ = number & 0x7F;
    return to;
}

}  // namespace za::names
