#include "base/der.hpp"

#include <algorithm>

namespace tool {

namespace {

constexpr uint8_t kClassBits = 0xC0;
constexpr uint8_t kNumberBits = 0x1F;

// Decimal digits, the least first: arcs of object identifiers have no limit.
void shift_in(std::string &digits, uint32_t seven_bits) {
    uint32_t carry = seven_bits;
    for (char &digit : digits) {
        const uint32_t value = static_cast<uint32_t>(digit - '0') * 128 + carry;
        digit = static_cast<char>('0' + value % 10);
        carry = value / 10;
    }
    for (; carry > 0; carry /= 10) {
        digits += static_cast<char>('0' + carry % 10);
    }
}

std::string arc_text(View arc) {
    std::string digits;
    for (const uint8_t octet : arc) {
        shift_in(digits, octet & 0x7Fu);
    }
    return digits.empty() ? "0" : std::string(digits.rbegin(), digits.rend());
}

// The first subidentifier holds two arcs: 40 times the first, 0 to 2, plus the second.
std::string first_arcs(View arc) {
    if (arc.size() == 1 && arc[0] < 80) {
        return std::to_string(arc[0] / 40) + "." + std::to_string(arc[0] % 40);
    }
    Octets rest(arc.begin(), arc.end());
    for (size_t i = rest.size(), owed = 80; i-- > 0;) {
        const size_t value = rest[i] & 0x7Fu;
        rest[i] = static_cast<uint8_t>((value - owed) & 0x7F);
        owed = value < owed ? 1 : 0;
    }
    return "2." + arc_text(rest);
}

}  // namespace

const Anybuf &Fields::next() {
    if (at_end()) {
        throw LibraryError(ZACERT_CertNotEndErr);
    }
    const Anybuf &element = *at_;
    ++at_;
    return element;
}

const Anybuf &Fields::required(uint8_t identifier) {
    return expect(next(), identifier);
}

const Anybuf *Fields::optional(uint8_t identifier) {
    return !at_end() && identifier_of(*at_) == identifier ? &next() : nullptr;
}

Anybuf record_of(View element) {
    Anybuf record{};
    // The record has no room for const; readers do not write through it.
    record.data = const_cast<uint8_t *>(element.data());
    record.dataLen = static_cast<uint32_t>(element.size());
    const uint8_t identifier = identifier_of(record);
    record.dataType =
        (identifier & kClassBits) == 0 ? identifier & kNumberBits : uint32_t{identifier};
    return record;
}

View octets_of(const Anybuf &element) {
    return {element.data, element.dataLen};
}

uint8_t identifier_of(const Anybuf &element) {
    return element.dataLen == 0 ? uint8_t{0} : element.data[0];
}

const Anybuf &expect(const Anybuf &element, uint8_t identifier) {
    if (identifier_of(element) != identifier) {
        throw LibraryError(ZACERT_TagErr);
    }
    return element;
}

Chain sequence(const Anybuf &element) {
    Anybuf *children = nullptr;
    check(ZAsn1_ReadSequence(&element, &children));
    return Chain(children);
}

Chain set_of(const Anybuf &element) {
    Anybuf *children = nullptr;
    check(ZAsn1_ReadSet(&element, &children));
    return Chain(children);
}

Chain tagged(const Anybuf &element) {
    constexpr uint8_t kConstructedContext = 0xA0;
    if ((identifier_of(element) & kConstructedContext) != kConstructedContext) {
        throw LibraryError(ZACERT_TagErr);
    }
    Anybuf *children = nullptr;
    uint32_t tag = 0;
    check(ZAsn1_ReadImplicit(&element, &children, &tag));
    return Chain(children);
}

Octets content(const Anybuf &element) {
    Anybuf *inner = nullptr;
    uint32_t tag = 0;
    check(ZAsn1_ReadExplicit(&element, &inner, &tag));
    const Chain owner(inner);
    const View octets = octets_of(*inner);
    return {octets.begin(), octets.end()};
}

std::string object_id(const Anybuf &element) {
    ZA_ObjectIdentifier *record = nullptr;
    check(ZAsn1_ReadObjectId(&expect(element, ZA_DER_ID_OBJECTID), &record));
    const auto release = [](ZA_ObjectIdentifier *oid) {
        ZI_ClearAnybuf(&oid->parameters);
        ZAPR_Free(oid);
    };
    const std::unique_ptr<ZA_ObjectIdentifier, decltype(release)> owner(record, release);
    return object_id_text(octets_of(record->parameters));
}

std::string object_id_text(View content) {
    if (content.empty() || content.back() >= 0x80) {
        throw LibraryError(ZACERT_IvaliedAlgo);
    }
    std::string text;
    while (!content.empty()) {
        const auto last = std::find_if(content.begin(), content.end(),
                                       [](uint8_t octet) { return octet < 0x80; });
        const View arc = content.first(static_cast<size_t>(last - content.begin()) + 1);
        if (arc.front() == 0x80) {
            throw LibraryError(ZACERT_IvaliedAlgo);
        }
        text += text.empty() ? first_arcs(arc) : "." + arc_text(arc);
        content = content.subspan(arc.size());
    }
    return text;
}

bool boolean(const Anybuf &element) {
    uint8_t value = 0;
    check(ZAsn1_ReadBoolean(&expect(element, ZA_DER_ID_BOOLEAN), &value));
    return value != 0;
}

uint64_t number(View integer_content) {
    const std::optional<uint64_t> value = Integer(integer_content).small();
    if (!value) {
        throw LibraryError(ZACERT_LengthErr);
    }
    return *value;
}

Octets bits(View bit_string_content) {
    if (bit_string_content.empty()) {
        throw LibraryError(ZACERT_LengthErr);
    }
    return {bit_string_content.begin() + 1, bit_string_content.end()};
}

}  // namespace tool
