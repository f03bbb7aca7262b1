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

// ZA_PKCS7_EncodePKCS7EnvelopedData
Status encode_enveloped_data(EnvelopedData &message, Octets &out);

// ZA_PKCS7_DecodePKCS7EnvelopedData
Status decode_enveloped_data(Bytes in, EnvelopedData &message);

const AttributeTable<EnvelopedData> &enveloped_attributes();

}  // namespace za::pkcs7
