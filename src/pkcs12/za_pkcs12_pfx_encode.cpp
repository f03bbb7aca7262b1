// A file written: the key encrypted by itself, the certificates as a whole, a MAC over both.
#include <zacert.h>

#include "crypto/za_crypt_pkcs12.hpp"
#include "crypto/za_crypt_pkcs7.hpp"
#include "keys/za_ext_ecc_private.hpp"
#include "names/za_low_oid_catalogue.hpp"
#include "pkcs12/za_pkcs12_pfx.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs12_pfx", za::kLongStyle};

}  // namespace

namespace za::pkcs12 {
namespace {

constexpr uint32_t kIterations = 2000;
constexpr uint32_t kMacDigest = 7;  // SHA-1
constexpr size_t kMacOctets = 20;
constexpr size_t kMacSalt = 20;
constexpr size_t kSalt = 8;

constexpr KeyLengths kRsa1024{601, 628};
constexpr KeyLengths kRsa2048{1181, 1201};
constexpr KeyLengths kEcc{116, 134};

template <size_t size>
Status random_salt(std::array<uint8_t, size> &out) {
    if (crypto::random_bytes(out) != Status::ok) {
        return trace.fail(Status::general, "------------>ZA_PKCS7_GenerateBytes");
    }
    return Status::ok;
}

// One encryption under the password. The record points into this and must not outlive it.
struct Encryption {
    Bytes algorithm;
    Bytes password;
    std::array<uint8_t, kSalt> salt;

    ZA_PBE_RECORD record() const {
        return {
            algorithm.data(), to_u32(algorithm.size()), password.data(), to_u32(password.size()),
            salt.data(),      to_u32(salt.size()),      kIterations};
    }
};

Status begin_encryption(Bytes algorithm, Bytes password, Encryption &out) {
    out.algorithm = algorithm;
    out.password = password;
    return random_salt(out.salt);
}

Status make_key_bag(const Pfx &pfx, Bytes algorithm, Bytes key, Secret &out) {
    KeyBag bag;
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetKeyBagAlgorithm, bag.algorithm.assign(algorithm)));
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetKeyBagKey, bag.key.assign(key)));
    for (const Attribute &attribute : pfx.key_attributes) {
        ZA_PASS(ZA_CALL(ZA_PKCS12_SetKeyBagAttribute,
                        add_attribute(trace, bag.attributes, attribute.type.bytes(),
                                      attribute.values.bytes())));
    }
    return ZA_CALL(ZA_PKCS12_EncodeKeyBag, encode(bag, out.value));
}

Status encrypt_key_bag(const Encryption &with, Bytes key_bag, Secret &out) {
    Secret cipher;
    uint32_t len = 0;
    ZA_PASS(cipher.value.allocate(crypto::padded_size(key_bag.size())));
    ZA_PASS(ZA_BODY(ZA_PKCS12_PbeWithDigestAlgoAndEncrypt,
                    crypto::pbe_encrypt(with.record(), key_bag.data(), to_u32(key_bag.size()),
                                        cipher.value.data(), &len)));
    out = std::move(cipher);
    return Status::ok;
}

Status make_enc_key_bag(Bytes key_bag, Bytes password, Secret &out) {
    EncKeyBag bag;
    Encryption with;
    Parameter parameter;
    Secret der;
    ZA_PASS(begin_encryption(oid::kPbeWithSha1And3KeyTripleDesCbc, password, with));
    ZA_PASS(encrypt_key_bag(with, key_bag, bag.encrypted_key));
    ZA_PASS(parameter.salt.assign(with.salt));
    parameter.iterations = kIterations;
    ZA_PASS(ZA_CALL(ZA_PKCS12_EncodeParameter, encode(parameter, der.value)));
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetEncKeyBagAlgo, bag.algorithm.assign(with.algorithm)));
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetEncKeyBagParameter, bag.parameter.assign(der.bytes())));
    return ZA_CALL(ZA_PKCS12_EncodeEncKeyBag, encode(bag, out.value));
}

// Appends a SafeBag of this type.
Status add_safe_bag(Bytes type, Bytes content, const Attributes &attributes, SafeContents &out) {
    SafeBag bag;
    Secret der;
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetSafeBagOID, bag.type.assign(type)));
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetSafeBagContent, bag.content.assign(content)));
    for (const Attribute &attribute : attributes) {
        ZA_PASS(ZA_CALL(ZA_PKCS12_SetSafeBagAttribute,
                        add_attribute(trace, bag.attributes, attribute.type.bytes(),
                                      attribute.values.bytes())));
    }
    ZA_PASS(ZA_CALL(ZA_PKCS12_EncodeSafeBag, encode(bag, der.value)));
    return ZA_CALL(ZA_PKCS12_SetSafeContents_SafeBag, add_item(trace, out.bags, der.bytes()));
}

Status make_cert_bag(Bytes certificate, Octets &out) {
    ValueBag bag;
    ZA_PASS(bag.type.assign(oid::kX509Certificate));
    ZA_PASS(bag.value.assign(certificate));
    return encode(bag, out);
}

// The container of the key, which is encrypted in it.
Status make_key_container(Bytes enc_key_bag, const Pfx &pfx, Octets &out) {
    SafeContents contents;
    DataContent container;
    ZA_PASS(add_safe_bag(oid::kPkcs8ShroudedKeyBag, enc_key_bag, pfx.key_bag_attributes, contents));
    ZA_PASS(ZA_CALL(ZA_PKCS12_EncodeSafeContents, encode(contents, container.safe_contents.value)));
    return ZA_CALL(ZA_PKCS12_EncodeContentInfoOfDataType, encode(container, out));
}

