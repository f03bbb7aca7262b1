#include "pkcs7/za_pkcs7_Data.hpp"

#include <zacert/pkcs7.h>

#include "names/za_low_oid.hpp"
#include "pkcs7/za_pkcs7_part.hpp"
#include "runtime/context.hpp"

#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_Data",
                                {za::pkcs7::kArrow, za::Status::invalid_item}};

}  // namespace

namespace za::pkcs7 {

Status encode_data(Bytes content, Octets &out) {
    const auto octets = [&](asn1::Builder &message) {
        message.octet_string(content);
        return Status::ok;
    };
    ZA_TRY(ZI_MakeContentToSequence, make_content_info(oid::kData, out, octets, content.size()));
    return Status::ok;
}

Status decode_data(Bytes in, Data &out) {
    Data fresh;
    ContentInfo info{oid::kData, true, {}};
    ZA_PASS(open_message(trace, in, info.type, fresh.kept, info.content));
    ZA_PASS(read_inner_content(trace, info, fresh.content));
    fresh.has_content = true;
    out = std::move(fresh);
    return Status::ok;
}

}  // namespace za::pkcs7

using za::Bytes;
using za::Octets;
using za::Status;
using za::pkcs7::Data;
using za::pkcs7::has_octets;

uint32_t ZA_PKCS7_CreateDataEncodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<Data>(trace, ctx); });
}

uint32_t ZA_PKCS7_SetDataContent(void *ctx, const uint8_t *content, uint32_t len) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        if (!has_octets(content, len)) {
            return trace.fail(Status::invalid_item);
        }
        auto &data = *static_cast<Data *>(ctx);
        ZA_PASS(data.content.assign(Bytes(content, len)));
        data.has_content = true;
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_EncodePKCS7Data(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        const auto &data = *static_cast<Data *>(ctx);
        if (!data.has_content) {
            return trace.fail(Status::general);
        }
        Octets der;
        ZA_PASS(za::pkcs7::encode_data(data.content.bytes(), der));
        za::hand_out(der.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_DecodePKCS7Data(void *ctx, const uint8_t *der, uint32_t derLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        if (!has_octets(der, derLen)) {
            return trace.fail(Status::invalid_item);
        }
        return za::pkcs7::decode_data(Bytes(der, derLen), *static_cast<Data *>(ctx));
    });
}

uint32_t ZA_PKCS7_GetDataContent(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        za::hand_out(static_cast<Data *>(ctx)->content.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_DestoryDataEncodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<Data>(ctx); });
}

uint32_t ZA_PKCS7_DestoryDataDecodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<Data>(ctx); });
}
