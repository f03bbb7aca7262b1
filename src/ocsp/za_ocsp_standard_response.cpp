// Responses between their context and DER, and what callers do with them.
#include "ocsp/za_ocsp_standard_response.hpp"

#include <zacert/ocsp.h>

#include "asn1/za_asn2_writer.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_ocsp_standard", za::kLongStyle};

}  // namespace

namespace za::ocsp {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

namespace {

// The record of the body borrows what the context owns while it is written.
class Lent {
  public:
    explicit Lent(Response &response) : responder_(response.basic->data.responderId) {
        constexpr uint32_t kHashRoom = 512;
        responder_.name = *response.name.holder();
        responder_.publicKey = const_cast<uint8_t *>(response.public_key.bytes().data());
        responder_.publicKeyLen = to_u32(response.public_key.bytes().size());
        responder_.hashBufLen = kHashRoom;
    }
    ~Lent() {
        responder_.name = {};
        responder_.publicKey = nullptr;
        responder_.publicKeyLen = 0;
    }
    Lent(const Lent &) = delete;
    Lent &operator=(const Lent &) = delete;

  private:
    ZA_OCSP_RESPONDERID &responder_;
};

Status make_basic(Response &response, Octets &out) {
    Builder built;
    const Lent lent(response);
    ZA_PASS(ZA_BODY(ZI_EncodeBasicResponse,
                    write_basic_response(*response.basic, response.hash, response.sign, built)));
    return built.finish(out);
}

// responseBytes [0] EXPLICIT SEQUENCE { responseType OBJECT IDENTIFIER, response OCTET STRING }
Status write_body(Response &response, Builder &out) {
    Octets basic;
    if (response.type.empty()) {
        return trace.fail(Status::invalid_item, "------------>The response type is null");
    }
    ZA_PASS(make_basic(response, basic));
    const auto fields = [&] {
        out.object_id(response.type.bytes());
        out.octet_string(basic.bytes());
    };
    out.wrapped(context_tag(0), [&] { out.sequence(fields); });
    return Status::ok;
}

Status read_body(const Element &in, Response &out) {
    Children fields;
    Bytes type;
    Bytes basic;
    ZA_PASS(open_sequence(trace, in, fields));
    ZA_PASS(take_object_id(trace, fields, type, "------------>The response type is null"));
    ZA_PASS(take_octets(trace, fields, basic));
    ZA_PASS(end_of(trace, fields));
    out.type.refer(type);
    ZA_PASS(
        ZA_BODY(ZI_DecodeBasicResponse, read_basic_response(Element(basic), *out.basic, out.name)));
    out.has_body = true;
    for (Anybuf *entry = out.basic->data.responses; entry != nullptr; entry = entry->next) {
        out.last_entry = entry;
    }
    return Status::ok;
}

}  // namespace

Status write(Response &response, Builder &out) {
    if (response.status.empty()) {
        return trace.fail(Status::invalid_item, "------------>The response status  is null");
    }
    return out.sequence([&] {
        out.element(ZA_DER_ID_ENUMERATED, response.status.bytes());
        return response.has_body ? write_body(response, out) : Status::ok;
    });
}

Status read(Bytes in, Response &out) {
    Response fresh;
    Children fields;
    Element status;
    Element body;
    asn1::Content content;
    ZA_PASS(fresh.encoded.assign(in));
    ZA_PASS(open_sequence(trace, Element(fresh.encoded.bytes()), fields));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_ENUMERATED, status,
                       "------------>The response status  is null"));
    ZA_PASS(ZA_BODY(ZAsn1_ReadEnumerated, read_string(status, content)));
    fresh.status.refer(content.octets);
    ZA_PASS(take_explicit(trace, fields, context_tag(0), body));
    ZA_PASS(end_of(trace, fields));
    if (!body.octets.empty()) {
        ZA_PASS(read_body(body, fresh));
    }
    out = std::move(fresh);
    return Status::ok;
}

}  // namespace za::ocsp

using za::Status;
using za::ocsp::Response;

