// Messages with signers in tests: both kinds through functions of one shape, and signers that sign
// and verify by the reference functions.
#pragma once

#include "crypto/za_crypt_calls.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"
#include "verify/issued.hpp"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <vector>

namespace za::test {

using Count = uint32_t (*)(void *, uint32_t *);

struct MessageKind {
    uint32_t (*create)(void **);
    uint32_t (*destroy)(void *);
    uint32_t (*set)(void *, int32_t, const uint8_t *, int32_t);
    uint32_t (*get)(void *, int32_t, uint8_t *, uint32_t *, int32_t);
    uint32_t (*set_int)(void *, int32_t, uint32_t);
    uint32_t (*get_int)(void *, int32_t, uint32_t *);
    uint32_t (*attach)(void *, void *);
    uint32_t (*signer)(void *, void **, int32_t);
    uint32_t (*encode)(void *, uint8_t *, uint32_t *);
    uint32_t (*decode)(void *, const uint8_t *, uint32_t);
    std::vector<Count> counts;
};

inline const MessageKind kSigned{
    ZA_PKCS7_CreateSignedDataEncodeCtx,
    ZA_PKCS7_DestroySignedDataDecodeCtx,
    ZA_PKCS7_SetSignedDataAttributeChar,
    ZA_PKCS7_GetSignedDataAttributeChar,
    ZA_PKCS7_SetSignedDataAttributeInt,
    ZA_PKCS7_GetSignedDataAttributeInt,
    ZA_PKCS7_SetSignedData_SignerInfo,
    ZA_PKCS7_GetSignedData_SignerInfo,
    ZA_PKCS7_EncodePKCS7SignedData,
    ZA_PKCS7_DecodeSignedData,
    {ZA_PKCS7_GetSignedData_DigestAlgoNum, ZA_PKCS7_GetSignedData_CertificatesNum,
     ZA_PKCS7_GetSignedData_CrlsNum, ZA_PKCS7_GetSignedData_SignerInfoNum}};

inline const MessageKind kEnveloped{
    ZA_PKCS7_CreateSignedAndEnvelopedDataDecodeCtx,
    ZA_PKCS7_DestorySignedAndEnvelopedDataEncodeCtx,
    ZA_PKCS7_SetSignedAndEnvelopedDataAttributeChar,
    ZA_PKCS7_GetSignedAndEnvelopedDataAttributeChar,
    ZA_PKCS7_SetSignedAndEnvelopedDataAttributeInt,
    ZA_PKCS7_GetSignedAndEnvelopedDataAttributeInt,
    ZA_PKCS7_SetSignedAndEnvelopedData_SignerInfo,
    ZA_PKCS7_GetSignedAndEnvelopedData_SignerInfo,
    ZA_PKCS7_EncodeSignedAndEnvelopedData,
    ZA_PKCS7_DecodeSignedAndEnvelopedData,
    {ZA_PKCS7_GetSignedAndEnvelopedData_RecipientInfoNum,
     ZA_PKCS7_GetSignedAndEnvelopedData_CertificatesNum, ZA_PKCS7_GetSignedAndEnvelopedData_CrlsNum,
     ZA_PKCS7_GetSignedAndEnvelopedData_SignerInfoNum}};

class Message {
  public:
    explicit Message(const MessageKind &kind) : kind_(kind) {
        EXPECT_EQ(kind_.create(&handle_), 0u);
    }
    ~Message() { EXPECT_EQ(kind_.destroy(handle_), 0u); }
    Message(const Message &) = delete;
    Message &operator=(const Message &) = delete;

    operator void *() const { return handle_; }
    const MessageKind *operator->() const { return &kind_; }

