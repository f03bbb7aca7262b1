// The exported functions of the AuthenticatedSafe of two types.
#include <zacert/pkcs12_safe.h>

#include "pkcs12/za_pkcs12_code.hpp"

#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs12_code", za::kLongStyle};
constexpr za::pkcs12::Frames frames{trace};

}  // namespace

using za::Bytes;
using za::hand_out;
using za::Status;
using za::pkcs12::check_octets;
using za::pkcs12::DataSafe;
using za::pkcs12::install_function;
using za::pkcs12::SignedSafe;
using za::pkcs12::Verdict;
using za::pkcs7::SignerInfo;

namespace {

Status hand_out_item(Bytes item, uint8_t *out, uint32_t *out_len) {
    ZA_PASS(trace.need(out_len));
    hand_out(item, out, out_len);
    return Status::ok;
}

}  // namespace

uint32_t ZA_PKCS12_CreateEncodeAuthSafeOfDataType(void **ctx) {
    return frames.create<DataSafe>(ctx);
}

uint32_t ZA_PKCS12_SetAuthSafeOfDataType_ContentInfo(void *ctx, const uint8_t *contentInfo,
                                                     uint32_t len) {
    return frames.add<&DataSafe::content_infos>(ctx, contentInfo, len);
}

uint32_t ZA_PKCS12_SetAuthSafeOfDataType_DigestAlgorithm(void *ctx, const uint8_t *oid,
                                                         uint32_t oidLen) {
    return frames.run<DataSafe>(ctx, [&](DataSafe &safe) {
        ZA_PASS(check_octets(trace, oid, oidLen));
        return safe.mac_data.digest.assign({oid, oidLen});
    });
}

uint32_t ZA_PKCS12_SetAuthSafeOfDataType_MacParameter(void *ctx, const uint8_t *salt,
                                                      uint32_t saltLen, uint32_t iterations) {
    return frames.run<DataSafe>(ctx, [&](DataSafe &safe) {
        return set_parameter(trace, {salt, saltLen, iterations}, safe.mac_data.parameter);
    });
}

uint32_t ZA_PKCS12_SetAuthSafeOfDataType_GenMacFunc(void *ctx, ZA_CryptFunc func,
                                                    const uint8_t *param, uint32_t paramLen) {
    return frames.install<&DataSafe::generate_mac>(ctx, func, param, paramLen);
}

