// Bags in one call.
#include <zacert/pkcs12_bags.h>

#include "pkcs12/za_pkcs12_base.hpp"
#include "pkcs7/za_pkcs7_callback.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs12_base_one", za::kLongStyle};

}  // namespace

using za::Bytes;
using za::hand_out;
using za::Secret;
using za::Status;
using za::pkcs12::check_octets;
using za::pkcs12::EncKeyBag;
using za::pkcs12::install_function;
using za::pkcs12::KeyBag;
using za::pkcs12::ValueBag;

namespace {

// Octets that come from outside, or the place and the length of octets that go there.
struct Given {
    const uint8_t *octets;
    uint32_t len;
};

struct Place {
    uint8_t *octets;
    uint32_t *len;
};

Status set(Secret &out, const Given &from) {
    ZA_PASS(check_octets(trace, from.octets, from.len));
    return out.assign({from.octets, from.len});
}

void get(const Secret &from, const Place &out) {
    hand_out(from.bytes(), out.octets, out.len);
}

template <class Bag>
Status write(const Bag &bag, const Place &out) {
    Secret der;
    ZA_PASS(trace.need(out.len));
    ZA_PASS(encode(bag, der.value));
    get(der, out);
    return Status::ok;
}

template <class Bag>
Status read(const Given &der, Bag &out) {
    ZA_PASS(check_octets(trace, der.octets, der.len));
    return decode(Bytes(der.octets, der.len), out);
}

Status make_value_bag(const Given &value, const Given &type, const Place &out) {
    ValueBag bag;
    ZA_PASS(set(bag.value, value));
    ZA_PASS(set(bag.type, type));
    return write(bag, out);
}

Status read_value_bag(const Given &der, const Place &value, const Place &type) {
    ValueBag bag;
    ZA_PASS(trace.need(value.len, type.len));
    ZA_PASS(read(der, bag));
    get(bag.value, value);
    get(bag.type, type);
    return Status::ok;
}

Status encrypt_with(ZA_CryptFunc function, const Given &block, const Given &plain, Secret &out) {
    za::CryptSlot slot;
    ZA_PASS(check_octets(trace, plain.octets, plain.len));
    ZA_PASS(install_function(trace, slot, function, block.octets, block.len));
    if (!slot.installed() || plain.len == 0) {
        return trace.fail(Status::invalid_item);
    }
    ZA_TRY_AS("------------>func",
              za::pkcs7::run(trace, slot, {plain.octets, plain.len},
                             plain.len + za::pkcs7::kCipherMayAdd, Status::crypt, out));
    return Status::ok;
}

}  // namespace

uint32_t ZA_PKCS12_GenKeyBag(const uint8_t *key, uint32_t keyLen, const uint8_t *algoOid,
                             uint32_t algoOidLen, uint32_t /*reserved*/, uint8_t *out,
                             uint32_t *outLen) {
    return trace.exported([&] {
        KeyBag bag;
        ZA_PASS(set(bag.key, {key, keyLen}));
        ZA_PASS(set(bag.algorithm, {algoOid, algoOidLen}));
        return write(bag, {out, outLen});
    });
}

uint32_t ZA_PKCS12_GenEncKeyBag(const uint8_t *keyBag, uint32_t keyBagLen, const uint8_t *algoOid,
                                uint32_t algoOidLen, const uint8_t *paramDer, uint32_t paramLen,
                                ZA_CryptFunc encFunc, const uint8_t *encParam, uint32_t encParamLen,
                                uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        EncKeyBag bag;
        ZA_PASS(set(bag.algorithm, {algoOid, algoOidLen}));
        ZA_PASS(paramLen == 0 ? Status::ok : set(bag.parameter, {paramDer, paramLen}));
        ZA_PASS(
            encrypt_with(encFunc, {encParam, encParamLen}, {keyBag, keyBagLen}, bag.encrypted_key));
        return write(bag, {out, outLen});
    });
}

uint32_t ZA_PKCS12_GenCertBag(const uint8_t *cert, uint32_t certLen, const uint8_t *typeOid,
                              uint32_t typeOidLen, uint32_t /*reserved*/, uint8_t *out,
                              uint32_t *outLen) {
    return trace.exported([&] {
        return make_value_bag({cert, certLen}, {typeOid, typeOidLen}, {out, outLen});
    });
}

uint32_t ZA_PKCS12_GenCrlBag(const uint8_t *crl, uint32_t crlLen, const uint8_t *typeOid,
                             uint32_t typeOidLen, uint32_t /*reserved*/, uint8_t *out,
                             uint32_t *outLen) {
    return trace.exported([&] {
        return make_value_bag({crl, crlLen}, {typeOid, typeOidLen}, {out, outLen});
    });
}

uint32_t ZA_PKCS12_GenSecretContentsBag(const uint8_t *contents, uint32_t contentsLen,
                                        const uint8_t *typeOid, uint32_t typeOidLen,
                                        uint32_t /*reserved*/, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        return make_value_bag({contents, contentsLen}, {typeOid, typeOidLen}, {out, outLen});
    });
}

uint32_t ZA_PKCS12_ParseKeyBag(const uint8_t *der, uint32_t derLen, uint8_t *key, uint32_t *keyLen,
                               uint8_t *algoOid, uint32_t *algoOidLen) {
    return trace.exported([&] {
        KeyBag bag;
        ZA_PASS(trace.need(keyLen, algoOidLen));
        ZA_PASS(read({der, derLen}, bag));
        get(bag.key, {key, keyLen});
        get(bag.algorithm, {algoOid, algoOidLen});
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_ParseEncKeyBag(const uint8_t *der, uint32_t derLen, uint8_t *encKey,
                                  uint32_t *encKeyLen, uint8_t *algoOid, uint32_t *algoOidLen,
                                  uint8_t *paramDer, uint32_t *paramLen) {
    return trace.exported([&] {
        EncKeyBag bag;
        ZA_PASS(trace.need(encKeyLen, algoOidLen, paramLen));
        ZA_PASS(read({der, derLen}, bag));
        get(bag.encrypted_key, {encKey, encKeyLen});
        get(bag.algorithm, {algoOid, algoOidLen});
        get(bag.parameter, {paramDer, paramLen});
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_ParseCertBag(const uint8_t *der, uint32_t derLen, uint8_t *cert,
                                uint32_t *certLen, uint8_t *typeOid, uint32_t *typeOidLen) {
    return trace.exported([&] {
        return read_value_bag({der, derLen}, {cert, certLen}, {typeOid, typeOidLen});
    });
}

uint32_t ZA_PKCS12_ParseCrlBag(const uint8_t *der, uint32_t derLen, uint8_t *crl, uint32_t *crlLen,
                               uint8_t *typeOid, uint32_t *typeOidLen) {
    return trace.exported([&] {
        return read_value_bag({der, derLen}, {crl, crlLen}, {typeOid, typeOidLen});
    });
}

uint32_t ZA_PKCS12_ParseSecretContentsBag(const uint8_t *der, uint32_t derLen, uint8_t *contents,
                                          uint32_t *contentsLen, uint8_t *typeOid,
                                          uint32_t *typeOidLen) {
    return trace.exported([&] {
        return read_value_bag({der, derLen}, {contents, contentsLen}, {typeOid, typeOidLen});
    });
}
