#include "base/elements.hpp"

#include <zacert.h>

#include "base/failure.hpp"

namespace tool {

std::optional<Header> header_of(View octets) {
    constexpr uint8_t kLongTag = 0x1F;
    constexpr uint8_t kLongLength = 0x80;
    constexpr size_t kMaxLengthOctets = 4;
    if (octets.size() < 2 || (octets[0] & kLongTag) == kLongTag) {
        return std::nullopt;
    }
    if (octets[1] < kLongLength) {
        return Header{octets[0], 2, octets[1]};
    }
    const size_t count = octets[1] & 0x7Fu;
    if (count == 0 || count > kMaxLengthOctets || octets.size() - 2 < count) {
        return std::nullopt;
    }
    size_t length = 0;
    for (const uint8_t octet : octets.subspan(2, count)) {
        length = length << 8 | octet;
    }
    return Header{octets[0], 2 + count, length};
}

bool has_indefinite_length(View sequence) {
    constexpr uint8_t kIndefinite = 0x80;
    return sequence.size() >= 2 && sequence[0] == ZA_DER_ID_SEQUENCE && sequence[1] == kIndefinite;
}

Element Elements::next() {
    if (at_end()) {
        throw LibraryError(ZACERT_GeneralErr);
    }
    const std::optional<Header> header = header_of(rest_);
    if (!header) {
        throw LibraryError(ZACERT_LengthErr);
    }
    if (header->content_length > rest_.size() - header->length) {
        throw LibraryError(ZACERT_LengthNotEqualErr);
    }
    const View whole = rest_.first(header->length + header->content_length);
    rest_ = rest_.subspan(whole.size());
    return {header->identifier, whole, whole.subspan(header->length)};
}

Element Elements::required(uint8_t identifier) {
    if (!at_end() && this->identifier() != identifier) {
        throw LibraryError(ZACERT_TagErr);
    }
    return next();
}

std::optional<Element> Elements::optional(uint8_t identifier) {
    if (at_end() || this->identifier() != identifier) {
        return std::nullopt;
    }
    return next();
}

Element only_element(View octets, uint8_t identifier) {
    Elements elements(octets);
    const Element element = elements.required(identifier);
    if (!elements.at_end()) {
        throw LibraryError(ZACERT_LengthNotEqualErr);
    }
    return element;
}

}  // namespace tool
