// One certificate that a request asks about: Request ::= SEQUENCE { reqCert CertID,
//     singleRequestExtensions [0] EXPLICIT Extensions OPTIONAL }
#include <zacert/ocsp_entries.h>

#include "ocsp/za_ocsp_base.hpp"
#include "ocsp/za_ocsp_entry.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_ocsp_srequest", za::kLongStyle};

}  // namespace

namespace za::ocsp {
namespace {

using asn1::Children;
using asn1::Element;

struct RequestEntry {
    CertId id;
};

using Row = AttributeRow<RequestEntry>;

template <auto member>
constexpr auto set_value = set_in_id<RequestEntry, member>;
template <auto member>
constexpr auto get_value = get_in_id<RequestEntry, member>;

constexpr std::array kRows{
    Row{OCSP_REQUESTLIST_SERIALNUMBER, ZA_OCSP_ATTRIBUTE(OCSP_REQUESTLIST_SERIALNUMBER),
        set_value<&CertId::serial>, get_value<&CertId::serial>},
    Row{OCSP_REQUESTLIST_ISSUERNAME, ZA_OCSP_ATTRIBUTE(OCSP_REQUESTLIST_ISSUERNAME),
        set_value<&CertId::issuer_name>, get_value<&CertId::issuer_name>},
    Row{OCSP_REQUESTLIST_ISSUERKEY, ZA_OCSP_ATTRIBUTE(OCSP_REQUESTLIST_ISSUERKEY),
        set_value<&CertId::issuer_key>, get_value<&CertId::issuer_key>},
    Row{OCSP_REQUESTLIST_ISSUERHASHNAME, ZA_OCSP_ATTRIBUTE(OCSP_REQUESTLIST_ISSUERHASHNAME),
        nullptr, get_value<&CertId::name_hash>},
    Row{OCSP_REQUESTLIST_ISSUERHASHKEY, ZA_OCSP_ATTRIBUTE(OCSP_REQUESTLIST_ISSUERHASHKEY), nullptr,
        get_value<&CertId::key_hash>},
    Row{OCSP_REQUESTLIST_HASHALGO, ZA_OCSP_ATTRIBUTE(OCSP_REQUESTLIST_HASHALGO),
        set_value<&CertId::algorithm>, get_value<&CertId::algorithm>},
    Row{OCSP_REQUESTLIST_PARAM, ZA_OCSP_ATTRIBUTE(OCSP_REQUESTLIST_PARAM),
        set_value<&CertId::parameter>, get_value<&CertId::parameter>},
    Row{OCSP_REQUESTLIST_CERTID, ZA_OCSP_ATTRIBUTE(OCSP_REQUESTLIST_CERTID),
        set_value<&CertId::whole>, get_value<&CertId::whole>},
};

constexpr AttributeTable<RequestEntry> kAttributes{
    kRows,
    {kInvalidAttribute, kInvalidAttribute, kInvalidAttribute, kInvalidAttribute,
     Status::invalid_item}};
static_assert(kAttributes.ascending());

constexpr HashTexts kHashTexts{"------------>Hash Func is NULL",
                               "------------>Hash Function is error"};

Status write(RequestEntry &entry, asn1::Builder &out) {
    return out.sequence([&] { return write_cert_id(trace, kHashTexts, entry.id, out); });
}

// Extensions are let pass.
Status read(Bytes in, RequestEntry &out) {
    RequestEntry fresh;
    Children fields;
    Element id;
    Element extensions;
    ZA_PASS(fresh.id.kept.assign(in));
    ZA_PASS(open_sequence(trace, Element(fresh.id.kept.bytes()), fields));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, id));
    ZA_PASS(read_cert_id(trace, id, fresh.id));
    ZA_PASS(take_explicit(trace, fields, context_tag(0), extensions));
    ZA_PASS(end_of(trace, fields));
    out = std::move(fresh);
    return Status::ok;
}

constexpr Frames<RequestEntry> kFrames{
    trace,
    []() -> const AttributeTable<RequestEntry> & { return kAttributes; },
    {kInvalidAttribute, kInvalidAttribute, kInvalidAttribute}};

}  // namespace
}  // namespace za::ocsp

using za::ocsp::kFrames;
using za::ocsp::RequestEntry;

uint32_t ZA_OCSP_CreateEncodeRequestList(void **ctx) {
    return kFrames.create(ctx);
}

uint32_t ZA_OCSP_SetRequestListAttributeChar(void *ctx, int32_t id, const uint8_t *data,
                                             uint32_t len) {
    return kFrames.set(ctx, id, data, len);
}

uint32_t ZA_OCSP_SetRequestListHashFunc(void *ctx, ZA_CryptFunc hashFunc, const uint8_t *arg,
                                        uint32_t argLen) {
    return kFrames.install(ctx, za::ocsp::hash_in_id<RequestEntry>, hashFunc, arg, argLen);
}

uint32_t ZA_OCSP_EncodeRequestList(void *ctx, Anybuf **out) {
    return kFrames.run(ctx, [&](RequestEntry &entry) {
        ZA_PASS(trace.need(out));
        return za::asn1::hand_out_built(
            out, [&](za::asn1::Builder &built) { return za::ocsp::write(entry, built); });
    });
}

uint32_t ZA_OCSP_DestroyEncodeRequestList(void *ctx) {
    return kFrames.destroy(ctx);
}

uint32_t ZA_OCSP_CreateDecodeRequestList(void **ctx) {
    return kFrames.create(ctx);
}

uint32_t ZA_OCSP_DecodeRequestList(void *ctx, const uint8_t *der, uint32_t derLen) {
    return kFrames.decode(ctx, der, derLen);
}

uint32_t ZA_OCSP_GetRequestListAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                             uint32_t *outLen) {
    return kFrames.get(ctx, id, out, outLen);
}

uint32_t ZA_OCSP_DestroyDecodeRequestList(void *ctx) {
    return kFrames.destroy(ctx);
}
