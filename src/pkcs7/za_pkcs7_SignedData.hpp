// SignedData ::= SEQUENCE { version INTEGER, digestAlgorithms SET, contentInfo ContentInfo,
//     certificates [0] IMPLICIT SET OPTIONAL, crls [1] IMPLICIT SET OPTIONAL, signerInfos SET }
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "pkcs7/za_pkcs7_signed_parts.hpp"
#include "runtime/attribute_table.hpp"

namespace za::pkcs7 {

struct SignedData {
    Octets kept;  // what was decoded
    bool has_version = false;
    uint32_t version = 0;
    bool has_content_info = false;  // content or its type
    Field content_type;
    Field content;
    // Where the content of decoded signers stands: it stays when another content is set.
    Field received_content;
    SignedParts parts;
};

// ZA_PKCS7_EncodePKCS7SignedData; with `put` ZA_PKCS7_EncodePKCS7SignedDataPutData.
Status encode_signed_data(const SignedData &message, const Bytes *put, asn1::Builder &out);

// ZA_PKCS7_DecodeSignedData
Status decode_signed_data(Bytes in, SignedData &out);

using SignedDataAccess = Access<SignedData>;

const AttributeTable<SignedDataAccess> &signed_data_attributes();

}  // namespace za::pkcs7
