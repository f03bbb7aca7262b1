#include "pkcs7/za_pkcs7_content_info.hpp"

#include "asn1/za_asn2_indefinite.hpp"
#include "names/za_low_algorithm.hpp"
#include "names/za_low_oid.hpp"
#include "pkcs7/za_pkcs7_part.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_other", {za::pkcs7::kArrow}};

}  // namespace

namespace za::pkcs7 {

using asn1::Children;
using asn1::Element;

namespace {

constexpr uint8_t kConstructedOctetString = ZA_DER_ID_OCTETSTRING | asn1::kConstructed;

bool has_indefinite_length(Bytes in) {
    constexpr uint8_t kIndefinite = 0x80;
    return in.size() >= 2 && in[1] == kIndefinite;
}

}  // namespace

Status take_algorithm(const TraceSource &trace, Children &fields, Field &oid, Field *parameters) {
    Element algorithm;
    Bytes identifier;
    Bytes rest;
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, algorithm));
    ZA_PASS(names::read_algorithm(algorithm, identifier, rest));
    oid.refer(identifier);
    if (parameters != nullptr) {
        parameters->refer(rest);
    }
    return Status::ok;
}

Status take_octets(const TraceSource &trace, Children &fields, Field &out) {
    Element octets;
    if (!take_optional(fields, kConstructedOctetString, octets)) {
        ZA_PASS(take_field(trace, fields, ZA_DER_ID_OCTETSTRING, octets));
    }
    return read_octets(trace, octets, out);
}

Status take_version(const TraceSource &trace, Children &fields, uint32_t &out) {
    Element version;
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_INTEGER, version));
    ZA_TRY(ZAsn1_ReadInteger, asn1::read_integer(version, out));
    return Status::ok;
}

namespace {

// content [0] EXPLICIT ANY
Status read_wrapped(const Element &in, Element &out) {
    Children inside;
    ZA_PASS(read_elements(trace, in, inside));
    const bool found = inside.next(out);
    // Indefinite lengths inside a definite one are not rewritten, and read as a length of 0.
    if (has_indefinite_length(found ? out.octets : in.octets)) {
        return trace.fail(Status::length_not_equal);
    }
    return found && inside.empty() ? Status::ok : trace.fail(Status::invalid_item);
}

}  // namespace

Status read_content_info(const Element &in, ContentInfo &out) {
    constexpr uint8_t kContent = 0xA0;
    Children fields;
    Element type;
    Element wrapper;
    ContentInfo info;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_OBJECTID, type));
    ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(type, info.type));
    info.has_content = take_optional(fields, kContent, wrapper);
    if (info.has_content) {
        ZA_PASS(read_wrapped(wrapper, info.content));
    }
    if (!fields.empty()) {
        return trace.fail(Status::type);
    }
    out = info;
    return Status::ok;
}

void write_inner_content(Bytes type, Bytes content, asn1::Builder &out) {
    constexpr size_t kEmbeddedTypeOctets = 9;
    constexpr uint8_t kContent = 0xA0;
    const auto embedded = [&] {
        equal(type, oid::kData) ? out.octet_string(content) : out.raw(content);
    };
    const auto info = [&] {
        out.object_id(type);
        if (!content.empty() && type.size() == kEmbeddedTypeOctets) {
            out.wrapped(kContent, embedded, content.size());
        }
    };
    out.sequence(info, content.size());
}

Status read_octets(const TraceSource &trace, const Element &in, Field &out) {
    if ((in.octets[0] & asn1::kConstructed) != 0) {
        Octets joined;
        ZA_TRY(ZAsn1_ReadOctetString, asn1::join_octet_string(in.octets, joined));
        out.take(std::move(joined));
        return Status::ok;
    }
    asn1::Content content;
    ZA_TRY(ZAsn1_ReadOctetString, asn1::read_string(in, content));
    out.refer(content.octets);
    return Status::ok;
}

Status read_inner_content(const TraceSource &trace, const ContentInfo &in, Field &out) {
    if (!in.has_content) {
        out.refer({});
        return Status::ok;
    }
    if (!equal(in.type, oid::kData)) {
        out.refer(in.content.octets);
        return Status::ok;
    }
    const uint8_t identifier = in.content.octets[0];
    if (identifier != ZA_DER_ID_OCTETSTRING && identifier != kConstructedOctetString) {
        return trace.fail(Status::type);
    }
    return read_octets(trace, in.content, out);
}

Status take_der(const TraceSource &trace, Bytes in, Octets &kept) {
    if (in.empty() || in.size() > INT32_MAX) {
        return trace.fail(Status::length);
    }
    if (!has_indefinite_length(in)) {
        return kept.assign(in);
    }
    size_t size = 0;
    Octets definite;
    ZA_TRY(ZAsn1_IndefiniteToDefinite, asn1::definite_size(in, size));
    ZA_PASS(definite.allocate(size));
    ZA_TRY(ZAsn1_IndefiniteToDefinite, asn1::write_definite(in, definite.data()));
    kept = std::move(definite);
    return Status::ok;
}

Status open_message(const TraceSource &trace, Bytes in, Bytes type, Octets &kept,
                    Element &content) {
    ContentInfo info;
    ZA_PASS(take_der(trace, in, kept));
    ZA_TRY(ZI_MakeSequenceToContent, read_content_info(Element(kept.bytes()), info));
    if (!equal(info.type, type)) {
        return trace.fail(Status::type);
    }
    if (!info.has_content) {
        return trace.fail(Status::invalid_item);
    }
    content = info.content;
    return Status::ok;
}

}  // namespace za::pkcs7
