#include "asn1/za_asn2_writer.hpp"

#include "asn1/za_asn2_reader.hpp"
#include "asn1/za_asn2_time.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_asn2"};

}  // namespace

namespace za::asn1 {
namespace {

// A record with room for one element of `content` octets, its header written; `place` is behind it.
Status begin_element(uint8_t identifier, uint64_t content, Chain &out, uint8_t *&place) {
    const uint32_t length = static_cast<uint32_t>(content);
    const uint64_t total = 1 + uint64_t{length_octets_for(length)} + content;
    if (!fits_u32(total)) {
        return trace.fail(Status::length, "------>ZAsn1_Low_Count_LengthOfSize");
    }
    Octets element;
    ZA_PASS(element.allocate(total));
    Chain record;
    ZA_TRY(ZAsn1_Low_CreateAnyBuf, create_record(record));
    place = put_header(element.data(), identifier, length);
    record.head()->dataType = tag_of(identifier);
    record.head()->dataLen = to_u32(total);
    record.head()->data = element.release();
    out.append(std::move(record));
    return Status::ok;
}

Status write_primitive(uint8_t identifier, const Value &value, Chain &out) {
    uint8_t *place = nullptr;
    ZA_TRY(ZAsn1_Low_WriteTagAndLength, write_tag_and_length(value, identifier, out, place));
    put(place, value.octets);
    return Status::ok;
}

Status write_constructed(uint8_t identifier, const Anybuf *chain, Chain &out) {
    uint64_t length = 0;
    for (const Anybuf *child = chain; child != nullptr; child = child->next) {
        length += bytes_of(*child).size();
    }
    uint8_t *place = nullptr;
    ZA_PASS(begin_element(identifier, length, out, place));
    for (const Anybuf *child = chain; child != nullptr; child = child->next) {
        place = put(place, bytes_of(*child));
    }
    return Status::ok;
}

constexpr uint8_t context_tag(uint8_t base, uint32_t number) {
    return static_cast<uint8_t>(base | number);
}

}  // namespace

IntegerContent::IntegerContent(uint32_t value) {
    octets_ = {0, static_cast<uint8_t>(value >> 24), static_cast<uint8_t>(value >> 16),
               static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
    // Leading zeros go as long as the next octet keeps the number positive.
    while (first_ + 1 < octets_.size() && octets_[first_] == 0 && octets_[first_ + 1] < 0x80) {
        ++first_;
    }
}

Status create_record(Chain &out) {
    auto *record = static_cast<Anybuf *>(ZAPR_Malloc(__FILE_NAME__, __LINE__, sizeof(Anybuf)));
    if (record == nullptr) {
        return trace.fail(Status::memory);
    }
    record->bufFlag = kMadeByCodec;
    out.append(record);
    return Status::ok;
}

Status write_tag_and_length(const Value &in, uint8_t identifier, Chain &out, uint8_t *&content) {
    const bool is_bit_string = identifier == ZA_DER_ID_BITSTRING;
    const bool needs_sign_octet =
        identifier == ZA_DER_ID_INTEGER && !in.octets.empty() && in.octets[0] >= 0x80;
    const uint64_t length = uint64_t{in.octets.size()} + (is_bit_string || needs_sign_octet);
    uint8_t *place = nullptr;
    Chain record;
    ZA_PASS(begin_element(identifier, length, record, place));
    if (is_bit_string) {
        *place++ = static_cast<uint8_t>(in.unused_bits);
        record.head()->unusedBits = in.unused_bits;
    } else if (needs_sign_octet) {
        *place++ = 0;
    }
    content = place;
    out.append(std::move(record));
    return Status::ok;
}

Status write_integer(uint32_t value, Chain &out) {
    return write_primitive(ZA_DER_ID_INTEGER, IntegerContent(value).octets(), out);
}

Status write_integer_array(Bytes magnitude, Chain &out) {
    return write_primitive(ZA_DER_ID_INTEGER, magnitude, out);
}

Status write_octet_string(Bytes octets, Chain &out) {
    return write_primitive(ZA_DER_ID_OCTETSTRING, octets, out);
}

Status write_bit_string(const Value &bits, Chain &out) {
    return write_primitive(ZA_DER_ID_BITSTRING, bits, out);
}

Status write_boolean(bool value, Chain &out) {
    const uint8_t octet = value ? 0xFF : 0x00;
    return write_primitive(ZA_DER_ID_BOOLEAN, Bytes(&octet, 1), out);
}

Status write_null(Chain &out) {
    return write_primitive(ZA_DER_ID_NULL, Bytes{}, out);
}

Status write_enumerated(Bytes octets, Chain &out) {
    return write_primitive(ZA_DER_ID_ENUMERATED, octets, out);
}

Status write_char_string(Bytes text, Chain &out) {
    return write_primitive(ZA_DER_ID_PRINTABLESTRING, text, out);
}

Status write_bmp_string(Bytes ucs2, Chain &out) {
    return write_primitive(ZA_DER_ID_BMPSTRING, ucs2, out);
}

Status write_utf8_string(Bytes utf8, Chain &out) {
    return write_primitive(ZA_DER_ID_UTF8STRING, utf8, out);
}

Status write_ia5_string(Bytes text, Chain &out) {
    return write_primitive(ZA_DER_ID_IA5STRING, text, out);
}

Status write_object_id(Bytes content, Chain &out) {
    return write_primitive(ZA_DER_ID_OBJECTID, content, out);
}

Status write_long_time(int32_t time, uint8_t identifier, Chain &out) {
    TimeText text;
    ZA_TRY(ZAsn1_Low_ItoCTime, time_to_text(time, text));
    Chain element;
    uint8_t *place = nullptr;
    ZA_PASS(begin_element(identifier, text.size(), element, place));
    put(place, bytes_of(std::string_view(text.data(), text.size())));
    element.head()->dataType = identifier & 0x1Fu;
    out.append(std::move(element));
    return Status::ok;
}

Status write_utc_time(int32_t time, Chain &out) {
    ZA_TRY(ZAsn1_Low_WriteLongTime, write_long_time(time, ZA_DER_ID_UTCTIME, out));
    return Status::ok;
}

Status write_generalized_time(int32_t time, Chain &out) {
    ZA_TRY(ZAsn1_Low_WriteLongTime, write_long_time(time, ZA_DER_ID_GENERALIZEDTIME, out));
    return Status::ok;
}

Status write_printable_string(Bytes text, uint32_t type, Chain &out) {
    // The two texts are crossed, and readers of logs know them so.
    if (type == kBmpString) {
        ZA_TRY(ZAsn1_WriteCharString, write_bmp_string(text, out));
    } else {
        ZA_TRY(ZAsn1_WriteBmpString, write_char_string(text, out));
    }
    return Status::ok;
}

Status write_sequence(const Anybuf *chain, Chain &out) {
    return write_constructed(ZA_DER_ID_SEQUENCE, chain, out);
}

Status write_set(const Anybuf *chain, Chain &out) {
    return write_constructed(ZA_DER_ID_SET, chain, out);
}

Status write_explicit(const Anybuf &element, uint32_t number, Chain &out) {
    const Bytes whole = bytes_of(element);
    if (whole.empty()) {
        return trace.fail(Status::general);
    }
    uint8_t *place = nullptr;
    ZA_PASS(begin_element(context_tag(0xA0, number), whole.size(), out, place));
    put(place, whole);
    return Status::ok;
}

Status write_implicit(const Anybuf &element, uint32_t number, Chain &out) {
    if (bytes_of(element).empty()) {
        return trace.fail(Status::general);
    }
    Content content;
    ZA_TRY(ZAsn1_Low_ReadTagAndLength, read_tag_and_length(Element(element), content));
    const bool constructed = element.dataType == kSequence || element.dataType == kSet;
    uint8_t *place = nullptr;
    ZA_PASS(begin_element(context_tag(constructed ? 0xA0 : 0x80, number), content.octets.size(),
                          out, place));
    put(place, content.octets);
    return Status::ok;
}

Status to_chain(Children children, Chain &out) {
    Chain records;
    for (Element child; children.next(child);) {
        Octets octets;
        Chain record;
        ZA_TRY_AS("------>ZASN1_LOW_CREATEUINT8", octets.assign(child.octets));
        ZA_TRY_AS("------>ZASN1_LOW_CREATEUINT8", create_record(record));
        record.head()->dataType = child.type;
        record.head()->dataLen = to_u32(octets.size());
        record.head()->data = octets.release();
        records.append(std::move(record));
    }
    out.append(std::move(records));
    return Status::ok;
}

Status to_record(const Content &content, Chain &out) {
    Octets octets;
    Chain record;
    ZA_PASS(octets.assign(content.octets));
    ZA_TRY(ZAsn1_Low_CreateAnyBuf, create_record(record));
    record.head()->dataType = content.tag;
    record.head()->unusedBits = content.unused_bits;
    record.head()->dataLen = to_u32(octets.size());
    record.head()->data = octets.release();
    out.append(std::move(record));
    return Status::ok;
}

}  // namespace za::asn1
