// Creating and destroying recipients, their attributes, one row each, and their functions.
#include <zacert.h>

#include "pkcs7/za_pkcs7_base_recipient.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_base", {za::pkcs7::kArrow}};

}  // namespace

namespace za::pkcs7 {
namespace {

using Fields = RecipientFields;
using Row = AttributeRow<RecipientInfo>;

// A value in the place of the one before; what was encoded with that is void.
Status replace(Fields &fields, Field &field, Bytes value) {
    if (value.empty()) {
        return trace.fail(Status::length);
    }
    ZA_PASS(field.assign(value));
    fields.encoded.forget();
    return Status::ok;
}

template <Field IssuerAndSerial::*Which>
Status set_who(RecipientInfo &recipient, const Row &, Bytes value) {
    return replace(recipient.fields, recipient.fields.who.*Which, value);
}

template <Field IssuerAndSerial::*Which>
Status get_who(RecipientInfo &recipient, const Row &, Bytes &out) {
    out = (recipient.fields.who.*Which).bytes();
    return Status::ok;
}

Status add_entry(RecipientInfo &recipient, const Row &row, Bytes value) {
    if (value.empty()) {
        return trace.fail(Status::length);
    }
    ZA_PASS(add_issuer_entry(recipient.fields.who, row.kind, value));
    recipient.fields.encoded.forget();
    return Status::ok;
}

Status get_entry(RecipientInfo &recipient, const Row &row, Bytes &out) {
    out = names::first_of_kind(recipient.fields.who.entries, row.kind);
    return Status::ok;
}

Status set_algorithm(RecipientInfo &recipient, const Row &, Bytes value) {
    ZA_PASS(replace(recipient.fields, recipient.fields.algorithm, value));
    recipient.fields.parameters = Field();
    return Status::ok;
}

Status get_algorithm(RecipientInfo &recipient, const Row &, Bytes &out) {
    out = recipient.fields.algorithm.bytes();
    return Status::ok;
}

Status set_encrypted_key(RecipientInfo &recipient, const Row &, Bytes value) {
    ZA_PASS(replace(recipient.fields, recipient.fields.encrypted_key, value));
    recipient.fields.forget_opened_key();
    return Status::ok;
}

Status get_encrypted_key(RecipientInfo &recipient, const Row &, Bytes &out) {
    out = recipient.fields.encrypted_key.bytes();
    return Status::ok;
}

Status set_key(RecipientInfo &recipient, const Row &, Bytes value) {
    if (value.empty()) {
        return trace.fail(Status::length);
    }
    ZA_PASS(recipient.fields.key.assign(value));
    recipient.fields.key_opened = false;
    recipient.fields.encoded.forget();
    return Status::ok;
}

Status get_key(RecipientInfo &recipient, const Row &, Bytes &out) {
    out = recipient.fields.key.bytes();
    return Status::ok;
}

Status get_version(const RecipientInfo &recipient, uint32_t &out) {
    out = recipient.fields.version;
    return Status::ok;
}

#define ROW(identifier, ...)                                    \
    Row {                                                       \
        identifier, ZA_ATTRIBUTE_TEXTS(identifier), __VA_ARGS__ \
    }
#define ENTRY(identifier, kind) ROW(identifier, add_entry, get_entry, kind)

constexpr std::array kRows{
    ROW(PKCS7_RECIPIENTINFO_VERSION, nullptr, nullptr, 0, nullptr, get_version),
    // The log calls it by the name that it has for signers.
    Row{PKCS7_RECIPIENT_DN, ZA_ATTRIBUTE_TEXTS_AS(PKCS7_RECIPIENT_DN, "PKCS7_SIGNER_DN"),
        set_who<&IssuerAndSerial::issuer>, get_who<&IssuerAndSerial::issuer>},

    ENTRY(PKCS7_RECIPIENT_ISSUER_COUNTRY, names::kCountry),
    ENTRY(PKCS7_RECIPIENT_ISSUER_STATEORPROVINCE, names::kState),
    ENTRY(PKCS7_RECIPIENT_ISSUER_LOCALITY, names::kLocality),
    ENTRY(PKCS7_RECIPIENT_ISSUER_ORGANIZATION, names::kOrganization),
    ENTRY(PKCS7_RECIPIENT_ISSUER_ORGANIZATIONALUNIT, names::kOrganizationalUnit),
    ENTRY(PKCS7_RECIPIENT_ISSUER_COMMONNAME, names::kCommonName),
    ENTRY(PKCS7_RECIPIENT_ISSUER_EMAIL, names::kEmail),
    ENTRY(PKCS7_RECIPIENT_ISSUER_POSTALADDRESS, names::kPostalAddress),

    ROW(PKCS7_RECIPIENT_SERIAL, set_who<&IssuerAndSerial::serial>,
        get_who<&IssuerAndSerial::serial>),
    ROW(PKCS7_RECIPIENT_KEYENCRYPTION_ALGO, set_algorithm, get_algorithm),
    ROW(PKCS7_RECIPIENT_ENCRYPTED_KEY, set_encrypted_key, get_encrypted_key),
    ROW(PKCS7_RECIPIENT_KEY, set_key, get_key),
};

#undef ENTRY
#undef ROW

constexpr AttributeTable<RecipientInfo> kAttributes{
    kRows,
    {.set = "------>Set ZA_PKCS7_AttributeNotSupportErr",
     .get = "------>Get ZA_PKCS7_AttributeNotSupportErr"}};
static_assert(kAttributes.ascending());

}  // namespace

const AttributeTable<RecipientInfo> &recipient_attributes() {
    return kAttributes;
}

}  // namespace za::pkcs7

