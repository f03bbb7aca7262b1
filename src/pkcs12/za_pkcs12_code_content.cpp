// ContentInfo of three types around a SafeContents.
#include <zacert.h>

#include "names/za_low_oid_catalogue.hpp"
#include "pkcs12/za_pkcs12_code.hpp"
#include "pkcs12/za_pkcs12_der.hpp"
#include "pkcs7/za_pkcs7_Data.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs12_code", za::kLongStyle};

}  // namespace

namespace za::pkcs12 {

using pkcs7::EncryptedPart;

namespace {

// The part that encrypts, made anew each time: it would keep what it encrypted before.
template <class Content>
Status prepare(const Content &content, const CryptSlot &encrypt, EncryptedPart &out) {
    EncryptedPart fresh;
    pkcs7::EncryptedContentInfo *info = nullptr;
    ZA_PASS(need_octets(trace, content.safe_contents, content.algorithm));
    if (!encrypt.installed()) {
        return trace.fail(Status::invalid_item);
    }
    ZA_PASS(fresh.info.add(trace, info));
    ZA_PASS(info->fields.algorithm.assign(content.algorithm.bytes()));
    ZA_PASS(info->fields.parameter.assign(content.parameter.bytes()));
    ZA_PASS(info->encrypt.copy(encrypt));
    fresh.content_type.refer(oid::kData);
    ZA_PASS(fresh.content.assign(content.safe_contents.bytes()));
    out = std::move(fresh);
    return Status::ok;
}

template <class Content>
Status receive(const EncryptedPart &part, Content &out) {
    const pkcs7::EncryptedFields &fields = part.get()->fields;
    Secret algorithm;
    Secret parameter;
    Secret encrypted;
    ZA_PASS(algorithm.assign(fields.algorithm.bytes()));
    ZA_PASS(parameter.assign(fields.parameter.bytes()));
    ZA_PASS(encrypted.assign(fields.encrypted_content.bytes()));
    out.algorithm = std::move(algorithm);
    out.parameter = std::move(parameter);
    out.encrypted = std::move(encrypted);
    out.safe_contents = Secret();
    return Status::ok;
}

// What was set as it is, and what was received through the function, where there is one.
template <class Content>
Status open(const Content &content, const CryptSlot &decrypt, Secret &out) {
    const Bytes in = content.encrypted.bytes();
    if (in.empty() || !content.safe_contents.bytes().empty()) {
        return out.assign(content.safe_contents.bytes());
    }
    if (!decrypt.installed()) {
        return out.assign(in);
    }
    ZA_TRY_AS("------------>func",
              pkcs7::run(trace, decrypt, in, in.size() + pkcs7::kCipherMayAdd, Status::crypt, out));
    return Status::ok;
}

}  // namespace

Status encode(const DataContent &content, Octets &out) {
    ZA_PASS(need_octets(trace, content.safe_contents));
    return ZA_MESSAGE(ZA_PKCS7_EncodePKCS7Data,
                      pkcs7::encode_data(content.safe_contents.bytes(), out));
}

Status decode(Bytes in, DataContent &out) {
    return ZA_MESSAGE(ZA_PKCS7_DecodePKCS7Data, read_data(trace, in, out.safe_contents));
}

Status encode(const EncryptedContent &content, Octets &out) {
    pkcs7::EncryptedData message;
    message.has_version = true;
    ZA_PASS(prepare(content, content.encrypt, message.part));
    return ZA_MESSAGE(ZA_PKCS7_EncodePKCS7EncryptedData,
                      pkcs7::encode_encrypted_data(message, out));
}

Status decode(Bytes in, EncryptedContent &out) {
    pkcs7::EncryptedData message;
    ZA_PASS(
        ZA_MESSAGE(ZA_PKCS7_DecodePKCS7EncryptedData, pkcs7::decode_encrypted_data(in, message)));
    return receive(message.part, out);
}

Status encode(EnvelopedContent &content, Octets &out) {
    pkcs7::EnvelopedData &message = content.message;
    message.has_version = true;
    ZA_PASS(prepare(content, content.crypt, message.parts.encrypted));
    ZA_PASS(message.parts.key.assign(content.key.bytes()));
    return ZA_MESSAGE(ZA_PKCS7_EncodePKCS7EnvelopedData,
                      pkcs7::encode_enveloped_data(message, out));
}

Status decode(Bytes in, EnvelopedContent &out) {
    pkcs7::EnvelopedData message;
    ZA_PASS(
        ZA_MESSAGE(ZA_PKCS7_DecodePKCS7EnvelopedData, pkcs7::decode_enveloped_data(in, message)));
    return receive(message.parts.encrypted, out);
}

Status open_content(const EncryptedContent &content, Secret &out) {
    return open(content, content.decrypt, out);
}

Status open_content(const EnvelopedContent &content, Secret &out) {
    return open(content, content.crypt, out);
}

}  // namespace za::pkcs12