namespace {

constexpr const char *kInvalid = "------------>The input item is invalid";

constexpr za::ocsp::Frames<Response> kFrames{
    trace,
    za::ocsp::response_attributes,
    {za::ocsp::kInvalidInput, kInvalid, za::ocsp::kInvalidNumber}};

// The line of missing memory has one sign more here.
constexpr za::TraceSource creating{
    ".\\src\\za_ocsp_standard", {"------", Status::invalid_item, za::kLongStyle.frame, "-------"}};

za::CryptSlot &sign_of(Response &response) {
    return response.sign;
}

za::CryptSlot &hash_of(Response &response) {
    return response.hash;
}

Status add_entry(Response &response, za::Bytes der) {
    za::Chain record;
    ZA_PASS(za::asn1::to_record({der, za::asn1::kSequence}, record));
    Anybuf *entry = record.release();
    (response.last_entry == nullptr ? response.basic->data.responses : response.last_entry->next) =
        entry;
    response.last_entry = entry;
    return Status::ok;
}

// Counted from 1; NULL where there is none.
const Anybuf *entry_at(const Response &response, uint32_t number) {
    const Anybuf *entry = number == 0 ? nullptr : response.basic->data.responses;
    for (uint32_t i = 1; i < number && entry != nullptr; ++i) {
        entry = entry->next;
    }
    return entry;
}

}  // namespace

uint32_t ZA_OCSP_CreateEncodeResponse(void **ctx) {
    return trace.exported([&] { return za::create_context<Response>(creating, ctx); });
}

uint32_t ZA_OCSP_SetResponseAttributeInt(void *ctx, int32_t id, int32_t value) {
    return kFrames.set_int(ctx, id, value);
}

uint32_t ZA_OCSP_SetResponseAttributeChar(void *ctx, int32_t id, const uint8_t *data,
                                          uint32_t len) {
    return kFrames.set(ctx, id, data, len);
}

uint32_t ZA_OCSP_SetResponseSingleResponse(void *ctx, const uint8_t *der, uint32_t derLen) {
    return kFrames.run(ctx, [&](Response &response) {
        ZA_PASS(za::ocsp::check_octets(trace, der, derLen, kInvalid));
        return add_entry(response, {der, derLen});
    });
}

uint32_t ZA_OCSP_SetResponseSignFunc(void *ctx, ZA_CryptFunc signFunc, const uint8_t *arg,
                                     uint32_t argLen) {
    return kFrames.install(ctx, sign_of, signFunc, arg, argLen);
}

uint32_t ZA_OCSP_SetResponseHashFunc(void *ctx, ZA_CryptFunc hashFunc, const uint8_t *arg,
                                     uint32_t argLen) {
    return kFrames.install(ctx, hash_of, hashFunc, arg, argLen);
}

uint32_t ZA_OCSP_SetResponsePrivateAttribute(void) {
    return trace.exported([] { return Status::ok; });
}

uint32_t ZA_OCSP_EncodeResponse(void *ctx, uint8_t *out, uint32_t *outLen) {
    return kFrames.run(ctx, [&](Response &response) {
        if (outLen == nullptr) {
            return trace.fail(Status::invalid_item, za::ocsp::kInvalidInput);
        }
        return za::ocsp::hand_out_encoded(response, out, outLen);
    });
}

uint32_t ZA_OCSP_DestoryEncodeResponse(void *ctx) {
    return kFrames.destroy(ctx);
}

uint32_t ZA_OCSP_CreateDecodeResponse(void **ctx) {
    return kFrames.create(ctx);
}

uint32_t ZA_OCSP_DecodeResponse(void *ctx, const uint8_t *der, uint32_t derLen) {
    return kFrames.decode(ctx, der, derLen);
}

uint32_t ZA_OCSP_DestoryDecodeResponse(void *ctx) {
    return kFrames.destroy(ctx);
}

uint32_t ZA_OCSP_GetResponseAttributeInt(void *ctx, int32_t id, int32_t *value) {
    return kFrames.get_int(ctx, id, value);
}

uint32_t ZA_OCSP_GetResponseAttributeChar(void *ctx, int32_t id, uint8_t *out, uint32_t *outLen) {
    return kFrames.get(ctx, id, out, outLen);
}

uint32_t ZA_OCSP_GetResponseSingleResponse(void *ctx, uint8_t *out, uint32_t *outLen,
                                           uint32_t number) {
    return kFrames.run(ctx, [&](const Response &response) {
        ZA_PASS(trace.need(outLen));
        const Anybuf *entry = entry_at(response, number);
        if (entry == nullptr) {
            return trace.fail(Status::invalid_item);
        }
        za::hand_out(za::bytes_of(*entry), out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_OCSP_GetResponsePrivateAttribute(void) {
    return trace.exported([] { return Status::ok; });
}
