// The exported readers and writers: frames around the bodies.
#include "asn1/za_asn2_cell.hpp"
#include "asn1/za_asn2_reader.hpp"
#include "asn1/za_asn2_writer.hpp"
#include "runtime/trace.hpp"

using za::Chain;
using za::Octets;
using za::Status;
using namespace za::asn1;

namespace {

constexpr za::TraceSource trace{".\\src\\za_asn2"};

// Runs a writer and hands its element out.
template <class Write>
Status hand_out_element(Anybuf **out, const Write &write) {
    ZA_PASS(trace.need(out));
    Chain element;
    ZA_PASS(write(element));
    *out = element.release();
    return Status::ok;
}

// A writer whose value is a record's octets.
Status write_octets(const Anybuf *in, Anybuf **out, Status (*write)(za::Bytes, Chain &)) {
    ZA_PASS(trace.need(in));
    return hand_out_element(out, [&](Chain &element) { return write(za::bytes_of(*in), element); });
}

Status write_time(const int32_t *time, Anybuf **out, Status (*write)(int32_t, Chain &)) {
    ZA_PASS(trace.need(time));
    return hand_out_element(out, [&](Chain &element) { return write(*time, element); });
}

Status read_content(const Anybuf *in, Anybuf **out, Status (*read)(const Element &, Content &)) {
    ZA_PASS(trace.need(in, out));
    Content content;
    ZA_PASS(read(Element(*in), content));
    return hand_out_element(out, [&](Chain &record) { return to_record(content, record); });
}

Status read_time(const Anybuf *in, int32_t *time, Status (*read)(const Element &, TimeFields &)) {
    ZA_PASS(trace.need(in, time));
    TimeFields fields;
    ZA_PASS(read(Element(*in), fields));
    return to_seconds(fields, *time);
}

Status read_children(const Anybuf *in, Anybuf **chain,
                     Status (*read)(const Element &, Children &)) {
    ZA_PASS(trace.need(in, chain));
    Children children;
    ZA_PASS(read(Element(*in), children));
    return hand_out_element(chain, [&](Chain &records) { return to_chain(children, records); });
}

}  // namespace

uint32_t ZAsn1_Low_CreateAnyBuf(Anybuf **out) {
    return trace.exported([&] { return hand_out_element(out, create_record); });
}

uint32_t ZAsn1_Low_WriteTagAndLength(const Anybuf *src, uint32_t identifier, Anybuf **out,
                                     uint8_t **writePos) {
    return trace.exported([&] {
        ZA_PASS(trace.need(src, out, writePos));
        Chain element;
        uint8_t *place = nullptr;
        ZA_PASS(
            write_tag_and_length(Value(*src), static_cast<uint8_t>(identifier), element, place));
        *writePos = place;
        *out = element.release();
        return Status::ok;
    });
}

uint32_t ZAsn1_Low_ReadTagAndLength(const Anybuf *src, const uint8_t **pos, Anybuf **out,
                                    uint8_t **content) {
    return trace.exported([&] {
        ZA_PASS(trace.need(src, pos, out, content));
        ZA_PASS(trace.need(*pos));
        Element element(*src);
        element.octets = za::Bytes(*pos, src->dataLen);
        Content found;
        ZA_PASS(read_tag_and_length(element, found));
        Octets block;
        Chain record;
        ZA_PASS(block.allocate(found.octets.size()));
        ZA_TRY(ZAsn1_Low_CreateAnyBuf, create_record(record));
        record.head()->dataType = found.tag;
        record.head()->unusedBits = found.unused_bits;
        record.head()->dataLen = za::to_u32(block.size());
        record.head()->data = *content = block.release();
        *pos = found.octets.data();
        *out = record.release();
        return Status::ok;
    });
}

uint32_t ZAsn1_Low_IntToChar(uint32_t value, uint8_t **bytes, uint32_t **countCell) {
    return trace.exported([&] {
        ZA_PASS(trace.need(bytes, countCell));
        const IntegerContent content(value);
        Octets octets;
        Cell cell;
        ZA_PASS(octets.assign(content.octets()));
        ZA_PASS(cell.set(za::to_u32(octets.size())));
        *bytes = octets.release();
        *countCell = cell.release();
        return Status::ok;
    });
}

