// Parts of files without a context.
#include <zacert/pkcs12.h>

#include "names/za_low_oid_catalogue.hpp"
#include "pkcs12/za_pkcs12_pfx.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs12_pfx", za::kLongStyle};

}  // namespace

namespace za::pkcs12 {
namespace {

// What callers have long been told where a walk does not find what it looks for.
constexpr auto kNotFound = static_cast<Status>(0xFFFFFFFF);

struct KeyAndCertificate {
    Secret enc_key_bag;
    Secret certificate;
};

// The first of each, in SafeContents that may stand in one another.
Status walk(Bytes safe_contents, uint32_t depth, KeyAndCertificate &out) {
    constexpr uint32_t kDeepest = 32;
    SafeContents contents;
    if (depth > kDeepest) {
        return trace.fail(Status::general);
    }
    ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeSafeContents, decode(safe_contents, contents)));
    for (const Secret &der : contents.bags) {
        SafeBag bag;
        ValueBag certificate;
        ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeSafeBag, decode(der.bytes(), bag)));
        const Bytes type = bag.type.bytes();
        if (equal(type, oid::kSafeContentsBag)) {
            ZA_PASS(walk(bag.content.bytes(), depth + 1, out));
        } else if (equal(type, oid::kCertBag) && out.certificate.bytes().empty()) {
            ZA_PASS(ZA_CALL(ZA_PKCS12_ParseCertBag, decode(bag.content.bytes(), certificate)));
            out.certificate = std::move(certificate.value);
        } else if (equal(type, oid::kPkcs8ShroudedKeyBag) && out.enc_key_bag.bytes().empty()) {
            out.enc_key_bag = std::move(bag.content);
        }
    }
    return Status::ok;
}

Status walk_file(Bytes in, Bytes password, KeyAndCertificate &out) {
    DataSafe safe;
    ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeAuthSafeOfDataType, decode(in, safe)));
    for (const Secret &container : safe.content_infos) {
        Secret contents;
        ZA_PASS(open_container(container.bytes(), password, contents));
        ZA_PASS(walk(contents.bytes(), 1, out));
    }
    const bool found = !out.enc_key_bag.bytes().empty() && !out.certificate.bytes().empty();
    return found ? Status::ok : trace.fail(kNotFound, "------------>ZACERT_ItemMissingErr");
}

// The MAC is nobody's here.
Status key_and_certificate(Bytes in, Bytes password, Secret &key, Secret &certificate) {
    KeyAndCertificate found;
    const Status walked = walk_file(in, password, found);
    if (walked != Status::ok) {
        return walked == Status::memory ? walked : kNotFound;
    }
    ZA_PASS(decrypt_key(found.enc_key_bag.bytes(), password, key));
    certificate = std::move(found.certificate);
    return Status::ok;
}

struct KeyAndChain {
    Secret key;
    Secret first;
    Secret second;
};

Status take_key(const SafeBag &bag, Bytes password, Secret &out) {
    Secret der;
    KeyBag key;
    if (equal(bag.type.bytes(), oid::kKeyBag)) {
        ZA_PASS(der.assign(bag.content.bytes()));
    } else {
        ZA_PASS(decrypt_key(bag.content.bytes(), password, der));
    }
    ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeKeyBag, decode(der.bytes(), key)));
    out = std::move(key.key);
    return Status::ok;
}

Status take_bag(const SafeBag &bag, Bytes password, KeyAndChain &out) {
    const Bytes type = bag.type.bytes();
    if (equal(type, oid::kCertBag) && out.second.bytes().empty()) {
        ValueBag certificate;
        ZA_PASS(ZA_CALL(ZA_PKCS12_ParseCertBag, decode(bag.content.bytes(), certificate)));
        (out.first.bytes().empty() ? out.first : out.second) = std::move(certificate.value);
    }
    const bool is_key = equal(type, oid::kPkcs8ShroudedKeyBag) || equal(type, oid::kKeyBag);
    return is_key && out.key.bytes().empty() ? take_key(bag, password, out.key) : Status::ok;
}

Status key_and_chain(Bytes safe_contents, Bytes password, KeyAndChain &out) {
    SafeContents contents;
    ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeSafeContents, decode(safe_contents, contents)));
    for (const Secret &der : contents.bags) {
        SafeBag bag;
        ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeSafeBag, decode(der.bytes(), bag)));
        ZA_PASS(take_bag(bag, password, out));
    }
    return Status::ok;
}

// A password may be empty, the octets beside it not.
Status check_input(const uint8_t *der, uint32_t der_len, const uint8_t *password,
                   uint32_t password_len) {
    ZA_PASS(check_octets(trace, der, der_len));
    return password_len == 0 ? Status::ok : check_octets(trace, password, password_len);
}

}  // namespace
}  // namespace za::pkcs12

using za::hand_out;
using za::Secret;
using za::Status;

uint32_t ZA_PKCS12_DealWithEncKeyBag(uint8_t *oid, uint32_t *oidLen, uint8_t *encKey,
                                     uint32_t *encKeyLen, uint8_t *salt, uint32_t *saltLen,
                                     uint32_t *iterations, const uint8_t *epkiDer,
                                     uint32_t epkiLen) {
    return trace.exported([&] {
        za::pkcs12::EncKeyBag bag;
        za::pkcs12::Parameter parameter;
        if (oid == nullptr || oidLen == nullptr || encKey == nullptr || encKeyLen == nullptr ||
            salt == nullptr || saltLen == nullptr || iterations == nullptr) {
            return trace.fail(Status::general);
        }
        ZA_PASS(za::pkcs12::check_octets(trace, epkiDer, epkiLen));
        ZA_PASS(za::pkcs12::split_enc_key_bag({epkiDer, epkiLen}, bag, parameter));
        hand_out(bag.algorithm.bytes(), oid, oidLen);
        hand_out(bag.encrypted_key.bytes(), encKey, encKeyLen);
        hand_out(parameter.salt.bytes(), salt, saltLen);
        *iterations = parameter.iterations;
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_GetKeyAndCertFromNspP12(const uint8_t *pfx, uint32_t pfxLen,
                                           const uint8_t *password, uint32_t passwordLen,
                                           uint8_t *key, uint32_t *keyLen, uint8_t *cert,
                                           uint32_t *certLen) {
    return trace.exported([&] {
        Secret found_key;
        Secret found_cert;
        ZA_PASS(trace.need(keyLen, certLen));
        ZA_PASS(za::pkcs12::check_input(pfx, pfxLen, password, passwordLen));
        ZA_PASS(za::pkcs12::key_and_certificate({pfx, pfxLen}, {password, passwordLen}, found_key,
                                                found_cert));
        hand_out(found_key.bytes(), key, keyLen);
        hand_out(found_cert.bytes(), cert, certLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_Decode_TRLM(const uint8_t *safeContents, uint32_t len, const uint8_t *password,
                               uint32_t passwordLen, uint8_t *key, uint32_t *keyLen, uint8_t *cert1,
                               uint32_t *cert1Len, uint8_t *cert2, uint32_t *cert2Len) {
    return trace.exported([&] {
        za::pkcs12::KeyAndChain found;
        ZA_PASS(trace.need(keyLen, cert1Len, cert2Len));
        ZA_PASS(za::pkcs12::check_input(safeContents, len, password, passwordLen));
        ZA_PASS(za::pkcs12::key_and_chain({safeContents, len}, {password, passwordLen}, found));
        hand_out(found.key.bytes(), key, keyLen);
        hand_out(found.first.bytes(), cert1, cert1Len);
        hand_out(found.second.bytes(), cert2, cert2Len);
        return Status::ok;
    });
}
