#include "request/za_csr_decode.hpp"

#include <zacert.h>

#include "cert/za_cert_part_decode.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_csr"};

}  // namespace

namespace za::request {
namespace {

using asn1::Children;
using asn1::Element;

constexpr cert::Walk kWalk{trace, Status::csr_not_end};

// The value is the first of the SET. What is no OCTET STRING stays a whole element, so that those
// who know the attribute can read it.
Status decode_value(Children values, Field &out) {
    Element value;
    if (!values.next(value)) {
        return Status::ok;
    }
    if (value.octets[0] != ZA_DER_ID_OCTETSTRING) {
        out.refer(value.octets);
        return Status::ok;
    }
    asn1::Content content;
    ZA_TRY(ZAsn1_ReadOctetString, asn1::read_string(value, content));
    out.refer(content.octets);
    return Status::ok;
}

// Attribute ::= SEQUENCE { type OBJECT IDENTIFIER, values SET }
Status decode_attribute(Csr &csr, const Element &in) {
    Children fields;
    Element type;
    Element set;
    Children values;
    Bytes oid;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    ZA_PASS(cert::take_field(kWalk, fields, type));
    ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(type, oid));
    ZA_PASS(cert::take_field(kWalk, fields, set));
    ZA_TRY(ZAsn1_ReadSet, asn1::read_set(set, values));
    RequestAttribute attribute;
    attribute.oid.refer(oid);
    ZA_PASS(decode_value(values, attribute.value));
    return csr.attributes.append(trace, std::move(attribute));
}

}  // namespace

// attributes [0] IMPLICIT SET OF Attribute; some write the SET inside the tag.
Status decode_attributes(Csr &csr, const Element &attributes) {
    if (attributes.type != asn1::constructed(0)) {
        return trace.fail(Status::tag);
    }
    asn1::Implicit found;
    ZA_TRY(ZAsn1_ReadImplicit, asn1::read_implicit(attributes, found));
    Children list = found.children;
    Element first;
    if (Children(list).next(first) && first.type == asn1::kSet) {
        ZA_TRY(ZAsn1_ReadSet, asn1::read_set(first, list));
    }
    for (Element attribute; list.next(attribute);) {
        ZA_PASS(decode_attribute(csr, attribute));
    }
    return Status::ok;
}

// CertificationRequestInfo ::= SEQUENCE { version INTEGER, subject Name, subjectPKInfo,
//     attributes [0] }, where some leave out the attributes.
Status decode_info(Csr &csr, const Element &info) {
    csr.tbs.refer(info.octets);
    Children fields;
    Element field;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(info, fields));
    ZA_PASS(cert::take_field(kWalk, fields, field));
    ZA_TRY(ZAsn1_ReadInteger, asn1::read_integer(field, csr.version));
    ZA_PASS(cert::take_field(kWalk, fields, field));
    ZA_PASS(cert::decode_name(kWalk, field, csr.subject));
    ZA_PASS(cert::take_field(kWalk, fields, field));
    ZA_PASS(cert::decode_public_key(kWalk, field, csr.key));
    if (fields.next(field)) {
        ZA_TRY(ZI_CSR_DecodeAttributes, decode_attributes(csr, field));
    }
    return Status::ok;
}

// CertificationRequest ::= SEQUENCE { certificationRequestInfo, signatureAlgorithm, signature }
Status decode_csr(Csr &csr, Bytes in) {
    Bytes whole;
    ZA_PASS(cert::keep_object(kWalk, in, csr.kept, whole));
    csr.whole.refer(whole);

    Children fields;
    Element info;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(Element(whole), fields));
    ZA_PASS(cert::take_field(kWalk, fields, info));
    ZA_TRY(ZI_CSR_DecodeTBS, decode_info(csr, info));
    return cert::decode_signature(kWalk, fields, "------>ZAsn1_ReadSequence", csr.outer_algorithm,
                                  csr.signature);
}

}  // namespace za::request

using za::Bytes;
using za::Status;
using za::cert::decode_kept;
using za::request::Csr;
using za::request::kWalk;

uint32_t ZACert_DecodeCsr(void *ctx, const uint8_t *der, uint32_t derLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, der));
        return za::request::decode_csr(*static_cast<Csr *>(ctx), {der, derLen});
    });
}

uint32_t ZI_CSR_DecodeTBS(void *ctx, Anybuf *tbs) {
    return trace.exported(
        [&] { return decode_kept<Csr>(kWalk, ctx, tbs, za::request::decode_info); });
}

uint32_t ZI_CSR_DecodeAttributes(void *ctx, Anybuf *attributes) {
    return trace.exported(
        [&] { return decode_kept<Csr>(kWalk, ctx, attributes, za::request::decode_attributes); });
}
