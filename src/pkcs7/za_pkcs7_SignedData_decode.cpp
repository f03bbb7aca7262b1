// From DER to signedData.
#include <zacert.h>

#include "names/za_low_oid_catalogue.hpp"
#include "pkcs7/za_pkcs7_SignedData.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"
#include "runtime/trace.hpp"

#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_SignedData",
                                {za::pkcs7::kArrow, za::Status::length}};

}  // namespace

namespace za::pkcs7 {
namespace {

using asn1::Children;
using asn1::Element;

// contentInfo ContentInfo, whose content signers need when they are verified.
Status read_content(const Element &in, SignedData &out, bool &has_content) {
    ContentInfo info;
    ZA_TRY(ZI_MakeSequenceToContent, read_content_info(in, info));
    ZA_PASS(read_inner_content(trace, info, out.received_content));
    out.content_type.refer(info.type);
    out.content.refer(out.received_content.bytes());
    out.has_content_info = true;
    has_content = info.has_content;
    return Status::ok;
}

Status read_signed_data(const Element &in, SignedData &out, bool &has_content) {
    Children fields;
    Element field;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    // version INTEGER
    ZA_PASS(take_version(trace, fields, out.version));
    out.has_version = true;
    // digestAlgorithms SET OF AlgorithmIdentifier
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SET, field));
    ZA_PASS(read_digest_algorithms(trace, field, out.parts));
    // contentInfo ContentInfo
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, field));
    ZA_PASS(read_content(field, out, has_content));
    return read_from_certificates(trace, fields, nullptr, out.parts);
}

}  // namespace

Status decode_signed_data(Bytes in, SignedData &out) {
    SignedData fresh;
    Element content;
    ZA_PASS(open_message(trace, in, oid::kSignedData, fresh.kept, content));
    bool has_content = false;
    ZA_PASS(read_signed_data(content, fresh, has_content));
    for (SignerInfo *signer : fresh.parts.signers) {
        refer_content(*signer, fresh.content_type.bytes(), fresh.content.bytes(), has_content);
    }
    out = std::move(fresh);
    return Status::ok;
}

}  // namespace za::pkcs7

uint32_t ZA_PKCS7_DecodeSignedData(void *ctx, const uint8_t *der, uint32_t derLen) {
    const auto decode = [&] {
        ZA_PASS(trace.need(ctx, der));
        const za::Status status = za::pkcs7::decode_signed_data(
            {der, derLen}, *static_cast<za::pkcs7::SignedData *>(ctx));
        return status == za::Status::memory ? trace.fail(status, "------------>ZACERT_MemoryErr")
                                            : status;
    };
    return trace.unannounced([&] {
        return trace.announced(decode, "ZA_PKCS7_DecodeSignedData", __builtin_LINE(), "=========>");
    });
}
