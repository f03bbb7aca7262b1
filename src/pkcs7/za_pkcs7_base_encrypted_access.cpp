// Creating and destroying encrypted content, its attributes, one row each, and its functions.
#include <zacert.h>

#include "pkcs7/za_pkcs7_base_encrypted.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_base", {za::pkcs7::kArrow}};

}  // namespace

namespace za::pkcs7 {
namespace {

using Fields = EncryptedFields;
using Row = AttributeRow<EncryptedContentInfo>;

// A value in the place of the one before; what was encoded with that is void.
template <Field Fields::*Which>
Status set_field(EncryptedContentInfo &info, const Row &, Bytes value) {
    if (value.empty()) {
        return trace.fail(Status::length);
    }
    ZA_PASS((info.fields.*Which).assign(value));
    info.fields.encoded.forget();
    return Status::ok;
}

template <Field Fields::*Which>
Status get_field(EncryptedContentInfo &info, const Row &, Bytes &out) {
    out = (info.fields.*Which).bytes();
    return Status::ok;
}

Status set_encrypted_content(EncryptedContentInfo &info, const Row &row, Bytes value) {
    ZA_PASS(set_field<&Fields::encrypted_content>(info, row, value));
    info.fields.forget_opened_content();
    return Status::ok;
}

// What is encrypted already stays beside it: it is what is written while no function encrypts.
Status set_content(EncryptedContentInfo &info, const Row &, Bytes value) {
    if (value.empty()) {
        return trace.fail(Status::length);
    }
    ZA_PASS(info.fields.content.assign(value));
    info.fields.content_opened = false;
    info.fields.encoded.forget();
    return Status::ok;
}

Status get_content(EncryptedContentInfo &info, const Row &, Bytes &out) {
    const Fields &fields = info.fields;
    const bool can_open = info.decrypt.installed() && !fields.encrypted_content.empty();
    if (can_open && fields.content.bytes().empty()) {
        return decrypt_content(info, out);
    }
    out = fields.content.bytes();
    return Status::ok;
}

#define ROW(identifier, ...)                                    \
    Row {                                                       \
        identifier, ZA_ATTRIBUTE_TEXTS(identifier), __VA_ARGS__ \
    }
#define FIELD(identifier, field) \
    ROW(identifier, set_field<&Fields::field>, get_field<&Fields::field>)

constexpr std::array kRows{
    FIELD(PKCS7_ENCRYPT_CONTENT_TYPE, content_type),
    FIELD(PKCS7_ENCRYPT_ALGO, algorithm),
    FIELD(PKCS7_ENCRYPT_PARAMETER, parameter),
    ROW(PKCS7_ENCRYPT_ENCRYPTEDCONTENT, set_encrypted_content,
        get_field<&Fields::encrypted_content>),
    // The log has one name for both contents.
    Row{PKCS7_ENCRYPT_CONTENT,
        ZA_ATTRIBUTE_TEXTS_AS(PKCS7_ENCRYPT_CONTENT, "PKCS7_ENCRYPT_ENCRYPTEDCONTENT"), set_content,
        get_content},
};

#undef FIELD
#undef ROW

constexpr AttributeTable<EncryptedContentInfo> kAttributes{
    kRows,
    {.set = "------------>Attribute Not surport",
     .get = "------------>Attribute Not surport",
     .status = Status::type}};
static_assert(kAttributes.ascending());

}  // namespace

const AttributeTable<EncryptedContentInfo> &encrypted_attributes() {
    return kAttributes;
}

}  // namespace za::pkcs7

using za::Bytes;
using za::Status;
using za::pkcs7::EncryptedContentInfo;

uint32_t ZA_PKCS7_CreateEnocdeEncryptedContent(void **ctx) {
    return trace.exported([&] { return za::create_context<EncryptedContentInfo>(trace, ctx); });
}

uint32_t ZA_PKCS7_CreateDeocdeEncryptedContent(void **ctx) {
    return trace.exported([&] { return za::create_context<EncryptedContentInfo>(trace, ctx); });
}

uint32_t ZA_PKCS7_DestoryEncodeEncryptedContent(void *ctx) {
    return trace.exported([&] { return za::pkcs7::destroy_part<EncryptedContentInfo>(ctx); });
}

uint32_t ZA_PKCS7_DestoryDecodeEncryptedContent(void *ctx) {
    return trace.exported([&] { return za::pkcs7::destroy_part<EncryptedContentInfo>(ctx); });
}

uint32_t ZA_PKCS7_SetEncryptedContentAttributeChar(void *ctx, int32_t id, const uint8_t *value,
                                                   uint32_t len) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        const Bytes octets = za::pkcs7::octets_or_none(value, len);
        return za::pkcs7::encrypted_attributes().set(
            trace, *static_cast<EncryptedContentInfo *>(ctx), id, octets);
    });
}

uint32_t ZA_PKCS7_GetEncryptedContentAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                   uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        return za::pkcs7::encrypted_attributes().get(
            trace, *static_cast<EncryptedContentInfo *>(ctx), id, out, outLen);
    });
}

uint32_t ZA_PKCS7_SetEncryptContentEncFunc(void *ctx, ZA_CryptFunc func, const uint8_t *param,
                                           uint32_t paramLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        auto &info = *static_cast<EncryptedContentInfo *>(ctx);
        ZA_PASS(info.encrypt.install(trace, func, param, paramLen));
        info.fields.encoded.forget();
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_SetEncryptContentDecFunc(void *ctx, ZA_CryptFunc func, const uint8_t *param,
                                           uint32_t paramLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        auto &info = *static_cast<EncryptedContentInfo *>(ctx);
        ZA_PASS(info.decrypt.install(trace, func, param, paramLen));
        info.fields.forget_opened_content();
        return Status::ok;
    });
}
