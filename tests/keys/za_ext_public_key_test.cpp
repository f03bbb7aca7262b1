#include "keys/za_ext_public_key.hpp"

#include "key_files.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <cstring>
#include <gtest/gtest.h>

using namespace za::test;

namespace {

using Trail = std::vector<std::string>;

// A ZI_PubKey that is cleared at the end.
class Key {
  public:
    Key() { memset(&key_, 0, sizeof key_); }
    ~Key() {
        for (Anybuf *record : {&key_.algorithm, &key_.parameters, &key_.keyBits, &key_.rawBits}) {
            ZI_ClearAnybuf(record);
        }
    }
    Key(const Key &) = delete;
    Key &operator=(const Key &) = delete;

    uint32_t decode(const Octets &spki) {
        const Anybuf record = borrowed(spki, 16);
        return ZI_DecodePubKey(&record, &key_);
    }
    const ZI_PubKey *operator->() const { return &key_; }

  private:
    ZI_PubKey key_;
};

uint32_t decode_and_clear(const Octets &spki) {
    return Key().decode(spki);
}

const Octets kEcPublicKey = from_hex("06 07 2A 86 48 CE 3D 02 01");

// An elliptic-curve key with these parameters and a point of 65 octets.
Octets ec_key(const Octets &parameters, const Octets &algorithm = kEcPublicKey) {
    const Octets point = join({{0x00, 0x04}, Octets(32, 0x58), Octets(32, 0x59)});
    return sequence({sequence({algorithm, parameters}), element(3, point)});
}

TEST(PublicKey, KindsOfKeys) {
    const struct {
        const char *file;
        size_t algorithm, parameters;
        uint32_t kind;
        size_t raw_bits;
        bool has_ecc;
        size_t key_bits;
    } rows[] = {
        {"spki_rsa2048.der", 9, 0, 0, 270, false, 270},
        {"spki_p256.der", 7, 8, 12, 65, true, 287},
        {"spki_sm2.der", 7, 8, 12, 65, true, 287},
        {"spki_secp256k1.der", 7, 5, 12, 65, true, 92},
        {"spki_p384.der", 7, 5, 12, 97, false, 97},
        {"spki_p256_compressed.der", 7, 8, 12, 33, false, 33},
        {"spki_p256_explicit.der", 7, 250, 11, 65, true, 287},
        {"spki_sm2_explicit.der", 7, 227, 11, 65, true, 287},
        {"spki_ed25519.der", 3, 0, 0, 32, false, 32},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.file);
        const NoLeak no_leak;
        Key key;
        ASSERT_EQ(key.decode(key_file(row.file)), 0u);
        EXPECT_EQ(key->tag, 16u);
        EXPECT_EQ(key->algorithm.dataLen, row.algorithm);
        EXPECT_EQ(key->parameters.dataLen, row.parameters);
        EXPECT_EQ(key->parameters.data == nullptr, row.parameters == 0);
        EXPECT_EQ(key->keyKind, row.kind);
        EXPECT_EQ(key->rawBits.dataLen, row.raw_bits);
        EXPECT_EQ(key->hasEcc, row.has_ecc ? 1u : 0u);
        EXPECT_EQ(key->keyBits.dataLen, row.key_bits);
    }
}

TEST(PublicKey, EllipticCurveKeysHaveTheirRecord) {
    for (const char *file : {"spki_p256.der", "spki_sm2_explicit.der", "spki_secp256k1.der"}) {
        SCOPED_TRACE(file);
        Key key;
        ASSERT_EQ(key.decode(key_file(file)), 0u);
        EXPECT_EQ(memcmp(key->ecc.x, key->rawBits.data + 1, 32), 0);
        EXPECT_EQ(memcmp(key->ecc.y, key->rawBits.data + 33, 32), 0);
        EXPECT_EQ(key->ecc.curve.len1, 256);
        ZACERT_EccPubKey decoded;
        uint32_t len = 0;
        EXPECT_EQ(ZACERT_DecodeEccPubKey(key->keyBits.data, int32_t(key->keyBits.dataLen), &decoded,
                                         &len),
                  0u);
        EXPECT_EQ(memcmp(&decoded, &key->ecc, sizeof decoded), 0);
    }
    Key named;
    Key explicit_one;
    ASSERT_EQ(named.decode(key_file("spki_p256.der")), 0u);
    ASSERT_EQ(explicit_one.decode(key_file("spki_p256_explicit.der")), 0u);
    EXPECT_EQ(memcmp(&named->ecc, &explicit_one->ecc, sizeof named->ecc), 0);
}

