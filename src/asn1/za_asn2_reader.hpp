// Readers: from one element to its content. They keep nothing: what they give are views of their
// input. The names of the exported readers stand behind each for use with ZA_TRY.
#pragma once

#include "asn1/za_asn2_header.hpp"
#include "asn1/za_asn2_time.hpp"
#include "runtime/anybuf.hpp"

namespace za::asn1 {

// One element to be read, with what a record says of it beside its octets.
struct Element {
    Bytes octets;
    uint32_t type = 0;  // as Anybuf::dataType
    uint32_t unused_bits = 0;

    Element() = default;
    Element(Bytes bytes, uint32_t data_type) : octets(bytes), type(data_type) {}
    explicit Element(Bytes bytes)
        : octets(bytes), type(bytes.empty() ? 0 : tag_of(bytes.front())) {}
    explicit Element(const Anybuf &record)
        : octets(bytes_of(record)), type(record.dataType), unused_bits(record.unusedBits) {}
};

struct Content {
    Bytes octets;
    uint32_t tag = 0;
    uint32_t unused_bits = 0;
};

// The children of a constructed element. They were all measured when it was read, so that taking
// one cannot fail.
class Children {
  public:
    Children() = default;
    explicit Children(Bytes measured) : rest_(measured) {}

    bool empty() const { return rest_.empty(); }
    bool next(Element &out);

  private:
    Bytes rest_;
};

// ZAsn1_Low_ReadTagAndLength: without the unused-bits octet of a BIT STRING and the leading 00 of
// an INTEGER.
Status read_tag_and_length(const Element &in, Content &out);

// ZAsn1_ReadOctetString and the readers of every other string and of ENUMERATED.
Status read_string(const Element &in, Content &out);
Status read_bit_string(const Element &in, Content &out);           // ZAsn1_ReadBitString
Status read_integer_array(const Element &in, Content &out);        // ZAsn1_ReadIntegerArray
Status read_integer(const Element &in, uint32_t &out);             // ZAsn1_ReadInteger
Status read_boolean(const Element &in, uint8_t &out);              // ZAsn1_ReadBoolean
Status read_object_id(const Element &in, Bytes &out);              // ZAsn1_ReadObjectId
Status read_long_time(const Element &in, TimeFields &out);         // ZAsn1_Low_ReadLongTime
Status read_utc_time(const Element &in, TimeFields &out);          // ZAsn1_ReadUtcTime
Status read_generalized_time(const Element &in, TimeFields &out);  // ZAsn1_ReadGeneralizedTime

Status read_sequence(const Element &in, Children &out);  // ZAsn1_ReadSequence
Status read_set(const Element &in, Children &out);       // ZAsn1_ReadSet

// ZAsn1_ReadExplicit: the content as an element, and the outer tag.
Status read_explicit(const Element &in, Element &inner, uint32_t &tag);

// What ZAsn1_ReadImplicit finds: children of a constructed element, content of a primitive one.
struct Implicit {
    bool constructed = false;
    uint32_t number = 0;
    Children children;
    Content content;
};

Status read_implicit(const Element &in, Implicit &out);  // ZAsn1_ReadImplicit

// Big-endian octets as a number; of more than four the low 32 bits.
uint32_t number_of(Bytes octets);

}  // namespace za::asn1
