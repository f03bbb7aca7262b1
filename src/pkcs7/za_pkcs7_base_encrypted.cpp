// Encrypted content between its fields and DER, and the ways into it and out of it.
#include "pkcs7/za_pkcs7_base_encrypted.hpp"

#include <zacert.h>

#include "names/za_low_algorithm.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_base", {za::pkcs7::kArrow}};

}  // namespace

namespace za::pkcs7 {

void EncryptedFields::forget_opened_content() {
    if (content_opened) {
        content = Secret();
        content_opened = false;
    }
}

namespace {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

constexpr uint8_t kEncryptedContent = 0x80;
constexpr uint8_t kEncryptedContentInPieces = kEncryptedContent | asn1::kConstructed;

// What stands in [0], which is left out where it is empty: content that no function encrypts is
// never written. `made` keeps what the function of the part makes.
Status encrypted_content_of(const EncryptedContentInfo &info, Secret &made, Bytes &out) {
    const Bytes content = info.fields.content.bytes();
    if (content.empty() || !info.encrypt.installed()) {
        out = info.fields.encrypted_content.bytes();
        return Status::ok;
    }
    ZA_TRY_AS("------>func", run(trace, info.encrypt, content, content.size() + kCipherMayAdd,
                                 Status::crypt, made));
    out = made.bytes();
    return Status::ok;
}

void write_fields(const EncryptedFields &fields, Bytes encrypted, Builder &out) {
    const auto content = [&] {
        // contentType OBJECT IDENTIFIER
        out.object_id(fields.content_type.bytes());
        // contentEncryptionAlgorithm AlgorithmIdentifier
        names::write_algorithm_or_null(fields.algorithm.bytes(), fields.parameter.bytes(), out);
        // encryptedContent [0] IMPLICIT OCTET STRING OPTIONAL
        if (!encrypted.empty()) {
            out.element(kEncryptedContent, encrypted);
        }
    };
    constexpr size_t kHeaders = 64;
    out.reserve(fields.content_type.bytes().size() + fields.algorithm.bytes().size() +
                fields.parameter.bytes().size() + encrypted.size() + kHeaders);
    out.sequence(content, encrypted.size());
}

Status encode(EncryptedContentInfo &info, Bytes &out) {
    EncryptedFields &fields = info.fields;
    if (fields.encoded.empty()) {
        if (fields.content_type.empty() || fields.algorithm.empty()) {
            return trace.fail(Status::general);
        }
        Secret made;
        Bytes encrypted;
        Builder built;
        Octets der;
        ZA_PASS(encrypted_content_of(info, made, encrypted));
        write_fields(fields, encrypted, built);
        ZA_PASS(built.finish(der));
        fields.encoded.made(std::move(der));
    }
    out = fields.encoded.bytes();
    return Status::ok;
}

// contentType OBJECT IDENTIFIER
Status read_type(Children &fields, Field &out) {
    Element type;
    Bytes oid;
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_OBJECTID, type));
    ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(type, oid));
    out.refer(oid);
    return Status::ok;
}

Status read_fields(const Element &in, EncryptedFields &out) {
    Children fields;
    Element encrypted;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    ZA_PASS(read_type(fields, out.content_type));
    // contentEncryptionAlgorithm AlgorithmIdentifier
    ZA_PASS(take_algorithm(trace, fields, out.algorithm, &out.parameter));
    // encryptedContent [0] IMPLICIT OCTET STRING OPTIONAL, in one piece or in several
    if (take_optional(fields, kEncryptedContent, encrypted) ||
        take_optional(fields, kEncryptedContentInPieces, encrypted)) {
        ZA_PASS(read_octets(trace, encrypted, out.encrypted_content));
    }
    return fields.empty() ? Status::ok : trace.fail(Status::type);
}

Status decode(const Element &in, EncryptedContentInfo &info) {
    EncryptedFields fresh;
    ZA_PASS(read_fields(in, fresh));
    fresh.encoded.decoded(in.octets);
    info.fields = std::move(fresh);
    return Status::ok;
}

}  // namespace

Status give_plaintext(EncryptedContentInfo &info, Bytes type, Bytes content) {
    EncryptedFields &fields = info.fields;
    const bool new_type = !type.empty() && !equal(type, fields.content_type.bytes());
    const bool new_content = !content.empty() && !equal(content, fields.content.bytes());
    Secret fresh;
    ZA_PASS(fresh.assign(new_content ? content : Bytes()));
    if (new_type) {
        ZA_PASS(fields.content_type.assign(type));
    }
    if (new_content) {
        fields.content = std::move(fresh);
        fields.content_opened = false;
    }
    if (new_type || (new_content && info.encrypt.installed())) {
        fields.encoded.forget();
    }
    return Status::ok;
}

Status encode_encrypted_content(EncryptedContentInfo &info, Bytes &out) {
    return trace.announced([&] { return encode(info, out); }, "ZA_PKCS7_EncodeEncryptedContent");
}

Status decode_encrypted_content(const asn1::Element &in, EncryptedContentInfo &info) {
    return trace.announced([&] { return decode(in, info); }, "ZA_PKCS7_DecodeEncryptedContent");
}

Status decrypt_content(EncryptedContentInfo &info, Bytes &out) {
    EncryptedFields &fields = info.fields;
    if (!fields.content_opened) {
        const Bytes in = fields.encrypted_content.bytes();
        if (in.empty() || !info.decrypt.installed()) {
            return trace.fail(Status::invalid_item);
        }
        Secret content;
        ZA_TRY_AS("------>func",
                  run(trace, info.decrypt, in, in.size() + kCipherMayAdd, Status::crypt, content));
        fields.content = std::move(content);
        fields.content_opened = true;
        fields.encoded.forget_made();
    }
    out = fields.content.bytes();
    return Status::ok;
}

}  // namespace za::pkcs7

using za::Bytes;
using za::Octets;
using za::Status;
using za::pkcs7::EncryptedContentInfo;

uint32_t ZA_PKCS7_EncodeEncryptedContent(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        Bytes der;
        ZA_PASS(za::pkcs7::encode(*static_cast<EncryptedContentInfo *>(ctx), der));
        za::hand_out(der, out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_DecodeEncryptedContent(void *ctx, const uint8_t *der, uint32_t derLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, der));
        auto &info = *static_cast<EncryptedContentInfo *>(ctx);
        Octets kept;
        ZA_PASS(za::pkcs7::take_der(trace, {der, derLen}, kept));
        ZA_PASS(za::pkcs7::decode(za::asn1::Element(kept.bytes()), info));
        info.fields.kept = std::move(kept);
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_GetEncryptedContentInformation(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        Bytes content;
        ZA_PASS(za::pkcs7::decrypt_content(*static_cast<EncryptedContentInfo *>(ctx), content));
        za::hand_out(content, out, outLen);
        return Status::ok;
    });
}