uint32_t ZAsn1_Low_CharToInt(const uint8_t *bytes, uint32_t count, uint32_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(value));
        ZA_PASS(count > 0 ? trace.need(bytes) : Status::ok);
        *value = number_of({bytes, count});
        return Status::ok;
    });
}

uint32_t ZAsn1_Low_WriteLongTime(int32_t time, uint32_t identifier, Anybuf **out) {
    return trace.exported([&] {
        return hand_out_element(out, [&](Chain &element) {
            return write_long_time(time, static_cast<uint8_t>(identifier), element);
        });
    });
}

uint32_t ZAsn1_Low_ReadLongTime(const Anybuf *element, int32_t *time) {
    return trace.exported([&] { return read_time(element, time, read_long_time); });
}

uint32_t ZAsn1_WriteInteger(uint32_t value, Anybuf **out) {
    return trace.exported([&] {
        return hand_out_element(out, [&](Chain &element) { return write_integer(value, element); });
    });
}

uint32_t ZAsn1_ReadInteger(const Anybuf *in, uint32_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(in, value));
        return read_integer(Element(*in), *value);
    });
}

uint32_t ZAsn1_WriteIntegerArray(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return write_octets(in, out, write_integer_array); });
}

uint32_t ZAsn1_ReadIntegerArray(const Anybuf *in, Anybuf *dst) {
    return trace.exported([&] {
        ZA_PASS(trace.need(in, dst));
        Content content;
        Octets octets;
        ZA_PASS(read_integer_array(Element(*in), content));
        ZA_PASS(octets.assign(content.octets));
        *dst = {};
        dst->dataLen = za::to_u32(octets.size());
        dst->dataType = content.tag;
        dst->unusedBits = content.unused_bits;
        dst->bufFlag = kMadeByCodec;
        dst->data = octets.release();
        return Status::ok;
    });
}

uint32_t ZAsn1_WriteOctetString(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return write_octets(in, out, write_octet_string); });
}

uint32_t ZAsn1_ReadOctetString(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return read_content(in, out, read_string); });
}

uint32_t ZAsn1_WriteBitString(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(in));
        return hand_out_element(
            out, [&](Chain &element) { return write_bit_string(Value(*in), element); });
    });
}

uint32_t ZAsn1_ReadBitString(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return read_content(in, out, read_bit_string); });
}

uint32_t ZAsn1_WriteBoolean(const uint8_t *value, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(value));
        return hand_out_element(out,
                                [&](Chain &element) { return write_boolean(*value > 0, element); });
    });
}

uint32_t ZAsn1_ReadBoolean(const Anybuf *in, uint8_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(in, value));
        return read_boolean(Element(*in), *value);
    });
}

uint32_t ZAsn1_WriteNull(Anybuf **out) {
    return trace.exported([&] { return hand_out_element(out, write_null); });
}

uint32_t ZAsn1_WriteEnumerated(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return write_octets(in, out, write_enumerated); });
}

uint32_t ZAsn1_ReadEnumerated(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return read_content(in, out, read_string); });
}

uint32_t ZAsn1_WriteCharString(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return write_octets(in, out, write_char_string); });
}

uint32_t ZAsn1_ReadCharString(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return read_content(in, out, read_string); });
}

uint32_t ZAsn1_WritePrintableString(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(in));
        return hand_out_element(out, [&](Chain &element) {
            return write_printable_string(za::bytes_of(*in), in->dataType, element);
        });
    });
}

uint32_t ZAsn1_ReadPrintableString(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return read_content(in, out, read_string); });
}

uint32_t ZAsn1_WriteBmpString(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return write_octets(in, out, write_bmp_string); });
}

uint32_t ZAsn1_ReadBmpString(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return read_content(in, out, read_string); });
}

uint32_t ZAsn1_WriteUTF8String(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return write_octets(in, out, write_utf8_string); });
}

uint32_t ZAsn1_ReadUTF8String(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return read_content(in, out, read_string); });
}

uint32_t ZAsn1_WriteIa5String(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return write_octets(in, out, write_ia5_string); });
}

