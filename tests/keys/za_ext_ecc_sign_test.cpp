#include "key_files.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <cstring>
#include <gtest/gtest.h>

using namespace za::test;

namespace {

using Trail = std::vector<std::string>;

const std::string kEncodeBegin = "======>ZA_Encode_PublicKey";
const std::string kEncodeEnd = "=====>ZA_Encode_PublicKey End";
const std::string kDecodeBegin = "======>ZA_Decode_SignDerDataTo SignStruct ";
const std::string kDecodeEnd = "========>ZA_Decode_SignDerDataTo SignStruct End";

Octets encode(const ZA_ECCSignStruct &signature) {
    return two_calls([&](uint8_t *out, uint32_t *len) {
        return ZA_Encode_ECCSignStructToDerData(&signature, out, len);
    });
}

uint32_t decode(const Octets &der, ZA_ECCSignStruct *signature) {
    return ZA_Decode_DerDataToECCSignStruct(signature, der.data(), len_of(der));
}

ZA_ECCSignStruct small_r_large_s() {
    ZA_ECCSignStruct signature{};
    signature.r[31] = 1;
    signature.s[0] = 0x80;
    return signature;
}

TEST(EccSignature, NumbersAreShortestAndPositive) {
    const ZA_ECCSignStruct signature = small_r_large_s();
    const Octets der = encode(signature);
    EXPECT_EQ(der, join({from_hex("30 26 02 01 01 02 21 00 80"), Octets(31, 0)}));

    ZA_ECCSignStruct back;
    memset(&back, 0xA5, sizeof back);
    EXPECT_EQ(decode(der, &back), 0u);
    EXPECT_EQ(memcmp(&back, &signature, sizeof back), 0);
}

TEST(EccSignature, OneOfOpensslComesBackOctetByOctet) {
    const Octets der = key_file("ecdsa_p256.der");
    ZA_ECCSignStruct signature;
    ASSERT_EQ(decode(der, &signature), 0u);
    EXPECT_EQ(to_hex(encode(signature)), to_hex(der));
}

TEST(EccSignature, HasTextsOfItsOwnAtEntryAndExit) {
    const TraceRecord record;
    ZA_ECCSignStruct signature = small_r_large_s();
    uint8_t der[72];
    uint32_t len = 0;
    EXPECT_EQ(ZA_Encode_ECCSignStructToDerData(&signature, der, &len), 0u);
    EXPECT_EQ(ZA_Decode_DerDataToECCSignStruct(&signature, der, int32_t(len)), 0u);
    EXPECT_EQ(record.lines(), (Trail{kEncodeBegin, kEncodeEnd, kDecodeBegin, kDecodeEnd}));
}

TEST(EccSignature, ZeroHalves) {
    const struct {
        uint8_t r, s;
        uint32_t code;
    } rows[] = {{0, 1, 100}, {1, 0, 0}, {0, 0, 100}};
    for (const auto &row : rows) {
        ZA_ECCSignStruct signature{};
        signature.r[31] = row.r;
        signature.s[31] = row.s;
        uint8_t out[1] = {0xA5};
        uint32_t len = 77;
        const TraceRecord record;
        EXPECT_EQ(ZA_Encode_ECCSignStructToDerData(&signature, out, &len), row.code);
        EXPECT_EQ(record.lines(), (Trail{kEncodeBegin, "------>ZA_TraceZero"}));
        EXPECT_EQ(len, 77u);
        EXPECT_EQ(out[0], 0xA5);
    }
}

TEST(EccSignature, RefusedInput) {
    const Octets good = key_file("ecdsa_p256.der");
    Octets claims_more = good;
    ++claims_more[1];
    const Octets one = {0x02, 0x01, 0x01};
    const Octets large = element(2, Octets(33, 0x11));
    const struct {
        Octets der;
        uint32_t code;
        Trail trail;
    } rows[] = {
        {{}, 101, {"------>pDerSignDataLen <= 0"}},
        {claims_more, 102, {"------>ZACERT_LengthNotEqualErr", "------>ZAsn1_ReadSequence"}},
        {one, 108, {"------>pMidData[0]!=0x30", "------>ZAsn1_ReadSequence"}},
        {sequence({}), 113, {"------>ZACERT_ItemMissingErr"}},
        {sequence({one}), 113, {"------>ZACERT_ItemMissingErr"}},
        {sequence({large, one}), 101, {"------>ZACERT_LengthErr"}},
        {sequence({one, large}), 101, {"------>ZACERT_LengthErr"}},
        {key_file("ecdsa_p384.der"), 101, {"------>ZACERT_LengthErr"}},
    };
    for (const auto &row : rows) {
        ZA_ECCSignStruct signature = small_r_large_s();
        const TraceRecord record;
        EXPECT_EQ(decode(row.der, &signature), row.code) << to_hex(row.der);
        EXPECT_EQ(record.failures(), row.trail);
        EXPECT_EQ(record.lines().front(), kDecodeBegin);
        const ZA_ECCSignStruct untouched = small_r_large_s();
        EXPECT_EQ(memcmp(&signature, &untouched, sizeof signature), 0);
    }
}

TEST(EccSignature, NullArguments) {
    ZA_ECCSignStruct signature = small_r_large_s();
    uint32_t len = 77;
    const TraceRecord record;
    EXPECT_EQ(ZA_Encode_ECCSignStructToDerData(nullptr, nullptr, &len), 100u);
    EXPECT_EQ(ZA_Decode_DerDataToECCSignStruct(nullptr, nullptr, 0), 100u);
    EXPECT_EQ(record.failures(),
              (Trail{"------>pSignStruct = NULL", "------>pSignStruct is NULL"}));
    EXPECT_EQ(ZA_Encode_ECCSignStructToDerData(&signature, nullptr, nullptr), 108u);
    EXPECT_EQ(ZA_Decode_DerDataToECCSignStruct(&signature, nullptr, 5), 108u);
    EXPECT_EQ(ZA_Decode_DerDataToECCSignStruct(&signature, nullptr, -1), 101u);
}

TEST(EccSignature, WithoutMemory) {
    const ZA_ECCSignStruct signature = small_r_large_s();
    expect_allocation_faults_survived([&] {
        uint32_t len = 77;
        const uint32_t result = ZA_Encode_ECCSignStructToDerData(&signature, nullptr, &len);
        EXPECT_TRUE(result == 0 || len == 77);
        return result;
    });
    // The outermost line tells the step: the two numbers, the SEQUENCE, the block handed out.
    std::vector<std::string> steps;
    for (size_t k = 1;; ++k) {
        fail_allocation(k);
        const TraceRecord record;
        uint32_t len = 0;
        if (ZA_Encode_ECCSignStructToDerData(&signature, nullptr, &len) == 0) {
            break;
        }
        const Trail trail = record.failures();
        EXPECT_EQ(trail.front(), "------>ZAPR_Malloc");
        if (steps.empty() || steps.back() != trail.back()) {
            steps.push_back(trail.back());
        }
    }
    fail_allocation(0);
    EXPECT_EQ(steps, (Trail{"------>ZA_Integer_To_IntegerArray", "------>ZAsn1_WriteSequence",
                            "------>ZACERT_MemoryErr"}));
}

TEST(EccSignature, DamageIsSurvived) {
    ZA_ECCSignStruct signature;
    expect_damage_survived(key_file("ecdsa_p256.der"),
                           [&](const Octets &der) { return decode(der, &signature); });
}

}  // namespace
