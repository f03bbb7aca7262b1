// Writers: from a value to one complete element in a record of its own, which they append to `out`,
// so that the fields of a structure are written one after the other into one chain. The names of
// the exported writers stand behind each for use with ZA_TRY.
#pragma once

#include "asn1/za_asn2_header.hpp"
#include "asn1/za_asn2_reader.hpp"
#include "runtime/anybuf.hpp"

#include <array>

namespace za::asn1 {

// A value to be written: content octets, and the unused bits of a BIT STRING.
struct Value {
    Bytes octets;
    uint32_t unused_bits = 0;

    Value(Bytes bytes, uint32_t unused = 0) : octets(bytes), unused_bits(unused) {}
    explicit Value(const Anybuf &record)
        : octets(bytes_of(record)), unused_bits(record.unusedBits) {}
};

// The bufFlag of every record the codec makes.
constexpr uint32_t kMadeByCodec = 2;

// ZAsn1_Low_IntToChar: the shortest content of a non-negative INTEGER.
class IntegerContent {
  public:
    explicit IntegerContent(uint32_t value);
    Bytes octets() const { return Bytes(octets_).subspan(first_); }

  private:
    std::array<uint8_t, 5> octets_;
    size_t first_ = 0;
};

// ZAsn1_Low_CreateAnyBuf: appends an empty record; `out` may hold others.
Status create_record(Chain &out);

// ZAsn1_Low_WriteTagAndLength: the record with room for the value at `content`.
Status write_tag_and_length(const Value &in, uint8_t identifier, Chain &out, uint8_t *&content);

Status write_integer(uint32_t value, Chain &out);                      // ZAsn1_WriteInteger
Status write_integer_array(Bytes magnitude, Chain &out);               // ZAsn1_WriteIntegerArray
Status write_octet_string(Bytes octets, Chain &out);                   // ZAsn1_WriteOctetString
Status write_bit_string(const Value &bits, Chain &out);                // ZAsn1_WriteBitString
Status write_boolean(bool value, Chain &out);                          // ZAsn1_WriteBoolean
Status write_null(Chain &out);                                         // ZAsn1_WriteNull
Status write_enumerated(Bytes octets, Chain &out);                     // ZAsn1_WriteEnumerated
Status write_char_string(Bytes text, Chain &out);                      // ZAsn1_WriteCharString
Status write_bmp_string(Bytes ucs2, Chain &out);                       // ZAsn1_WriteBmpString
Status write_utf8_string(Bytes utf8, Chain &out);                      // ZAsn1_WriteUTF8String
Status write_ia5_string(Bytes text, Chain &out);                       // ZAsn1_WriteIa5String
Status write_object_id(Bytes content, Chain &out);                     // ZAsn1_WriteObjectId
Status write_long_time(int32_t time, uint8_t identifier, Chain &out);  // ZAsn1_Low_WriteLongTime
Status write_utc_time(int32_t time, Chain &out);                       // ZAsn1_WriteUtcTime
Status write_generalized_time(int32_t time, Chain &out);               // ZAsn1_WriteGeneralizedTime

// ZAsn1_WritePrintableString: BMPString when `type` is 30.
Status write_printable_string(Bytes text, uint32_t type, Chain &out);

Status write_sequence(const Anybuf *chain, Chain &out);  // ZAsn1_WriteSequence
Status write_set(const Anybuf *chain, Chain &out);       // ZAsn1_WriteSet

Status write_explicit(const Anybuf &element, uint32_t number, Chain &out);  // ZAsn1_WriteExplicit
Status write_implicit(const Anybuf &element, uint32_t number, Chain &out);  // ZAsn1_WriteImplicit

// What readers hand out: content, or children, in records of their own.
Status to_record(const Content &content, Chain &out);
Status to_chain(Children children, Chain &out);

}  // namespace za::asn1
