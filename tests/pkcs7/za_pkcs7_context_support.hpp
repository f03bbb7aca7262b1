// Contexts of messages without signers, and of their parts, in tests: functions of one shape.
#pragma once

#include "crypto/za_crypt_calls.hpp"
#include "support/rows.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <gtest/gtest.h>

namespace za::test::contexts {

struct Life {
    uint32_t (*create)(void **) = nullptr;
    uint32_t (*destroy)(void *) = nullptr;
};

struct Fields {
    uint32_t (*set)(void *, int32_t, const uint8_t *, uint32_t) = nullptr;
    uint32_t (*get)(void *, int32_t, uint8_t *, uint32_t *) = nullptr;
};

struct Codec {
    uint32_t (*encode)(void *, uint8_t *, uint32_t *) = nullptr;
    uint32_t (*decode)(void *, const uint8_t *, uint32_t) = nullptr;
};

struct Version {
    int32_t version = 0;
    uint32_t (*get_int)(void *, int32_t, uint32_t *) = nullptr;
    uint32_t (*set_int)(void *, int32_t, uint32_t) = nullptr;
};

// Of parts alone.
struct Callbacks {
    uint32_t (*encrypt)(void *, ZA_CryptFunc, const uint8_t *, uint32_t) = nullptr;
    uint32_t (*decrypt)(void *, ZA_CryptFunc, const uint8_t *, uint32_t) = nullptr;
    uint32_t (*open)(void *, uint8_t *, uint32_t *) = nullptr;
    uint32_t (*attach)(void *, void *) = nullptr;  // to envelopedData
};

struct Names {
    std::string name;
    uint32_t missing = 0;      // the code of missing arguments
    uint32_t unknown = 0;      // that of identifiers
    std::vector<int32_t> ids;  // that are set and read as octets
};

struct Kind : Names, Life, Fields, Codec, Version, Callbacks {};

inline const Kind kEncryptedContent{
    {"encrypted", 108, 122, {17, 18, 19, 20, 21}},
    {ZA_PKCS7_CreateEnocdeEncryptedContent, ZA_PKCS7_DestoryDecodeEncryptedContent},
    {ZA_PKCS7_SetEncryptedContentAttributeChar, ZA_PKCS7_GetEncryptedContentAttributeChar},
    {ZA_PKCS7_EncodeEncryptedContent, ZA_PKCS7_DecodeEncryptedContent},
    {},
    {ZA_PKCS7_SetEncryptContentEncFunc, ZA_PKCS7_SetEncryptContentDecFunc,
     ZA_PKCS7_GetEncryptedContentInformation, ZA_PKCS7_SetEnvelopedData_EncryptedContent}};

inline Octets get(const Kind &kind, void *context, int32_t id) {
    return two_calls([&](uint8_t *out, uint32_t *len) { return kind.get(context, id, out, len); });
}

inline uint32_t set(const Kind &kind, void *context, int32_t id, const Octets &value) {
    return kind.set(context, id, value.data(), uint32_t(value.size()));
}

// The caller's octets are gone when what was decoded is read.
inline uint32_t decode(const Kind &kind, void *context, Octets der) {
    const uint32_t result = kind.decode(context, der.data(), uint32_t(der.size()));
    std::ranges::fill(der, uint8_t{0});
    return result;
}

inline Octets read(uint32_t (*function)(void *, uint8_t *, uint32_t *), void *context,
                   uint32_t *status = nullptr) {
    return two_calls([&](uint8_t *out, uint32_t *len) { return function(context, out, len); },
                     status);
}

class Context {
  public:
    explicit Context(const Kind &kind) : kind_(kind) { created = kind.create(&handle_); }
    ~Context() { EXPECT_EQ(kind_.destroy(handle_), 0u); }
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;

    operator void *() const { return handle_; }
    const Kind &kind() const { return kind_; }
    uint32_t created = 0;

    uint32_t decode(const Octets &der) const {
        return created == 0 ? contexts::decode(kind_, handle_, der) : created;
    }
    uint32_t encode(Octets &out) const {
        uint32_t status = 0;
        out = read(kind_.encode, handle_, &status);
        return status;
    }

  private:
    const Kind &kind_;
    void *handle_ = nullptr;
};

// "set | ID | OCTETS", "version | NUMBER", "decode | | OCTETS", "encode"; others do nothing.
inline uint32_t take_usual_step(const Kind &kind, void *context, const Row &row, Octets &out) {
    uint32_t result = 0;
    if (row[0] == "encode") {
        out = read(kind.encode, context, &result);
    }
    return row[0] == "set"       ? set(kind, context, std::stoi(row[1]), octets_of_cell(row[2]))
           : row[0] == "version" ? kind.set_int(context, kind.version, number_of(row[1]))
           : row[0] == "decode"  ? decode(kind, context, octets_of_cell(row[2]))
                                 : result;
}

inline std::string plain_hex(const Octets &octets) {
    std::string text = to_hex(octets);
    std::erase(text, ' ');
    return text;
}

// AES with the key and the IV of its block.
template <auto Function>
int32_t aes(const uint8_t *in, uint32_t len, uint8_t *out, uint32_t *out_len, void *block) {
    const auto *key = static_cast<const uint8_t *>(block);
    return int32_t(Function(2, key, 16, key + 16, 16, in, len, out, out_len));
}

// Every argument in turn is missing.
inline void expect_null_refused(const Kind &kind) {
    SCOPED_TRACE(kind.name);
    const Context context(kind);
    const int32_t id = kind.ids[0];
    uint8_t octet = 7;
    uint32_t n = 7;
    std::vector<uint32_t> results{kind.create(nullptr), kind.set(nullptr, id, &octet, 1)};
    for (void *in : {static_cast<void *>(nullptr), static_cast<void *>(context)}) {
        uint32_t *len = in == nullptr ? &n : nullptr;
        results.push_back(kind.get(in, id, &octet, len));
        results.push_back(kind.encode(in, &octet, len));
        results.push_back(kind.decode(in, in == nullptr ? &octet : nullptr, 1));
        if (kind.get_int != nullptr) {
            results.push_back(kind.get_int(in, kind.version, len));
        }
        if (kind.open != nullptr) {
            results.push_back(kind.open(in, &octet, len));
        }
    }
    EXPECT_EQ(results, std::vector<uint32_t>(results.size(), kind.missing));
    EXPECT_TRUE(octet == 7 && n == 7);
    EXPECT_EQ(kind.destroy(nullptr), 0u);
}

// Identifiers have the accessors of their kind; 65 is only read.
inline void expect_accessors(const Kind &kind) {
    const Context context(kind);
    for (int32_t id = -1; id <= 70; ++id) {
        SCOPED_TRACE(kind.name + " " + std::to_string(id));
        const bool known = std::ranges::count(kind.ids, id) == 1;
        uint32_t number = 7;
        EXPECT_EQ(set(kind, context, id, {'1'}), known && id != 65 ? 0 : kind.unknown);
        EXPECT_EQ(kind.get(context, id, nullptr, &number), known ? 0 : kind.unknown);
        EXPECT_EQ(number, !known ? 7u : id == 65 ? 0u : 1u);
        if (kind.get_int != nullptr) {
            const uint32_t expected = id == kind.version ? 0 : kind.unknown;
            EXPECT_EQ(kind.get_int(context, id, &number), expected);
            EXPECT_EQ(kind.set_int == nullptr ? expected : kind.set_int(context, id, 0xFFFFFFFF),
                      expected);
        }
    }
}

}  // namespace za::test::contexts
