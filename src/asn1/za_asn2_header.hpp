// Identifier and length octets: the only place where the library looks at single octets of DER
// structure.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

namespace za::asn1 {

// What an Anybuf's dataType, and every test of a tag, holds: the tag number for universal and
// application class, the whole identifier octet for context-specific and private class.
constexpr uint32_t tag_of(uint8_t identifier) {
    return identifier < 0x80 ? identifier & 0x1Fu : identifier;
}

constexpr uint32_t kBoolean = 1;
constexpr uint32_t kInteger = 2;
constexpr uint32_t kBitString = 3;
constexpr uint32_t kOctetString = 4;
constexpr uint32_t kNull = 5;
constexpr uint32_t kObjectId = 6;
constexpr uint32_t kUtf8String = 12;
constexpr uint32_t kSequence = 16;
constexpr uint32_t kSet = 17;
constexpr uint32_t kPrintableString = 19;
constexpr uint32_t kIa5String = 22;
constexpr uint32_t kUtcTime = 23;
constexpr uint32_t kGeneralizedTime = 24;
constexpr uint32_t kBmpString = 30;

// Context-specific tags.
constexpr uint32_t primitive(uint32_t number) {
    return 0x80u | number;
}
constexpr uint32_t constructed(uint32_t number) {
    return 0xA0u | number;
}

constexpr uint8_t kConstructed = 0x20;

// A header that its input cuts off announces more than any input holds.
constexpr uint64_t kEndless = UINT64_MAX;

struct Header {
    uint32_t tag = 0;
    uint32_t tag_octets = 0;
    uint32_t length = 0;
    uint32_t length_octets = 0;
    uint64_t total = kEndless;

    size_t size() const { return size_t{tag_octets} + length_octets; }
};

struct Tag {
    uint32_t value = 0;
    uint32_t octets = 0;  // 0: the input ends inside
};

struct Length {
    uint32_t value = 0;
    uint32_t octets = 0;  // 0: the input ends inside
};

constexpr size_t kMostTagOctets = 6;
constexpr size_t kMostLengthOctets = 5;

Status read_tag(Bytes in, Tag &out);
Status read_length(Bytes in, Length &out);

// The header at the start of `in`, which may hold more than the element, or less.
Status read_any_header(Bytes in, Header &out);

inline Status read_header(Bytes in, Header &out) {
    // Nearly every header of a certificate has one identifier and one length octet.
    if (in.size() >= 2 && (in[0] & 0x1F) != 0x1F && in[1] < 0x80) {
        out = {tag_of(in[0]), 1, in[1], 1, uint64_t{2} + in[1]};
        return Status::ok;
    }
    return read_any_header(in, out);
}

// The same for an element whose caller vouches for the octets its header announces: no octet behind
// the header's own is touched.
Status read_header(const uint8_t *first, Header &out);

// ZAsn1_GetCertLength: the whole length of such an element.
Status element_length(const uint8_t *first, uint32_t &out);

// Length octets as the library writes them: a content of exactly 65535 takes three of them.
constexpr uint32_t length_octets_for(uint32_t length) {
    return length < 0x80        ? 1
           : length < 0x100     ? 2
           : length < 0xFFFF    ? 3
           : length < 0x1000000 ? 4
                                : 5;
}

// Identifier and length; returns the place of the content.
uint8_t *put_header(uint8_t *to, uint8_t identifier, uint32_t length);

}  // namespace za::asn1
