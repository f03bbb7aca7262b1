// A file read: its MAC judged, its two containers opened, their bags taken.
#include <zacert.h>

#include "asn1/za_asn2_reader.hpp"
#include "crypto/za_crypt_pkcs12.hpp"
#include "names/za_low_oid_catalogue.hpp"
#include "pkcs12/za_pkcs12_pfx.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs12_pfx", za::kLongStyle};

}  // namespace

namespace za::pkcs12 {
namespace {

struct MacDigest {
    Bytes oid;
    uint32_t number;
};

constexpr std::array kMacDigests{
    MacDigest{oid::kMd2, 3},
    MacDigest{oid::kMd5, 5},
    MacDigest{oid::kSha1, 7},
};

// 0: a digest for which there is no key derivation.
uint32_t number_of_digest(Bytes oid) {
    for (const MacDigest &digest : kMacDigests) {
        if (equal(digest.oid, oid)) {
            return digest.number;
        }
    }
    return 0;
}

// The key has 20 octets whatever the digest is; those who write files with MD5 use 16, and theirs
// do not match.
Status judge_mac(DataSafe &safe, Bytes password, Verdict &out) {
    constexpr uint32_t kMacKeyOctets = 20;
    if (!safe.has_mac) {
        return Status::ok;
    }
    const Parameter &parameter = safe.mac_data.parameter;
    const crypto::Derivation from{number_of_digest(safe.mac_data.digest.bytes()), password,
                                  parameter.salt.bytes(), parameter.iterations};
    Wiped<std::array<uint8_t, kMacKeyOctets>> key;
    ZA_PASS(
        ZA_BODY(ZA_PKCS12_GenRandomFromPassword, crypto::derive(from, crypto::kForMac, key.value)));
    const ZA_HMAC_RECORD record{static_cast<int32_t>(from.digest), key.value.data(), kMacKeyOctets};
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetAuthSafeOfDataType_ParseMacFunc,
                    install_record(trace, safe.parse_mac, ZA_HMACFunc_Ref, record)));
    return ZA_CALL(ZA_PKCS12_GetAuthSafeOfDataType_MACVerifyResult, verify_mac(safe, out));
}

ZA_PBE_RECORD pbe_record(Bytes algorithm, Bytes password, const Parameter &parameter) {
    const Bytes salt = parameter.salt.bytes();
    return {
        algorithm.data(), to_u32(algorithm.size()), password.data(),     to_u32(password.size()),
        salt.data(),      to_u32(salt.size()),      parameter.iterations};
}

Status open_data(Bytes content_info, Secret &out) {
    DataContent container;
    ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeContentInfoOfDataType, decode(content_info, container)));
    out = std::move(container.safe_contents);
    return Status::ok;
}

Status open_encrypted(Bytes content_info, Bytes password, Secret &out) {
    EncryptedContent container;
    Parameter parameter;
    ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeContentInfoOfEncryptedType, decode(content_info, container)));
    ZA_PASS(ZA_CALL(ZA_PKCS12_GetContentInfoOfEncryptedType_DesParameter,
                    split_parameter(container.parameter.bytes(), parameter)));
    const ZA_PBE_RECORD record = pbe_record(container.algorithm.bytes(), password, parameter);
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetContentInfoOfEncryptedType_DecContentFunc,
                    install_record(trace, container.decrypt, ZA_DecryptFunc_Ref, record)));
    return ZA_CALL(ZA_PKCS12_GetContentInfoOfEncryptedType_SafeContent,
                   open_content(container, out));
}

// The key in place of one that was found before. What stands beside it is kept of one in the second
// container alone, where other programs have it.
Status take_key(const SafeBag &bag, Bytes password, bool with_attributes, Pfx &out) {
    Secret der;
    KeyBag key;
    ZA_PASS(decrypt_key(bag.content.bytes(), password, der));
    ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeKeyBag, decode(der.bytes(), key)));
    out.key = std::move(key.key);
    if (!with_attributes) {
        return Status::ok;
    }
    for (const Attribute &attribute : key.attributes) {
        ZA_PASS(ZA_CALL(ZA_PKCS12_SetPrivateKey_Attribute,
                        add_attribute(trace, out.key_attributes, attribute.type.bytes(),
                                      attribute.values.bytes())));
    }
    for (const Attribute &attribute : bag.attributes) {
        ZA_PASS(ZA_CALL(ZA_PKCS12_SetPrivateKeyBag_Attribute,
                        add_attribute(trace, out.key_bag_attributes, attribute.type.bytes(),
                                      attribute.values.bytes())));
    }
    return Status::ok;
}

