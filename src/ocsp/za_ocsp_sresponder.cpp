// What a response says of one certificate: SingleResponse ::= SEQUENCE { certID CertID,
//     certStatus CertStatus, thisUpdate GeneralizedTime,
//     nextUpdate [0] EXPLICIT GeneralizedTime OPTIONAL,
//     singleExtensions [1] EXPLICIT Extensions OPTIONAL }
#include <zacert/ocsp_entries.h>

#include "ocsp/za_ocsp_base.hpp"
#include "ocsp/za_ocsp_entry.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_ocsp_sresponder", za::kLongStyle};

}  // namespace

namespace za::ocsp {
namespace {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

enum class CertStatus : uint32_t { none = 0, good = 1, revoked = 2, unknown = 3 };

struct ResponseEntry {
    CertId id;
    CertStatus status = CertStatus::none;
    uint32_t revocation_time = 0;
    Field reason;
    Field unknown;
    int32_t this_update = 0;
    bool has_next_update = false;
    int32_t next_update = 0;
};

using Row = AttributeRow<ResponseEntry>;

template <auto member>
constexpr auto set_value = set_in_id<ResponseEntry, member>;
template <auto member>
constexpr auto get_value = get_in_id<ResponseEntry, member>;

void set_this_update(ResponseEntry &entry, int32_t value) {
    entry.this_update = value;
}

void set_next_update(ResponseEntry &entry, int32_t value) {
    entry.next_update = value;
    entry.has_next_update = true;
}

template <auto member>
Status get_time(const ResponseEntry &entry, uint32_t &out) {
    out = static_cast<uint32_t>(entry.*member);
    return Status::ok;
}

constexpr std::array kRows{
    Row{OCSP_RESPONDERLIST_THISUPDATE, ZA_OCSP_ATTRIBUTE(OCSP_RESPONDERLIST_THISUPDATE), nullptr,
        nullptr, 0, set_this_update, get_time<&ResponseEntry::this_update>},
    Row{OCSP_RESPONDERLIST_NEXTUPDATE, ZA_OCSP_ATTRIBUTE(OCSP_RESPONDERLIST_NEXTUPDATE), nullptr,
        nullptr, 0, set_next_update, get_time<&ResponseEntry::next_update>},
    Row{OCSP_RESPONDERLIST_SERIALNUMBER, ZA_OCSP_ATTRIBUTE(OCSP_RESPONDERLIST_SERIALNUMBER),
        set_value<&CertId::serial>, get_value<&CertId::serial>},
    Row{OCSP_RESPONDERLIST_ISSUERNAME, ZA_OCSP_ATTRIBUTE(OCSP_RESPONDERLIST_ISSUERNAME),
        set_value<&CertId::issuer_name>, get_value<&CertId::issuer_name>},
    Row{OCSP_RESPONDERLIST_ISSUERHASHNAME, ZA_OCSP_ATTRIBUTE(OCSP_RESPONDERLIST_ISSUERHASHNAME),
        nullptr, get_value<&CertId::name_hash>},
    Row{OCSP_RESPONDERLIST_ISSUERKEY, ZA_OCSP_ATTRIBUTE(OCSP_RESPONDERLIST_ISSUERKEY),
        set_value<&CertId::issuer_key>, get_value<&CertId::issuer_key>},
    Row{OCSP_RESPONDERLIST_ISSUERHASHKEY, ZA_OCSP_ATTRIBUTE(OCSP_RESPONDERLIST_ISSUERHASHKEY),
        nullptr, get_value<&CertId::key_hash>},
    Row{OCSP_RESPONDERLIST_HASHALGO, ZA_OCSP_ATTRIBUTE(OCSP_RESPONDERLIST_HASHALGO),
        set_value<&CertId::algorithm>, get_value<&CertId::algorithm>},
    Row{OCSP_RESPONDERLIST_PARAM, ZA_OCSP_ATTRIBUTE(OCSP_RESPONDERLIST_PARAM),
        set_value<&CertId::parameter>, get_value<&CertId::parameter>},
    Row{OCSP_RESPONDERLIST_CERTID, ZA_OCSP_ATTRIBUTE(OCSP_RESPONDERLIST_CERTID),
        set_value<&CertId::whole>, get_value<&CertId::whole>},
};

constexpr const char *kInvalidTime = "------------->The attribute type is Invalid Item";

constexpr AttributeTable<ResponseEntry> kAttributes{
    kRows,
    {kInvalidAttribute, kInvalidAttribute, kInvalidTime, kInvalidTime, Status::invalid_item}};
static_assert(kAttributes.ascending());

constexpr HashTexts kHashTexts{"------------>The Hash Func Error",
                               "------------>The Hash Func Error"};

// revoked [1] IMPLICIT RevokedInfo ::= SEQUENCE { revocationTime GeneralizedTime,
//     revocationReason [0] EXPLICIT CRLReason OPTIONAL }
Status write_revoked(const ResponseEntry &entry, Builder &out) {
    if (entry.revocation_time > INT32_MAX) {
        return trace.fail(Status::invalid_time);
    }
    return out.wrapped(kRevoked, [&] {
        const ZA_OCSP_TIME time{static_cast<int32_t>(entry.revocation_time), 0};
        ZA_PASS(write_time(trace, time, out));
        if (!entry.reason.empty()) {
            out.wrapped(context_tag(0),
                        [&] { out.element(ZA_DER_ID_ENUMERATED, entry.reason.bytes()); });
        }
        return Status::ok;
    });
}

Status write_status(const ResponseEntry &entry, Builder &out) {
    switch (entry.status) {
        case CertStatus::good:
            out.element(kGood, {});
            return Status::ok;
        case CertStatus::revoked:
            return write_revoked(entry, out);
        case CertStatus::unknown:
            out.element(kUnknown, entry.unknown.bytes());
            return Status::ok;
        default:
            return trace.fail(Status::invalid_item);
    }
}

Status write(ResponseEntry &entry, Builder &out) {
    return out.sequence([&] {
        ZA_PASS(write_cert_id(trace, kHashTexts, entry.id, out));
        ZA_PASS(write_status(entry, out));
        ZA_PASS(write_time(trace, {entry.this_update, 0}, out));
        if (!entry.has_next_update) {
            return Status::ok;
        }
        return out.wrapped(context_tag(0), [&] {
            return write_time(trace, {entry.next_update, 0}, out);
        });
    });
}

Status read_status(Children &fields, ResponseEntry &out) {
    Element status;
    Owned<ZA_OCSP_CERTSTATUS> record;
    if (!fields.next(status)) {
        return trace.fail(Status::invalid_item);
    }
    ZA_PASS(ZA_BODY(ZI_DecodeCertStatus, read_cert_status(status, *record)));
    out.status = record->goodFlag == 1      ? CertStatus::good
                 : record->revokedFlag == 1 ? CertStatus::revoked
                                            : CertStatus::unknown;
    out.revocation_time = static_cast<uint32_t>(record->revocationTime.value);
    ZA_PASS(out.reason.assign(bytes_of(record->reason)));
    return out.unknown.assign(bytes_of(record->unknown));
}

Status read_times(Children &fields, ResponseEntry &out) {
    ZA_OCSP_TIME time{};
    Element this_update;
    Element next_update;
    if (!fields.next(this_update)) {
        return trace.fail(Status::invalid_item);
    }
    ZA_PASS(read_time(trace, this_update, time));
    out.this_update = time.value;
    ZA_PASS(take_explicit(trace, fields, context_tag(0), next_update));
    if (!next_update.octets.empty()) {
        ZA_PASS(read_time(trace, next_update, time));
        out.next_update = time.value;
        out.has_next_update = true;
    }
    return Status::ok;
}

// Extensions are let pass.
Status read(Bytes in, ResponseEntry &out) {
    ResponseEntry fresh;
    Children fields;
    Element id;
    Element extensions;
    ZA_PASS(fresh.id.kept.assign(in));
    ZA_PASS(open_sequence(trace, Element(fresh.id.kept.bytes()), fields));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, id));
    ZA_PASS(read_cert_id(trace, id, fresh.id));
    ZA_PASS(read_status(fields, fresh));
    ZA_PASS(read_times(fields, fresh));
    ZA_PASS(take_explicit(trace, fields, context_tag(1), extensions));
    ZA_PASS(end_of(trace, fields));
    out = std::move(fresh);
    return Status::ok;
}

