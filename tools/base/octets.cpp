#include "base/octets.hpp"

#include <algorithm>
#include <bit>

namespace tool {

namespace {

// Two's complement: the magnitude of a negative number is its inverted octets plus one.
void negate(Octets &octets) {
    bool carry = true;
    for (auto octet = octets.rbegin(); octet != octets.rend(); ++octet) {
        *octet = static_cast<uint8_t>(~*octet + (carry ? 1 : 0));
        carry = carry && *octet == 0;
    }
}

std::optional<uint8_t> digit_of(char c) {
    if (c >= '0' && c <= '9') {
        return static_cast<uint8_t>(c - '0');
    }
    const char lower = static_cast<char>(c | 0x20);
    if (lower >= 'a' && lower <= 'f') {
        return static_cast<uint8_t>(lower - 'a' + 10);
    }
    return std::nullopt;
}

}  // namespace

std::string hex(View octets, std::string_view separator) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const uint8_t octet : octets) {
        if (!text.empty()) {
            text += separator;
        }
        text += kDigits[octet >> 4];
        text += kDigits[octet & 0x0F];
    }
    return text;
}

std::optional<Octets> octets_of_hex(std::string_view text) {
    if (text.empty() || text.size() % 2 != 0) {
        return std::nullopt;
    }
    Octets octets;
    for (size_t i = 0; i < text.size(); i += 2) {
        const std::optional<uint8_t> high = digit_of(text[i]);
        const std::optional<uint8_t> low = digit_of(text[i + 1]);
        if (!high || !low) {
            return std::nullopt;
        }
        octets.push_back(static_cast<uint8_t>(*high << 4 | *low));
    }
    return octets;
}

Integer::Integer(View content)
    : negative(!content.empty() && content.front() >= 0x80),
      magnitude(content.begin(), content.end()) {
    if (negative) {
        negate(magnitude);
    }
    const auto first =
        std::find_if(magnitude.begin(), magnitude.end(), [](uint8_t octet) { return octet != 0; });
    magnitude.erase(magnitude.begin(), first);
    if (magnitude.empty()) {
        magnitude.push_back(0);
    }
}

std::string Integer::hex(std::string_view separator) const {
    return (negative ? "-" : "") + tool::hex(magnitude, separator);
}

size_t Integer::bits() const {
    return magnitude.size() * 8 - static_cast<size_t>(std::countl_zero(magnitude.front()));
}

std::optional<uint64_t> Integer::small() const {
    if (negative || bits() > 64) {
        return std::nullopt;
    }
    uint64_t value = 0;
    for (const uint8_t octet : magnitude) {
        value = value << 8 | octet;
    }
    return value;
}

}  // namespace tool
