// Octets and their hexadecimal text.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

using Octets = std::vector<uint8_t>;
using View = std::span<const uint8_t>;

inline std::string text_of(View octets) {
    return {octets.begin(), octets.end()};
}

inline bool same_octets(View left, View right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end());
}

// Lower case; `separator` stands between octets.
std::string hex(View octets, std::string_view separator = {});

// Whole octets of digits in either case; nothing for anything else, and for no digits.
std::optional<Octets> octets_of_hex(std::string_view text);

// An INTEGER's value as sign and magnitude, whatever its size.
struct Integer {
    bool negative = false;
    Octets magnitude = {0};  // at least one octet, no leading zeros besides it

    Integer() = default;
    explicit Integer(View content);

    bool operator==(const Integer &) const = default;

    std::string hex(std::string_view separator = {}) const;
    size_t bits() const;

    // Of a value from 0 to 2^64 - 1; nothing for others.
    std::optional<uint64_t> small() const;
};

}  // namespace tool
