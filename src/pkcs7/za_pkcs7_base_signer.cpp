// Signer contexts: creating, destroying, fields, attributes and functions of the caller.
#include "pkcs7/za_pkcs7_base_signer.hpp"

#include "runtime/context.hpp"

#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_base", {za::pkcs7::kArrow}};

}  // namespace

namespace za::pkcs7 {

void mark_set(SignerInfo &signer) {
    signer.fields.has_version = true;
    signer.fields.version = 1;
    signer.fields.encoded.forget();
}

// A decoded signer that is told its detached content learns what was signed: it stays as it came.
Status put_content(SignerInfo &signer, Bytes content) {
    SignerFields &fields = signer.fields;
    const bool learns = fields.encoded.was_decoded() && fields.content.empty();
    ZA_PASS(fields.content.assign(content));
    fields.has_content = !content.empty();
    if (!learns) {
        mark_set(signer);
    }
    return Status::ok;
}

Status give_content(SignerInfo &signer, Bytes type, Bytes content) {
    SignerFields &fields = signer.fields;
    const bool new_type = !equal(fields.content_type.bytes(), type);
    const bool new_content = !equal(fields.content.bytes(), content);
    if (new_content) {
        ZA_PASS(put_content(signer, content));
    }
    if (new_type) {
        const bool learns = fields.encoded.was_decoded() && fields.content_type.empty();
        ZA_PASS(fields.content_type.assign(type));
        if (!learns) {
            mark_set(signer);
        }
    }
    return Status::ok;
}

Status view_content(const uint8_t *content, uint32_t len, Bytes &out) {
    const bool has_content = has_octets(content, len);
    if (!has_content && len != 0) {
        return trace.fail(Status::length);
    }
    out = has_content ? Bytes(content, len) : Bytes{};
    return Status::ok;
}

void refer_content(SignerInfo &signer, Bytes type, Bytes content, bool has_content) {
    signer.fields.content_type.refer(type);
    signer.fields.content.refer(content);
    signer.fields.has_content = has_content;
}

namespace {

// Content alone may have no octets.
Status set_attribute(SignerInfo &signer, int32_t id, const uint8_t *value, uint32_t len) {
    Bytes octets = octets_or_none(value, len);
    if (id == PKCS7_SIGNER_CONTENT) {
        ZA_PASS(view_content(value, len, octets));
    }
    return signer_attributes().set(trace, signer, id, octets);
}

Status add_attribute(SignerInfo &signer, AttributeList &to, Bytes type, Bytes value) {
    Attribute attribute;
    ZA_PASS(attribute.type.assign(type));
    ZA_PASS(attribute.value.assign(value));
    ZA_PASS(to.list.append(trace, std::move(attribute)));
    to.present = true;
    signer.fields.encoded.forget();
    trace.note("======>ZACsr_SetCertAttributePrivate End");
    return Status::ok;
}

using Which = AttributeList SignerFields::*;

Status set_attribute_of(void *ctx, Which which, const uint8_t *oid, uint32_t oid_len,
                        const uint8_t *value, uint32_t value_len) {
    ZA_PASS(trace.need(ctx));
    if (!has_octets(oid, oid_len) || !has_octets(value, value_len)) {
        return trace.fail(Status::length);
    }
    auto &signer = *static_cast<SignerInfo *>(ctx);
    return add_attribute(signer, signer.fields.*which, {oid, oid_len}, {value, value_len});
}

struct AttributePlaces {
    uint8_t *oid;
    uint32_t *oid_len;
    uint8_t *value;
    uint32_t *value_len;
};

Status get_attribute_of(void *ctx, Which which, const AttributePlaces &out, int32_t index) {
    ZA_PASS(trace.need(ctx, out.oid_len, out.value_len));
    const auto &list = (static_cast<SignerInfo *>(ctx)->fields.*which).list;
    const Attribute *found = index < 1 ? nullptr : list.item(static_cast<size_t>(index));
    if (found == nullptr) {
        return trace.fail(Status::length);
    }
    hand_out(found->type.bytes(), out.oid, out.oid_len);
    hand_out(found->value.bytes(), out.value, out.value_len);
    return Status::ok;
}

Status count_attributes_of(void *ctx, Which which, uint32_t *num) {
    ZA_PASS(trace.need(ctx, num));
    *num = to_u32((static_cast<SignerInfo *>(ctx)->fields.*which).list.size());
    return Status::ok;
}

// Three of the setters of functions only warn of a missing context.
template <class Install>
Status install(void *ctx, const char *warning, const Install &into) {
    if (ctx == nullptr) {
        trace.note(warning);
        return Status::ok;
    }
    auto &signer = *static_cast<SignerInfo *>(ctx);
    ZA_PASS(into(signer));
    signer.fields.encoded.forget_made();
    return Status::ok;
}

}  // namespace
}  // namespace za::pkcs7

using za::Status;
using za::pkcs7::SignerFields;
using za::pkcs7::SignerInfo;

uint32_t ZA_PKCS7_CreateEncodeSignerInfo(void **ctx) {
    return trace.exported([&] { return za::create_context<SignerInfo>(trace, ctx); });
}

