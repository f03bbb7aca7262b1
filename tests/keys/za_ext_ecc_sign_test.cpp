#include "key_files.hpp"

using namespace za::test;

namespace {

const Trail kEncoded = {"======>ZA_Encode_PublicKey", "=====>ZA_Encode_PublicKey End"};

uint32_t decode(const Octets &der, ZA_ECCSignStruct *signature) {
    return ZA_Decode_DerDataToECCSignStruct(signature, der.data(), len_of(der));
}

// The line of the step that lacked memory: the two numbers, the SEQUENCE, the block handed out.
bool is_step(const std::string &line) {
    return line == "------>ZA_Integer_To_IntegerArray" || line == "------>ZAsn1_WriteSequence" ||
           line == "------>ZACERT_MemoryErr";
}

TEST(EccSignature, ComesBackOctetByOctetInTheShortestForm) {
    for (const Octets &der :
         {key_file("ecdsa_p256.der"), from_hex("30 26 02 01 01 02 21 00 80 00*31")}) {
        auto signature = marked<ZA_ECCSignStruct>();
        {
            const TraceRecord record;
            ASSERT_EQ(decode(der, &signature), 0u);
            EXPECT_EQ(record.lines(), (Trail{"======>ZA_Decode_SignDerDataTo SignStruct ",
                                             "========>ZA_Decode_SignDerDataTo SignStruct End"}));
        }
        expect_allocation_faults_survived([&] {
            uint8_t out[72] = {};
            uint32_t len = sizeof out;
            const TraceRecord record;
            const uint32_t result = ZA_Encode_ECCSignStructToDerData(&signature, out, &len);
            const Trail lines = record.lines();
            EXPECT_TRUE(result == 0 ? lines == kEncoded : is_step(lines.back()) && out[0] == 0);
            EXPECT_TRUE(result != 0 || Octets(out, out + len) == der);
            return result;
        });
        expect_damage_survived(der,
                               [&](const Octets &changed) { return decode(changed, &signature); });
    }
}

TEST(EccSignature, ZeroHalves) {
    const std::tuple<uint8_t, uint8_t, uint32_t> rows[] = {{0, 1, 100}, {1, 0, 0}, {0, 0, 100}};
    for (const auto &[r, s, code] : rows) {
        ZA_ECCSignStruct signature{};
        signature.r[31] = r;
        signature.s[31] = s;
        uint8_t out[1] = {0xA5};
        uint32_t len = 77;
        const TraceRecord record;
        EXPECT_EQ(ZA_Encode_ECCSignStructToDerData(&signature, out, &len), code);
        EXPECT_EQ(record.lines(), (Trail{kEncoded[0], "------>ZA_TraceZero"}));
        EXPECT_EQ(len, 77u);
        EXPECT_EQ(out[0], 0xA5);
    }
}

TEST(EccSignature, RefusedInput) {
    expect_refused("ecdsa_refused.txt", [](const Octets &der) {
        auto signature = marked<ZA_ECCSignStruct>();
        const uint32_t result = decode(der, &signature);
        EXPECT_EQ(octets_of(signature), octets_of(marked<ZA_ECCSignStruct>()));
        return result;
    });
}

TEST(EccSignature, NullArguments) {
    ZA_ECCSignStruct signature{};
    const TraceRecord record;
    EXPECT_EQ(ZA_Encode_ECCSignStructToDerData(nullptr, nullptr, nullptr), 100u);
    EXPECT_EQ(ZA_Decode_DerDataToECCSignStruct(nullptr, nullptr, 0), 100u);
    EXPECT_EQ(record.failures(),
              (Trail{"------>pSignStruct = NULL", "------>pSignStruct is NULL"}));
    EXPECT_EQ(ZA_Encode_ECCSignStructToDerData(&signature, nullptr, nullptr), 108u);
    EXPECT_EQ(ZA_Decode_DerDataToECCSignStruct(&signature, nullptr, 5), 108u);
    EXPECT_EQ(ZA_Decode_DerDataToECCSignStruct(&signature, nullptr, -1), 101u);
}

}  // namespace
