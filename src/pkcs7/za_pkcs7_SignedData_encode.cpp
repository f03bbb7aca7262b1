// From signedData to DER.
#include <zacert.h>

#include "names/za_low_oid_catalogue.hpp"
#include "pkcs7/za_pkcs7_SignedData.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_SignedData",
                                {za::pkcs7::kArrow, za::Status::length}};

}  // namespace

namespace za::pkcs7 {
namespace {

Status check(const SignedData &message) {
    if (!message.has_version) {
        return trace.fail(Status::invalid_item, "------>ZAsn1_versionNull");
    }
    if (!message.has_content_info) {
        return trace.fail(Status::invalid_item, "------>ZAsn1_contentInfoNull");
    }
    if (message.content_type.empty()) {
        return trace.fail(Status::invalid_item, "------>ZAsn1_contentInfoTypeNull");
    }
    return Status::ok;
}

// Gives each signer what it signs and encodes it. With content that comes as an argument the signers
// keep the content they have.
Status encode_signers(const SignedData &message, const Bytes *put) {
    for (SignerInfo *signer : message.parts.signers) {
        Bytes encoded;
        const Bytes content =
            put == nullptr ? message.content.bytes() : signer->fields.content.bytes();
        ZA_TRY(ZA_PKCS7_SetSignerInfoAttributeChar,
               give_content(*signer, message.content_type.bytes(), content));
        ZA_TRY(ZA_PKCS7_EncodeSignerInfo, put == nullptr
                                              ? encode_signer_info(*signer, encoded)
                                              : encode_signer_info_put(*signer, *put, encoded));
    }
    return Status::ok;
}

void write_signed_data(const SignedData &message, size_t expected, asn1::Builder &out) {
    const auto fields = [&] {
        out.integer(message.version);
        write_digest_algorithms(message.parts, out);
        write_inner_content(message.content_type.bytes(), message.content.bytes(), out);
        write_certificates(message.parts, out);
        write_crls(message.parts, out);
        write_signers(message.parts, out);
    };
    out.sequence(fields, expected);
}

}  // namespace

Status encode_signed_data(const SignedData &message, const Bytes *put, asn1::Builder &out) {
    // version, the headers of contentInfo and those around all
    constexpr size_t kAround = 64;
    ZA_PASS(check(message));
    // The signers first, so that the size of everything is known when the first octet is written.
    ZA_PASS(encode_signers(message, put));
    const size_t expected = written_size(message.parts) + message.content_type.bytes().size() +
                            message.content.bytes().size();
    out.reserve(expected + kAround);
    return write_content_info(
        oid::kSignedData, out,
        [&] {
            write_signed_data(message, expected, out);
            return out.status();
        },
        expected);
}

}  // namespace za::pkcs7

using za::Bytes;
using za::Octets;
using za::Status;
using za::pkcs7::SignedData;

namespace {

Status encode(void *ctx, const Bytes *put, uint8_t *out, uint32_t *out_len) {
    ZA_PASS(trace.need(ctx, out_len));
    za::asn1::Builder built;
    Octets der;
    ZA_PASS(encode_signed_data(*static_cast<const SignedData *>(ctx), put, built));
    ZA_TRY(ZI_MakeContentToSequence, built.finish(der));
    za::hand_out(der.bytes(), out, out_len);
    return Status::ok;
}

}  // namespace

uint32_t ZA_PKCS7_EncodePKCS7SignedData(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] { return encode(ctx, nullptr, out, outLen); });
}

uint32_t ZA_PKCS7_EncodePKCS7SignedDataPutData(void *ctx, const uint8_t *content,
                                               uint32_t contentLen, uint8_t *out,
                                               uint32_t *outLen) {
    const auto put = [&] {
        Bytes octets;
        ZA_PASS(za::pkcs7::view_content(content, contentLen, octets));
        return encode(ctx, &octets, out, outLen);
    };
    // Those who read traces know both forms of this function by one name.
    return trace.exported(put, "ZA_PKCS7_EncodePKCS7SignedData");
}
