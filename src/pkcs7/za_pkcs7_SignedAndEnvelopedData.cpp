// Creating and destroying signedAndEnvelopedData, its attributes by number, and the exported
// accessors.
#include "pkcs7/za_pkcs7_SignedAndEnvelopedData.hpp"

#include <zacert.h>

#include "runtime/context.hpp"
#include "runtime/trace.hpp"

#include <array>
#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_SignedAndEnvelopedData",
                                {za::pkcs7::kArrow, za::Status::length}};

}  // namespace

namespace za::pkcs7 {
namespace {

using At = SignedAndEnvelopedAccess;
using Row = AttributeRow<At>;

void set_version(At &at, int32_t value) {
    at.message.version = static_cast<uint32_t>(value);
    at.message.has_version = true;
}

Status get_version(const At &at, uint32_t &out) {
    out = at.message.version;
    return Status::ok;
}

Status add_digest_algorithm(At &at, const Row &, Bytes value) {
    return value.empty() ? trace.fail(Status::length)
                         : add_algorithm(trace, at.message.parts, value);
}

Status get_digest_algorithm(At &at, const Row &, Bytes &) {
    const DigestAlgorithm *algorithm = item_of(at.message.parts.digest_algorithms, at.index);
    if (algorithm != nullptr) {
        at.find(algorithm->oid.bytes());
    }
    return Status::ok;
}

template <auto list>
Status add_item(At &at, const Row &, Bytes value) {
    return value.empty() ? trace.fail(Status::length)
                         : add_octets(trace, at.message.parts.*list, value);
}

template <auto list>
Status get_item(At &at, const Row &, Bytes &) {
    if (const Field *item = item_of(at.message.parts.*list, at.index); item != nullptr) {
        at.find(item->bytes());
    }
    return Status::ok;
}

// Type and content are put in their place when the signers read the new ones.
Status set_content_type(At &at, const Row &, Bytes value) {
    EncryptedPart &part = at.message.enveloped.encrypted;
    Field fresh;
    ZA_PASS(value.empty() ? trace.fail(Status::length) : fresh.assign(value));
    lend_content(at.message, fresh.bytes(), part.content.bytes());
    part.content_type = std::move(fresh);
    return Status::ok;
}

Status set_content(At &at, const Row &, Bytes value) {
    EncryptedPart &part = at.message.enveloped.encrypted;
    Secret fresh;
    ZA_PASS(value.empty() ? trace.fail(Status::length) : fresh.assign(value));
    lend_content(at.message, part.content_type.bytes(), fresh.bytes());
    part.content = std::move(fresh);
    return Status::ok;
}

Status set_key(At &at, const Row &, Bytes value) {
    return value.empty() ? trace.fail(Status::length) : at.message.enveloped.key.assign(value);
}

Status get_content_type(At &at, const Row &, Bytes &) {
    at.find(at.message.enveloped.encrypted.content_type.bytes());
    return Status::ok;
}

Status get_content(At &at, const Row &, Bytes &) {
    at.find(at.message.enveloped.encrypted.shown_content());
    return Status::ok;
}

// The trace has names that several messages share, and others for reading than for setting.
#define ROW(identifier, set_name, get_text, ...)                                           \
    Row {                                                                                  \
        identifier, {#identifier, "======>Set " set_name, get_text, get_text}, __VA_ARGS__ \
    }

constexpr std::array kRows{
    ROW(PKCS7_SIGNEDANDENVELOPED_VERSION, "PKCS7_VERSION", "======>Get PKCS7_VERSION", nullptr,
        nullptr, 0, set_version, get_version),
    ROW(PKCS7_SIGNEDANDENVELOPED_CERTIFICATE, "PKCS7_CERTIFICATE", "------>Get PKCS7_CERTIFICATE",
        add_item<&SignedParts::certificates>, get_item<&SignedParts::certificates>),
    ROW(PKCS7_SIGNEDANDENVELOPED_CRL, "PKCS7_SIGNEDANDENVELOPED_CRL", "------>Get PKCS7_CRL",
        add_item<&SignedParts::crls>, get_item<&SignedParts::crls>),
    ROW(PKCS7_SIGNEDANDENVELOPED_DIGEST_ALGO, "PKCS7_DIGEST_ALGO", "------>Get PKCS7_DIGEST_ALGO",
        add_digest_algorithm, get_digest_algorithm),
    ROW(PKCS7_SIGNEDANDENVELOPED_ENCRYPTED_CONTENT, "PKCS7_ENCRYPTED_CONTENT",
        "------>Get PKCS7_ENCRYPTED_CONTENT", set_content, get_content),
    ROW(PKCS7_SIGNEDANDENVELOPED_CONTENTTYPE, "PKCS7_SIGNEDANDENVELOPED_CONTENTTYPE",
        "------>Get PKCS7_CONTENTTYPE", set_content_type, get_content_type),
    ROW(PKCS7_SIGNEDANDENVELOPED_RECIPIENT_KEY, "PKCS7_RECIPIENT_KEY", nullptr, set_key),
};

#undef ROW

constexpr AttributeTable<At> kAttributes{
    kRows,
    {"======>Set ZA_PKCS7_AttributeNotSupportErr", "------>Get ZA_PKCS7_AttributeNotSupportErr"}};
static_assert(kAttributes.ascending());

Status get_attribute(At at, int32_t id, uint8_t *out, uint32_t *out_len) {
    uint32_t unused = 0;
    ZA_PASS(kAttributes.get(trace, at, id, nullptr, &unused));
    if (!at.found) {
        return Status::ok;
    }
    ZA_PASS(trace.need(out_len));
    hand_out(at.value, out, out_len);
    return Status::ok;
}

}  // namespace

const AttributeTable<SignedAndEnvelopedAccess> &signed_and_enveloped_attributes() {
    return kAttributes;
}

}  // namespace za::pkcs7

using za::Bytes;
using za::Status;
using za::pkcs7::EncryptedContentInfo;
using za::pkcs7::EnvelopedParts;
using za::pkcs7::RecipientInfo;
using za::pkcs7::SignedAndEnvelopedAccess;
using za::pkcs7::SignedAndEnvelopedData;
using za::pkcs7::SignedParts;
using za::pkcs7::SignerInfo;

namespace {

SignedAndEnvelopedData &message_of(void *ctx) {
    return *static_cast<SignedAndEnvelopedData *>(ctx);
}

template <class List>
Status count(const List &list, uint32_t &out) {
    out = za::to_u32(list.size());
    return Status::ok;
}

template <class Part>
Status lend_part(const za::pkcs7::Attached<Part> &parts, int32_t index, void *&out) {
    Part *part = parts.item(index);
    if (part == nullptr) {
        return trace.fail(Status::length);
    }
    out = part;
    return Status::ok;
}

}  // namespace

uint32_t ZA_PKCS7_CreateSignedAndEnvelopedDataEncodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<SignedAndEnvelopedData>(trace, ctx); });
}

