// Creating and destroying CRL contexts, and the exported accessors.
#include "cert/za_cert_issuer.hpp"
#include "request/za_crl_attributes.hpp"
#include "runtime/context.hpp"
#include "runtime/trace.hpp"

using za::Bytes;
using za::Status;
using za::request::Crl;

namespace {

constexpr za::TraceSource trace{".\\src\\za_crl"};

}  // namespace

uint32_t ZACert_CreateCrlEncodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<Crl>(trace, ctx); });
}

uint32_t ZACert_CreateCrlEncodeCtx_Ex(void **ctx, const uint8_t *derIssuCert,
                                      uint32_t derIssuCertLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        za::cert::Certificate ca;
        za::Field subject;
        void *created = nullptr;
        ZA_PASS(za::cert::decode_ca(trace, derIssuCert, derIssuCertLen, ca));
        if (ca.subject.der.empty()) {
            return trace.fail(Status::length);
        }
        ZA_PASS(subject.assign(ca.subject.der.bytes()));
        ZA_TRY(ZACert_CreateCrlEncodeCtx, static_cast<Status>(ZACert_CreateCrlEncodeCtx(&created)));
        static_cast<Crl *>(created)->issuer.der = std::move(subject);
        *ctx = created;
        return Status::ok;
    });
}

uint32_t ZACert_CreateCrlDecodeCtx(void **ctx) {
    return trace.exported([&] {
        ZA_TRY(ZACert_CreateCrlEncodeCtx, static_cast<Status>(ZACert_CreateCrlEncodeCtx(ctx)));
        return Status::ok;
    });
}

uint32_t ZACert_DestroyCrlEncodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<Crl>(ctx); });
}

uint32_t ZACert_DestroyCrlDecodeCtx(void *ctx) {
    return trace.exported([&] {
        ZA_TRY(ZACert_DestroyCrlEncodeCtx, static_cast<Status>(ZACert_DestroyCrlEncodeCtx(ctx)));
        return Status::ok;
    });
}

uint32_t ZACert_SetCrlAttributeInt(void *ctx, int32_t type, int32_t value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        Crl &crl = *static_cast<Crl *>(ctx);
        if (type == CRL_REVOCATIONDATE) {
            ZA_PASS(za::request::need_entry(crl));
        }
        return za::request::crl_attributes().set_int(trace, crl, type, value);
    });
}

uint32_t ZACert_GetCrlAttributeInt(void *ctx, int32_t type, uint32_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, value));
        return za::request::crl_attributes().get_int(trace, *static_cast<Crl *>(ctx), type, value);
    });
}

uint32_t ZACert_SetCrlAttributeChar(void *ctx, int32_t type, const uint8_t *value,
                                    int32_t valueLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        const bool has_value = valueLen > 0;
        ZA_PASS(has_value ? trace.need(value) : Status::ok);
        return za::request::set_crl_attribute(
            *static_cast<Crl *>(ctx), type,
            has_value ? Bytes(value, static_cast<size_t>(valueLen)) : Bytes{});
    });
}

uint32_t ZACert_GetCrlAttributeChar(void *ctx, int32_t type, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        *outLen = 0;
        // Moving on tells a length and writes nothing, whatever buffer it is given.
        uint8_t *const place = type == CRL_CERT_NEXT ? nullptr : out;
        return za::request::crl_attributes().get(trace, *static_cast<Crl *>(ctx), type, place,
                                                 outLen);
    });
}
