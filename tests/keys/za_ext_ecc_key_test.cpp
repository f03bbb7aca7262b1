#include "key_files.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <cstring>
#include <gtest/gtest.h>

using namespace za::test;

namespace {

using Trail = std::vector<std::string>;

const std::string kParameter = "----->ZACERT_DecodeEccCurve: \xB2\xCE\xCA\xFD";
const std::string kPrime = "----->ZACERT_DecodeEccCurve: \xCB\xD8\xCA\xFD";
const std::string kSequence = "----->ZACERT_DecodeEccCurve: ZAsn1_ReadSequence";

// Every octet another, so that a field that lands in the place of its neighbour shows.
ZACERT_EccPubKey sample() {
    ZACERT_EccPubKey key{};
    auto *octets = reinterpret_cast<uint8_t *>(&key);
    for (size_t i = 0; i < sizeof key; ++i) {
        octets[i] = uint8_t(i % 251 + 1);
    }
    key.curve.len1 = 256;
    key.curve.len2 = 256;
    return key;
}

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

// The form of the sample, its curve's eight elements replaced or cut by `change`.
template <class Change>
Octets with_curve(const Change &change) {
    std::vector<Octets> key = children_of(encode(sample()));
    std::vector<Octets> curve = children_of(key[0]);
    change(curve);
    key[0] = sequence(curve);
    return sequence(key);
}

TEST(EccPublicKey, HasTheFormOfStrings) {
    const ZACERT_EccPubKey key = sample();
    const Octets der = encode(key);
    EXPECT_EQ(der.size(), 287u);
    const std::vector<Octets> fields = children_of(der);
    ASSERT_EQ(fields.size(), 3u);
    const std::vector<Octets> curve = children_of(fields[0]);
    ASSERT_EQ(curve.size(), 8u);
    const uint8_t(*const octets[])[32] = {&key.curve.p,  &key.curve.a,  &key.curve.b,
                                          &key.curve.gx, &key.curve.gy, &key.curve.n};
    for (size_t i = 0; i < std::size(octets); ++i) {
        EXPECT_EQ(curve[i], element(0x13, Octets(*octets[i], *octets[i] + 32))) << i;
    }
    EXPECT_EQ(to_hex(curve[6]), "02 02 01 00");
    EXPECT_EQ(to_hex(curve[7]), "02 02 01 00");
    EXPECT_EQ(fields[1], element(0x13, Octets(key.x, key.x + 32)));
    EXPECT_EQ(fields[2], element(0x13, Octets(key.y, key.y + 32)));

    ZACERT_EccPubKey back;
    memset(&back, 0xA5, sizeof back);
    EXPECT_EQ(decode(der, &back), 0u);
    EXPECT_EQ(memcmp(&back, &key, sizeof key), 0);
    EXPECT_EQ(decode(der, nullptr), 0u);
}

TEST(EccPublicKey, AFieldOfZerosIsAnEmptyString) {
    ZACERT_EccPubKey key = sample();
    memset(key.curve.a, 0, sizeof key.curve.a);
    key.curve.len1 = 65535;
    key.curve.len2 = 0;
    const Octets der = encode(key);
    const std::vector<Octets> curve = children_of(children_of(der)[0]);
    EXPECT_EQ(to_hex(curve[1]), "13 00");
    EXPECT_EQ(to_hex(curve[6]), "02 03 00 FF FF");
    EXPECT_EQ(to_hex(curve[7]), "02 01 00");
    ZACERT_EccPubKey back;
    EXPECT_EQ(decode(der, &back), 0u);
    EXPECT_EQ(memcmp(&back, &key, sizeof key), 0);
}

TEST(EccPublicKey, ShortStringsFillTheStartAndLengthsTheirLowBits) {
    const Octets der = with_curve([](std::vector<Octets> &curve) {
        curve[2] = from_hex("13 02 AB CD");
        curve[6] = from_hex("02 03 01 00 05");
    });
    ZACERT_EccPubKey key;
    ASSERT_EQ(decode(der, &key), 0u);
    EXPECT_EQ(to_hex(std::span(key.curve.b).first(4)), "AB CD 00 00");
    EXPECT_EQ(key.curve.b[31], 0);
    EXPECT_EQ(key.curve.len1, 5);
}

TEST(EccPublicKey, EveryElementIsNeededAndHasItsLine) {
    const std::string texts[] = {kPrime + "p",       kParameter + "a",  kParameter + "b",
                                 kParameter + "gx",  kParameter + "gy", kParameter + "n",
                                 kParameter + "len", kParameter + "len"};
    const Octets large = element(0x13, Octets(33, 0x11));
    for (size_t k = 0; k < 8; ++k) {
        const Octets missing = with_curve([&](std::vector<Octets> &curve) { curve.resize(k); });
        const TraceRecord record;
        ZACERT_EccPubKey key = sample();
        EXPECT_EQ(decode(missing, &key), 113u);
        EXPECT_EQ(record.failures(), Trail{texts[k]});
        const ZACERT_EccPubKey untouched = sample();
        EXPECT_EQ(memcmp(&key, &untouched, sizeof key), 0);
        if (k < 6) {
            const TraceRecord again;
            EXPECT_EQ(
                decode(with_curve([&](std::vector<Octets> &curve) { curve[k] = large; }), &key),
                101u);
            EXPECT_EQ(again.failures(), Trail{texts[k]});
        }
    }
}

TEST(EccPublicKey, RefusedInput) {
    const std::vector<Octets> fields = children_of(encode(sample()));
    const Octets large = element(0x13, Octets(33, 0x11));
    const std::string no_input =
        "----->ZACERT_DecodeEccPubKey: pDerEccPub == NULL || iDerEccPubLen<=0";
    const struct {
        Octets der;
        uint32_t code;
        Trail trail;
    } rows[] = {
        {{}, 108, {no_input}},
        {{0x31, 0x00}, 108, {"----->ZACERT_DecodeEccPubKey: pDerEccPub[0] != 0x30"}},
        {{0x30, 0x01}, 102, {"------>ZACERT_LengthNotEqualErr", kSequence}},
        {sequence({}), 113, {kSequence}},
        {sequence({{0x05, 0x00}, fields[1], fields[2]}),
         108,
         {"----->ZACERT_DecodeEccCurve: \xCB\xBD\xD4\xBF"
          "DER"
          "\xCA\xFD\xBE\xDD\xBD\xE1\xB9\xB9"
          "\xCE\xAA\xBF\xD5"}},
        {sequence({fields[1], fields[1], fields[2]}), 108, {"------>pMidData[0]!=0x30", kSequence}},
        {sequence({fields[0]}), 113, {kParameter + "gx"}},
        {sequence({fields[0], fields[1]}), 113, {kParameter + "gy"}},
        {sequence({fields[0], large, fields[2]}), 101, {kParameter + "gx"}},
        {sequence({fields[0], fields[1], large}), 101, {kParameter + "gy"}},
    };
    for (const auto &row : rows) {
        ZACERT_EccPubKey key;
        const TraceRecord record;
        EXPECT_EQ(decode(row.der, &key), row.code) << to_hex(row.der);
        EXPECT_EQ(record.failures(), row.trail) << to_hex(row.der);
    }
}

TEST(EccPublicKey, RefusedArguments) {
    const ZACERT_EccPubKey key = sample();
    const std::pair<int32_t, uint32_t> rows[] = {
        {259, 101}, {261, 101}, {1, 101}, {0, 108}, {-1, 108}};
    for (const auto &[rec_len, code] : rows) {
        uint32_t len = 77;
        const TraceRecord record;
        EXPECT_EQ(ZACERT_EncodeEccPubKey(&key, rec_len, nullptr, &len), code);
        EXPECT_EQ(record.failures(), Trail{"----->ZACERT_EncodeEccPubKey"});
        EXPECT_EQ(len, 77u);
    }
    uint32_t len = 77;
    const Octets der = encode(key);
    EXPECT_EQ(ZACERT_EncodeEccPubKey(nullptr, 260, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_EncodeEccPubKey(&key, 260, nullptr, nullptr), 108u);
    EXPECT_EQ(ZACERT_DecodeEccPubKey(nullptr, 5, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_DecodeEccPubKey(der.data(), -1, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_DecodeEccPubKey(der.data(), len_of(der), nullptr, nullptr), 108u);
    EXPECT_EQ(len, 77u);
}

TEST(EccPublicKey, WithoutMemory) {
    const ZACERT_EccPubKey key = sample();
    const Octets der = encode(key);
    uint32_t len = 0;
    expect_allocation_faults_survived(
        [&] { return ZACERT_EncodeEccPubKey(&key, 260, nullptr, &len); });
    expect_allocation_faults_survived([&] { return decode(der, nullptr); });
    fail_allocation(1);
    const TraceRecord record;
    EXPECT_EQ(ZACERT_EncodeEccPubKey(&key, 260, nullptr, &len), 100u);
    EXPECT_EQ(record.failures(), (Trail{"------>ZAPR_Malloc", "----->ZACERT_EncodeEccPublicKey",
                                        "----->ZACERT_EncodeEccPubKey"}));
    fail_allocation(0);
}

TEST(EccPublicKey, DamageIsSurvived) {
    expect_damage_survived(encode(sample()),
                           [](const Octets &der) { return decode(der, nullptr); });
}

}  // namespace
