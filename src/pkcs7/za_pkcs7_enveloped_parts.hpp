// What envelopedData and signedAndEnvelopedData have in common: recipients, the key they share, and
// the encrypted content.
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "pkcs7/za_pkcs7_base_recipient.hpp"
#include "pkcs7/za_pkcs7_encrypted_part.hpp"

namespace za::pkcs7 {

struct EnvelopedParts {
    Attached<RecipientInfo> recipients;
    EncryptedPart encrypted;
    Secret key;
};

// The line of a message without content or encrypted part.
constexpr const char *kNoContent = " The ctx's some item is null";

// recipientInfos SET OF RecipientInfo, each given the key
Status write_recipients(const TraceSource &trace, EnvelopedParts &parts, asn1::Builder &out);

// Views of `in`, into parts that have none yet; `missing` is the line of an empty SET.
Status read_recipients(const TraceSource &trace, const asn1::Element &in, const char *missing,
                       EnvelopedParts &out);

}  // namespace za::pkcs7
