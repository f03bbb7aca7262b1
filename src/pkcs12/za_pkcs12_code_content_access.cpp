// The exported functions of the ContentInfo of three types.
#include <zacert/pkcs12_safe.h>

#include "pkcs12/za_pkcs12_code.hpp"

#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs12_code", za::kLongStyle};
constexpr za::pkcs12::Frames frames{trace};

}  // namespace

using za::hand_out;
using za::Secret;
using za::Status;
using za::pkcs12::DataContent;
using za::pkcs12::EncryptedContent;
using za::pkcs12::EnvelopedContent;
using za::pkcs12::Parameter;

uint32_t ZA_PKCS12_CreateEncodeContentInfoOfDataType(void **ctx) {
    return frames.create<DataContent>(ctx);
}

uint32_t ZA_PKCS12_SetContentInfoOfDataType_SafeContent(void *ctx, const uint8_t *safeContents,
                                                        uint32_t len) {
    return frames.set<&DataContent::safe_contents>(ctx, safeContents, len);
}

uint32_t ZA_PKCS12_EncodeContentInfoOfDataType(void *ctx, uint8_t *out, uint32_t *outLen) {
    return frames.encode_to<DataContent>(ctx, out, outLen);
}

uint32_t ZA_PKCS12_DestoryEncodeContentInfoOfDataType(void *ctx) {
    return frames.destroy<DataContent>(ctx);
}

uint32_t ZA_PKCS12_CreateDecodeContentInfoOfDataType(void **ctx) {
    return frames.create<DataContent>(ctx);
}

uint32_t ZA_PKCS12_DecodeContentInfoOfDataType(void *ctx, const uint8_t *der, uint32_t derLen) {
    return frames.decode_from<DataContent>(ctx, der, derLen);
}

uint32_t ZA_PKCS12_GetContentInfoOfDataType_SafeContent(void *ctx, uint8_t *safeContents,
                                                        uint32_t *len) {
    return frames.get<&DataContent::safe_contents>(ctx, safeContents, len);
}

uint32_t ZA_PKCS12_DestoryDecodeContentInfoOfDataType(void *ctx) {
    return frames.destroy<DataContent>(ctx);
}

uint32_t ZA_PKCS12_CreateEncodeContentInfoOfEncryptedType(void **ctx) {
    return frames.create<EncryptedContent>(ctx);
}

uint32_t ZA_PKCS12_SetContentInfoOfEncryptedType_SafeContent(void *ctx, const uint8_t *safeContents,
                                                             uint32_t len) {
    return frames.set<&EncryptedContent::safe_contents>(ctx, safeContents, len);
}

uint32_t ZA_PKCS12_SetContentInfoOfEncryptedType_DesAlgorithm(void *ctx, const uint8_t *oid,
                                                              uint32_t oidLen) {
    return frames.set<&EncryptedContent::algorithm>(ctx, oid, oidLen);
}

uint32_t ZA_PKCs12_SetContentInfoOfEncryptedType_DesParameter(void *ctx, const uint8_t *salt,
                                                              uint32_t saltLen,
                                                              uint32_t iterations) {
    return frames.run<EncryptedContent>(ctx, [&](EncryptedContent &content) {
        Parameter parameter;
        ZA_PASS(set_parameter(trace, {salt, saltLen, iterations}, parameter));
        return encode(parameter, content.parameter.value);
    });
}

uint32_t ZA_PKCS12_SetContentInfoOfEncryptedType_EncContentFunc(void *ctx, ZA_CryptFunc func,
                                                                const uint8_t *param,
                                                                uint32_t paramLen) {
    return frames.install<&EncryptedContent::encrypt>(ctx, func, param, paramLen);
}

uint32_t ZA_PKCS12_SetContentInfoOfEncryptedType_DecContentFunc(void *ctx, ZA_CryptFunc func,
                                                                const uint8_t *param,
                                                                uint32_t paramLen) {
    return frames.install<&EncryptedContent::decrypt>(ctx, func, param, paramLen);
}

uint32_t ZA_PKCS12_EncodeContentInfoOfEncryptedType(void *ctx, uint8_t *out, uint32_t *outLen) {
    return frames.encode_to<EncryptedContent>(ctx, out, outLen);
}

uint32_t ZA_PKCS12_DestoryEncodeContentInfoOfEncryptedType(void *ctx) {
    return frames.destroy<EncryptedContent>(ctx);
}

uint32_t ZA_PKCS12_CreateDecodeContentInfoOfEncryptedType(void **ctx) {
    return frames.create<EncryptedContent>(ctx);
}

uint32_t ZA_PKCS12_DecodeContentInfoOfEncryptedType(void *ctx, const uint8_t *der,
                                                    uint32_t derLen) {
    return frames.decode_from<EncryptedContent>(ctx, der, derLen);
}

