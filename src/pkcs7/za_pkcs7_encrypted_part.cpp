#include "pkcs7/za_pkcs7_encrypted_part.hpp"

#include <zacert.h>

#include <utility>

namespace za::pkcs7 {

// The part before goes with the list it is swapped into.
Status EncryptedPart::attach(const TraceSource &trace, EncryptedContentInfo *part) {
    Attached<EncryptedContentInfo> fresh;
    ZA_PASS(fresh.attach(trace, part));
    info = std::move(fresh);
    return Status::ok;
}

Bytes EncryptedPart::shown_content() const {
    const EncryptedContentInfo *part = get();
    const bool ciphertext = decoded && content.bytes().empty() && part != nullptr;
    return ciphertext ? part->fields.encrypted_content.bytes() : content.bytes();
}

Status write_encrypted_content(const TraceSource &trace, EncryptedPart &part, const char *missing,
                               asn1::Builder &out) {
    constexpr size_t kHeaders = 64;
    const Bytes content = part.content.bytes();
    EncryptedContentInfo *info = part.get();
    if (info == nullptr || (content.empty() && !part.decoded)) {
        return trace.fail(Status::invalid_item, missing);
    }
    Bytes der;
    ZA_TRY(ZA_PKCS7_SetEncryptedContentAttributeChar,
           give_plaintext(*info, part.content_type.bytes(), content));
    ZA_TRY(ZA_PKCS7_EncodeEncryptedContent, encode_encrypted_content(*info, der));
    // With room for the headers around it, a large content is not copied again.
    out.reserve(out.size() + der.size() + kHeaders);
    out.raw(der);
    return Status::ok;
}

Status read_encrypted_content(const TraceSource &trace, const asn1::Element &in,
                              EncryptedPart &out) {
    EncryptedContentInfo *info = nullptr;
    ZA_PASS(out.info.add(trace, info));
    ZA_TRY(ZA_PKCS7_DecodeEncryptedContent, decode_encrypted_content(in, *info));
    out.content_type.refer(info->fields.content_type.bytes());
    out.decoded = true;
    return Status::ok;
}

}  // namespace za::pkcs7
