// RecipientInfo ::= SEQUENCE { version INTEGER, issuerAndSerialNumber, keyEncryptionAlgorithm,
//     encryptedKey OCTET STRING }
#pragma once

#include "pkcs7/za_pkcs7_callback.hpp"
#include "pkcs7/za_pkcs7_issuer_serial.hpp"
#include "pkcs7/za_pkcs7_part.hpp"
#include "runtime/attribute_table.hpp"

namespace za::pkcs7 {

struct RecipientFields {
    Octets kept;  // what a recipient decoded by itself came in
    uint32_t version = 0;
    IssuerAndSerial who;
    Field algorithm;
    Field parameters;  // as decoded, DER; there is no setter, and NULL stands in for none
    Field encrypted_key;
    Secret key;
    bool key_opened = false;  // the key is what the installed function made of the encrypted one

    KeptEncoding encoded;

    // What a function made goes when the function or its input does.
    void forget_opened_key();
};

struct RecipientInfo {
    bool attached = false;
    RecipientFields fields;
    CryptSlot encrypt;
    CryptSlot decrypt;
};

// The attribute 37 from the message: an empty key changes nothing, and neither does the same one.
Status give_key(RecipientInfo &recipient, Bytes key);

// ZA_PKCS7_EncodeRecipientInfo: the octets stay with the recipient until something in it changes.
Status encode_recipient_info(RecipientInfo &recipient, Bytes &out);

// ZA_PKCS7_DecodeRecipientInfo: views of `in`, octets that live as long as the recipient. Functions
// that are installed stay.
Status decode_recipient_info(const asn1::Element &in, RecipientInfo &recipient);

const AttributeTable<RecipientInfo> &recipient_attributes();

}  // namespace za::pkcs7
