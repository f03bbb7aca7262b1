#include "asn1/za_asn2_header.hpp"

#include "asn1/za_asn2_cell.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_asn2"};

}  // namespace

namespace za::asn1 {

Status read_tag(Bytes in, Tag &out) {
    if (in.empty()) {
        out = {};
        return Status::ok;
    }
    constexpr uint8_t kHighTagNumber = 0x1F;
    if ((in[0] & kHighTagNumber) != kHighTagNumber) {
        out = {tag_of(in[0]), 1};
        return Status::ok;
    }
    uint32_t number = 0;
    for (size_t i = 1; i < kMostTagOctets; ++i) {
        if (i >= in.size()) {
            out = {};
            return Status::ok;
        }
        number = number << 7 | (in[i] & 0x7Fu);
        if ((in[i] & 0x80) == 0) {
            out = {number, static_cast<uint32_t>(i) + 1};
            return Status::ok;
        }
    }
    return trace.fail(Status::length);
}

Status read_length(Bytes in, Length &out) {
    if (in.empty()) {
        out = {};
        return Status::ok;
    }
    if (in[0] < 0x80) {
        out = {in[0], 1};
        return Status::ok;
    }
    const size_t octets = in[0] & 0x7Fu;
    if (octets >= kMostLengthOctets) {
        return trace.fail(Status::length, "------>ZAsn1_Low_GetLengthInfo");
    }
    if (octets >= in.size()) {
        out = {};
        return Status::ok;
    }
    uint32_t length = 0;
    for (const uint8_t octet : in.subspan(1, octets)) {
        length = length << 8 | octet;
    }
    out = {length, static_cast<uint32_t>(octets) + 1};
    return Status::ok;
}

Status read_any_header(Bytes in, Header &out) {
    Tag tag;
    Length length;
    ZA_TRY(ZAsn1_Low_GetTagInfo, read_tag(in, tag));
    if (tag.octets > 0) {
        ZA_TRY(ZAsn1_Low_GetLengthInfo, read_length(in.subspan(tag.octets), length));
    }
    if (length.octets == 0) {
        out = {};
        return Status::ok;
    }
    out = {tag.value, tag.octets, length.value, length.octets,
           uint64_t{tag.octets} + length.octets + length.value};
    return Status::ok;
}

Status read_header(const uint8_t *first, Header &out) {
    return read_any_header(Bytes(first, kMostTagOctets + kMostLengthOctets), out);
}

Status element_length(const uint8_t *first, uint32_t &out) {
    Header header;
    ZA_PASS(read_header(first, header));
    if (!fits_u32(header.total)) {
        return trace.fail(Status::length);
    }
    out = to_u32(header.total);
    return Status::ok;
}

uint8_t *put_header(uint8_t *to, uint8_t identifier, uint32_t length) {
    *to++ = identifier;
    const uint32_t octets = length_octets_for(length);
    if (octets == 1) {
        *to++ = static_cast<uint8_t>(length);
        return to;
    }
    *to++ = static_cast<uint8_t>(0x80 | (octets - 1));
    for (uint32_t left = octets - 1; left > 0; --left) {
        *to++ = static_cast<uint8_t>(length >> (8 * (left - 1)));
    }
    return to;
}

}  // namespace za::asn1

using za::Status;
using namespace za::asn1;

namespace {

// Hands out a number and the octets it took as two cells and moves the position behind them.
Status hand_out_cells(uint32_t value, uint32_t octets, const uint8_t **pos, uint32_t **value_cell,
                      uint32_t **octets_cell) {
    Cell first;
    Cell second;
    ZA_PASS(first.set(value));
    ZA_PASS(second.set(octets));
    *pos += octets;
    *value_cell = first.release();
    *octets_cell = second.release();
    return Status::ok;
}

}  // namespace

uint32_t ZAsn1_Low_GetTagInfo(const uint8_t **pos, uint32_t **tagCell, uint32_t **tagOctetsCell) {
    return trace.exported([&] {
        if (pos == nullptr || *pos == nullptr) {
            return trace.fail(Status::tag);
        }
        ZA_PASS(trace.need(tagCell, tagOctetsCell));
        Tag tag;
        ZA_PASS(read_tag(za::Bytes(*pos, kMostTagOctets), tag));
        return hand_out_cells(tag.value, tag.octets, pos, tagCell, tagOctetsCell);
    });
}

uint32_t ZAsn1_Low_GetLengthInfo(const uint8_t **pos, uint32_t **lengthCell,
                                 uint32_t **lenOctetsCell) {
    return trace.exported([&] {
        ZA_PASS(trace.need(pos, lengthCell, lenOctetsCell));
        ZA_PASS(trace.need(*pos));
        Length length;
        ZA_PASS(read_length(za::Bytes(*pos, kMostLengthOctets), length));
        return hand_out_cells(length.value, length.octets, pos, lengthCell, lenOctetsCell);
    });
}

uint32_t ZAsn1_GetCertLength(const uint8_t *first, uint32_t *totalLength) {
    return trace.exported([&] {
        ZA_PASS(trace.need(first, totalLength));
        uint32_t total = 0;
        ZA_PASS(element_length(first, total));
        *totalLength = total;
        return Status::ok;
    });
}

uint32_t ZAsn1_GetLengthInfo(const uint8_t **pos, uint32_t *length, uint32_t *count) {
    return trace.exported([&] {
        ZA_PASS(trace.need(pos, length, count));
        ZA_PASS(trace.need(*pos));
        // Callers depend on these rules as they are, odd as they look.
        constexpr uint8_t kMark = 0x50;
        const uint8_t *at = *pos + 2;
        while ((*at & kMark) == 0) {
            ++at;
        }
        const uint8_t initial = *++at;
        uint32_t value = initial;
        if ((initial & kMark) != 0) {
            value = 0;
            for (uint32_t left = initial & 0x7Fu; left > 0; --left) {
                value = (value + *++at) << 8;
            }
        }
        *length = value;
        *count = initial & 0x7Fu;
        return Status::ok;
    });
}

uint32_t ZAsn1_Low_ReadDNTag(const uint8_t *p, uint32_t *tag) {
    return trace.exported([&] {
        if (p == nullptr) {
            return trace.fail(Status::tag, "------>ZAsn1_Low_GetLengthInfo");
        }
        ZA_PASS(trace.need(tag));
        *tag = *p;
        return Status::ok;
    });
}