uint32_t ZA_PKCS7_CreateDecodeSignerInfo(void **ctx) {
    return trace.exported([&] { return za::create_context<SignerInfo>(trace, ctx); });
}

uint32_t ZA_PKCS7_DestoryEncodeSignerInfo(void *ctx) {
    return trace.exported([&] { return za::pkcs7::destroy_part<SignerInfo>(ctx); });
}

uint32_t ZA_PKCS7_DestoryDecodeSignerInfo(void *ctx) {
    return trace.exported([&] { return za::pkcs7::destroy_part<SignerInfo>(ctx); });
}

uint32_t ZA_PKCS7_SetSignerInfoAttributeChar(void *ctx, int32_t id, const uint8_t *value,
                                             uint32_t len) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        return za::pkcs7::set_attribute(*static_cast<SignerInfo *>(ctx), id, value, len);
    });
}

uint32_t ZA_PKCS7_GetSignerInfoAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                             uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        return za::pkcs7::signer_attributes().get(trace, *static_cast<SignerInfo *>(ctx), id, out,
                                                  outLen);
    });
}

uint32_t ZA_PKCS7_SetSignerAttribute(void *ctx, const uint8_t *oid, uint32_t oidLen,
                                     const uint8_t *value, uint32_t valueLen) {
    return trace.exported([&] {
        return za::pkcs7::set_attribute_of(ctx, &SignerFields::attributes, oid, oidLen, value,
                                           valueLen);
    });
}

uint32_t ZA_PKCS7_SetSignerUnAttribute(void *ctx, const uint8_t *oid, uint32_t oidLen,
                                       const uint8_t *value, uint32_t valueLen) {
    return trace.exported([&] {
        return za::pkcs7::set_attribute_of(ctx, &SignerFields::unauthenticated, oid, oidLen, value,
                                           valueLen);
    });
}

uint32_t ZA_PKCS7_GetSignerAttribute(void *ctx, uint8_t *oid, uint32_t *oidLen, uint8_t *value,
                                     uint32_t *valueLen, int32_t index) {
    return trace.exported([&] {
        return za::pkcs7::get_attribute_of(ctx, &SignerFields::attributes,
                                           {oid, oidLen, value, valueLen}, index);
    });
}

uint32_t ZA_PKCS7_GetSignerUnAttribute(void *ctx, uint8_t *oid, uint32_t *oidLen, uint8_t *value,
                                       uint32_t *valueLen, int32_t index) {
    return trace.exported([&] {
        return za::pkcs7::get_attribute_of(ctx, &SignerFields::unauthenticated,
                                           {oid, oidLen, value, valueLen}, index);
    });
}

uint32_t ZA_PKCS7_GetSignerInfoAttributesNum(void *ctx, uint32_t *num) {
    return trace.exported(
        [&] { return za::pkcs7::count_attributes_of(ctx, &SignerFields::attributes, num); });
}

uint32_t ZA_PKCS7_GetSignerInfoUnAttributesNum(void *ctx, uint32_t *num) {
    return trace.exported(
        [&] { return za::pkcs7::count_attributes_of(ctx, &SignerFields::unauthenticated, num); });
}

uint32_t ZA_PKCS7_SetSignerInfoDigestFunc(void *ctx, ZA_CryptFunc func, const uint8_t *param,
                                          uint32_t paramLen) {
    return trace.exported([&] {
        return za::pkcs7::install(
            ctx,
            "======>warning: pPKCS7SignerInfo is NULL, in ZA_PKCS7_SetSignerInfoDigestFunc Fun",
            [&](SignerInfo &signer) {
                return signer.digest.install(trace, func, param, paramLen);
            });
    });
}

// A new signing function signs again, also what was decoded.
uint32_t ZA_PKCS7_SetSignerInfoEncSignFunc(void *ctx, ZA_CryptFunc func, const uint8_t *param,
                                           uint32_t paramLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        auto &signer = *static_cast<SignerInfo *>(ctx);
        ZA_PASS(signer.crypt.install(trace, func, param, paramLen));
        signer.fields.encoded.forget();
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_SetSignerInfoDecSignFunc(void *ctx, ZA_CryptFunc func, const uint8_t *param,
                                           uint32_t paramLen) {
    return trace.exported([&] {
        return za::pkcs7::install(
            ctx,
            "======>warning: pPKCS7SignerInfo is NULL, in ZA_PKCS7_SetSignerInfoDecSignFunc Fun",
            [&](SignerInfo &signer) { return signer.crypt.install(trace, func, param, paramLen); });
    });
}

uint32_t ZA_PKCS7_SetSignerInfoDecEcVerifyFunc(void *ctx, ZA_PKCS7_EcVerifyFunc func,
                                               const uint8_t *param, uint32_t paramLen) {
    return trace.exported([&] {
        return za::pkcs7::install(
            ctx,
            "======>warning: pPKCS7SignerInfo is NULL, in ZA_PKCS7_SetSignerInfoDecEcVerifyFunc "
            "Fun",
            [&](SignerInfo &signer) {
                return signer.ec_verify.install(trace, func, param, paramLen);
            });
    });
}
