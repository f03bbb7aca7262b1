// SignedAndEnvelopedData ::= SEQUENCE { version INTEGER, recipientInfos SET, digestAlgorithms SET,
//     encryptedContentInfo, certificates [0] IMPLICIT SET OPTIONAL, crls [1] IMPLICIT SET OPTIONAL,
//     signerInfos SET }
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "pkcs7/za_pkcs7_enveloped_parts.hpp"
#include "pkcs7/za_pkcs7_signed_parts.hpp"
#include "runtime/attribute_table.hpp"

namespace za::pkcs7 {

struct SignedAndEnvelopedData {
    Octets kept;  // what was decoded
    bool has_version = false;
    uint32_t version = 0;
    EnvelopedParts enveloped;
    SignedParts parts;
};

// Lets the signers read type and content where the message keeps them, or will: a copy with each
// would not be wiped with the content. Signers that were decoded stay as they came.
void lend_content(SignedAndEnvelopedData &message, Bytes type, Bytes content);

// ZA_PKCS7_EncodeSignedAndEnvelopedData
Status encode_signed_and_enveloped(SignedAndEnvelopedData &message, asn1::Builder &out);

// ZA_PKCS7_DecodeSignedAndEnvelopedData
Status decode_signed_and_enveloped(Bytes in, SignedAndEnvelopedData &out);

using SignedAndEnvelopedAccess = Access<SignedAndEnvelopedData>;

const AttributeTable<SignedAndEnvelopedAccess> &signed_and_enveloped_attributes();

}  // namespace za::pkcs7