constexpr Frames<ResponseEntry> kFrames{
    trace,
    []() -> const AttributeTable<ResponseEntry> & { return kAttributes; },
    {kInvalidAttribute, kInvalidAttribute, kInvalidTime}};

// Stands for one whose value cannot be.
constexpr int32_t kNoAttribute = -1;

}  // namespace
}  // namespace za::ocsp

using za::Status;
using za::ocsp::CertStatus;
using za::ocsp::kFrames;
using za::ocsp::kInvalidAttribute;
using za::ocsp::kNoAttribute;
using za::ocsp::ResponseEntry;

uint32_t ZA_OCSP_CreateEncodeResponseList(void **ctx) {
    return kFrames.create(ctx);
}

uint32_t ZA_OCSP_SetResponseListAttributeChar(void *ctx, int32_t id, const uint8_t *data,
                                              uint32_t len) {
    return kFrames.set(ctx, id, data, len);
}

uint32_t ZA_OCSP_SetResponseListAttributeInt(void *ctx, int32_t id, int32_t value) {
    return kFrames.set_int(ctx, value < 0 ? kNoAttribute : id, value);
}

uint32_t ZA_OCSP_SetResponseListHashFunc(void *ctx, ZA_CryptFunc hashFunc, const uint8_t *arg,
                                         uint32_t argLen) {
    return kFrames.install(ctx, za::ocsp::hash_in_id<ResponseEntry>, hashFunc, arg, argLen);
}

