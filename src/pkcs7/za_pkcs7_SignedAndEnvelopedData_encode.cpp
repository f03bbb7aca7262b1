// From signedAndEnvelopedData to DER.
#include <zacert.h>

#include "names/za_low_oid_catalogue.hpp"
#include "pkcs7/za_pkcs7_SignedAndEnvelopedData.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_SignedAndEnvelopedData",
                                {za::pkcs7::kArrow, za::Status::length}};

}  // namespace

namespace za::pkcs7 {
namespace {

Status encode_signers(const SignedParts &parts) {
    for (SignerInfo *signer : parts.signers) {
        Bytes encoded;
        ZA_TRY(ZA_PKCS7_EncodeSignerInfo, encode_signer_info(*signer, encoded));
    }
    return Status::ok;
}

Status write_message(SignedAndEnvelopedData &message, asn1::Builder &out) {
    EnvelopedParts &enveloped = message.enveloped;
    // version INTEGER
    out.integer(message.version);
    // recipientInfos SET OF RecipientInfo
    ZA_PASS(write_recipients(trace, enveloped, out));
    // digestAlgorithms SET OF AlgorithmIdentifier
    write_digest_algorithms(message.parts, out);
    // encryptedContentInfo
    ZA_PASS(write_encrypted_content(trace, enveloped.encrypted, kNoContent, out));
    // certificates [0] IMPLICIT SET OPTIONAL, crls [1] IMPLICIT SET OPTIONAL
    write_certificates(message.parts, out);
    write_crls(message.parts, out);
    // signerInfos SET OF SignerInfo: they sign what is enveloped
    lend_content(message, enveloped.encrypted.content_type.bytes(),
                 enveloped.encrypted.content.bytes());
    ZA_PASS(encode_signers(message.parts));
    write_signers(message.parts, out);
    return out.status();
}

}  // namespace

void lend_content(SignedAndEnvelopedData &message, Bytes type, Bytes content) {
    for (SignerInfo *signer : message.parts.signers) {
        const SignerFields &fields = signer->fields;
        if (fields.encoded.was_decoded()) {
            continue;
        }
        if (!equal(fields.content_type.bytes(), type) || !equal(fields.content.bytes(), content)) {
            mark_set(*signer);
        }
        refer_content(*signer, type, content, !content.empty());
    }
}

Status encode_signed_and_enveloped(SignedAndEnvelopedData &message, asn1::Builder &out) {
    // What one signer or recipient takes as a rule.
    constexpr size_t kPart = 1024;
    const EnvelopedParts &enveloped = message.enveloped;
    if (!message.has_version || enveloped.recipients.empty() || message.parts.signers.empty()) {
        return trace.fail(Status::invalid_item, "------------> The ctx's some item is null");
    }
    const size_t parts = enveloped.recipients.size() + message.parts.signers.size();
    const size_t expected =
        written_size(message.parts) + enveloped.encrypted.content.bytes().size() + parts * kPart;
    out.reserve(expected);
    const auto content = [&] {
        return out.sequence([&] { return write_message(message, out); }, expected);
    };
    return write_content_info(oid::kSignedAndEnvelopedData, out, content, expected);
}

}  // namespace za::pkcs7

using za::Status;
using za::pkcs7::SignedAndEnvelopedData;

uint32_t ZA_PKCS7_EncodeSignedAndEnvelopedData(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        za::asn1::Builder built;
        za::Octets der;
        ZA_PASS(encode_signed_and_enveloped(*static_cast<SignedAndEnvelopedData *>(ctx), built));
        ZA_TRY(ZI_MakeContentToSequence, built.finish(der));
        za::hand_out(der.bytes(), out, outLen);
        return Status::ok;
    });
}