uint32_t ZA_PKCS7_DestorySignedAndEnvelopedDataEncodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<SignedAndEnvelopedData>(ctx); });
}

uint32_t ZA_PKCS7_CreateSignedAndEnvelopedDataDecodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<SignedAndEnvelopedData>(trace, ctx); });
}

uint32_t ZA_PKCS7_DestorySignedAndEnvelopedDataDecodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<SignedAndEnvelopedData>(ctx); });
}

uint32_t ZA_PKCS7_SetSignedAndEnvelopedDataAttributeInt(void *ctx, int32_t id, uint32_t value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        SignedAndEnvelopedAccess at{message_of(ctx)};
        return za::pkcs7::kAttributes.set_int(trace, at, id, static_cast<int32_t>(value));
    });
}

uint32_t ZA_PKCS7_GetSignedAndEnvelopedDataAttributeInt(void *ctx, int32_t id, uint32_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, value));
        const SignedAndEnvelopedAccess at{message_of(ctx)};
        return za::pkcs7::kAttributes.get_int(trace, at, id, value);
    });
}

uint32_t ZA_PKCS7_SetSignedAndEnvelopedDataAttributeChar(void *ctx, int32_t id,
                                                         const uint8_t *value, int32_t len) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        SignedAndEnvelopedAccess at{message_of(ctx)};
        const bool some = za::pkcs7::has_octets(value, static_cast<uint32_t>(len));
        return za::pkcs7::kAttributes.set(trace, at, id,
                                          some ? Bytes(value, static_cast<size_t>(len)) : Bytes{});
    });
}

