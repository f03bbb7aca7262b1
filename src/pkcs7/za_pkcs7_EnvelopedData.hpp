// EnvelopedData ::= SEQUENCE { version INTEGER, recipientInfos SET OF RecipientInfo,
//     encryptedContentInfo }
#pragma once

#include "pkcs7/za_pkcs7_enveloped_parts.hpp"

namespace za::pkcs7 {

struct EnvelopedData {
    Octets kept;  // what it was decoded from
    bool has_version = false;
    uint32_t version = 0;
    EnvelopedParts parts;
};

const AttributeTable<EnvelopedData> &enveloped_attributes();

}  // namespace za::pkcs7
