// SignerInfo ::= SEQUENCE { version INTEGER, issuerAndSerialNumber, digestAlgorithm,
//     authenticatedAttributes [0] IMPLICIT Attributes OPTIONAL, digestEncryptionAlgorithm,
//     encryptedDigest OCTET STRING, unauthenticatedAttributes [1] IMPLICIT Attributes OPTIONAL }
#pragma once

#include "pkcs7/za_pkcs7_attribute_list.hpp"
#include "pkcs7/za_pkcs7_callback.hpp"
#include "pkcs7/za_pkcs7_issuer_serial.hpp"
#include "pkcs7/za_pkcs7_part.hpp"
#include "runtime/attribute_table.hpp"

namespace za::pkcs7 {

struct SignerFields {
    Octets kept;  // what a signer decoded by itself came in
    bool has_version = false;
    uint32_t version = 0;
    IssuerAndSerial who;
    Field digest_algorithm;
    Field encryption_algorithm;
    Field content_type;
    Field content;
    bool has_content = false;  // content that was decoded may be empty
    AttributeList attributes;
    AttributeList unauthenticated;
    Field signature;

    KeptEncoding encoded;
    // What the kept encoding signs, where the content came as an argument.
    bool put_content = false;
    size_t put_len = 0;
    Field put_digest;
};

struct SignerInfo {
    bool attached = false;
    SignerFields fields;
    CryptSlot digest;
    CryptSlot crypt;  // signs, or opens a signature
    Slot<ZA_PKCS7_EcVerifyFunc> ec_verify;
};

// The attributes 15 and 16 from the message. What is the same already stays, and so does a kept
// encoding; that of a decoded signer also where the content was not known before.
Status give_content(SignerInfo &signer, Bytes type, Bytes content);

// The same as views of octets that live as long as the signer: for decoded messages, which may have
// empty content or none.
void refer_content(SignerInfo &signer, Bytes type, Bytes content, bool has_content);

// ZA_PKCS7_EncodeSignerInfo, ZA_PKCS7_EncodeSignerInfoPutdata. The octets stay with the signer until
// something in it changes.
Status encode_signer_info(SignerInfo &signer, Bytes &out);
Status encode_signer_info_put(SignerInfo &signer, Bytes content, Bytes &out);

// ZA_PKCS7_DecodeSignerInfo: views of `in`, octets that live as long as the signer. Functions that
// are installed stay.
Status decode_signer_info(const asn1::Element &in, SignerInfo &signer);

const AttributeTable<SignerInfo> &signer_attributes();

// Content as an argument: a length of 0 stands for none. 101: a length that comes with no octets, or
// beyond what the library counts, which must not pass for none.
Status view_content(const uint8_t *content, uint32_t len, Bytes &out);

// The attribute 16; no octets clear it.
Status put_content(SignerInfo &signer, Bytes content);

// What every setter of a value ends with: version 1, and nothing kept.
void mark_set(SignerInfo &signer);

// The installed digest function over `in`. 125: it gave no octets, or claims too many.
Status digest_of(const SignerInfo &signer, Bytes in, Secret &out);

// The authenticated attributes as they are digested: with the tag of a SET.
Status write_attribute_set(const SignerInfo &signer, const Replacement *replacement, Octets &out);

}  // namespace za::pkcs7