uint32_t ZAsn1_ReadIa5String(const Anybuf *in, Anybuf **out) {
    return trace.exported([&] { return read_content(in, out, read_string); });
}

uint32_t ZAsn1_WriteObjectId(const ZA_ObjectIdentifier *in, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(in));
        return write_octets(&in->parameters, out, write_object_id);
    });
}

uint32_t ZAsn1_ReadObjectId(const Anybuf *in, ZA_ObjectIdentifier **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(in, out));
        za::Bytes content;
        Octets record;
        Octets octets;
        ZA_PASS(read_object_id(Element(*in), content));
        ZA_PASS(record.allocate(sizeof(ZA_ObjectIdentifier)));
        ZA_PASS(octets.assign(content));
        auto *oid = reinterpret_cast<ZA_ObjectIdentifier *>(record.release());
        oid->parameters.dataLen = za::to_u32(octets.size());
        oid->parameters.dataType = kObjectId;
        oid->parameters.bufFlag = kMadeByCodec;
        oid->parameters.data = octets.release();
        *out = oid;
        return Status::ok;
    });
}

uint32_t ZAsn1_WriteUtcTime(const int32_t *time, Anybuf **out) {
    return trace.exported([&] { return write_time(time, out, write_utc_time); });
}

uint32_t ZAsn1_ReadUtcTime(const Anybuf *in, int32_t *time) {
    return trace.exported([&] { return read_time(in, time, read_utc_time); });
}

uint32_t ZAsn1_WriteGeneralizedTime(const int32_t *time, Anybuf **out) {
    return trace.exported([&] { return write_time(time, out, write_generalized_time); });
}

uint32_t ZAsn1_ReadGeneralizedTime(const Anybuf *in, int32_t *time) {
    return trace.exported([&] { return read_time(in, time, read_generalized_time); });
}

uint32_t ZAsn1_WriteSequence(const Anybuf *chain, Anybuf **out) {
    return trace.exported([&] {
        return hand_out_element(out,
                                [&](Chain &element) { return write_sequence(chain, element); });
    });
}

uint32_t ZAsn1_ReadSequence(const Anybuf *in, Anybuf **chain) {
    return trace.exported([&] { return read_children(in, chain, read_sequence); });
}

uint32_t ZAsn1_WriteSet(const Anybuf *chain, Anybuf **out) {
    return trace.exported([&] {
        return hand_out_element(out, [&](Chain &element) { return write_set(chain, element); });
    });
}

uint32_t ZAsn1_ReadSet(const Anybuf *in, Anybuf **chain) {
    return trace.exported([&] { return read_children(in, chain, read_set); });
}

uint32_t ZAsn1_WriteExplicit(const Anybuf *element, uint32_t n, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(element));
        return hand_out_element(out,
                                [&](Chain &tagged) { return write_explicit(*element, n, tagged); });
    });
}

uint32_t ZAsn1_ReadExplicit(const Anybuf *in, Anybuf **inner, uint32_t *tag) {
    return trace.exported([&] {
        ZA_PASS(trace.need(in, inner, tag));
        Element element;
        uint32_t outer = 0;
        Chain record;
        ZA_PASS(read_explicit(Element(*in), element, outer));
        ZA_PASS(to_record({element.octets, element.type, 0}, record));
        *tag = outer;
        *inner = record.release();
        return Status::ok;
    });
}

uint32_t ZAsn1_WriteImplicit(const Anybuf *element, uint32_t n, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(element));
        return hand_out_element(out,
                                [&](Chain &tagged) { return write_implicit(*element, n, tagged); });
    });
}

uint32_t ZAsn1_ReadImplicit(const Anybuf *in, Anybuf **outOrChain, uint32_t *tagNumber) {
    return trace.exported([&] {
        ZA_PASS(trace.need(in, outOrChain, tagNumber));
        Implicit found;
        Chain records;
        ZA_PASS(read_implicit(Element(*in), found));
        ZA_PASS(found.constructed ? to_chain(found.children, records)
                                  : to_record(found.content, records));
        *tagNumber = found.number;
        *outOrChain = records.release();
        return Status::ok;
    });
}
