// EncryptedData ::= SEQUENCE { version INTEGER, encryptedContentInfo EncryptedContentInfo }
#pragma once

#include "pkcs7/za_pkcs7_encrypted_part.hpp"

namespace za::pkcs7 {

struct EncryptedData {
    Octets kept;
    bool has_version = false;
    uint32_t version = 0;
    EncryptedPart part;
};

// ZA_PKCS7_EncodePKCS7EncryptedData
Status encode_encrypted_data(EncryptedData &data, Octets &out);

// ZA_PKCS7_DecodePKCS7EncryptedData
Status decode_encrypted_data(Bytes in, EncryptedData &data);

const AttributeTable<EncryptedData> &encrypted_data_attributes();

}  // namespace za::pkcs7
