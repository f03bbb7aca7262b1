// EnvelopedData between its context and DER.
#include "pkcs7/za_pkcs7_EnvelopedData.hpp"

#include <zacert.h>

#include "names/za_low_oid_catalogue.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"

#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_EnvelopedData",
                                {za::pkcs7::kArrow, za::Status::length}};

}  // namespace

namespace za::pkcs7 {
namespace {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

Status write_fields(EnvelopedData &message, Builder &out) {
    // version INTEGER
    out.integer(message.version);
    // recipientInfos SET OF RecipientInfo
    ZA_PASS(write_recipients(trace, message.parts, out));
    // encryptedContentInfo
    return write_encrypted_content(trace, message.parts.encrypted, kNoContent, out);
}

}  // namespace

Status encode_enveloped_data(EnvelopedData &message, Octets &out) {
    if (!message.has_version) {
        return trace.fail(Status::invalid_item, "------>Signer_version");
    }
    Builder built;
    const auto fields = [&] { return write_fields(message, built); };
    const size_t expected = message.parts.encrypted.shown_content().size() + kMostWrapping;
    const auto content = [&] { return built.sequence(fields, expected); };
    ZA_PASS(write_content_info(oid::kEnvelopedData, built, content, expected));
    ZA_TRY_AS("------>ZI_WriteSequence", built.status());
    ZA_TRY(ZI_MakeContentToSequence, built.finish(out));
    return Status::ok;
}

namespace {

// recipientInfos SET OF RecipientInfo; what CMS may put before them has a context tag.
Status read_all_recipients(Children &fields, EnvelopedParts &out) {
    constexpr const char *kMissing = "------>Recipient Infos is null";
    Element recipients;
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SET, recipients, kMissing));
    return read_recipients(trace, recipients, kMissing, out);
}

// encryptedContentInfo EncryptedContentInfo
Status read_content(Children &fields, EnvelopedParts &out) {
    Element content;
    ZA_PASS(
        take_field(trace, fields, ZA_DER_ID_SEQUENCE, content, "------>digest Infomation is null"));
    return read_encrypted_content(trace, content, out.encrypted);
}

// The attributes that CMS may put at the end are nobody's who decrypts.
Status read_fields(const Element &in, EnvelopedData &out) {
    constexpr uint8_t kUnprotectedAttributes = 0xA1;
    Children fields;
    Element ignored;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    ZA_PASS(take_version(trace, fields, out.version));
    out.has_version = true;
    ZA_PASS(read_all_recipients(fields, out.parts));
    ZA_PASS(read_content(fields, out.parts));
    take_optional(fields, kUnprotectedAttributes, ignored);
    return fields.empty() ? Status::ok : trace.fail(Status::type);
}

}  // namespace

Status decode_enveloped_data(Bytes in, EnvelopedData &message) {
    EnvelopedData fresh;
    Element content;
    ZA_PASS(open_message(trace, in, oid::kEnvelopedData, fresh.kept, content));
    ZA_PASS(read_fields(content, fresh));
    message = std::move(fresh);
    return Status::ok;
}

namespace {

// The body of the encoder: a missing context has a line of its own.
Status encode_for_caller(void *context, uint8_t *out, uint32_t *out_len) {
    if (context == nullptr) {
        return trace.fail(Status::length, "------> ZA_PKCS7_EncodePKCS7EnvelopedData NULL");
    }
    ZA_PASS(trace.need(out_len));
    Octets der;
    ZA_PASS(encode_enveloped_data(*static_cast<EnvelopedData *>(context), der));
    hand_out(der.bytes(), out, out_len);
    return Status::ok;
}

}  // namespace
}  // namespace za::pkcs7

using za::Status;
using za::pkcs7::EnvelopedData;

uint32_t ZA_PKCS7_EncodePKCS7EnvelopedData(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.unannounced([&] {
        return trace.announced([&] { return za::pkcs7::encode_for_caller(ctx, out, outLen); },
                               "ZA_PKCS7_EncodePKCS7EnvelopedData", __builtin_LINE(), "=======>");
    });
}

uint32_t ZA_PKCS7_DecodePKCS7EnvelopedData(void *ctx, const uint8_t *der, uint32_t derLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, der));
        return za::pkcs7::decode_enveloped_data({der, derLen}, *static_cast<EnvelopedData *>(ctx));
    });
}
