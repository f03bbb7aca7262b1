#include "key_files.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <cstring>
#include <gtest/gtest.h>

using namespace za::test;

namespace {

using Trail = std::vector<std::string>;

// One key type's two functions as one, so that a case can be run on both.
struct Codec {
    const char *name;
    size_t num_numbers;  // behind the version, where there is one
    bool has_version;
    std::function<uint32_t(const uint8_t *, int32_t)> decode;  // into a record kept here
    std::function<Octets()> encode;                            // of that record
    std::function<bool()> untouched;  // whether the record is as `reset` left it
    std::function<void()> reset;
};

template <class Key>
Codec codec(const char *name, size_t num_numbers, bool has_version,
            uint32_t (*decode)(Key *, const uint8_t *, int32_t),
            uint32_t (*encode)(const Key *, uint8_t *, uint32_t *)) {
    auto key = std::make_shared<Key>();
    return {name,
            num_numbers,
            has_version,
            [=](const uint8_t *der, int32_t len) { return decode(key.get(), der, len); },
            [=] {
                return two_calls(
                    [&](uint8_t *out, uint32_t *len) { return encode(key.get(), out, len); });
            },
            [=] {
                const auto *octets = reinterpret_cast<const uint8_t *>(key.get());
                return std::all_of(octets, octets + sizeof(Key),
                                   [](uint8_t x) { return x == 0xA5; });
            },
            [=] { memset(key.get(), 0xA5, sizeof(Key)); }};
}

std::vector<Codec> codecs() {
    return {codec("public", 2, false, ZA_Decode_PublicKey, ZA_Encode_PublicKey),
            codec("private", 8, true, ZA_Decode_PrivateKey, ZA_Encode_PrivateKey)};
}

Octets sample(const Codec &codec) {
    return key_file(codec.has_version ? "rsa1024.der" : "rsa1024_pub.der");
}

TEST(RsaKey, FilesOfOthersComeBackOctetByOctet) {
    const std::vector<Codec> both = codecs();
    const std::pair<const Codec &, const char *> rows[] = {{both[0], "rsa1024_pub.der"},
                                                           {both[0], "rsa2048_pub.der"},
                                                           {both[1], "rsa1024.der"},
                                                           {both[1], "rsa2048.der"}};
    for (const auto &[codec, file] : rows) {
        const Octets der = key_file(file);
        ASSERT_EQ(codec.decode(der.data(), len_of(der)), 0u) << file;
        EXPECT_EQ(to_hex(codec.encode()), to_hex(der)) << file;
    }
}

TEST(RsaKey, NumbersStandAtTheEndOfTheirFields) {
    ZA_RSAPublicKey key{};
    std::fill(std::begin(key.modulus) + 128, std::end(key.modulus), uint8_t{0x11});
    key.modulus[128] = 0xC0;
    key.exponent[253] = 1;
    key.exponent[255] = 1;
    const Octets der =
        two_calls([&](uint8_t *out, uint32_t *len) { return ZA_Encode_PublicKey(&key, out, len); });
    EXPECT_EQ(to_hex(std::span(der).first(10)), "30 81 89 02 81 81 00 C0 11 11");
    EXPECT_EQ(to_hex(std::span(der).last(5)), "02 03 01 00 01");

    ZA_RSAPublicKey back;
    memset(&back, 0xA5, sizeof back);
    ASSERT_EQ(ZA_Decode_PublicKey(&back, der.data(), len_of(der)), 0u);
    EXPECT_EQ(memcmp(&back, &key, sizeof key), 0);
}

TEST(RsaKey, ZeroIsAnEmptyInteger) {
    const ZA_RSAPublicKey zero{};
    const Octets der = two_calls(
        [&](uint8_t *out, uint32_t *len) { return ZA_Encode_PublicKey(&zero, out, len); });
    EXPECT_EQ(to_hex(der), "30 04 02 00 02 00");
    ZA_RSAPublicKey back;
    EXPECT_EQ(ZA_Decode_PublicKey(&back, der.data(), len_of(der)), 0u);
    EXPECT_EQ(memcmp(&back, &zero, sizeof zero), 0);
}

TEST(RsaKey, EveryNumberIsNeededAndHasItsLimit) {
    constexpr size_t kWidths[] = {256, 256, 256, 128, 128, 128, 128, 128};
    for (const Codec &codec : codecs()) {
        const size_t first = codec.has_version ? 1 : 0;
        const std::vector<Octets> fields = children_of(sample(codec));
        for (size_t k = 0; k < codec.num_numbers; ++k) {
            SCOPED_TRACE(std::string(codec.name) + " number " + std::to_string(k));
            const std::vector<Octets> cut(fields.begin(), fields.begin() + long(first + k));
            const Octets missing = sequence(cut);
            codec.reset();
            EXPECT_EQ(codec.decode(missing.data(), len_of(missing)), 113u);
            EXPECT_TRUE(codec.untouched());

            std::vector<Octets> changed = fields;
            changed[first + k] = element(2, Octets(kWidths[k] + 1, 0x11));
            const Octets long_one = sequence(changed);
            EXPECT_EQ(codec.decode(long_one.data(), len_of(long_one)), 101u);
            EXPECT_TRUE(codec.untouched());

            // Leading zeros do not count.
            changed[first + k] = element(2, join({Octets(9, 0), Octets(kWidths[k], 0x11)}));
            const Octets padded = sequence(changed);
            EXPECT_EQ(codec.decode(padded.data(), len_of(padded)), 0u);
        }
        const Octets more = sequence({join(fields), {0x05, 0x00}});
        EXPECT_EQ(codec.decode(more.data(), len_of(more)), 0u) << "a further element is ignored";
    }
}

TEST(RsaKey, FailuresLeaveTheirTrail) {
    for (const Codec &codec : codecs()) {
        const Octets good = sample(codec);
        const Octets behind = join({good, {0}});
        Octets set = good;
        set[0] = 0x31;
        const std::string no_length =
            codec.has_version ? "------>derPrivateKeyLen <= 0" : "------>derPublicKeyLen <= 0";
        const struct {
            Octets der;
            uint32_t code;
            Trail trail;
        } rows[] = {
            {{}, 101, {no_length}},
            {{0x30, 0x00}, 113, {"------>ZACERT_ItemMissingErr"}},
            {behind, 102, {"------>ZACERT_LengthNotEqualErr", "------>ZAsn1_ReadSequence"}},
            {set, 108, {"------>pMidData[0]!=0x30", "------>ZAsn1_ReadSequence"}},
            {{0x30, 0x03, 0x02, 0x05, 0x01},
             101,
             {"------>lTotalLength != 0", "------>ZAsn1_ReadSequence"}},
        };
        for (const auto &row : rows) {
            const TraceRecord record;
            EXPECT_EQ(codec.decode(row.der.data(), len_of(row.der)), row.code);
            EXPECT_EQ(record.failures(), row.trail) << codec.name;
        }
        EXPECT_EQ(codec.decode(good.data(), -1), 101u);
        EXPECT_EQ(codec.decode(nullptr, 5), 108u);
    }
    const Octets large = key_file("rsa4096_pub.der");
    ZA_RSAPublicKey key;
    EXPECT_EQ(ZA_Decode_PublicKey(&key, large.data(), len_of(large)), 101u);
}

TEST(RsaKey, NullArguments) {
    const ZA_RSAPublicKey public_key{};
    const ZA_RSAPrivateKey private_key{};
    uint32_t len = 77;
    uint8_t octet = 0;
    const TraceRecord record;
    EXPECT_EQ(ZA_Encode_PublicKey(nullptr, nullptr, &len), 100u);
    EXPECT_EQ(ZA_Encode_PrivateKey(nullptr, nullptr, &len), 100u);
    EXPECT_EQ(ZA_Decode_PublicKey(nullptr, &octet, 1), 100u);
    EXPECT_EQ(ZA_Decode_PrivateKey(nullptr, &octet, 1), 100u);
    EXPECT_EQ(record.failures(), Trail(4, "------>Pointer is NULL"));
    EXPECT_EQ(ZA_Encode_PublicKey(&public_key, nullptr, nullptr), 108u);
    EXPECT_EQ(ZA_Encode_PrivateKey(&private_key, nullptr, nullptr), 108u);
    EXPECT_EQ(len, 77u);
}

TEST(RsaKey, ThePrivateDecoderAnnouncesItself) {
    const Octets der = key_file("rsa1024.der");
    ZA_RSAPrivateKey key;
    const TraceRecord record;
    ZA_Decode_PrivateKey(&key, der.data(), len_of(der));
    EXPECT_EQ(record.lines(),
              (Trail{"======>ZA_Decode_PrivateKey Begin", "======>Decode PrivateKey;",
                     "======>ZA_Decode_PrivateKey End"}));
}

TEST(RsaKey, WithoutMemory) {
    for (const Codec &codec : codecs()) {
        const Octets der = sample(codec);
        expect_allocation_faults_survived([&] { return codec.decode(der.data(), len_of(der)); });
    }
    const ZA_RSAPublicKey public_key{};
    const ZA_RSAPrivateKey private_key{};
    expect_allocation_faults_survived([&] {
        uint32_t len = 77;
        const uint32_t result = ZA_Encode_PublicKey(&public_key, nullptr, &len);
        EXPECT_TRUE(result == 0 || len == 77);
        return result;
    });
    fail_allocation(1);
    const TraceRecord record;
    uint32_t len = 77;
    EXPECT_EQ(ZA_Encode_PrivateKey(&private_key, nullptr, &len), 100u);
    EXPECT_EQ(len, 77u);
    EXPECT_EQ(record.failures(), (Trail{"------>ZAPR_Malloc", "------>ZACERT_MemoryErr"}));
    fail_allocation(0);
}

TEST(RsaKey, DamageIsSurvived) {
    for (const Codec &codec : codecs()) {
        expect_damage_survived(sample(codec), [&](const Octets &der) {
            return codec.decode(der.data(), len_of(der));
        });
    }
}

uint32_t wrap(const Octets &pkcs1, uint8_t *out, uint32_t *len) {
    return ZI_PKCS1to8KEY(pkcs1.data(), static_cast<uint32_t>(pkcs1.size()), out, len);
}

TEST(Pkcs1To8, GivesWhatOthersGive) {
    const Octets pkcs1 = key_file("rsa2048.der");
    const Octets pkcs8 =
        two_calls([&](uint8_t *out, uint32_t *len) { return wrap(pkcs1, out, len); });
    EXPECT_EQ(to_hex(pkcs8), to_hex(key_file("rsa2048_p8.der")));
}

TEST(Pkcs1To8, RefusesWhatIsNoKey) {
    const Octets good = key_file("rsa1024.der");
    const std::vector<Octets> fields = children_of(good);
    auto with_second = [&](const Octets &second) {
        std::vector<Octets> changed = fields;
        changed[1] = second;
        return sequence(changed);
    };
    const std::pair<Octets, uint32_t> rows[] = {
        {{}, 108},
        {sequence({fields.begin(), fields.end() - 1}), 113},
        {with_second({0x04, 0x01, 0x05}), 122},
        {key_file("rsa2048_p8.der"), 113},
        {join({good, {0}}), 102},
        {{0x04, 0x00}, 108},
    };
    for (const auto &[pkcs1, code] : rows) {
        uint32_t len = 77;
        EXPECT_EQ(wrap(pkcs1, nullptr, &len), code) << to_hex(pkcs1);
        EXPECT_EQ(len, 77u);
    }
    EXPECT_EQ(ZI_PKCS1to8KEY(good.data(), 5, nullptr, nullptr), 108u);
    expect_allocation_faults_survived([&] {
        uint32_t len = 0;
        return wrap(good, nullptr, &len);
    });
    expect_damage_survived(good, [](const Octets &der) {
        uint32_t len = 0;
        return wrap(der, nullptr, &len);
    });
}

TEST(RsaKey, SecretsAreWiped) {
    const Octets der = key_file("rsa1024.der");
    ZA_RSAPrivateKey key;
    ASSERT_EQ(ZA_Decode_PrivateKey(&key, der.data(), len_of(der)), 0u);
    const FreedSecret secret(std::span(key.prime1).last(64));
    uint32_t len = 0;
    EXPECT_EQ(ZA_Encode_PrivateKey(&key, nullptr, &len), 0u);
    EXPECT_EQ(wrap(der, nullptr, &len), 0u);
    EXPECT_FALSE(secret.found());
}

}  // namespace