Status make_certificates(const Pfx &pfx, Secret &out) {
    SafeContents contents;
    for (const Certificate &certificate : pfx.certificates) {
        Octets bag;
        ZA_PASS(ZA_CALL(ZA_PKCS12_GenCertBag, make_cert_bag(certificate.der.bytes(), bag)));
        ZA_PASS(add_safe_bag(oid::kCertBag, bag.bytes(), certificate.attributes, contents));
    }
    return ZA_CALL(ZA_PKCS12_EncodeSafeContents, encode(contents, out.value));
}

// The container of the certificates, encrypted as a whole; it stands there without any, too.
Status make_certificate_container(const Pfx &pfx, Bytes password, Octets &out) {
    EncryptedContent container;
    Encryption with;
    Parameter parameter;
    ZA_PASS(make_certificates(pfx, container.safe_contents));
    ZA_PASS(begin_encryption(oid::kPbeWithSha1And40BitRc2Cbc, password, with));
    ZA_PASS(parameter.salt.assign(with.salt));
    parameter.iterations = kIterations;
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetContentInfoOfEncryptedType_DesAlgorithm,
                    container.algorithm.assign(with.algorithm)));
    ZA_PASS(ZA_CALL(ZA_PKCs12_SetContentInfoOfEncryptedType_DesParameter,
                    encode(parameter, container.parameter.value)));
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetContentInfoOfEncryptedType_EncContentFunc,
                    install_record(trace, container.encrypt, ZA_EncryptFunc_Ref, with.record())));
    return ZA_CALL(ZA_PKCS12_EncodeContentInfoOfEncryptedType, encode(container, out));
}

Status set_mac(Bytes password, Wiped<std::array<uint8_t, kMacOctets>> &key, DataSafe &out) {
    std::array<uint8_t, kMacSalt> salt;
    ZA_PASS(random_salt(salt));
    ZA_PASS(ZA_BODY(
        ZA_PKCS12_GenRandomFromPassword,
        crypto::derive({kMacDigest, password, salt, kIterations}, crypto::kForMac, key.value)));
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetAuthSafeOfDataType_DigestAlgorithm,
                    out.mac_data.digest.assign(oid::kSha1)));
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetAuthSafeOfDataType_MacParameter,
                    out.mac_data.parameter.salt.assign(salt)));
    out.mac_data.parameter.iterations = kIterations;
    const ZA_HMAC_RECORD record{kMacDigest, key.value.data(), kMacOctets};
    return ZA_CALL(ZA_PKCS12_SetAuthSafeOfDataType_GenMacFunc,
                   install_record(trace, out.generate_mac, ZA_HMACFunc_Ref, record));
}

Status write_pfx(const Pfx &pfx, Bytes algorithm, Bytes key, Bytes password, Octets &out) {
    DataSafe safe;
    Wiped<std::array<uint8_t, kMacOctets>> mac_key;
    Secret key_bag;
    Secret enc_key_bag;
    Octets keys;
    Octets certificates;
    ZA_PASS(make_key_bag(pfx, algorithm, key, key_bag));
    ZA_PASS(make_enc_key_bag(key_bag.bytes(), password, enc_key_bag));
    ZA_PASS(make_key_container(enc_key_bag.bytes(), pfx, keys));
    ZA_PASS(make_certificate_container(pfx, password, certificates));
    ZA_PASS(set_mac(password, mac_key, safe));
    for (const Bytes container : {keys.bytes(), certificates.bytes()}) {
        ZA_PASS(ZA_CALL(ZA_PKCS12_SetAuthSafeOfDataType_ContentInfo,
                        add_item(trace, safe.content_infos, container)));
    }
    return ZA_CALL(ZA_PKCS12_EncodeAuthSafeOfDataType, encode(safe, out));
}

}  // namespace

// The kind of a key follows from the octets it has: those of 1024 and 2048 bits, or of a curve.
Status encode_pfx(const Pfx &pfx, Bytes password, Octets &out) {
    const Bytes key = pfx.key.bytes();
    if (kRsa1024.hold(key) || kRsa2048.hold(key)) {
        return write_pfx(pfx, oid::kRsaEncryption, key, password, out);
    }
    if (!kEcc.hold(key)) {
        return trace.fail(Status::private_key, kWrongKeyLength);
    }
    Secret sec1;
    ZA_PASS(ZA_BODY(ZACERT_EcPrivateZqcspDerToCertDer, keys::to_sec1_private_key(key, sec1.value)));
    return write_pfx(pfx, oid::kEcPublicKey, sec1.bytes(), password, out);
}

Status encode_pfx(const Pfx &pfx, uint32_t key_type, Bytes password, Octets &out) {
    if (key_type != kRsaKey && key_type != kEccKey) {
        return trace.fail(Status::invalid_item, "------------>Pfx Cert Type Error");
    }
    const Bytes algorithm =
        key_type == kRsaKey ? Bytes(oid::kRsaEncryption) : Bytes(oid::kEcPublicKey);
    return write_pfx(pfx, algorithm, pfx.key.bytes(), password, out);
}

}  // namespace za::pkcs12