uint32_t ZA_PKCS7_GetSignedAndEnvelopedDataAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                                         uint32_t *outLen, int32_t index) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        return za::pkcs7::get_attribute({message_of(ctx), index}, id, out, outLen);
    });
}

uint32_t ZA_PKCS7_SetSignedAndEnvelopedData_RecipientInfo(void *ctx, void *recipientInfo) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, recipientInfo));
        return message_of(ctx).enveloped.recipients.attach(
            trace, static_cast<RecipientInfo *>(recipientInfo));
    });
}

uint32_t ZA_PKCS7_SetSignedAndEnvelopedData_SignerInfo(void *ctx, void *signerInfo) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, signerInfo));
        return message_of(ctx).parts.signers.attach(trace, static_cast<SignerInfo *>(signerInfo));
    });
}

uint32_t ZA_PKCS7_SetSignedAndEnvelopedData_EncryptedContent(void *ctx, void *encryptedContent) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, encryptedContent));
        return message_of(ctx).enveloped.encrypted.attach(
            trace, static_cast<EncryptedContentInfo *>(encryptedContent));
    });
}

// The names in the trace are not the exported ones: logs are searched for them.
#define NAME_IN_TRACE(suffix) "ZA_PKCS7_GetSignedAndRecipientData_" suffix

uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_RecipientInfoNum(void *ctx, uint32_t *num) {
    const auto get = [&] {
        ZA_PASS(trace.need(ctx, num));
        return count(message_of(ctx).enveloped.recipients, *num);
    };
    return trace.exported(get, NAME_IN_TRACE("RecipientInfoNum"));
}

uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_RecipientInfo(void *ctx, void **recipientInfo,
                                                          int32_t index) {
    const auto get = [&] {
        ZA_PASS(trace.need(ctx, recipientInfo));
        return lend_part(message_of(ctx).enveloped.recipients, index, *recipientInfo);
    };
    return trace.exported(get, NAME_IN_TRACE("RecipientInfo"));
}

uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_EncryptedContent(void *ctx, void **encryptedContent) {
    const auto get = [&] {
        ZA_PASS(trace.need(ctx, encryptedContent));
        EncryptedContentInfo *part = message_of(ctx).enveloped.encrypted.get();
        if (part == nullptr) {
            return trace.fail(Status::invalid_item);
        }
        *encryptedContent = part;
        return Status::ok;
    };
    return trace.exported(get, NAME_IN_TRACE("EncryptedContent"));
}

uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_SignerInfoNum(void *ctx, uint32_t *num) {
    const auto get = [&] {
        ZA_PASS(trace.need(ctx, num));
        return count(message_of(ctx).parts.signers, *num);
    };
    return trace.exported(get, NAME_IN_TRACE("SignerInfoNum"));
}

uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_SignerInfo(void *ctx, void **signerInfo,
                                                       int32_t index) {
    const auto get = [&] {
        ZA_PASS(trace.need(ctx, signerInfo));
        return lend_part(message_of(ctx).parts.signers, index, *signerInfo);
    };
    return trace.exported(get, NAME_IN_TRACE("SignerInfo"));
}

uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_CertificatesNum(void *ctx, uint32_t *num) {
    const auto get = [&] {
        ZA_PASS(trace.need(ctx, num));
        return count(message_of(ctx).parts.certificates, *num);
    };
    return trace.exported(get, NAME_IN_TRACE("CertificatesNum"));
}

uint32_t ZA_PKCS7_GetSignedAndEnvelopedData_CrlsNum(void *ctx, uint32_t *num) {
    const auto get = [&] {
        ZA_PASS(trace.need(ctx, num));
        return count(message_of(ctx).parts.crls, *num);
    };
    return trace.exported(get, NAME_IN_TRACE("CrlsNum"));
}

#undef NAME_IN_TRACE
