// The encrypted content of a message: the part, and what the message gives it before it is written.
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "asn1/za_asn2_reader.hpp"
#include "pkcs7/za_pkcs7_base_encrypted.hpp"

namespace za::pkcs7 {

struct EncryptedPart {
    Attached<EncryptedContentInfo> info;  // one, or none
    Field content_type;
    Secret content;  // what is to be encrypted; a decoded message has none until it is set
    bool decoded = false;

    EncryptedContentInfo *get() const { return info.item(1); }

    // Takes over a part in place of the one before. 121: it belongs to a message already.
    Status attach(const TraceSource &trace, EncryptedContentInfo *part);

    // What the message tells as its content: of a decoded one the encrypted content.
    Bytes shown_content() const;
};

// encryptedContentInfo, given content and its type; `missing` is the line where the message lacks
// content or the part (121).
Status write_encrypted_content(const TraceSource &trace, EncryptedPart &part, const char *missing,
                               asn1::Builder &out);

// Views of `in`, into a part that has none yet.
Status read_encrypted_content(const TraceSource &trace, const asn1::Element &in,
                              EncryptedPart &out);

}  // namespace za::pkcs7
