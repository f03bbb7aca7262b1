#include "key_files.hpp"

using namespace za::test;

namespace {

using Decoder = uint32_t (*)(const uint8_t *, int32_t, ZACERT_EccPriKey *, uint32_t *);

uint32_t decode(Decoder decoder, const Octets &der, ZACERT_EccPriKey *key) {
    uint32_t len = 77;
    const uint32_t result = decoder(der.data(), len_of(der), key, &len);
    EXPECT_EQ(len, result == 0 ? 292u : 77u);
    return result;
}

ZACERT_EccPriKey decoded(const Octets &der) {
    auto key = marked<ZACERT_EccPriKey>();
    EXPECT_EQ(decode(ZACERT_DecodeEccPriKey_New, der, &key), 0u) << to_hex(der);
    return key;
}

Octets encode(const ZACERT_EccPriKey &key) {
    return two_calls([&](uint8_t *out, uint32_t *len) {
        return ZACERT_EncodeEccPriKey(&key, sizeof key, out, len);
    });
}

Octets convert(const Octets &der, uint32_t *status = nullptr) {
    const auto call = [&](uint8_t *out, uint32_t *len) {
        return ZACERT_EcPrivateZqcspDerToCertDer(der.data(), uint32_t(der.size()), out, len);
    };
    return two_calls(call, status);
}

uint32_t conversion_result(const Octets &der) {
    uint32_t status = 0;
    convert(der, &status);
    return status;
}

TEST(EccPrivateKey, ExplicitFormIsThePublicOneWithTheSecretBehind) {
    for (const char *file : {"p256.der", "sm2.der"}) {
        const ZACERT_EccPriKey key = decoded(key_file(file));
        const Octets der = encode(key);
        const Octets pub = two_calls([&](uint8_t *out, uint32_t *len) {
            return ZACERT_EncodeEccPubKey(&key.pub, sizeof key.pub, out, len);
        });
        EXPECT_EQ(der, sequence({content_of(pub), element(0x13, octets_of(key.d))}));
        EXPECT_EQ(octets_of(decoded(der)), octets_of(key));
        auto back = marked<ZACERT_EccPriKey>();
        EXPECT_EQ(decode(ZACERT_DecodeEccPriKey, der, &back), 0u);
        EXPECT_EQ(octets_of(back), octets_of(key));
        EXPECT_EQ(convert(der), key_file(file));
    }
    EXPECT_EQ(octets_of(decoded(key_file("p256_explicit.der"))),
              octets_of(decoded(key_file("p256.der"))));
}

TEST(EccPrivateKey, IsReadFromEveryFormAndBecomesSec1) {
    for (const auto &row : rows_of("keys/ecc_private.txt")) {
        SCOPED_TRACE(row.at(0));
        const Octets der = octets_of_cell(row.at(1));
        const Octets numbers =
            join({from_hex(row.at(3)), from_hex(row.at(4)), from_hex(row.at(2))});
        const ZACERT_EccPriKey key = decoded(der);
        const Octets record = octets_of(key);
        EXPECT_EQ(to_hex(std::span(record).last(96)), to_hex(numbers));
        EXPECT_EQ(to_hex(std::span(key.pub.curve.p).first(1)), row.at(5));
        EXPECT_EQ(key.pub.curve.len1, 256);
        EXPECT_EQ(key.pub.curve.len2, 256);
        const Octets sec1 = octets_of_cell(row.at(7));
        EXPECT_EQ(to_hex(convert(der)), to_hex(sec1));
        EXPECT_EQ(conversion_result(der), number_of(row.at(6)));
        EXPECT_EQ(convert(sec1), sec1);

        const auto any = [](const Octets &octets) {
            return decode(ZACERT_DecodeEccPriKey_New, octets, nullptr);
        };
        const FreedSecret secret{std::span(numbers).last(32)};
        expect_allocation_faults_survived([&] { return any(der); });
        expect_allocation_faults_survived([&] { return conversion_result(der); });
        expect_allocation_faults_survived([&] {
            uint32_t len = 77;
            const uint32_t result = ZACERT_EncodeEccPriKey(&key, sizeof key, nullptr, &len);
            EXPECT_TRUE(result == 0 || len == 77);
            return result;
        });
        EXPECT_FALSE(secret.found());
        expect_damage_survived(der, any);
        expect_damage_survived(der, conversion_result);
    }
}

TEST(EccPrivateKey, RefusedInput) {
    expect_refused("ecc_private_refused.txt", [](const Octets &der) {
        auto key = marked<ZACERT_EccPriKey>();
        const uint32_t result = decode(ZACERT_DecodeEccPriKey_New, der, &key);
        EXPECT_EQ(octets_of(key), octets_of(marked<ZACERT_EccPriKey>()));
        return result;
    });
    const TraceRecord record;
    EXPECT_EQ(decode(ZACERT_DecodeEccPriKey, key_file("sm2.der"), nullptr), 108u);
    EXPECT_EQ(decode(ZACERT_DecodeEccPriKey, {0x31, 0x00}, nullptr), 108u);
    EXPECT_EQ(decode(ZACERT_DecodeEccPriKey, {}, nullptr), 108u);
    EXPECT_EQ(record.failures(),
              (Trail{"------>pMidData[0]!=0x30", "----->ZACERT_DecodeEccCurve: ZAsn1_ReadSequence",
                     "----->ZACERT_DecodeEccPriKey: pDerEccPri[0] != 0x30",
                     "----->ZACERT_DecodeEccPriKey: pDerEccPri == NULL || iDerEccPriLen<=0"}));
}

TEST(EccPrivateKey, RefusedArguments) {
    const ZACERT_EccPriKey key{};
    uint32_t len = 77;
    for (const auto &[rec_len, code] :
         {std::pair{291, 101u}, {293, 101u}, {260, 101u}, {0, 108u}}) {
        const TraceRecord record;
        EXPECT_EQ(ZACERT_EncodeEccPriKey(&key, rec_len, nullptr, &len), code);
        EXPECT_EQ(record.failures(), Trail{"----->ZACERT_EncodeEccPriKey"});
    }
    const Octets der = encode(key);
    EXPECT_EQ(ZACERT_EncodeEccPriKey(nullptr, 292, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_EncodeEccPriKey(&key, 292, nullptr, nullptr), 108u);
    for (const Decoder decoder : {ZACERT_DecodeEccPriKey, ZACERT_DecodeEccPriKey_New}) {
        EXPECT_EQ(decoder(nullptr, 5, nullptr, &len), 108u);
        EXPECT_EQ(decoder(der.data(), -1, nullptr, &len), 108u);
        EXPECT_EQ(decoder(der.data(), len_of(der), nullptr, nullptr), 108u);
    }
    EXPECT_EQ(ZACERT_EcPrivateZqcspDerToCertDer(nullptr, 5, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_EcPrivateZqcspDerToCertDer(der.data(), 0, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_EcPrivateZqcspDerToCertDer(der.data(), 1, nullptr, nullptr), 108u);
    EXPECT_EQ(conversion_result(from_hex("30(02(01) 02(01))")), 122u);
    EXPECT_EQ(len, 77u);
}

}  // namespace