using za::Bytes;
using za::Status;
using za::pkcs7::RecipientInfo;

uint32_t ZA_PKCS7_CreateEncodeRecipientInfo(void **ctx) {
    return trace.exported([&] { return za::create_context<RecipientInfo>(trace, ctx); });
}

uint32_t ZA_PKCS7_CreateDecodeRecipientInfo(void **ctx) {
    return trace.exported([&] { return za::create_context<RecipientInfo>(trace, ctx); });
}

uint32_t ZA_PKCS7_DestoryEncodeRecipientInfo(void *ctx) {
    return trace.exported([&] { return za::pkcs7::destroy_part<RecipientInfo>(ctx); });
}

uint32_t ZA_PKCS7_DestoryDecodeRecipientInfo(void *ctx) {
    return trace.exported([&] { return za::pkcs7::destroy_part<RecipientInfo>(ctx); });
}

uint32_t ZA_PKCS7_SetRecipientInfoAttributeChar(void *ctx, int32_t id, const uint8_t *value,
                                                uint32_t len) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        const Bytes octets = za::pkcs7::octets_or_none(value, len);
        return za::pkcs7::recipient_attributes().set(trace, *static_cast<RecipientInfo *>(ctx), id,
                                                     octets);
    });
}

uint32_t ZA_PKCS7_GetRecipientInfoAttributeInt(void *ctx, int32_t id, uint32_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, value));
        return za::pkcs7::recipient_attributes().get_int(trace, *static_cast<RecipientInfo *>(ctx),
                                                         id, value);
    });
}

uint32_t ZA_PKCS7_GetRecipientInfoAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        return za::pkcs7::recipient_attributes().get(trace, *static_cast<RecipientInfo *>(ctx), id,
                                                     out, outLen);
    });
}

uint32_t ZA_PKCS7_SetRecipientInfoKeyEncFunc(void *ctx, ZA_CryptFunc func, const uint8_t *param,
                                             uint32_t paramLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        auto &recipient = *static_cast<RecipientInfo *>(ctx);
        ZA_PASS(recipient.encrypt.install(trace, func, param, paramLen));
        recipient.fields.encoded.forget();
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_SetRecipientInfoKeyDecFunc(void *ctx, ZA_CryptFunc func, const uint8_t *param,
                                             uint32_t paramLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        auto &recipient = *static_cast<RecipientInfo *>(ctx);
        ZA_PASS(recipient.decrypt.install(trace, func, param, paramLen));
        recipient.fields.forget_opened_key();
        return Status::ok;
    });
}