// The attributes go to the certificate with the number of the bag.
Status take_certificate(const SafeBag &bag, uint32_t number, Pfx &out) {
    ValueBag certificate;
    ZA_PASS(ZA_CALL(ZA_PKCS12_ParseCertBag, decode(bag.content.bytes(), certificate)));
    ZA_PASS(ZA_CALL(ZA_PKCS12_SetCertificate, add_certificate(out, certificate.value.bytes())));
    for (const Attribute &attribute : bag.attributes) {
        ZA_PASS(ZA_CALL(ZA_PKCS12_SetCertificateBag_Attribute,
                        add_certificate_attribute(out, attribute.type.bytes(),
                                                  attribute.values.bytes(), number)));
    }
    return Status::ok;
}

// Bags of other types are passed over.
Status take_bags(Bytes safe_contents, Bytes password, bool with_attributes, Pfx &out) {
    SafeContents contents;
    uint32_t number = 0;
    ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeSafeContents, decode(safe_contents, contents)));
    for (const Secret &der : contents.bags) {
        SafeBag bag;
        ++number;
        ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeSafeBag, decode(der.bytes(), bag)));
        if (equal(bag.type.bytes(), oid::kCertBag)) {
            ZA_PASS(take_certificate(bag, number, out));
        } else if (equal(bag.type.bytes(), oid::kPkcs8ShroudedKeyBag)) {
            ZA_PASS(take_key(bag, password, with_attributes, out));
        }
    }
    return Status::ok;
}

void append(Pfx &&from, Pfx &to) {
    if (!from.key.bytes().empty()) {
        to.key = std::move(from.key);
    }
    to.key_attributes.splice(std::move(from.key_attributes));
    to.key_bag_attributes.splice(std::move(from.key_bag_attributes));
    to.certificates.splice(std::move(from.certificates));
    to.unwritten.splice(std::move(from.unwritten));
}

}  // namespace

Status split_enc_key_bag(Bytes in, EncKeyBag &bag, Parameter &parameter) {
    ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeEncKeyBag, decode(in, bag)));
    const Bytes der = bag.parameter.bytes();
    const Status split = ZA_CALL(ZA_PKCS12_DecodeParameter, split_parameter(der, parameter));
    return split == Status::ok || split == Status::memory ? split : trace.fail(Status::general);
}

Status decrypt_key(Bytes enc_key_bag, Bytes password, Secret &out) {
    EncKeyBag bag;
    Parameter parameter;
    Secret plain;
    ZA_PASS(ZA_CALL(ZA_PKCS12_DealWithEncKeyBag, split_enc_key_bag(enc_key_bag, bag, parameter)));
    const ZA_PBE_RECORD with = pbe_record(bag.algorithm.bytes(), password, parameter);
    const Bytes cipher = bag.encrypted_key.bytes();
    uint32_t len = 0;
    ZA_PASS(plain.value.allocate(cipher.size()));
    ZA_PASS(ZA_BODY(
        ZA_PKCS12_PbeWithDigestAlgoAndDecrypt,
        crypto::pbe_decrypt(with, cipher.data(), to_u32(cipher.size()), plain.value.data(), &len)));
    plain.value.truncate(len);
    out = std::move(plain);
    return Status::ok;
}

Status open_container(Bytes content_info, Bytes password, Secret &out) {
    Secret kept;
    pkcs7::ContentInfo info;
    ZA_PASS(pkcs7::take_der(trace, content_info, kept.value));
    ZA_PASS(
        ZA_BODY(ZI_MakeSequenceToContent, read_content_info(asn1::Element(kept.bytes()), info)));
    return equal(info.type, oid::kData) ? open_data(content_info, out)
                                        : open_encrypted(content_info, password, out);
}

// Of any number of containers the first two are read.
Status decode_pfx(Bytes in, Bytes password, Pfx &out, Verdict &verdict) {
    constexpr uint32_t kContainers = 2;
    DataSafe safe;
    Pfx fresh;
    verdict = Verdict::mismatch;
    ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeAuthSafeOfDataType, decode(in, safe)));
    ZA_PASS(judge_mac(safe, password, verdict));
    for (uint32_t number = 1; number <= kContainers; ++number) {
        const Secret *container = safe.content_infos.item(number);
        Secret contents;
        if (container != nullptr) {
            ZA_PASS(open_container(container->bytes(), password, contents));
            ZA_PASS(take_bags(contents.bytes(), password, number == kContainers, fresh));
        }
    }
    append(std::move(fresh), out);
    return Status::ok;
}

}  // namespace za::pkcs12