TEST(PublicKey, ParametersOfEveryForm) {
    const Octets sm2_short = from_hex("06 07 2A 81 1C CF 55 82 2D");
    const struct {
        Octets parameters;
        uint32_t kind;
        std::string kept;
        bool known_curve;
    } rows[] = {
        {{}, 0, "", false},
        {from_hex("05 00"), 0, "", false},
        {sm2_short, 12, "2A 81 1C CF 55 82 2D", true},
        {from_hex("02 01 01"), 1, "02 01 01", false},
        {from_hex("02 01 07"), 7, "02 01 07", false},
        {from_hex("02 01 08"), 0, "02 01 08", false},
        {from_hex("02 01 00"), 0, "02 01 00", false},
        {from_hex("02 05 01 00 00 00 03"), 0, "02 05 01 00 00 00 03", false},
        {from_hex("30 02 05 00"), 11, "30 02 05 00", false},
        {from_hex("04 01 01"), 0, "04 01 01", false},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(to_hex(row.parameters));
        Key key;
        ASSERT_EQ(key.decode(ec_key(row.parameters)), 0u);
        EXPECT_EQ(key->keyKind, row.kind);
        EXPECT_EQ(to_hex(std::span(key->parameters.data, key->parameters.dataLen)), row.kept);
        EXPECT_EQ(key->hasEcc, 1u);
        EXPECT_EQ(key->ecc.x[31], 0x58);
        EXPECT_EQ(key->ecc.curve.p[0], row.known_curve ? 0xFF : 0);
    }
}

TEST(PublicKey, ACurveAsTheAlgorithmItself) {
    const Octets sm2 = from_hex("06 08 2A 81 1C CF 55 01 82 2D");
    Key key;
    ASSERT_EQ(key.decode(ec_key(from_hex("05 00"), sm2)), 0u);
    EXPECT_EQ(key->hasEcc, 1u);
    EXPECT_EQ(key->ecc.curve.p[3], 0xFE);
    Key other;
    ASSERT_EQ(other.decode(ec_key(sm2, from_hex("06 03 2B 65 70"))), 0u);
    EXPECT_EQ(other->hasEcc, 0u) << "another algorithm";
    Octets hybrid = ec_key(sm2);
    hybrid[hybrid.size() - 65] = 6;
    Key third;
    ASSERT_EQ(third.decode(hybrid), 0u);
    EXPECT_EQ(third->hasEcc, 0u) << "a point in the hybrid form";
}

TEST(PublicKey, RefusedInput) {
    const std::vector<Octets> fields = children_of(key_file("spki_p256.der"));
    const struct {
        Octets spki;
        uint32_t code;
        Trail trail;
    } rows[] = {
        {sequence({}), 113, {"------>ZACERT_ItemMissingErr"}},
        {sequence({fields[0]}), 113, {"------>ZACERT_ItemMissingErr"}},
        {sequence({sequence({}), fields[1]}), 113, {"------>ZACERT_ItemMissingErr"}},
        {sequence({fields[1], fields[1]}),
         108,
         {"------>pMidData[0]!=0x30", "------>ZAsn1_ReadSequence"}},
        {sequence({fields[0], from_hex("03 00")}),
         101,
         {"------>ZACERT_LengthErr", "------>ZAsn1_Low_ReadTagAndLength",
          "------>ZAsn1_ReadBitString"}},
        {join({sequence(fields), {0}}),
         102,
         {"------>ZACERT_LengthNotEqualErr", "------>ZAsn1_ReadSequence"}},
    };
    for (const auto &row : rows) {
        Key key;
        const TraceRecord record;
        EXPECT_EQ(key.decode(row.spki), row.code) << to_hex(row.spki);
        EXPECT_EQ(record.failures(), row.trail) << to_hex(row.spki);
        EXPECT_EQ(key->tag, 0u) << "untouched";
    }
    const Anybuf empty{};
    ZI_PubKey key{};
    EXPECT_EQ(ZI_DecodePubKey(nullptr, &key), 108u);
    EXPECT_EQ(ZI_DecodePubKey(&empty, nullptr), 108u);
    EXPECT_EQ(ZI_DecodePubKey(&empty, &key), 108u);
}

TEST(PublicKey, WithoutMemory) {
    for (const char *file : {"spki_rsa2048.der", "spki_p256.der"}) {
        const Octets spki = key_file(file);
        expect_allocation_faults_survived([&] {
            Key key;
            const uint32_t result = key.decode(spki);
            EXPECT_EQ(key->tag, result == 0 ? 16u : 0u);
            return result;
        });
    }
}

TEST(PublicKey, TheViewAllocatesNothing) {
    const Octets spki = key_file("spki_p256.der");
    const size_t before = heap_count().allocations;
    za::keys::PublicKeyInfo info;
    EXPECT_EQ(za::keys::decode_public_key_info(za::asn1::Element(za::Bytes(spki)), info),
              za::Status::ok);
    EXPECT_TRUE(info.has_ecc);
    EXPECT_EQ(heap_count().allocations, before);
}

TEST(PublicKey, DamageIsSurvived) {
    for (const char *file : {"spki_rsa2048.der", "spki_p256.der", "spki_p256_explicit.der"}) {
        expect_damage_survived(key_file(file), decode_and_clear);
    }
}

}  // namespace
