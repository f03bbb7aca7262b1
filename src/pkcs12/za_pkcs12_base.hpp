// Bags, and what they stand in.
//
//   PrivateKeyInfo ::= SEQUENCE { version INTEGER, privateKeyAlgorithm AlgorithmIdentifier,
//       privateKey OCTET STRING, attributes [0] IMPLICIT SET OF Attribute OPTIONAL }
//   EncryptedPrivateKeyInfo ::= SEQUENCE { encryptionAlgorithm AlgorithmIdentifier,
//       encryptedData OCTET STRING }
//   CertBag, CRLBag, SecretBag ::= SEQUENCE { type OBJECT IDENTIFIER,
//       value [0] EXPLICIT OCTET STRING }
//   SafeBag ::= SEQUENCE { bagId OBJECT IDENTIFIER, bagValue [0] EXPLICIT ANY,
//       bagAttributes SET OF Attribute OPTIONAL }
//   SafeContents ::= SEQUENCE OF SafeBag
#pragma once

#include "pkcs12/za_pkcs12_part.hpp"

namespace za::pkcs12 {

struct KeyBag {
    uint32_t version = 0;
    Secret algorithm;
    Secret key;
    Attributes attributes;
};

struct EncKeyBag {
    Secret algorithm;
    Secret parameter;  // DER
    Secret encrypted_key;
};

// The form that certificates, lists and secrets share.
struct ValueBag {
    Secret type;
    Secret value;
};

struct SafeBag {
    Secret type;
    Secret content;  // DER
    Attributes attributes;
};

struct SafeContents {
    List<Secret> bags;  // DER of each
};

Status encode(const KeyBag &bag, Octets &out);
Status encode(const EncKeyBag &bag, Octets &out);
Status encode(const ValueBag &bag, Octets &out);
Status encode(const SafeBag &bag, Octets &out);
Status encode(const SafeContents &contents, Octets &out);

// What the structure held before is replaced; it stays when the octets are bad. All take indefinite
// lengths, because the OCTET STRINGs of a file may hold such although the file itself does not.
Status decode(Bytes in, KeyBag &out);
Status decode(Bytes in, EncKeyBag &out);
Status decode(Bytes in, ValueBag &out);
Status decode(Bytes in, SafeBag &out);
Status decode(Bytes in, SafeContents &out);

}  // namespace za::pkcs12
