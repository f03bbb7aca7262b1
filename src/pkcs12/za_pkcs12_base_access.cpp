// The exported functions of bags and SafeContents.
#include <zacert/pkcs12_bags.h>

#include "pkcs12/za_pkcs12_base.hpp"

#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs12_base", za::kLongStyle};
constexpr za::pkcs12::Frames frames{trace};

}  // namespace

using za::hand_out;
using za::Secret;
using za::Status;
using za::pkcs12::check_octets;
using za::pkcs12::EncKeyBag;
using za::pkcs12::KeyBag;
using za::pkcs12::SafeBag;
using za::pkcs12::SafeContents;
using za::pkcs12::ValueBag;

uint32_t ZA_PKCS12_CreateEncodeKeyBag(void **ctx) {
    return frames.create<KeyBag>(ctx);
}

uint32_t ZA_PKCS12_SetKeyBagVersion(void *ctx, uint32_t version) {
    return frames.run<KeyBag>(ctx, [&](KeyBag &bag) {
        bag.version = version;
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_SetKeyBagAlgorithm(void *ctx, const uint8_t *oid, uint32_t oidLen) {
    return frames.set<&KeyBag::algorithm>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_SetKeyBagKey(void *ctx, const uint8_t *key, uint32_t keyLen) {
    return frames.set<&KeyBag::key>(ctx, key, keyLen);
}

uint32_t ZA_PKCS12_SetKeyBagAttribute(void *ctx, const uint8_t *type, uint32_t typeLen,
                                      const uint8_t *value, uint32_t valueLen) {
    return frames.add_attribute_to<&KeyBag::attributes>(ctx, type, typeLen, value, valueLen);
}

uint32_t ZA_PKCS12_EncodeKeyBag(void *ctx, uint8_t *out, uint32_t *outLen) {
    return frames.encode_to<KeyBag>(ctx, out, outLen);
}

uint32_t ZA_PKCS12_DestroyEncodeKeyBag(void *ctx) {
    return frames.destroy<KeyBag>(ctx);
}

uint32_t ZA_PKCS12_CreateDecodeKeyBag(void **ctx) {
    return frames.create<KeyBag>(ctx);
}

uint32_t ZA_PKCS12_DecodeKeyBag(void *ctx, const uint8_t *der, uint32_t derLen) {
    return frames.decode_from<KeyBag>(ctx, der, derLen);
}

uint32_t ZA_PKCS12_GetKeyBagVersion(void *ctx, uint32_t *version) {
    return frames.run<KeyBag>(ctx, [&](const KeyBag &bag) {
        ZA_PASS(trace.need(version));
        *version = bag.version;
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_GetKeyBagAlgorithm(void *ctx, uint8_t *oid, uint32_t *oidLen) {
    return frames.get<&KeyBag::algorithm>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_GetKeyBagKey(void *ctx, uint8_t *key, uint32_t *keyLen) {
    return frames.get<&KeyBag::key>(ctx, key, keyLen);
}

uint32_t ZA_PKCS12_GetKeyBagAttributeNum(void *ctx, uint32_t *num) {
    return frames.count<&KeyBag::attributes>(ctx, num);
}

uint32_t ZA_PKCS12_GetKeyBagAttribute(void *ctx, uint8_t *type, uint32_t *typeLen, uint8_t *value,
                                      uint32_t *valueLen, uint32_t number) {
    return frames.attribute<&KeyBag::attributes>(ctx, {type, typeLen, value, valueLen}, number);
}

uint32_t ZA_PKCS12_DestroyDecodeKeyBag(void *ctx) {
    return frames.destroy<KeyBag>(ctx);
}

uint32_t ZA_PKCS12_CreateEncodeEncKeyBag(void **ctx) {
    return frames.create<EncKeyBag>(ctx);
}

uint32_t ZA_PKCS12_SetEncKeyBagAlgo(void *ctx, const uint8_t *oid, uint32_t oidLen) {
    return frames.set<&EncKeyBag::algorithm>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_SetEncKeyBagParameter(void *ctx, const uint8_t *paramDer, uint32_t paramLen) {
    return frames.set<&EncKeyBag::parameter>(ctx, paramDer, paramLen);
}

uint32_t ZA_PKCS12_SetEncKeyBagEncKey(void *ctx, const uint8_t *encKey, uint32_t encKeyLen) {
    return frames.set<&EncKeyBag::encrypted_key>(ctx, encKey, encKeyLen);
}

uint32_t ZA_PKCS12_EncodeEncKeyBag(void *ctx, uint8_t *out, uint32_t *outLen) {
    return frames.encode_to<EncKeyBag>(ctx, out, outLen);
}

uint32_t ZA_PKCS12_DestoryEncodeEncKeyBag(void *ctx) {
    return frames.destroy<EncKeyBag>(ctx);
}

uint32_t ZA_PKCS12_CreateDecodeEncKeyBag(void **ctx) {
    return frames.create<EncKeyBag>(ctx);
}

uint32_t ZA_PKCS12_DecodeEncKeyBag(void *ctx, const uint8_t *der, uint32_t derLen) {
    return frames.decode_from<EncKeyBag>(ctx, der, derLen);
}

uint32_t ZA_PKCS12_GetEncKeyBagAlgo(void *ctx, uint8_t *oid, uint32_t *oidLen) {
    return frames.get<&EncKeyBag::algorithm>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_GetEncKeyBagParameter(void *ctx, uint8_t *paramDer, uint32_t *paramLen) {
    return frames.get<&EncKeyBag::parameter>(ctx, paramDer, paramLen);
}

uint32_t ZA_PKCS12_GetEncKeyBagEncKey(void *ctx, uint8_t *encKey, uint32_t *encKeyLen) {
    return frames.get<&EncKeyBag::encrypted_key>(ctx, encKey, encKeyLen);
}

uint32_t ZA_PKCS12_DestoryDecodeEncKeyBag(void *ctx) {
    return frames.destroy<EncKeyBag>(ctx);
}

uint32_t ZA_PKCS12_CreateEncodeCertBag(void **ctx) {
    return frames.create<ValueBag>(ctx);
}

uint32_t ZA_PKCS12_SetCertBagID(void *ctx, const uint8_t *oid, uint32_t oidLen, const uint8_t *cert,
                                uint32_t certLen) {
    return frames.run<ValueBag>(ctx, [&](ValueBag &bag) {
        Secret type;
        ZA_PASS(check_octets(trace, oid, oidLen));
        ZA_PASS(check_octets(trace, cert, certLen));
        ZA_PASS(type.assign({oid, oidLen}));
        ZA_PASS(bag.value.assign({cert, certLen}));
        bag.type = std::move(type);
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_EncodeCertBag(void *ctx, uint8_t *out, uint32_t *outLen) {
    return frames.encode_to<ValueBag>(ctx, out, outLen);
}

uint32_t ZA_PKCS12_DestoryEncodeCertBag(void *ctx) {
    return frames.destroy<ValueBag>(ctx);
}

uint32_t ZA_PKCS12_CreateDecodeCertBag(void **ctx) {
    return frames.create<ValueBag>(ctx);
}

uint32_t ZA_PKCS12_DecodeCertBag(void *ctx, const uint8_t *der, uint32_t derLen) {
    return frames.decode_from<ValueBag>(ctx, der, derLen);
}

uint32_t ZA_PKCS12_GetCertBagID(void *ctx, uint8_t *oid, uint32_t *oidLen, uint8_t *cert,
                                uint32_t *certLen) {
    return frames.run<ValueBag>(ctx, [&](const ValueBag &bag) {
        ZA_PASS(trace.need(oidLen, certLen));
        hand_out(bag.type.bytes(), oid, oidLen);
        hand_out(bag.value.bytes(), cert, certLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_DestoryDecodeCertBag(void *ctx) {
    return frames.destroy<ValueBag>(ctx);
}

uint32_t ZA_PKCS12_CreateEncodeCrlBag(void **ctx) {
    return frames.create<ValueBag>(ctx);
}

uint32_t ZA_PKCS12_SetCrlBagID(void *ctx, const uint8_t *oid, uint32_t oidLen) {
    return frames.set<&ValueBag::type>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_SetCrlBagCrl(void *ctx, const uint8_t *crl, uint32_t crlLen) {
    return frames.set<&ValueBag::value>(ctx, crl, crlLen);
}

uint32_t ZA_PKCS12_EncodeCrlBag(void *ctx, uint8_t *out, uint32_t *outLen) {
    return frames.encode_to<ValueBag>(ctx, out, outLen);
}

uint32_t ZA_PKCS12_DestoryEncodeCrlBag(void *ctx) {
    return frames.destroy<ValueBag>(ctx);
}

uint32_t ZA_PKCS12_CreateDecodeCrlBag(void **ctx) {
    return frames.create<ValueBag>(ctx);
}

uint32_t ZA_PKCS12_DecodeCrlBag(void *ctx, const uint8_t *der, uint32_t derLen) {
    return frames.decode_from<ValueBag>(ctx, der, derLen);
}

uint32_t ZA_PKCS12_GetCrlBagID(void *ctx, uint8_t *oid, uint32_t *oidLen) {
    return frames.get<&ValueBag::type>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_GetCrlBagCrl(void *ctx, uint8_t *crl, uint32_t *crlLen) {
    return frames.get<&ValueBag::value>(ctx, crl, crlLen);
}

uint32_t ZA_PKCS12_DestoryDecodeCrlBag(void *ctx) {
    return frames.destroy<ValueBag>(ctx);
}

uint32_t ZA_PKCS12_CreateEncodeSecretContentsBag(void **ctx) {
    return frames.create<ValueBag>(ctx);
}

uint32_t ZA_PKCS12_SetSecretContentsBagID(void *ctx, const uint8_t *oid, uint32_t oidLen) {
    return frames.set<&ValueBag::type>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_SetSecretContentsBagContents(void *ctx, const uint8_t *contents,
                                                uint32_t contentsLen) {
    return frames.set<&ValueBag::value>(ctx, contents, contentsLen);
}

uint32_t ZA_PKCS12_EncodeSecretContentsBag(void *ctx, uint8_t *out, uint32_t *outLen) {
    return frames.encode_to<ValueBag>(ctx, out, outLen);
}

uint32_t ZA_PKCS12_DestoryEncodeSecretContentsBag(void *ctx) {
    return frames.destroy<ValueBag>(ctx);
}

uint32_t ZA_PKCS12_CreateDecodeSecretContentsBag(void **ctx) {
    return frames.create<ValueBag>(ctx);
}

uint32_t ZA_PKCS12_DecodeSecretContentsBag(void *ctx, const uint8_t *der, uint32_t derLen) {
    return frames.decode_from<ValueBag>(ctx, der, derLen);
}

uint32_t ZA_PKCS12_GetSecretContentsBagID(void *ctx, uint8_t *oid, uint32_t *oidLen) {
    return frames.get<&ValueBag::type>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_GetSecretContentsBagContents(void *ctx, uint8_t *contents,
                                                uint32_t *contentsLen) {
    return frames.get<&ValueBag::value>(ctx, contents, contentsLen);
}

uint32_t ZA_PKCS12_DestoryDecodeSecretContentsBag(void *ctx) {
    return frames.destroy<ValueBag>(ctx);
}

uint32_t ZA_PKCS12_CreateEncodeSafeBag(void **ctx) {
    return frames.create<SafeBag>(ctx);
}

uint32_t ZA_PKCS12_SetSafeBagOID(void *ctx, const uint8_t *oid, uint32_t oidLen) {
    return frames.set<&SafeBag::type>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_SetSafeBagContent(void *ctx, const uint8_t *bagDer, uint32_t bagLen) {
    return frames.set<&SafeBag::content>(ctx, bagDer, bagLen);
}

uint32_t ZA_PKCS12_SetSafeBagAttribute(void *ctx, const uint8_t *type, uint32_t typeLen,
                                       const uint8_t *value, uint32_t valueLen) {
    return frames.add_attribute_to<&SafeBag::attributes>(ctx, type, typeLen, value, valueLen);
}

uint32_t ZA_PKCS12_EncodeSafeBag(void *ctx, uint8_t *out, uint32_t *outLen) {
    return frames.encode_to<SafeBag>(ctx, out, outLen);
}

uint32_t ZA_PKCS12_DestoryEncodeSafeBag(void *ctx) {
    return frames.destroy<SafeBag>(ctx);
}

uint32_t ZA_PKCS12_CreateDecodeSafeBag(void **ctx) {
    return frames.create<SafeBag>(ctx);
}

uint32_t ZA_PKCS12_DecodeSafeBag(void *ctx, const uint8_t *der, uint32_t derLen) {
    return frames.decode_from<SafeBag>(ctx, der, derLen);
}

uint32_t ZA_PKCS12_GetSafeBagOID(void *ctx, uint8_t *oid, uint32_t *oidLen) {
    return frames.get<&SafeBag::type>(ctx, oid, oidLen);
}

uint32_t ZA_PKCS12_GetSafeBagContent(void *ctx, uint8_t *bagDer, uint32_t *bagLen) {
    return frames.get<&SafeBag::content>(ctx, bagDer, bagLen);
}

uint32_t ZA_PKCS12_GetSafeBagAttributeNum(void *ctx, uint32_t *num) {
    return frames.count<&SafeBag::attributes>(ctx, num);
}

uint32_t ZA_PKCS12_GetSafeBagAttribute(void *ctx, uint8_t *type, uint32_t *typeLen, uint8_t *value,
                                       uint32_t *valueLen, uint32_t number) {
    return frames.attribute<&SafeBag::attributes>(ctx, {type, typeLen, value, valueLen}, number);
}

uint32_t ZA_PKCS12_DestoryDecodeSafeBag(void *ctx) {
    return frames.destroy<SafeBag>(ctx);
}

uint32_t ZA_PKCS12_CreateEncodeSafeContents(void **ctx) {
    return frames.create<SafeContents>(ctx);
}

uint32_t ZA_PKCS12_SetSafeContents_SafeBag(void *ctx, const uint8_t *bagDer, uint32_t bagLen) {
    return frames.add<&SafeContents::bags>(ctx, bagDer, bagLen);
}

uint32_t ZA_PKCS12_EncodeSafeContents(void *ctx, uint8_t *out, uint32_t *outLen) {
    return frames.encode_to<SafeContents>(ctx, out, outLen);
}

uint32_t ZA_PKCS12_DestoryEncodeSafeContents(void *ctx) {
    return frames.destroy<SafeContents>(ctx);
}

uint32_t ZA_PKCS12_CreateDecodeSafeContents(void **ctx) {
    return frames.create<SafeContents>(ctx);
}

uint32_t ZA_PKCS12_DecodeSafeContents(void *ctx, const uint8_t *der, uint32_t derLen) {
    return frames.decode_from<SafeContents>(ctx, der, derLen);
}

uint32_t ZA_PKCS12_GetSafeContents_SafeBagNum(void *ctx, uint32_t *num) {
    return frames.count<&SafeContents::bags>(ctx, num);
}

uint32_t ZA_PKCS12_GetSafeContents_SafeBag(void *ctx, uint8_t *bagDer, uint32_t *bagLen,
                                           uint32_t number) {
    return frames.item<&SafeContents::bags>(ctx, bagDer, bagLen, number);
}

uint32_t ZA_PKCS12_DestoryDecodeSafeContents(void *ctx) {
    return frames.destroy<SafeContents>(ctx);
}
