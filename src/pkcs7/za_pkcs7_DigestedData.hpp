// DigestedData ::= SEQUENCE { version INTEGER, digestAlgorithm, contentInfo ContentInfo,
//     digest OCTET STRING }
#pragma once

#include "pkcs7/za_pkcs7_callback.hpp"
#include "pkcs7/za_pkcs7_part.hpp"
#include "runtime/attribute_table.hpp"

namespace za::pkcs7 {

// What a comparison of digests came to.
constexpr uint32_t kNotCompared = 100;
constexpr uint32_t kDigestsEqual = 200;
constexpr uint32_t kDigestsDiffer = 300;

struct DigestedFields {
    Octets kept;
    uint32_t version = 0;
    Field algorithm;
    Field content_type;
    Field content;
    Field digest;  // received, or of the encoding that is kept
    uint32_t result = kNotCompared;

    KeptEncoding encoded;

    // A field is set: what was made of the old one goes.
    void changed() {
        encoded.forget();
        digest = Field();
    }
};

struct DigestedData {
    DigestedFields fields;
    CryptSlot hash;
};

const AttributeTable<DigestedData> &digested_attributes();

}  // namespace za::pkcs7
