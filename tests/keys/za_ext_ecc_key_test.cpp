#include "key_files.hpp"

using namespace za::test;

namespace {

Octets encode(const ZACERT_EccPubKey &key) {
    return two_calls([&](uint8_t *out, uint32_t *len) {
        return ZACERT_EncodeEccPubKey(&key, sizeof key, out, len);
    });
}

uint32_t decode(const Octets &der, ZACERT_EccPubKey *key) {
    uint32_t len = 77;
    const uint32_t result = ZACERT_DecodeEccPubKey(der.data(), len_of(der), key, &len);
    EXPECT_EQ(len, result == 0 ? 260u : 77u);
    return result;
}

TEST(EccPublicKey, HasTheFormOfStrings) {
    for (const auto &row : rows_of("keys/ecc_public.txt")) {
        SCOPED_TRACE(row.at(0));
        const Octets der = octets_of_cell(row.at(1));
        auto key = marked<ZACERT_EccPubKey>();
        EXPECT_EQ(decode(der, &key), 0u);
        EXPECT_EQ(to_hex(octets_of(key)), to_hex(octets_of_cell(row.at(2))));
        EXPECT_EQ(encode(key) == der, row.at(3) == "yes");
        expect_damage_survived(der, [](const Octets &damaged) { return decode(damaged, nullptr); });
        expect_allocation_faults_survived([&] {
            uint32_t len = 77;
            const uint32_t result = ZACERT_EncodeEccPubKey(&key, 260, nullptr, &len);
            EXPECT_TRUE(result == 0 || len == 77);
            return result;
        });
    }
}

TEST(EccPublicKey, RefusedInput) {
    expect_refused("ecc_public_refused.txt", [](const Octets &der) {
        auto key = marked<ZACERT_EccPubKey>();
        const uint32_t result = decode(der, &key);
        EXPECT_EQ(octets_of(key), octets_of(marked<ZACERT_EccPubKey>()));
        return result;
    });
}

TEST(EccPublicKey, RefusedArguments) {
    const ZACERT_EccPubKey key{};
    const Octets der = encode(key);
    uint32_t len = 77;
    for (const auto &[rec_len, code] : {std::pair{259, 101u}, {261, 101u}, {1, 101u}, {0, 108u}}) {
        const TraceRecord record;
        EXPECT_EQ(ZACERT_EncodeEccPubKey(&key, rec_len, nullptr, &len), code);
        EXPECT_EQ(record.failures(), Trail{"----->ZACERT_EncodeEccPubKey"});
    }
    EXPECT_EQ(ZACERT_EncodeEccPubKey(nullptr, 260, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_EncodeEccPubKey(&key, 260, nullptr, nullptr), 108u);
    EXPECT_EQ(ZACERT_DecodeEccPubKey(nullptr, 5, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_DecodeEccPubKey(der.data(), -1, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_DecodeEccPubKey(der.data(), len_of(der), nullptr, nullptr), 108u);
    fail_allocation(1);
    const TraceRecord record;
    EXPECT_EQ(ZACERT_EncodeEccPubKey(&key, 260, nullptr, &len), 100u);
    EXPECT_EQ(record.failures(), (Trail{"------>ZAPR_Malloc", "----->ZACERT_EncodeEccPublicKey",
                                        "----->ZACERT_EncodeEccPubKey"}));
    EXPECT_EQ(len, 77u);
}

}  // namespace
