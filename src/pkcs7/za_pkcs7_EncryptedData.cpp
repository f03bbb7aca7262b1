#include "pkcs7/za_pkcs7_EncryptedData.hpp"

#include <zacert/pkcs7_encrypted.h>
#include <zacert/pkcs7_recipient.h>

#include "names/za_low_oid.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"
#include "runtime/context.hpp"

#include <array>
#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_EncryptedData",
                                {za::pkcs7::kArrow, za::Status::invalid_item}};

constexpr const char *kNoEncryptedContent = "------>The encrypted Content is null";

}  // namespace

namespace za::pkcs7 {
namespace {

using asn1::Builder;
using asn1::Children;
using asn1::Element;
using Row = AttributeRow<EncryptedData>;

void set_version(EncryptedData &data, int32_t value) {
    data.version = static_cast<uint32_t>(value);
    data.has_version = true;
}

Status get_version(const EncryptedData &data, uint32_t &out) {
    out = data.version;
    return Status::ok;
}

Status set_content_type(EncryptedData &data, const Row &, Bytes value) {
    return data.part.content_type.assign(value);
}

Status get_content_type(EncryptedData &data, const Row &, Bytes &out) {
    out = data.part.content_type.bytes();
    return Status::ok;
}

Status set_content(EncryptedData &data, const Row &, Bytes value) {
    return data.part.content.assign(value);
}

Status get_content(EncryptedData &data, const Row &, Bytes &out) {
    out = data.part.shown_content();
    return Status::ok;
}

constexpr std::array kRows{
    Row{PKCS7_ENCRYPTEDDATA_VERSION,
        ZA_ATTRIBUTE_TEXTS_AS(PKCS7_ENCRYPTEDDATA_VERSION, "PKCS7_VERSION"), nullptr, nullptr, 0,
        set_version, get_version},
    Row{PKCS7_ENCRYPTEDDATA_CONTENTTYPE,
        ZA_ATTRIBUTE_TEXTS_AS(PKCS7_ENCRYPTEDDATA_CONTENTTYPE, "PKCS7_CONTENTTYPE"),
        set_content_type, get_content_type},
    // The log has no name for this one.
    Row{PKCS7_ENCRYPTEDDATA_CONTENT, ZA_ATTRIBUTE_UNLOGGED(PKCS7_ENCRYPTEDDATA_CONTENT),
        set_content, get_content},
};

// The setter's line lacks an octet and names another function; those who search logs know it so.
constexpr AttributeTable<EncryptedData> kAttributes{
    kRows,
    {"------>ZAPKCS7_SetDigestedDataAttributeChar Err",
     "------>ZA_PKCS7_GetEncryptedDataAttributeChar Err",
     "------>Set ZA_PKCS7_AttributeNotSupport Err", "------>Get ZA_PKCS7_AttributeNotSupport Err"}};
static_assert(kAttributes.ascending());

}  // namespace

// EncryptedData ::= SEQUENCE { version INTEGER, encryptedContentInfo }
Status encode_encrypted_data(EncryptedData &data, Octets &out) {
    if (!data.has_version) {
        return trace.fail(Status::invalid_item, "------> The version is null");
    }
    Builder message;
    const size_t expected = data.part.shown_content().size() + kMostWrapping;
    const auto fields = [&] {
        message.integer(data.version);
        return write_encrypted_content(trace, data.part, kNoEncryptedContent, message);
    };
    const auto content = [&] { return message.sequence(fields, expected); };
    ZA_PASS(write_content_info(oid::kEncryptedData, message, content, expected));
    ZA_TRY(ZI_MakeContentToSequence, message.finish(out));
    return Status::ok;
}

Status decode_encrypted_data(Bytes in, EncryptedData &data) {
    EncryptedData fresh;
    Element message;
    Element info;
    Children fields;
    ZA_PASS(open_message(trace, in, oid::kEncryptedData, fresh.kept, message));
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(message, fields));
    ZA_PASS(take_version(trace, fields, fresh.version));
    fresh.has_version = true;
    // Attributes that others write behind it are not looked at.
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, info, kNoEncryptedContent));
    ZA_PASS(read_encrypted_content(trace, info, fresh.part));
    data = std::move(fresh);
    return Status::ok;
}

const AttributeTable<EncryptedData> &encrypted_data_attributes() {
    return kAttributes;
}

}  // namespace za::pkcs7

using za::Bytes;
using za::Octets;
using za::Status;
using za::pkcs7::encrypted_data_attributes;
using za::pkcs7::EncryptedContentInfo;
using za::pkcs7::EncryptedData;
using za::pkcs7::has_octets;

uint32_t ZA_PKCS7_CreateEncryptedDataEncodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<EncryptedData>(trace, ctx); });
}

uint32_t ZA_PKCS7_CreateEncryptedDataDecodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<EncryptedData>(trace, ctx); });
}

uint32_t ZA_PKCS7_SetEncryptedDataAttributeInt(void *ctx, int32_t id, uint32_t value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        return encrypted_data_attributes().set_int(trace, *static_cast<EncryptedData *>(ctx), id,
                                                   static_cast<int32_t>(value));
    });
}

uint32_t ZA_PKCS7_GetEncryptedDataAttributeInt(void *ctx, int32_t id, uint32_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, value));
        return encrypted_data_attributes().get_int(trace, *static_cast<EncryptedData *>(ctx), id,
                                                   value);
    });
}

uint32_t ZA_PKCS7_SetEncryptedDataAttributeChar(void *ctx, int32_t id, const uint8_t *value,
                                                uint32_t len) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        if (!has_octets(value, len)) {
            return trace.fail(Status::invalid_item);
        }
        return encrypted_data_attributes().set(trace, *static_cast<EncryptedData *>(ctx), id,
                                               Bytes(value, len));
    });
}

uint32_t ZA_PKCS7_GetEncryptedDataAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        return encrypted_data_attributes().get(trace, *static_cast<EncryptedData *>(ctx), id, out,
                                               outLen);
    });
}

uint32_t ZA_PKCS7_SetEncrytpedData_EncryptedContent(void *ctx, void *encryptedContent) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, encryptedContent));
        return static_cast<EncryptedData *>(ctx)->part.attach(
            trace, static_cast<EncryptedContentInfo *>(encryptedContent));
    });
}

uint32_t ZA_PKCS7_GetEncrytpedData_EncryptedContent(void *ctx, void **encryptedContent) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, encryptedContent));
        EncryptedContentInfo *part = static_cast<EncryptedData *>(ctx)->part.get();
        if (part == nullptr) {
            return trace.fail(Status::invalid_item, kNoEncryptedContent);
        }
        *encryptedContent = part;
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_EncodePKCS7EncryptedData(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        Octets der;
        ZA_PASS(za::pkcs7::encode_encrypted_data(*static_cast<EncryptedData *>(ctx), der));
        za::hand_out(der.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_DecodePKCS7EncryptedData(void *ctx, const uint8_t *der, uint32_t derLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        if (!has_octets(der, derLen)) {
            return trace.fail(Status::invalid_item);
        }
        return za::pkcs7::decode_encrypted_data(Bytes(der, derLen),
                                                *static_cast<EncryptedData *>(ctx));
    });
}

uint32_t ZA_PKCS7_DestoryEncryptedDataEncodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<EncryptedData>(ctx); });
}

uint32_t ZA_PKCS7_DestoryEncryptedDataDecodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<EncryptedData>(ctx); });
}