uint32_t ZA_PKCS12_SetAuthSafeOfDataType_ParseMacFunc(void *ctx, ZA_CryptFunc func,
                                                      const uint8_t *param, uint32_t paramLen) {
    return frames.run<DataSafe>(ctx, [&](DataSafe &safe) {
        ZA_PASS(install_function(trace, safe.parse_mac, func, param, paramLen));
        safe.verified = false;
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_EncodeAuthSafeOfDataType(void *ctx, uint8_t *out, uint32_t *outLen) {
    return frames.encode_to<DataSafe>(ctx, out, outLen);
}

uint32_t ZA_PKCS12_DestoryEncodeAuthSafeOfDataType(void *ctx) {
    return frames.destroy<DataSafe>(ctx);
}

uint32_t ZA_PKCS12_CreateDecodeAuthSafeOfDataType(void **ctx) {
    return frames.create<DataSafe>(ctx);
}

uint32_t ZA_PKCS12_DecodeAuthSafeOfDataType(void *ctx, const uint8_t *der, uint32_t derLen) {
    return frames.decode_from<DataSafe>(ctx, der, derLen);
}

uint32_t ZA_PKCS12_GetAuthSafeOfDataType_ContentInfo(void *ctx, uint8_t *contentInfo, uint32_t *len,
                                                     uint32_t number) {
    return frames.item<&DataSafe::content_infos>(ctx, contentInfo, len, number);
}

uint32_t ZA_PKCS12_GetAuthSafeOfDataType_DigestAlgorithm(void *ctx, uint8_t *oid,
                                                         uint32_t *oidLen) {
    return frames.run<DataSafe>(ctx, [&](const DataSafe &safe) {
        ZA_PASS(trace.need(oidLen));
        hand_out(safe.mac_data.digest.bytes(), oid, oidLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_GetAuthSafeOfDataType_MacParameter(void *ctx, uint8_t *salt, uint32_t *saltLen,
                                                      uint32_t *iterations) {
    return frames.run<DataSafe>(ctx, [&](const DataSafe &safe) {
        ZA_PASS(trace.need(saltLen, iterations));
        hand_out(safe.mac_data.parameter.salt.bytes(), salt, saltLen);
        *iterations = safe.mac_data.parameter.iterations;
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_GetAuthSafeOfDataType_MACVerifyResult(void *ctx, uint32_t *result) {
    return frames.run<DataSafe>(ctx, [&](DataSafe &safe) {
        Verdict verdict{};
        ZA_PASS(trace.need(result));
        ZA_PASS(verify_mac(safe, verdict));
        *result = static_cast<uint32_t>(verdict);
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_DestoryDecodeAuthSafeOfDataType(void *ctx) {
    return frames.destroy<DataSafe>(ctx);
}

uint32_t ZA_PKCS12_CreateEncodeAuthSafeOfSignedType(void **ctx) {
    return frames.create<SignedSafe>(ctx);
}

uint32_t ZA_PKCS12_SetAuthSafeOfSignedType_ContentInfo(void *ctx, const uint8_t *contentInfo,
                                                       uint32_t len) {
    return frames.add<&SignedSafe::content_infos>(ctx, contentInfo, len);
}

uint32_t ZA_PKCS12_SetAuthSafeOfSignedType_DigestAlgorithm(void *ctx, const uint8_t *oid,
                                                           uint32_t oidLen) {
    return frames.run<SignedSafe>(ctx, [&](SignedSafe &safe) {
        ZA_PASS(check_octets(trace, oid, oidLen));
        return za::pkcs7::add_algorithm(trace, safe.message.parts, {oid, oidLen});
    });
}

uint32_t ZA_PKCS12_SetAuthSafeOfSignedType_SignerInfo(void *ctx, void *signerInfoCtx) {
    return frames.run<SignedSafe>(ctx, [&](SignedSafe &safe) {
        ZA_PASS(trace.need(signerInfoCtx));
        return safe.message.parts.signers.attach(trace, static_cast<SignerInfo *>(signerInfoCtx));
    });
}

uint32_t ZA_PKCS12_SetAuthSafeOfSignedType_Cert(void *ctx, const uint8_t *cert, uint32_t certLen) {
    return frames.run<SignedSafe>(ctx, [&](SignedSafe &safe) {
        ZA_PASS(check_octets(trace, cert, certLen));
        return za::pkcs7::add_octets(trace, safe.message.parts.certificates, {cert, certLen});
    });
}

uint32_t ZA_PKCS12_SetAuthSafeOfSignedType_Crl(void *ctx, const uint8_t *crl, uint32_t crlLen) {
    return frames.run<SignedSafe>(ctx, [&](SignedSafe &safe) {
        ZA_PASS(check_octets(trace, crl, crlLen));
        return za::pkcs7::add_octets(trace, safe.message.parts.crls, {crl, crlLen});
    });
}

uint32_t ZA_PKCS12_EncodeAuthSafeOfSignedType(void *ctx, uint8_t *out, uint32_t *outLen) {
    return frames.encode_to<SignedSafe>(ctx, out, outLen);
}

uint32_t ZA_PKCS12_DestoryEncodeAuthSafeOfSignedType(void *ctx) {
    return frames.destroy<SignedSafe>(ctx);
}

uint32_t ZA_PKCS12_CreateDecodeAuthSafeOfSignedType(void **ctx) {
    return frames.create<SignedSafe>(ctx);
}

uint32_t ZA_PKCS12_DecodeAuthSafeOfSignedType(void *ctx, const uint8_t *der, uint32_t derLen) {
    return frames.decode_from<SignedSafe>(ctx, der, derLen);
}

uint32_t ZA_PKCS12_GetAuthSafeOfSignedType_ContentInfo(void *ctx, uint8_t *contentInfo,
                                                       uint32_t *len, uint32_t number) {
    return frames.item<&SignedSafe::content_infos>(ctx, contentInfo, len, number);
}

uint32_t ZA_PKCS12_GetAuthSafeOfSignedType_DigestAlgorithm(void *ctx, uint8_t *oid,
                                                           uint32_t *oidLen, uint32_t number) {
    return frames.run<SignedSafe>(ctx, [&](const SignedSafe &safe) {
        const auto *item = safe.message.parts.digest_algorithms.item(number);
        return hand_out_item(item == nullptr ? Bytes() : item->oid.bytes(), oid, oidLen);
    });
}

uint32_t ZA_PKCS12_GetAuthSafeOfSignedType_SignerInfo(void *ctx, void **signerInfoCtx,
                                                      uint32_t number) {
    return frames.run<SignedSafe>(ctx, [&](const SignedSafe &safe) {
        ZA_PASS(trace.need(signerInfoCtx));
        SignerInfo *signer = number > INT32_MAX
                                 ? nullptr
                                 : safe.message.parts.signers.item(static_cast<int32_t>(number));
        if (signer == nullptr) {
            return trace.fail(Status::invalid_item);
        }
        *signerInfoCtx = signer;
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_GetAuthSafeOfSignedType_Cert(void *ctx, uint8_t *cert, uint32_t *certLen,
                                                uint32_t number) {
    return frames.run<SignedSafe>(ctx, [&](const SignedSafe &safe) {
        const auto *item = safe.message.parts.certificates.item(number);
        return hand_out_item(item == nullptr ? Bytes() : item->bytes(), cert, certLen);
    });
}

uint32_t ZA_PKCS12_GetAuthSafeOfSignedType_Crl(void *ctx, uint8_t *crl, uint32_t *crlLen,
                                               uint32_t number) {
    return frames.run<SignedSafe>(ctx, [&](const SignedSafe &safe) {
        const auto *item = safe.message.parts.crls.item(number);
        return hand_out_item(item == nullptr ? Bytes() : item->bytes(), crl, crlLen);
    });
}

uint32_t ZA_PKCS12_DestoryDecodeAuthSafeOfSignedType(void *ctx) {
    return frames.destroy<SignedSafe>(ctx);
}