    uint32_t set(int32_t id, const Octets &value) const {
        return kind_.set(handle_, id, value.data(), int32_t(value.size()));
    }
    Octets get(int32_t id, int32_t index = 0) const {
        uint32_t len = 0;
        kind_.get(handle_, id, nullptr, &len, index);
        Octets out(len + 1);
        EXPECT_EQ(kind_.get(handle_, id, out.data(), &len, index), 0u);
        out.resize(len);
        return out;
    }
    void *signer(int32_t index) const {
        void *out = nullptr;
        EXPECT_EQ(kind_.signer(handle_, &out, index), 0u);
        return out;
    }
    Octets encode(uint32_t *status = nullptr) const {
        return two_calls(
            [&](uint8_t *out, uint32_t *len) { return kind_.encode(handle_, out, len); }, status);
    }
    // The caller's octets are gone when the fields are read.
    uint32_t decode(Octets der) const {
        const uint32_t result = kind_.decode(handle_, der.data(), uint32_t(der.size()));
        std::ranges::fill(der, uint8_t{0});
        return result;
    }
    // "1 0 0 2": how many there are of each.
    std::string counts() const {
        std::string all;
        for (const Count count : kind_.counts) {
            uint32_t number = 0;
            EXPECT_EQ(count(handle_, &number), 0u);
            all += (all.empty() ? "" : " ") + std::to_string(number);
        }
        return all;
    }

