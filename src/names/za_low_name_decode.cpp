#include "names/za_low_charset.hpp"
#include "names/za_low_name.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

namespace za::names {
namespace {

// Every string stays as it stands but a BMPString, which becomes callers' text.
Status append_value(Bytes oid, const asn1::Content &value, NameList &out) {
    Octets chinese;
    Bytes octets = value.octets;
    if (value.tag == asn1::kBmpString) {
        ZA_TRY(ZI_BmpString2Chinese, bmp_to_chinese(octets, chinese));
        octets = chinese.bytes();
    }
    ZA_TRY(ZI_CopyAnybuf, out.append(kind_of(oid), oid, octets, value.tag));
    return Status::ok;
}

// AttributeTypeAndValue ::= SEQUENCE { type, value }
Status decode_attribute(const asn1::Element &attribute, NameList &out) {
    asn1::Children fields;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(attribute, fields));
    asn1::Element type;
    asn1::Element value;
    if (!fields.next(type) || !fields.next(value)) {
        return trace.fail(Status::invalid_item);
    }
    // type OBJECT IDENTIFIER
    Bytes oid;
    ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(type, oid));
    // value ANY, in practice one of the strings
    asn1::Content content;
    ZA_TRY(ZAsn1_ReadPrintableString, asn1::read_string(value, content));
    return append_value(oid, content, out);
}

}  // namespace

Status decode_issuer_subject(const asn1::Element &name, NameList &out) {
    // RDNSequence ::= SEQUENCE OF
    asn1::Children rdns;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(name, rdns));
    NameList entries;
    for (asn1::Element rdn; rdns.next(rdn);) {
        // RelativeDistinguishedName ::= SET OF
        asn1::Children attributes;
        ZA_TRY(ZAsn1_ReadSet, asn1::read_set(rdn, attributes));
        for (asn1::Element attribute; attributes.next(attribute);) {
            ZA_PASS(decode_attribute(attribute, entries));
        }
    }
    out.append(std::move(entries));
    return Status::ok;
}

}  // namespace za::names

using za::Status;

uint32_t ZI_DecodeIssuerSubject(const Anybuf *name, ZI_NameEntry **outList) {
    return trace.exported([&] {
        ZA_PASS(trace.need(name, outList));
        za::names::NameList list;
        ZA_PASS(za::names::decode_issuer_subject(za::asn1::Element(*name), list));
        za::names::CallerEntries entries;
        ZA_TRY(ZI_CopyAnybuf, entries.copy(list));
        *outList = entries.release();
        return Status::ok;
    });
}
