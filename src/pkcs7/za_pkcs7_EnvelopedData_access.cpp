// Creating and destroying EnvelopedData contexts, their attributes, one row each, and their parts.
#include <zacert.h>

#include "pkcs7/za_pkcs7_EnvelopedData.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_EnvelopedData",
                                {za::pkcs7::kArrow, za::Status::length}};

}  // namespace

namespace za::pkcs7 {
namespace {

using Row = AttributeRow<EnvelopedData>;

void set_version(EnvelopedData &message, int32_t value) {
    message.version = static_cast<uint32_t>(value);
    message.has_version = true;
}

Status get_version(const EnvelopedData &message, uint32_t &out) {
    out = message.version;
    return Status::ok;
}

// A field or a secret: both are assigned a copy.
Status replace(auto &value, Bytes fresh) {
    return fresh.empty() ? trace.fail(Status::length) : value.assign(fresh);
}

Status set_content(EnvelopedData &message, const Row &, Bytes value) {
    return replace(message.parts.encrypted.content, value);
}

Status get_content(EnvelopedData &message, const Row &, Bytes &out) {
    out = message.parts.encrypted.shown_content();
    return Status::ok;
}

Status set_content_type(EnvelopedData &message, const Row &, Bytes value) {
    return replace(message.parts.encrypted.content_type, value);
}

Status get_content_type(EnvelopedData &message, const Row &, Bytes &out) {
    out = message.parts.encrypted.content_type.bytes();
    return Status::ok;
}

Status set_key(EnvelopedData &message, const Row &, Bytes value) {
    return replace(message.parts.key, value);
}

Status get_key(EnvelopedData &message, const Row &, Bytes &out) {
    out = message.parts.key.bytes();
    return Status::ok;
}

// The log's names are shared with other content types.
constexpr std::array kRows{
    Row{PKCS7_ENVELOPEDDATA_VERSION,
        ZA_ATTRIBUTE_TEXTS_AS(PKCS7_ENVELOPEDDATA_VERSION, "PKCS7_VERSION"), nullptr, nullptr, 0,
        set_version, get_version},
    Row{PKCS7_ENVELOPEDDATA_ENCRYPTED_CONTENT,
        ZA_ATTRIBUTE_TEXTS_AS(PKCS7_ENVELOPEDDATA_ENCRYPTED_CONTENT, "PKCS7_ENCRYPTED_CONTENT"),
        set_content, get_content},
    Row{PKCS7_ENVELOPEDDATA_CONTENTTYPE, ZA_ATTRIBUTE_TEXTS(PKCS7_ENVELOPEDDATA_CONTENTTYPE),
        set_content_type, get_content_type},
    Row{PKCS7_ENVELOPEDDATA_RECIPIENT_KEY,
        ZA_ATTRIBUTE_TEXTS_AS(PKCS7_ENVELOPEDDATA_RECIPIENT_KEY, "PKCS7_RECIPIENT_KEY"), set_key,
        get_key},
};

constexpr AttributeTable<EnvelopedData> kAttributes{
    kRows,
    {.set = "======>Set ZA_PKCS7_SetEnvelopedDataAttributeChar error",
     .get = "------>Get ZA_PKCS7_GetEnvelopedDataAttributeChar error",
     .set_int = "======>Set ZA_PKCS7_SetEnvelopedDataAttributeInt error",
     .get_int = "------>Get ZA_PKCS7_GetEnvelopedDataAttributeInt"}};
static_assert(kAttributes.ascending());

}  // namespace

const AttributeTable<EnvelopedData> &enveloped_attributes() {
    return kAttributes;
}

}  // namespace za::pkcs7

using za::Bytes;
using za::Status;
using za::pkcs7::EncryptedContentInfo;
using za::pkcs7::enveloped_attributes;
using za::pkcs7::EnvelopedData;
using za::pkcs7::RecipientInfo;

uint32_t ZA_PKCS7_CreateEnvelopedDataEncodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<EnvelopedData>(trace, ctx); });
}

uint32_t ZA_PKCS7_CreateEnvelopedDataDecodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<EnvelopedData>(trace, ctx); });
}

uint32_t ZA_PKCS7_DestroyEnvelopedDataEncodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<EnvelopedData>(ctx); });
}

uint32_t ZA_PKCS7_SetEnvelopedDataAttributeInt(void *ctx, int32_t id, uint32_t value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        return enveloped_attributes().set_int(trace, *static_cast<EnvelopedData *>(ctx), id,
                                              static_cast<int32_t>(value));
    });
}

uint32_t ZA_PKCS7_SetEnvelopedDataAttributeChar(void *ctx, int32_t id, const uint8_t *value,
                                                uint32_t len) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        const Bytes octets = za::pkcs7::octets_or_none(value, len);
        return enveloped_attributes().set(trace, *static_cast<EnvelopedData *>(ctx), id, octets);
    });
}

uint32_t ZA_PKCS7_GetEnvelopedDataAttributeInt(void *ctx, int32_t id, uint32_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, value));
        return enveloped_attributes().get_int(trace, *static_cast<EnvelopedData *>(ctx), id, value);
    });
}

uint32_t ZA_PKCS7_GetEnvelopedDataAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        return enveloped_attributes().get(trace, *static_cast<EnvelopedData *>(ctx), id, out,
                                          outLen);
    });
}

uint32_t ZA_PKCS7_SetEnvelopedData_RecipientInfo(void *ctx, void *recipientInfo) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, recipientInfo));
        return static_cast<EnvelopedData *>(ctx)->parts.recipients.attach(
            trace, static_cast<RecipientInfo *>(recipientInfo));
    });
}

uint32_t ZA_PKCS7_GetEnvelopedData_RecipientInfoNum(void *ctx, uint32_t *num) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, num));
        *num = za::to_u32(static_cast<EnvelopedData *>(ctx)->parts.recipients.size());
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_GetEnvelopedData_RecipientInfo(void *ctx, void **recipientInfo, int32_t index) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, recipientInfo));
        RecipientInfo *recipient = static_cast<EnvelopedData *>(ctx)->parts.recipients.item(index);
        if (recipient == nullptr) {
            return trace.fail(Status::length);
        }
        *recipientInfo = recipient;
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_SetEnvelopedData_EncryptedContent(void *ctx, void *encryptedContent) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, encryptedContent));
        return static_cast<EnvelopedData *>(ctx)->parts.encrypted.attach(
            trace, static_cast<EncryptedContentInfo *>(encryptedContent));
    });
}

uint32_t ZA_PKCS7_GetEnvelopedData_EncryptedContent(void *ctx, void **encryptedContent) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, encryptedContent));
        EncryptedContentInfo *part = static_cast<EnvelopedData *>(ctx)->parts.encrypted.get();
        if (part == nullptr) {
            return trace.fail(Status::invalid_item);
        }
        *encryptedContent = part;
        return Status::ok;
    });
}
