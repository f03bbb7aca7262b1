// Creating and destroying certificate contexts, and the exported accessors.
#include "cert/za_cert_attributes.hpp"
#include "runtime/context.hpp"
#include "runtime/trace.hpp"

#include <array>
#include <cstdio>

using za::Bytes;
using za::Status;
using za::cert::Certificate;

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

Status refuse_length(int32_t type) {
    std::array<char, 128> text;
    constexpr const char *kFormat =
        "------>ZACert_SetCertAttributeChar Err, certAttributeValueLen<=0 Err, "
        "certAttributeType:%d";
    const int length = std::snprintf(text.data(), text.size(), kFormat, type);
    return trace.fail(Status::length, {{text.data(), static_cast<size_t>(length)}, {}});
}

}  // namespace

Status za::cert::set_attribute(Certificate &cert, int32_t type, Bytes value) {
    if (value.empty()) {
        return refuse_length(type);
    }
    return attributes().set(trace, cert, type, value);
}

uint32_t ZACert_CreateCertEncodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<Certificate>(trace, ctx); });
}

uint32_t ZACert_CreateCertDecodeCtx(void **ctx) {
    return trace.exported([&] {
        ZA_TRY(ZACert_CreateCertEncodeCtx, static_cast<Status>(ZACert_CreateCertEncodeCtx(ctx)));
        return Status::ok;
    });
}

uint32_t ZACert_DestroyCertEncodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<Certificate>(ctx); });
}

uint32_t ZACert_DestroyCertDecodeCtx(void *ctx) {
    return trace.exported([&] {
        ZA_TRY(ZACert_DestroyCertEncodeCtx, static_cast<Status>(ZACert_DestroyCertEncodeCtx(ctx)));
        return Status::ok;
    });
}

uint32_t ZACert_SetCertAttributeInt(void *ctx, int32_t type, int32_t value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        return za::cert::attributes().set_int(trace, *static_cast<Certificate *>(ctx), type, value);
    });
}

uint32_t ZACert_GetCertAttributeInt(void *ctx, int32_t type, uint32_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, value));
        return za::cert::attributes().get_int(trace, *static_cast<Certificate *>(ctx), type, value);
    });
}

uint32_t ZACert_SetCertAttributeChar(void *ctx, int32_t type, const uint8_t *value,
                                     int32_t valueLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        if (valueLen <= 0) {
            return refuse_length(type);
        }
        ZA_PASS(trace.need(value));
        return za::cert::set_attribute(*static_cast<Certificate *>(ctx), type,
                                       Bytes(value, static_cast<size_t>(valueLen)));
    });
}

uint32_t ZACert_GetCertAttributeChar(void *ctx, int32_t type, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        *outLen = 0;
        return za::cert::attributes().get(trace, *static_cast<Certificate *>(ctx), type, out,
                                          outLen);
    });
}