  private:
    const MessageKind &kind_;
    void *handle_ = nullptr;
};

inline const Octets kDataOid = from_hex("2A864886F70D010701");
inline const Octets kSha256Oid = from_hex("608648016503040201");

inline Octets public_block(const std::string &key) {
    return octets_of(rsa_record<ZA_RSArefPublicKey>(key));
}

// A certificate of libcrypto's for this key, by whose issuer and number signers and recipients are
// told.
inline Octets certificate_for(const std::string &key) {
    return issued(kCertificate, key.c_str(), {.issuer = key.c_str()});
}

// Read once: not again where memory is short.
inline const Octets &private_block(const std::string &key) {
    static std::map<std::string, Octets> blocks;
    Octets &block = blocks[key];
    return block = block.empty() ? octets_of(rsa_record<ZA_RSArefPrivateKey>(key)) : block;
}

inline uint32_t install_digest(void *signer, int32_t digest = 9) {
    return ZA_PKCS7_SetSignerInfoDigestFunc(signer, ZA_DigestFunc_Ref,
                                            reinterpret_cast<const uint8_t *>(&digest), 4);
}

// Sets one value after the other, up to the first that fails.
template <class Length>
uint32_t set_all(uint32_t (*set)(void *, int32_t, const uint8_t *, Length), void *handle,
                 std::initializer_list<std::pair<int32_t, Octets>> values) {
    uint32_t result = 0;
    for (const auto &[id, value] : values) {
        result = result != 0 ? result : set(handle, id, value.data(), Length(value.size()));
    }
    return result;
}

inline uint32_t set_signer(void *signer, int32_t id, const Octets &value) {
    return set_all(ZA_PKCS7_SetSignerInfoAttributeChar, signer, {{id, value}});
}

inline Octets get_signer(void *signer, int32_t id, uint32_t *status = nullptr) {
    const auto get = [&](uint8_t *out, uint32_t *len) {
        return ZA_PKCS7_GetSignerInfoAttributeChar(signer, id, out, len);
    };
    return two_calls(get, status);
}

using GetAttribute = decltype(&ZA_PKCS7_GetSignerAttribute);

// OID and value, one behind the other.
inline Octets get_attribute(void *signer, GetAttribute function, int32_t index, uint32_t *status) {
    uint32_t oid_len = 0x777;
    uint32_t value_len = 0x777;
    *status = function(signer, nullptr, &oid_len, nullptr, &value_len, index);
    if (*status != 0) {
        EXPECT_TRUE(oid_len == 0x777 && value_len == 0x777);
        return {};
    }
    Octets oid(oid_len);
    Octets value(value_len);
    EXPECT_EQ(function(signer, oid.data(), &oid_len, value.data(), &value_len, index), 0u);
    return join({oid, value});
}

inline std::vector<Octets> get_attributes(void *signer, Count count, GetAttribute function) {
    uint32_t status = 0;
    uint32_t number = 0;
    EXPECT_EQ(count(signer, &number), 0u);
    std::vector<Octets> all;
    while (all.size() < number) {
        all.push_back(get_attribute(signer, function, int32_t(all.size()) + 1, &status));
    }
    return all;
}

inline uint32_t add_attribute(void *signer, const Octets &oid, const Octets &value) {
    return ZA_PKCS7_SetSignerAttribute(signer, oid.data(), uint32_t(oid.size()), value.data(),
                                       uint32_t(value.size()));
}

inline uint32_t add_content_type(void *signer, const Octets &type) {
    return add_attribute(signer, from_hex("2A864886F70D010903"), element(6, type));
}

// Signs with RSA and SHA-256, on request with contentType among attributes.
inline uint32_t fill_signer(void *signer, const std::string &key, bool attributes,
                            ZA_CryptFunc sign = ZA_PrivateKeyEncFunc_Ref) {
    const Octets &block = private_block(key);
    uint32_t result = set_all(ZA_PKCS7_SetSignerInfoAttributeChar, signer,
                              {{PKCS7_SIGNER_DN, name_of(key, 0x13)},
                               {PKCS7_SIGNER_SERIAL, {0x4D}},
                               {PKCS7_SIGNER_DIGEST_ALGO, kSha256Oid},
                               {PKCS7_SIGNER_DIGEST_ENC_ALG, from_hex("2A864886F70D010101")}});
    result = result != 0 || !attributes ? result : add_content_type(signer, kDataOid);
    result = result != 0 ? result : install_digest(signer);
    return result != 0 ? result
                       : ZA_PKCS7_SetSignerInfoEncSignFunc(signer, sign, block.data(),
                                                           uint32_t(block.size()));
}

// NULL: no memory.
inline void *new_signer(const std::string &key, bool attributes,
                        ZA_CryptFunc sign = ZA_PrivateKeyEncFunc_Ref) {
    void *signer = nullptr;
    const uint32_t result = ZA_PKCS7_CreateEncodeSignerInfo(&signer);
    if (result != 0 || fill_signer(signer, key, attributes, sign) != 0) {
        ZA_PKCS7_DestoryEncodeSignerInfo(signer);
        return nullptr;
    }
    return signer;
}

inline void install_opening(void *signer, const std::string &key, int32_t digest = 9) {
    const Octets block = public_block(key);
    EXPECT_EQ(install_digest(signer, digest), 0u);
    EXPECT_EQ(ZA_PKCS7_SetSignerInfoDecSignFunc(signer, ZA_PublicKeyDecryptFunc_Ref, block.data(),
                                                uint32_t(block.size())),
              0u);
}

// "STATUS/RESULT", which is 300 before, of a signature by the functions that are installed; where
// there is a `given` it is the argument.
inline std::string verify(void *signer, const Octets *given = nullptr) {
    uint32_t result = 300;
    const uint32_t status = given == nullptr
                                ? ZA_PKCS7_VerifySignerSignature(signer, &result)
                                : ZA_PKCS7_VerifySignerSignature2(signer, given->data(),
                                                                  uint32_t(given->size()), &result);
    return std::to_string(status) + "/" + std::to_string(result);
}

// The same by the key that the issuer's name tells. `detached` is content that the message lacks:
// signers with attributes digest it, others are given it.
inline std::string verdict(void *signer, const Octets &detached = {}) {
    const Octets issuer = get_signer(signer, PKCS7_SIGNER_DN);
    const std::string name(issuer.end() - std::min<long>(7, long(issuer.size())), issuer.end());
    install_opening(signer, name == "rsa2048" ? name : "rsa1024");
    uint32_t attributes = 0;
    EXPECT_EQ(ZA_PKCS7_GetSignerInfoAttributesNum(signer, &attributes), 0u);
    if (!detached.empty() && attributes == 0) {
        return verify(signer, &detached);
    }
    EXPECT_EQ(detached.empty() ? 0 : set_signer(signer, PKCS7_SIGNER_CONTENT, detached), 0u);
    return verify(signer);
}

// NULL in the place of the context, of a result or of a part gives 101, with a line or without one.
inline void expect_null_refused(const MessageKind &kind, bool setters_tell,
                                std::vector<uint32_t> more_told) {
    const Message message(kind);
    uint8_t out = 7;
    uint32_t n = 7;
    void *handle = &n;
    const TraceRecord trace;
    std::vector<uint32_t> told{kind.create(nullptr),
                               kind.get_int(nullptr, 44, &n),
                               kind.get_int(message, 44, nullptr),
                               kind.get(nullptr, 45, &out, &n, 1),
                               kind.signer(nullptr, &handle, 1),
                               kind.signer(message, nullptr, 1),
                               kind.signer(message, &handle, 1),
                               kind.signer(message, &handle, 0),
                               kind.encode(nullptr, &out, &n),
                               kind.encode(message, &out, nullptr),
                               kind.decode(nullptr, &out, 1),
                               kind.decode(message, nullptr, 1)};
    for (const Count count : kind.counts) {
        told.push_back(count(nullptr, &n));
        told.push_back(count(message, nullptr));
    }
    const std::vector<uint32_t> set{kind.set_int(nullptr, 44, 1), kind.set(nullptr, 45, &out, 1),
                                    kind.attach(nullptr, handle), kind.attach(message, nullptr)};
    EXPECT_EQ(trace.failures(), Trail(told.size() + (setters_tell ? set.size() : 0),
                                      "------------>ZACERT_LengthErr"));
    told.insert(told.end(), set.begin(), set.end());
    told.insert(told.end(), more_told.begin(), more_told.end());
    EXPECT_EQ(told, std::vector<uint32_t>(told.size(), 101));
    EXPECT_EQ(kind.destroy(nullptr), 0u);
    EXPECT_TRUE(out == 7 && n == 7 && handle == &n);
}

// Steps of a row file: "step | argument | octets | result | failures".
//   new                          a fresh context
//   set ID, number ID            octets, or "NULL @LENGTH"; a number
//   get ID INDEX                 octets, or "untouched" with the length too
//   length ID INDEX              what a NULL buffer gives for a length
//   counts                       as Message::counts() in `argument`
//   encode, decode               the message, hex or a data file
inline void expect_steps(const MessageKind &kind, const std::string &file) {
    auto message = std::make_unique<Message>(kind);
    for (const Row &row : rows_of(file)) {
        SCOPED_TRACE(row[0] + "|" + row[1] + "|" + row[2]);
        if (row[0] == "new") {
            message = std::make_unique<Message>(kind);
            continue;
        }
        const Row words = split(row[1], ' ');
        const int32_t id = words[0].empty() ? 0 : std::stoi(words[0]);
        const int32_t index = words.size() > 1 ? std::stoi(words[1]) : 0;
        const bool null = row[2].starts_with("NULL");
        const bool literal = null || row[2] == "untouched" || row[0] == "length";
        const Octets octets = literal ? Octets{} : octets_of_cell(row[2]);
        constexpr uint32_t kUntouched = 0x77777777;
        Octets out(64, 0xEE);
        uint32_t len = kUntouched;
        uint32_t result = 0;
        const TraceRecord trace;
        if (row[0] == "set") {
            const int32_t told = null ? std::stoi(split(row[2], '@')[1]) : int32_t(octets.size());
            result = (*message)->set(*message, id, null ? nullptr : octets.data(), told);
        } else if (row[0] == "number") {
            result = (*message)->set_int(*message, id, octets.at(0));
            EXPECT_EQ((*message)->get_int(*message, id, &len), result);
            EXPECT_EQ(len, result == 0 ? octets[0] : kUntouched);
        } else if (row[0] == "get") {
            result = (*message)->get(*message, id, out.data(), &len, index);
            const bool wrote = len != kUntouched;
            EXPECT_EQ(wrote, row[2] != "untouched");
            EXPECT_EQ(to_hex(Octets(out.begin(), out.begin() + (wrote ? len : 0))), to_hex(octets));
        } else if (row[0] == "length") {
            result = (*message)->get(*message, id, nullptr, &len, index);
            EXPECT_EQ(len, number_of(row[2]));
        } else if (row[0] == "counts") {
            EXPECT_EQ(message->counts(), row[1]);
        } else if (row[0] == "encode") {
            EXPECT_EQ(to_hex(message->encode(&result)), to_hex(octets));
        } else {
            ASSERT_EQ(row[0], "decode");
            result = message->decode(octets);
        }
        EXPECT_EQ(result, number_of(row[3]));
        EXPECT_EQ(trace.failures(), list_of(row.size() > 4 ? row[4] : ""));
    }
}

}  // namespace za::test
