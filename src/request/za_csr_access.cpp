// Creating and destroying request contexts, and the exported accessors.
#include "request/za_csr_attributes.hpp"
#include "runtime/context.hpp"
#include "runtime/trace.hpp"

using za::Bytes;
using za::Status;
using za::request::Csr;
using za::request::csr_attributes;
using za::request::RequestAttribute;

namespace {

constexpr za::TraceSource trace{".\\src\\za_csr"};

Status append_attribute(Csr &csr, Bytes oid, Bytes value) {
    RequestAttribute attribute;
    ZA_PASS(attribute.oid.assign(oid));
    ZA_PASS(attribute.value.assign(value));
    ZA_PASS(csr.attributes.append(trace, std::move(attribute)));
    trace.note("======>ZACsr_SetCertAttributePrivate End");
    return Status::ok;
}

}  // namespace

uint32_t ZACert_CreateCsrEncodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<Csr>(trace, ctx); });
}

uint32_t ZACert_CreateCsrDecodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<Csr>(trace, ctx); });
}

uint32_t ZACert_DestroyCsrEncodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<Csr>(ctx); });
}

uint32_t ZACert_DestroyCsrDecodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<Csr>(ctx); });
}

uint32_t ZACert_SetCsrAttributeInt(void *ctx, int32_t type, int32_t value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        return csr_attributes().set_int(trace, *static_cast<Csr *>(ctx), type, value);
    });
}

uint32_t ZACert_GetCsrAttributeInt(void *ctx, int32_t type, uint32_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, value));
        return csr_attributes().get_int(trace, *static_cast<Csr *>(ctx), type, value);
    });
}

uint32_t ZACert_SetCsrAttributeChar(void *ctx, int32_t type, const uint8_t *value,
                                    int32_t valueLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        const bool has_value = valueLen > 0;
        ZA_PASS(has_value ? trace.need(value) : Status::ok);
        return za::request::set_csr_attribute(
            *static_cast<Csr *>(ctx), type,
            has_value ? Bytes(value, static_cast<size_t>(valueLen)) : Bytes{});
    });
}

uint32_t ZACert_GetCsrAttributeChar(void *ctx, int32_t type, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        *outLen = 0;
        return csr_attributes().get(trace, *static_cast<Csr *>(ctx), type, out, outLen);
    });
}

uint32_t ZACert_SetCsrAttributePrivate(void *ctx, const uint8_t *oid, int32_t oidLen,
                                       const uint8_t *value, int32_t valueLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        if (oidLen <= 0 || valueLen <= 0) {
            return trace.fail(Status::length,
                              "------>(csrAttributeOidLen <= 0) || ( csrAttributeValueLen <= 0)");
        }
        ZA_PASS(trace.need(oid, value));
        return append_attribute(*static_cast<Csr *>(ctx), Bytes(oid, static_cast<size_t>(oidLen)),
                                Bytes(value, static_cast<size_t>(valueLen)));
    });
}

uint32_t ZACert_GetCsrAttributePrivate(void *ctx, uint32_t *index, uint8_t *oid, uint32_t *oidLen,
                                       uint8_t *value, uint32_t *valueLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, index));
        const auto &list = static_cast<Csr *>(ctx)->attributes;
        const RequestAttribute *attribute = list.item(*index);
        if (attribute == nullptr) {
            *index = za::to_u32(list.size());
            return Status::ok;
        }
        ZA_PASS(trace.need(oidLen, valueLen));
        za::hand_out(attribute->oid.bytes(), oid, oidLen);
        za::hand_out(attribute->value.bytes(), value, valueLen);
        return Status::ok;
    });
}
