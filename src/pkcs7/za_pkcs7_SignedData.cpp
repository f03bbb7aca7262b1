// Creating and destroying signedData, its attributes by number, and the exported accessors.
#include "pkcs7/za_pkcs7_SignedData.hpp"

#include <zacert.h>

#include "runtime/context.hpp"
#include "runtime/trace.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_SignedData",
                                {za::pkcs7::kArrow, za::Status::length}};

}  // namespace

namespace za::pkcs7 {
namespace {

using At = SignedDataAccess;
using Row = AttributeRow<At>;

// What callers pass wrong to setters is told by the code alone, without a line.
constexpr Status kWrongArgument = Status::length;

void set_version(At &at, int32_t value) {
    at.message.version = static_cast<uint32_t>(value);
    at.message.has_version = true;
}

Status get_version(const At &at, uint32_t &out) {
    out = at.message.version;
    return Status::ok;
}

Status add_digest_algorithm(At &at, const Row &, Bytes value) {
    return at.has_octets ? add_algorithm(trace, at.message.parts, value) : kWrongArgument;
}

Status get_digest_algorithm(At &at, const Row &, Bytes &) {
    const auto &algorithms = at.message.parts.digest_algorithms;
    if (algorithms.empty()) {
        return trace.fail(Status::length, "------>ZACERT_LengthErr");
    }
    const DigestAlgorithm *algorithm = item_of(algorithms, at.index);
    if (algorithm != nullptr) {
        at.find(algorithm->oid.bytes());
    }
    return Status::ok;
}

Status set_content_type(At &at, const Row &, Bytes value) {
    if (!at.has_octets || value.empty()) {
        return kWrongArgument;
    }
    ZA_PASS(at.message.content_type.assign(value));
    at.message.has_content_info = true;
    return Status::ok;
}

// Empty content is content too: that of a detached signature.
Status set_content(At &at, const Row &, Bytes value) {
    if (!at.has_octets) {
        return kWrongArgument;
    }
    ZA_PASS(at.message.content.assign(value));
    at.message.has_content_info = true;
    return Status::ok;
}

template <auto field>
Status get_content_info(At &at, const Row &, Bytes &) {
    if (!at.message.has_content_info) {
        return trace.fail(Status::length);
    }
    at.find((at.message.*field).bytes());
    return Status::ok;
}

template <auto list>
Status add_item(At &at, const Row &, Bytes value) {
    return at.has_octets && !value.empty() ? add_octets(trace, at.message.parts.*list, value)
                                           : kWrongArgument;
}

Status get_certificate(At &at, const Row &, Bytes &) {
    if (const Field *item = item_of(at.message.parts.certificates, at.index); item != nullptr) {
        at.find(item->bytes());
    }
    return Status::ok;
}

// Every number that there is gives the first list: callers have come to rely on it.
Status get_crl(At &at, const Row &, Bytes &) {
    if (item_of(at.message.parts.crls, at.index) != nullptr) {
        at.find(at.message.parts.crls.front().bytes());
    }
    return Status::ok;
}

// The trace has names that several messages share. Reading tells no length alone.
#define ROW(identifier, name, ...)                                                             \
    Row {                                                                                      \
        identifier, {#identifier, "======>Set " name, "======>Get " name, "======>Get " name}, \
            __VA_ARGS__                                                                        \
    }

constexpr std::array kRows{
    ROW(PKCS7_SIGNEDDATA_VERSION, "PKCS7_VERSION", nullptr, nullptr, 0, set_version, get_version),
    ROW(PKCS7_SIGNEDDATA_DIGEST_ALGO, "PKCS7_DIGEST_ALGO", add_digest_algorithm,
        get_digest_algorithm),
    ROW(PKCS7_SIGNEDDATA_CONTENTTYPE, "PKCS7_CONTENTTYPE", set_content_type,
        get_content_info<&SignedData::content_type>),
    ROW(PKCS7_CONTENT, "PKCS7_CONTENT", set_content, get_content_info<&SignedData::content>),
    ROW(PKCS7_SIGNEDDATA_CERTIFICATE, "PKCS7_CERTIFICATE", add_item<&SignedParts::certificates>,
        get_certificate),
    ROW(PKCS7_CRL, "PKCS7_CRL", add_item<&SignedParts::crls>, get_crl),
};

#undef ROW

constexpr AttributeTable<At> kAttributes{
    kRows,
    {"------>Set ZA_PKCS7_AttributeNotSupportErr", "------>Get ZA_PKCS7_AttributeNotSupportErr"}};
static_assert(kAttributes.ascending());

// A caller without a buffer is refused, but has the length then.
Status get_attribute(At at, int32_t id, uint8_t *out, uint32_t *out_len) {
    uint32_t unused = 0;
    ZA_PASS(kAttributes.get(trace, at, id, nullptr, &unused));
    if (!at.found) {
        return Status::ok;
    }
    ZA_PASS(trace.need(out_len));
    hand_out(at.value, out, out_len);
    return trace.need(out);
}

}  // namespace

const AttributeTable<SignedDataAccess> &signed_data_attributes() {
    return kAttributes;
}

}  // namespace za::pkcs7

using za::Bytes;
using za::Status;
using za::pkcs7::SignedData;
using za::pkcs7::SignedDataAccess;
using za::pkcs7::SignerInfo;

uint32_t ZA_PKCS7_CreateSignedDataEncodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<SignedData>(trace, ctx); });
}

