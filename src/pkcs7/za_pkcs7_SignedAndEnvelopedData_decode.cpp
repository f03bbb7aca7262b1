// From DER to signedAndEnvelopedData.
#include <zacert.h>

#include "names/za_low_oid_catalogue.hpp"
#include "pkcs7/za_pkcs7_SignedAndEnvelopedData.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"
#include "runtime/trace.hpp"

#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_SignedAndEnvelopedData",
                                {za::pkcs7::kArrow, za::Status::length}};

}  // namespace

namespace za::pkcs7 {
namespace {

using asn1::Children;
using asn1::Element;

constexpr const char *kNoRecipients = "------>Recipient information is null";

Status read_message(const Element &in, SignedAndEnvelopedData &out) {
    Children fields;
    Element field;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    // version INTEGER
    ZA_PASS(take_version(trace, fields, out.version));
    out.has_version = true;
    // recipientInfos SET OF RecipientInfo
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SET, field, kNoRecipients));
    ZA_PASS(read_recipients(trace, field, kNoRecipients, out.enveloped));
    // digestAlgorithms SET OF AlgorithmIdentifier
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SET, field, "------>digest Infomation is null"));
    ZA_PASS(read_digest_algorithms(trace, field, out.parts));
    // encryptedContentInfo
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, field,
                       "------>EncryptedContent information is null"));
    ZA_PASS(read_encrypted_content(trace, field, out.enveloped.encrypted));
    // Who writes the element of certificates writes one in it.
    return read_from_certificates(trace, fields, "------>certificates is null", out.parts);
}

}  // namespace

Status decode_signed_and_enveloped(Bytes in, SignedAndEnvelopedData &out) {
    SignedAndEnvelopedData fresh;
    Element content;
    ZA_PASS(open_message(trace, in, oid::kSignedAndEnvelopedData, fresh.kept, content));
    ZA_PASS(read_message(content, fresh));
    out = std::move(fresh);
    return Status::ok;
}

}  // namespace za::pkcs7

uint32_t ZA_PKCS7_DecodeSignedAndEnvelopedData(void *ctx, const uint8_t *der, uint32_t derLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, der));
        return za::pkcs7::decode_signed_and_enveloped(
            {der, derLen}, *static_cast<za::pkcs7::SignedAndEnvelopedData *>(ctx));
    });
}
