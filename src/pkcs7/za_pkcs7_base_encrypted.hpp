// EncryptedContentInfo ::= SEQUENCE { contentType OBJECT IDENTIFIER, contentEncryptionAlgorithm
//     AlgorithmIdentifier, encryptedContent [0] IMPLICIT OCTET STRING OPTIONAL }
#pragma once

#include "asn1/za_asn2_reader.hpp"
#include "pkcs7/za_pkcs7_callback.hpp"
#include "pkcs7/za_pkcs7_part.hpp"
#include "runtime/attribute_table.hpp"

namespace za::pkcs7 {

struct EncryptedFields {
    Octets kept;  // what was decoded by itself
    Field content_type;
    Field algorithm;
    Field parameter;  // DER
    Field encrypted_content;
    Secret content;
    bool content_opened =
        false;  // the content is what the installed function made of the encrypted

    KeptEncoding encoded;

    // What a function made goes when the function or its input does.
    void forget_opened_content();
};

struct EncryptedContentInfo {
    bool attached = false;
    EncryptedFields fields;
    CryptSlot encrypt;
    CryptSlot decrypt;
};

// The attributes 17 and 21 from the message: empty ones change nothing. What is the same already
// stays, and so does a kept encoding.
Status give_plaintext(EncryptedContentInfo &info, Bytes type, Bytes content);

// ZA_PKCS7_EncodeEncryptedContent: the octets stay with the part until something in it changes.
Status encode_encrypted_content(EncryptedContentInfo &info, Bytes &out);

// ZA_PKCS7_DecodeEncryptedContent: views of `in`, octets that live as long as the part. Functions
// that are installed stay.
Status decode_encrypted_content(const asn1::Element &in, EncryptedContentInfo &info);

// ZA_PKCS7_GetEncryptedContentInformation: decrypts once; the octets stay with the part.
Status decrypt_content(EncryptedContentInfo &info, Bytes &out);

const AttributeTable<EncryptedContentInfo> &encrypted_attributes();

}  // namespace za::pkcs7