uint32_t ZA_OCSP_SetResponseList_CertStatusGood(void *ctx) {
    return kFrames.run(ctx, [&](ResponseEntry &entry) {
        entry.status = CertStatus::good;
        return Status::ok;
    });
}

uint32_t ZA_OCSP_SetResponseList_CertStatusRevoke(void *ctx, uint32_t revocationTime,
                                                  uint32_t /*reserved*/, const uint8_t *reason,
                                                  uint32_t reasonLen) {
    return kFrames.run(ctx, [&](ResponseEntry &entry) {
        const bool has_reason = reason != nullptr && reasonLen >= 1 && reasonLen <= INT32_MAX;
        if (revocationTime == 0) {
            return trace.fail(Status::invalid_item);
        }
        ZA_PASS(entry.reason.assign(has_reason ? za::Bytes(reason, reasonLen) : za::Bytes()));
        entry.revocation_time = revocationTime;
        entry.status = CertStatus::revoked;
        return Status::ok;
    });
}

uint32_t ZA_OCSP_SetResponseList_CertStatusUnInfo(void *ctx, const uint8_t *content,
                                                  uint32_t contentLen) {
    return kFrames.run(ctx, [&](ResponseEntry &entry) {
        ZA_PASS(za::ocsp::check_octets(trace, content, contentLen, kInvalidAttribute));
        ZA_PASS(entry.unknown.assign({content, contentLen}));
        entry.status = CertStatus::unknown;
        return Status::ok;
    });
}

uint32_t ZA_OCSP_EncodeResponseList(void *ctx, Anybuf **out) {
    return kFrames.run(ctx, [&](ResponseEntry &entry) {
        ZA_PASS(trace.need(out));
        return za::asn1::hand_out_built(
            out, [&](za::asn1::Builder &built) { return za::ocsp::write(entry, built); });
    });
}

uint32_t ZA_OCSP_DestroyEncodeResponseList(void *ctx) {
    return kFrames.destroy(ctx);
}

uint32_t ZA_OCSP_CreateDecodeResponseList(void **ctx) {
    return kFrames.create(ctx);
}

uint32_t ZA_OCSP_DecodeResponseList(void *ctx, const uint8_t *der, uint32_t derLen) {
    return kFrames.decode(ctx, der, derLen);
}

uint32_t ZA_OCSP_DestroyDecodeResponseList(void *ctx) {
    return kFrames.destroy(ctx);
}

uint32_t ZA_OCSP_GetResponseListAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                              uint32_t *outLen) {
    return kFrames.get(ctx, id, out, outLen);
}

uint32_t ZA_OCSP_GetResponseListAttributeInt(void *ctx, int32_t id, int32_t *value) {
    return kFrames.get_int(ctx, id, value);
}

uint32_t ZA_OCSP_GetResponseListCertSatus(void *ctx, uint32_t *status) {
    return kFrames.run(ctx, [&](const ResponseEntry &entry) {
        ZA_PASS(trace.need(status));
        if (entry.status == CertStatus::none) {
            return trace.fail(Status::invalid_item);
        }
        *status = static_cast<uint32_t>(entry.status);
        return Status::ok;
    });
}
