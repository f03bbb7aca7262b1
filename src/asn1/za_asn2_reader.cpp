#include "asn1/za_asn2_reader.hpp"

#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_asn2"};

}  // namespace

namespace za::asn1 {
namespace {

// The header of an element that must fill its record exactly.
Status open_element(const Element &in, Header &out) {
    if (in.octets.data() == nullptr) {
        return trace.fail(Status::general, "------>ZAsn1_Low_GetTagInfo");
    }
    ZA_PASS(read_header(in.octets, out));
    if (out.total != in.octets.size()) {
        return trace.fail(Status::length_not_equal);
    }
    return Status::ok;
}

// Measures every child, so that walking them later cannot fail.
Status measure_children(Bytes content, Children &out) {
    for (Bytes rest = content; !rest.empty();) {
        Header child;
        ZA_PASS(read_header(rest, child));
        if (child.total > rest.size()) {
            return trace.fail(Status::length, "------>lTotalLength != 0");
        }
        rest = rest.subspan(child.total);
    }
    out = Children(content);
    return Status::ok;
}

// The content as a number's magnitude: without the 00 that keeps a first octet from 80 on positive.
Bytes without_sign_octet(Bytes content) {
    const bool has_sign_octet = content.size() >= 2 && content[0] == 0 && content[1] >= 0x80;
    return has_sign_octet ? content.subspan(1) : content;
}

}  // namespace

bool Children::next(Element &out) {
    if (rest_.empty()) {
        return false;
    }
    Header header;
    // Measured before, so it neither fails nor passes the end.
    static_cast<void>(read_header(rest_, header));
    out = Element(rest_.first(header.total), header.tag);
    rest_ = rest_.subspan(header.total);
    return true;
}

Status read_tag_and_length(const Element &in, Content &out) {
    if (in.octets.data() == nullptr) {
        return trace.fail(Status::general);
    }
    Header header;
    ZA_PASS(read_header(in.octets, header));
    if (header.total != in.octets.size()) {
        return trace.fail(Status::length_not_equal, "------>Length not Equal");
    }
    Content content{in.octets.subspan(header.size()), header.tag, 0};
    if (in.type == kBitString) {
        if (content.octets.empty()) {
            return trace.fail(Status::length);
        }
        content.octets = content.octets.subspan(1);
        content.unused_bits = in.unused_bits;
    } else if (content.tag == kInteger) {
        content.octets = without_sign_octet(content.octets);
    }
    out = content;
    return Status::ok;
}

Status read_string(const Element &in, Content &out) {
    ZA_TRY(ZAsn1_Low_ReadTagAndLength, read_tag_and_length(in, out));
    return Status::ok;
}

Status read_bit_string(const Element &in, Content &out) {
    Element bits = in;
    bits.type = kBitString;
    ZA_TRY(ZAsn1_Low_ReadTagAndLength, read_tag_and_length(bits, out));
    return Status::ok;
}

Status read_integer_array(const Element &in, Content &out) {
    // Whatever tag stands there, these octets are a number.
    Element number = in;
    number.type = kInteger;
    Content content;
    ZA_TRY(ZAsn1_Low_ReadTagAndLength, read_tag_and_length(number, content));
    content.octets = without_sign_octet(content.octets);
    out = content;
    return Status::ok;
}

Status read_integer(const Element &in, uint32_t &out) {
    Content content;
    ZA_PASS(read_integer_array(in, content));
    out = number_of(content.octets);
    return Status::ok;
}

Status read_boolean(const Element &in, uint8_t &out) {
    Content content;
    ZA_TRY(ZAsn1_Low_ReadTagAndLength, read_tag_and_length(in, content));
    if (content.octets.empty()) {
        return trace.fail(Status::length);
    }
    out = content.octets[0];
    return Status::ok;
}

Status read_object_id(const Element &in, Bytes &out) {
    Content content;
    ZA_TRY(ZAsn1_Low_ReadTagAndLength, read_tag_and_length(in, content));
    out = content.octets;
    return Status::ok;
}

Status read_long_time(const Element &in, TimeFields &out) {
    if (in.octets.data() == nullptr) {
        return trace.fail(Status::general, "------>ZACERT_GeneralErr");
    }
    Header header;
    ZA_PASS(read_header(in.octets, header));
    if (header.total > in.octets.size()) {
        return trace.fail(Status::length_not_equal);
    }
    return time_from_content(in.octets.subspan(header.size(), header.length), out);
}

Status read_utc_time(const Element &in, TimeFields &out) {
    if (in.type != kUtcTime) {
        return trace.fail(Status::tag);
    }
    Header header;
    ZA_PASS(open_element(in, header));
    ZA_TRY(ZAsn1_Low_ReadLongTime, time_from_content(in.octets.subspan(header.size()), out));
    return Status::ok;
}

Status read_generalized_time(const Element &in, TimeFields &out) {
    if (in.type != kGeneralizedTime) {
        return trace.fail(Status::tag);
    }
    Header header;
    ZA_PASS(open_element(in, header));
    const Bytes content = in.octets.subspan(header.size());
    if (is_long_time(content)) {
        return time_from_long_text(content, out);
    }
    ZA_TRY(ZAsn1_Low_ReadLongTime, time_from_content(content, out));
    return Status::ok;
}

Status read_sequence(const Element &in, Children &out) {
    if (!in.octets.empty() && in.octets[0] != ZA_DER_ID_SEQUENCE) {
        return trace.fail(Status::general, "------>pMidData[0]!=0x30");
    }
    Header header;
    ZA_PASS(open_element(in, header));
    if (header.tag != kSequence) {
        return trace.fail(Status::tag, "------>TAG != ZA_DER_ID_SEQUENCE");
    }
    return measure_children(in.octets.subspan(header.size()), out);
}

Status read_set(const Element &in, Children &out) {
    Header header;
    ZA_PASS(open_element(in, header));
    if (header.tag != kSet) {
        return trace.fail(Status::tag, "------>TAG != ZA_DER_ID_SET");
    }
    return measure_children(in.octets.subspan(header.size()), out);
}

Status read_explicit(const Element &in, Element &inner, uint32_t &tag) {
    Header header;
    ZA_PASS(open_element(in, header));
    inner = Element(in.octets.subspan(header.size()));
    tag = header.tag;
    return Status::ok;
}

Status read_implicit(const Element &in, Implicit &out) {
    Header header;
    ZA_PASS(open_element(in, header));
    const Bytes content = in.octets.subspan(header.size());
    const uint8_t identifier = in.octets[0];
    Implicit found;
    found.number = identifier & 0x1Fu;
    found.constructed = (identifier & kConstructed) != 0;
    if (found.constructed) {
        ZA_PASS(measure_children(content, found.children));
    } else {
        found.content = {content, header.tag, 0};
    }
    out = found;
    return Status::ok;
}

uint32_t number_of(Bytes octets) {
    uint32_t value = 0;
    for (const uint8_t octet : octets) {
        value = value << 8 | octet;
    }
    return value;
}

}  // namespace za::asn1
