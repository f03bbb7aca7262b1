#include "key_files.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <cstring>
#include <gtest/gtest.h>

using namespace za::test;

namespace {

using Trail = std::vector<std::string>;

const std::string kTextD =
    "----->ZACERT_DecodeEccPriKey: \xB2\xCE\xCA\xFD"
    "d";
const std::string kTextX =
    "----->ZACERT_DecodeEccCurve: \xB2\xCE\xCA\xFD"
    "gx";
const std::string kTextY =
    "----->ZACERT_DecodeEccCurve: \xB2\xCE\xCA\xFD"
    "gy";

const Octets kSm2 = from_hex("06 08 2A 81 1C CF 55 01 82 2D");
const Octets kSm2Short = from_hex("06 07 2A 81 1C CF 55 82 2D");
const Octets kP256 = from_hex("06 08 2A 86 48 CE 3D 03 01 07");
const Octets kNational9 = from_hex("06 09 2A 81 1C 81 45 01 87 68 08");
const Octets kNational10 = from_hex("06 0A 2A 81 1C 81 45 CE 3D 03 01 01");
const Octets kSecp256k1 = from_hex("06 05 2B 81 04 00 0A");
const Octets kVersion = from_hex("02 01 01");

using Decoder = uint32_t (*)(const uint8_t *, int32_t, ZACERT_EccPriKey *, uint32_t *);

uint32_t decode(Decoder decoder, const Octets &der, ZACERT_EccPriKey *key) {
    uint32_t len = 77;
    const uint32_t result = decoder(der.data(), len_of(der), key, &len);
    EXPECT_EQ(len, result == 0 ? 292u : 77u);
    return result;
}

ZACERT_EccPriKey decoded(const Octets &der) {
    ZACERT_EccPriKey key;
    memset(&key, 0xA5, sizeof key);
    EXPECT_EQ(decode(ZACERT_DecodeEccPriKey_New, der, &key), 0u) << to_hex(der);
    return key;
}

Octets encode(const ZACERT_EccPriKey &key) {
    return two_calls([&](uint8_t *out, uint32_t *len) {
        return ZACERT_EncodeEccPriKey(&key, sizeof key, out, len);
    });
}

Octets convert(const Octets &der, uint32_t *status = nullptr) {
    return two_calls(
        [&](uint8_t *out, uint32_t *len) {
            return ZACERT_EcPrivateZqcspDerToCertDer(der.data(), uint32_t(der.size()), out, len);
        },
        status);
}

uint32_t conversion_result(const Octets &der) {
    uint32_t status = 0;
    convert(der, &status);
    return status;
}

Octets field(const uint8_t (&octets)[32], uint8_t tag = 0x13) {
    return element(tag, Octets(octets, octets + 32));
}

// The container with strings of one tag; `oid` may be empty.
Octets container(const Octets &oid, const ZACERT_EccPriKey &key, uint8_t tag = 0x13) {
    return sequence(
        {kVersion, oid, field(key.d, tag), field(key.pub.x, tag), field(key.pub.y, tag)});
}

TEST(EccPrivateKey, ExplicitFormIsThePublicOneWithTheSecretBehind) {
    const ZACERT_EccPriKey key = decoded(key_file("p256.der"));
    const Octets der = encode(key);
    EXPECT_EQ(der.size(), 321u);
    EXPECT_EQ(children_of(der).back(), field(key.d));

    ZACERT_EccPriKey back;
    EXPECT_EQ(decode(ZACERT_DecodeEccPriKey, der, &back), 0u);
    EXPECT_EQ(memcmp(&back, &key, sizeof key), 0);
    EXPECT_EQ(decode(ZACERT_DecodeEccPriKey, der, nullptr), 0u);
    const ZACERT_EccPriKey any = decoded(der);
    EXPECT_EQ(memcmp(&any, &key, sizeof key), 0);
    ZACERT_EccPubKey pub;
    uint32_t len = 0;
    EXPECT_EQ(ZACERT_DecodeEccPubKey(der.data(), len_of(der), &pub, &len), 0u);
    EXPECT_EQ(memcmp(&pub, &key.pub, sizeof pub), 0);
}

TEST(EccPrivateKey, Sec1OfOpenssl) {
    for (const char *name : {"p256", "sm2"}) {
        SCOPED_TRACE(name);
        const Octets der = key_file(std::string(name) + ".der");
        const ZACERT_EccPriKey key = decoded(der);
        const std::vector<Octets> parts = children_of(der);
        EXPECT_EQ(content_of(parts[1]), Octets(key.d, key.d + 32));
        const Octets spki = key_file("spki_" + std::string(name) + ".der");
        EXPECT_EQ(memcmp(spki.data() + spki.size() - 64, key.pub.x, 64), 0);
        EXPECT_EQ(key.pub.curve.len1, 256);

        // A key without its point is still a key.
        const ZACERT_EccPriKey bare = decoded(sequence({parts[0], parts[1], parts[2]}));
        EXPECT_EQ(memcmp(bare.d, key.d, 32), 0);
        EXPECT_EQ(memcmp(&bare.pub.curve, &key.pub.curve, sizeof key.pub.curve), 0);
        EXPECT_EQ(to_hex(bare.pub.x), to_hex(Octets(32, 0)));
    }
    const ZACERT_EccPriKey named = decoded(key_file("p256.der"));
    const ZACERT_EccPriKey explicit_one = decoded(key_file("p256_explicit.der"));
    EXPECT_EQ(memcmp(&named, &explicit_one, sizeof named), 0);
    // Another curve of 256 bits is known by nothing but its name.
    EXPECT_EQ(decoded(key_file("secp256k1.der")).pub.curve.p[0], 0);
    EXPECT_EQ(decode(ZACERT_DecodeEccPriKey_New, key_file("p384.der"), nullptr), 101u);
}

TEST(EccPrivateKey, Sec1NumbersStandAtTheEndAndOddPointsStayOut) {
    const ZACERT_EccPriKey short_d = decoded(from_hex("30 07 02 01 01 04 02 AB CD"));
    EXPECT_EQ(to_hex(std::span(short_d.d).last(3)), "00 AB CD");
    EXPECT_EQ(short_d.d[0], 0);
    EXPECT_EQ(short_d.pub.curve.len1, 256) << "a curve that is not named";
    const Octets compressed = element(0xA1, element(3, join({{0x00, 0x02}, Octets(32, 0x11)})));
    const ZACERT_EccPriKey key =
        decoded(sequence({kVersion, from_hex("04 01 05"), element(0xA0, kP256), compressed}));
    EXPECT_EQ(key.pub.x[0], 0);
    EXPECT_EQ(key.pub.curve.p[0], 0xFF);
}

TEST(EccPrivateKey, ContainersBecomeSec1) {
    const Octets sm2 = key_file("sm2.der");
    const ZACERT_EccPriKey key = decoded(sm2);
    const struct {
        Octets oid;
        size_t container, sec1;
        bool known;
    } rows[] = {
        {{}, 107, 109, false},         {kSm2Short, 116, 120, true},    {kSm2, 117, 121, true},
        {kNational9, 118, 122, false}, {kNational10, 119, 123, false},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(to_hex(row.oid));
        const Octets der = container(row.oid, key);
        EXPECT_EQ(der.size(), row.container);
        const ZACERT_EccPriKey back = decoded(der);
        EXPECT_EQ(memcmp(back.d, key.d, 32), 0);
        EXPECT_EQ(memcmp(back.pub.x, key.pub.x, 64), 0);
        EXPECT_EQ(back.pub.curve.p[0], row.known ? 0xFF : 0);
        EXPECT_EQ(back.pub.curve.len2, 256);

        const Octets sec1 = convert(der);
        EXPECT_EQ(sec1.size(), row.sec1);
        const std::vector<Octets> parts = children_of(sec1);
        ASSERT_EQ(parts.size(), row.oid.empty() ? 3u : 4u);
        EXPECT_EQ(parts[1], field(key.d, 4));
        if (!row.oid.empty()) {
            EXPECT_EQ(parts[2], element(0xA0, row.oid));
        }
        EXPECT_EQ(convert(sec1), sec1);
    }
    EXPECT_EQ(convert(container(kSm2, key)), sm2);
    EXPECT_EQ(convert(encode(key)), sm2);
    EXPECT_EQ(convert(encode(decoded(key_file("p256.der")))), key_file("p256.der"));
}

TEST(EccPrivateKey, ContainersWithOtherStrings) {
    const ZACERT_EccPriKey key = decoded(key_file("sm2.der"));
    EXPECT_EQ(convert(container(kSm2, key, 4)), key_file("sm2.der"));
    const Octets number = from_hex("02 02 00 AB");
    const ZACERT_EccPriKey numbers = decoded(sequence({kVersion, kSm2, number, number, number}));
    EXPECT_EQ(numbers.d[31], 0xAB);
    EXPECT_EQ(numbers.pub.y[31], 0xAB);
    const Octets text = from_hex("13 01 AB");
    EXPECT_EQ(decoded(sequence({kVersion, kSm2, text, text, text})).d[0], 0xAB);
}

TEST(EccPrivateKey, RefusedInput) {
    const ZACERT_EccPriKey key = decoded(key_file("sm2.der"));
    const Octets d = field(key.d);
    const Octets large = element(0x13, Octets(33, 0x11));
    const Octets large_number = element(2, Octets(33, 0x11));
    const std::vector<Octets> plain = children_of(encode(key));
    const std::vector<Octets> sec1 = children_of(key_file("sm2.der"));
    const std::string null_curve =
        "----->ZACERT_DecodeEccCurve: \xCB\xBD\xD4\xBF"
        "DER"
        "\xCA\xFD\xBE\xDD\xBD\xE1\xB9\xB9\xCE\xAA\xBF\xD5";
    const struct {
        Octets der;
        uint32_t code;
        std::string line;  // the first
    } rows[] = {
        {{}, 108, "----->ZACERT_DecodeEccPriKey_New: pDerEccPri == NULL || iDerEccPriLen<=0"},
        {{0x31, 0x00}, 108, "------>pMidData[0]!=0x30"},
        {join({encode(key), {0}}), 102, "------>ZACERT_LengthNotEqualErr"},
        {sequence({}), 113, "------>ZACERT_ItemMissingErr"},
        {sequence({kVersion}), 113, "------>ZACERT_ItemMissingErr"},
        {sequence({kVersion, kVersion}), 122, "------>ZACERT_TypeErr"},
        {sequence({kSm2, kSm2}), 122, "------>ZACERT_TypeErr"},
        {sequence({{0x05, 0x00}, plain[1], plain[2], plain[3]}), 108, null_curve},
        {sequence({plain[0], plain[1]}), 113, kTextY},
        {sequence({plain[0], plain[1], plain[2]}), 113, kTextD},
        {sequence({plain[0], plain[1], plain[2], large}), 101, kTextD},
        {sequence({kVersion, kSm2}), 113, kTextD},
        {sequence({kVersion, kSm2, d}), 113, kTextX},
        {sequence({kVersion, d, d}), 113, kTextY},
        {sequence({kVersion, kSm2, d, large, d}), 101, kTextX},
        {sequence({kVersion, kSm2, d, d, large_number}), 101, "------>ZACERT_LengthErr"},
        {sequence({kVersion, kSm2, d, {0x05, 0x00}, d}), 122, kTextX},
        {sequence({sec1[0], element(4, Octets(33, 0x11)), sec1[2]}), 101, kTextD},
        {sequence({sec1[0], sec1[1], from_hex("A1 02 03 00")}), 101, "------>ZACERT_LengthErr"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(to_hex(row.der));
        ZACERT_EccPriKey out;
        memset(&out, 0xA5, sizeof out);
        const ZACERT_EccPriKey before = out;
        const TraceRecord record;
        EXPECT_EQ(decode(ZACERT_DecodeEccPriKey_New, row.der, &out), row.code);
        EXPECT_EQ(record.failures().front(), row.line);
        EXPECT_EQ(memcmp(&out, &before, sizeof out), 0);
    }
}

TEST(EccPrivateKey, ExplicitDecoderTakesItsFormAlone) {
    const TraceRecord record;
    EXPECT_EQ(decode(ZACERT_DecodeEccPriKey, key_file("sm2.der"), nullptr), 108u);
    EXPECT_EQ(decode(ZACERT_DecodeEccPriKey, {0x31, 0x00}, nullptr), 108u);
    EXPECT_EQ(decode(ZACERT_DecodeEccPriKey, {}, nullptr), 108u);
    EXPECT_EQ(record.failures(),
              (Trail{"------>pMidData[0]!=0x30", "----->ZACERT_DecodeEccCurve: ZAsn1_ReadSequence",
                     "----->ZACERT_DecodeEccPriKey: pDerEccPri[0] != 0x30",
                     "----->ZACERT_DecodeEccPriKey: pDerEccPri == NULL || iDerEccPriLen<=0"}));
}

TEST(EccPrivateKey, ConversionRefuses) {
    ZACERT_EccPriKey key = decoded(key_file("secp256k1.der"));
    EXPECT_EQ(conversion_result(encode(key)), 122u) << "a curve without an identifier";
    EXPECT_EQ(convert(container(kSecp256k1, key)), key_file("secp256k1.der"));
    key = decoded(key_file("sm2.der"));
    memset(key.pub.x, 0, sizeof key.pub.x);
    memset(key.pub.y, 0, sizeof key.pub.y);
    EXPECT_EQ(conversion_result(encode(key)), 113u) << "no point";
    EXPECT_EQ(conversion_result(sequence({kVersion, kSm2, field(key.d)})), 113u);
    EXPECT_EQ(conversion_result(sequence({kVersion, kVersion})), 122u);
    EXPECT_EQ(conversion_result({}), 108u);
    uint32_t len = 77;
    EXPECT_EQ(ZACERT_EcPrivateZqcspDerToCertDer(nullptr, 5, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_EcPrivateZqcspDerToCertDer(key.d, 0, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_EcPrivateZqcspDerToCertDer(key.d, 1, nullptr, nullptr), 108u);
    EXPECT_EQ(len, 77u);
}

TEST(EccPrivateKey, RefusedArguments) {
    const ZACERT_EccPriKey key{};
    uint32_t len = 77;
    const std::pair<int32_t, uint32_t> rows[] = {{291, 101}, {293, 101}, {260, 101}, {0, 108}};
    for (const auto &[rec_len, code] : rows) {
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
    EXPECT_EQ(len, 77u);
}

TEST(EccPrivateKey, WithoutMemoryNothingIsLeftOfTheSecret) {
    const ZACERT_EccPriKey key = decoded(key_file("sm2.der"));
    const Octets forms[] = {encode(key), container(kSm2, key), key_file("sm2.der")};
    const FreedSecret secret(key.d);
    expect_allocation_faults_survived([&] {
        uint32_t len = 77;
        const uint32_t result = ZACERT_EncodeEccPriKey(&key, sizeof key, nullptr, &len);
        EXPECT_TRUE(result == 0 || len == 77);
        return result;
    });
    for (const Octets &der : forms) {
        expect_allocation_faults_survived(
            [&] { return decode(ZACERT_DecodeEccPriKey_New, der, nullptr); });
        expect_allocation_faults_survived([&] { return conversion_result(der); });
    }
    EXPECT_FALSE(secret.found());
}

TEST(EccPrivateKey, DamageIsSurvived) {
    const ZACERT_EccPriKey key = decoded(key_file("sm2.der"));
    for (const Octets &der :
         {encode(key), container(kSm2, key), key_file("sm2.der"), key_file("p256_explicit.der")}) {
        expect_damage_survived(der, [](const Octets &damaged) {
            return decode(ZACERT_DecodeEccPriKey_New, damaged, nullptr);
        });
        expect_damage_survived(der, conversion_result);
    }
}

}  // namespace
