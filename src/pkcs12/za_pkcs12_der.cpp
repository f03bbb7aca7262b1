#include "pkcs12/za_pkcs12_der.hpp"

#include "asn1/za_asn2_indefinite.hpp"
#include "names/za_low_oid_catalogue.hpp"

namespace za::pkcs12 {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

void write_items(const List<Secret> &items, Builder &out) {
    for (const Secret &item : items) {
        out.raw(item.bytes());
    }
}

Status read_items(const TraceSource &trace, Children &elements, List<Secret> &out) {
    Element item;
    while (elements.next(item)) {
        ZA_PASS(add_item(trace, out, item.octets));
    }
    return Status::ok;
}

Status take_object_id(const TraceSource &trace, Children &fields, Bytes &out) {
    Element identifier;
    ZA_PASS(pkcs7::take_field(trace, fields, ZA_DER_ID_OBJECTID, identifier));
    return ZA_BODY(ZAsn1_ReadObjectId, asn1::read_object_id(identifier, out));
}

namespace {

Status read_secret(const TraceSource &trace, const Element &in, Secret &out) {
    constexpr uint8_t kInPieces = ZA_DER_ID_OCTETSTRING | asn1::kConstructed;
    asn1::Content content;
    Secret value;
    if (in.octets[0] == kInPieces) {
        ZA_PASS(ZA_BODY(ZAsn1_ReadOctetString, asn1::join_octet_string(in.octets, value.value)));
    } else if (in.octets[0] == ZA_DER_ID_OCTETSTRING) {
        ZA_PASS(ZA_BODY(ZAsn1_ReadOctetString, asn1::read_string(in, content)));
        ZA_PASS(value.assign(content.octets));
    } else {
        return trace.fail(Status::type);
    }
    out = std::move(value);
    return Status::ok;
}

}  // namespace

Status take_secret(const TraceSource &trace, Children &fields, Secret &out) {
    Element octets;
    return fields.next(octets) ? read_secret(trace, octets, out) : trace.fail(Status::invalid_item);
}

Status read_data(const TraceSource &trace, Bytes in, Secret &out) {
    Secret kept;
    pkcs7::ContentInfo info;
    ZA_PASS(pkcs7::take_der(trace, in, kept.value));
    const Element whole(kept.bytes());
    ZA_PASS(ZA_BODY(ZI_MakeSequenceToContent, pkcs7::read_content_info(whole, info)));
    if (!equal(info.type, oid::kData)) {
        return trace.fail(Status::type);
    }
    return info.has_content ? read_secret(trace, info.content, out)
                            : trace.fail(Status::invalid_item);
}

Status open_sequence(const TraceSource &trace, Children &fields, Children &out) {
    Element sequence;
    ZA_PASS(pkcs7::take_field(trace, fields, ZA_DER_ID_SEQUENCE, sequence));
    return ZA_BODY(ZAsn1_ReadSequence, asn1::read_sequence(sequence, out));
}

}  // namespace za::pkcs12