uint32_t ZA_PKCS12_GetContentInfoOfEncryptedType_DesAlgorithm(void *ctx, uint8_t *oid,
                                                              uint32_t *oidLen) {
    return frames.get<&EncryptedContent::algorithm>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_GetContentInfoOfEncryptedType_DesParameter(void *ctx, uint8_t *salt,
                                                              uint32_t *saltLen,
                                                              uint32_t *iterations) {
    return frames.run<EncryptedContent>(ctx, [&](const EncryptedContent &content) {
        Parameter parameter;
        ZA_PASS(trace.need(saltLen, iterations));
        ZA_PASS(split_parameter(content.parameter.bytes(), parameter));
        hand_out(parameter.salt.bytes(), salt, saltLen);
        *iterations = parameter.iterations;
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_GetContentInfoOfEncryptedType_SafeContent(void *ctx, uint8_t *safeContents,
                                                             uint32_t *len) {
    return frames.run<EncryptedContent>(ctx, [&](const EncryptedContent &content) {
        Secret opened;
        ZA_PASS(trace.need(len));
        ZA_PASS(open_content(content, opened));
        hand_out(opened.bytes(), safeContents, len);
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_DestoryDecodeContentInfoOfEncryptedType(void *ctx) {
    return frames.destroy<EncryptedContent>(ctx);
}

uint32_t ZA_PKCS12_CreateEncodeContentInfoOfEnvelopedType(void **ctx) {
    return frames.create<EnvelopedContent>(ctx);
}

uint32_t ZA_PKCS12_SetContentInfoOfEnvelopedType_SafeContent(void *ctx, const uint8_t *safeContents,
                                                             uint32_t len) {
    return frames.set<&EnvelopedContent::safe_contents>(ctx, safeContents, len);
}

uint32_t ZA_PKCS12_SetContentInfoOfEnvelopedType_DesAlgorithm(void *ctx, const uint8_t *oid,
                                                              uint32_t oidLen) {
    return frames.set<&EnvelopedContent::algorithm>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_SetContentInfoOfEnvelopedType_DesParameter(void *ctx, const uint8_t *paramDer,
                                                              uint32_t paramLen) {
    return frames.set<&EnvelopedContent::parameter>(ctx, paramDer, paramLen);
}

uint32_t ZA_PKCS12_SetContentInfoOfEnvelopedType_EncContentFunc(void *ctx, ZA_CryptFunc func,
                                                                const uint8_t *param,
                                                                uint32_t paramLen) {
    return frames.install<&EnvelopedContent::crypt>(ctx, func, param, paramLen);
}

uint32_t ZA_PKCS12_SetContentInfoOfEnvelopedType_EncContentKey(void *ctx, const uint8_t *key,
                                                               uint32_t keyLen) {
    return frames.set<&EnvelopedContent::key>(ctx, key, keyLen);
}

uint32_t ZA_PKCS12_SetContentInfoOfEnvelopedType_RecipientInfo(void *ctx, void *recipientInfoCtx) {
    return frames.run<EnvelopedContent>(ctx, [&](EnvelopedContent &content) {
        ZA_PASS(trace.need(recipientInfoCtx));
        return content.message.parts.recipients.attach(
            trace, static_cast<za::pkcs7::RecipientInfo *>(recipientInfoCtx));
    });
}

uint32_t ZA_PKCS12_EncodeContentInfoOfEnvelopedType(void *ctx, uint8_t *out, uint32_t *outLen) {
    return frames.encode_to<EnvelopedContent>(ctx, out, outLen);
}

uint32_t ZA_PKCS12_DestoryEncodeContentInfoOfEnvelopedType(void *ctx) {
    return frames.destroy<EnvelopedContent>(ctx);
}

uint32_t ZA_PKCS12_CreateDecodeContentInfoOfEnvelopedType(void **ctx) {
    return frames.create<EnvelopedContent>(ctx);
}

uint32_t ZA_PKCS12_DecodeContentInfoOfEnvelopedType(void *ctx, const uint8_t *der,
                                                    uint32_t derLen) {
    return frames.decode_from<EnvelopedContent>(ctx, der, derLen);
}

uint32_t ZA_PKCS12_GetContentInfoOfEnvelopedType_DesAlgorithm(void *ctx, uint8_t *oid,
                                                              uint32_t *oidLen) {
    return frames.get<&EnvelopedContent::algorithm>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_GetContentInfoOfEnvelopedType_DesParameter(void *ctx, uint8_t *paramDer,
                                                              uint32_t *paramLen) {
    return frames.get<&EnvelopedContent::parameter>(ctx, paramDer, paramLen);
}

uint32_t ZA_PKCS12_GetContentInfoOfEnvelopedType_SafeContent(void *ctx, uint8_t *safeContents,
                                                             uint32_t *len) {
    return frames.run<EnvelopedContent>(ctx, [&](const EnvelopedContent &content) {
        Secret opened;
        ZA_PASS(trace.need(len));
        ZA_PASS(open_content(content, opened));
        hand_out(opened.bytes(), safeContents, len);
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_DestoryDecodeContentInfoOfEnvelopedType(void *ctx) {
    return frames.destroy<EnvelopedContent>(ctx);
}