uint32_t ZA_PKCS7_DestroySignedDataEncodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<SignedData>(ctx); });
}

uint32_t ZA_PKCS7_CreateSignedDataDecodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<SignedData>(trace, ctx); });
}

uint32_t ZA_PKCS7_DestroySignedDataDecodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<SignedData>(ctx); });
}

uint32_t ZA_PKCS7_SetSignedDataAttributeInt(void *ctx, int32_t id, uint32_t value) {
    return trace.exported([&] {
        if (ctx == nullptr) {
            return za::pkcs7::kWrongArgument;
        }
        SignedDataAccess at{*static_cast<SignedData *>(ctx)};
        return za::pkcs7::kAttributes.set_int(trace, at, id, static_cast<int32_t>(value));
    });
}

uint32_t ZA_PKCS7_SetSignedDataAttributeChar(void *ctx, int32_t id, const uint8_t *value,
                                             int32_t len) {
    return trace.exported([&] {
        if (ctx == nullptr) {
            return za::pkcs7::kWrongArgument;
        }
        SignedDataAccess at{*static_cast<SignedData *>(ctx)};
        const bool some = za::pkcs7::has_octets(value, static_cast<uint32_t>(len));
        at.has_octets = some || len == 0;
        return za::pkcs7::kAttributes.set(trace, at, id,
                                          some ? Bytes(value, static_cast<size_t>(len)) : Bytes{});
    });
}

uint32_t ZA_PKCS7_GetSignedDataAttributeInt(void *ctx, int32_t id, uint32_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, value));
        const SignedDataAccess at{*static_cast<SignedData *>(ctx)};
        return za::pkcs7::kAttributes.get_int(trace, at, id, value);
    });
}

uint32_t ZA_PKCS7_GetSignedDataAttributeChar(void *ctx, int32_t id, uint8_t *out, uint32_t *outLen,
                                             int32_t index) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        return za::pkcs7::get_attribute({*static_cast<SignedData *>(ctx), index}, id, out, outLen);
    });
}

uint32_t ZA_PKCS7_SetSignedData_SignerInfo(void *ctx, void *signerInfo) {
    return trace.exported([&] {
        if (ctx == nullptr || signerInfo == nullptr) {
            return za::pkcs7::kWrongArgument;
        }
        return static_cast<SignedData *>(ctx)->parts.signers.attach(
            trace, static_cast<SignerInfo *>(signerInfo));
    });
}

uint32_t ZA_PKCS7_GetSignedData_SignerInfo(void *ctx, void **signerInfo, int32_t index) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, signerInfo));
        SignerInfo *signer = static_cast<SignedData *>(ctx)->parts.signers.item(index);
        if (signer == nullptr) {
            return trace.fail(Status::length);
        }
        *signerInfo = signer;
        return Status::ok;
    });
}

namespace {

template <auto list>
Status count(void *ctx, uint32_t *out) {
    ZA_PASS(trace.need(ctx, out));
    *out = za::to_u32((static_cast<SignedData *>(ctx)->parts.*list).size());
    return Status::ok;
}

}  // namespace

uint32_t ZA_PKCS7_GetSignedData_SignerInfoNum(void *ctx, uint32_t *num) {
    return trace.exported([&] { return count<&za::pkcs7::SignedParts::signers>(ctx, num); });
}

uint32_t ZA_PKCS7_GetSignedData_DigestAlgoNum(void *ctx, uint32_t *num) {
    return trace.exported(
        [&] { return count<&za::pkcs7::SignedParts::digest_algorithms>(ctx, num); });
}

uint32_t ZA_PKCS7_GetSignedData_CertificatesNum(void *ctx, uint32_t *num) {
    return trace.exported([&] { return count<&za::pkcs7::SignedParts::certificates>(ctx, num); });
}

uint32_t ZA_PKCS7_GetSignedData_CrlsNum(void *ctx, uint32_t *num) {
    return trace.exported([&] { return count<&za::pkcs7::SignedParts::crls>(ctx, num); });
}
