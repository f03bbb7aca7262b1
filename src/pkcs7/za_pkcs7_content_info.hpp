// ContentInfo ::= SEQUENCE { contentType OBJECT IDENTIFIER, content [0] EXPLICIT ANY OPTIONAL }, and
// how messages come in.
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "asn1/za_asn2_fields.hpp"
#include "asn1/za_asn2_reader.hpp"
#include "runtime/field.hpp"
#include "runtime/trace.hpp"

namespace za::pkcs7 {

using asn1::read_elements;
using asn1::take_field;
using asn1::take_optional;

struct ContentInfo {
    Bytes type;
    bool has_content = false;
    asn1::Element content;  // the one element inside [0]
};

// ZI_MakeSequenceToContent
Status read_content_info(const asn1::Element &in, ContentInfo &out);

// More than the headers of a ContentInfo and the fields beside its content take.
constexpr size_t kMostWrapping = 256;

// ZI_MakeContentToSequence: `content` writes what stands inside [0], about `expected` octets.
template <class Content>
Status write_content_info(Bytes type, asn1::Builder &out, const Content &content,
                          size_t expected = 0) {
    constexpr uint8_t kContent = 0xA0;
    const auto info = [&] {
        out.object_id(type);
        return out.wrapped(kContent, content, expected);
    };
    return out.sequence(info, expected);
}

// The same as a message of its own.
template <class Content>
Status make_content_info(Bytes type, Octets &out, const Content &content, size_t expected) {
    asn1::Builder message;
    message.reserve(expected + kMostWrapping);
    ZA_PASS(write_content_info(
        type, message, [&] { return content(message); }, expected));
    return message.finish(out);
}

// The contentInfo of signedData and digestedData, whose type decides how the content stands in it:
// that of data in an OCTET STRING; that of another type whose identifier has nine octets as the DER
// it is; of any other type, and empty content, not at all.
void write_inner_content(Bytes type, Bytes content, asn1::Builder &out);

// What those who sign or digest that contentInfo take for its content: the octets of data, the whole
// element of any other type. Pieces of an OCTET STRING are joined.
Status read_inner_content(const TraceSource &trace, const ContentInfo &in, Field &out);

// The octets of an OCTET STRING or of [n] IMPLICIT OCTET STRING, in one piece or in several, which
// are joined; views otherwise.
Status read_octets(const TraceSource &trace, const asn1::Element &in, Field &out);

// Opens a message: a copy of the caller's octets in `kept`, rewritten to definite lengths where it
// comes with indefinite ones, and the content of its ContentInfo, which must be of the given type
// (122) and must be there (121).
Status open_message(const TraceSource &trace, Bytes in, Bytes type, Octets &kept,
                    asn1::Element &content);

// The same for a part: the copy alone. 101: no octets, or a length that is negative for those who
// count in signed numbers.
Status take_der(const TraceSource &trace, Bytes in, Octets &kept);

// AlgorithmIdentifier: the identifier, and the parameters where somebody wants them.
Status take_algorithm(const TraceSource &trace, asn1::Children &fields, Field &oid,
                      Field *parameters = nullptr);

// OCTET STRING, in one piece or in several
Status take_octets(const TraceSource &trace, asn1::Children &fields, Field &out);

// version INTEGER
Status take_version(const TraceSource &trace, asn1::Children &fields, uint32_t &out);

}  // namespace za::pkcs7
