#include "key_files.hpp"

#include <algorithm>

using namespace za::test;

namespace {

// One key type's two functions, its numbers' widths and a file of openssl.
template <class Key>
struct Codec {
    uint32_t (*decode_key)(Key *, const uint8_t *, int32_t);
    uint32_t (*encode_key)(const Key *, uint8_t *, uint32_t *);
    std::vector<size_t> widths;
    size_t num_before;  // elements before the numbers
    std::string file;

    uint32_t decode(const Octets &der, Key *key = nullptr) const {
        auto own = marked<Key>();
        const uint32_t result = decode_key(key == nullptr ? &own : key, der.data(), len_of(der));
        EXPECT_TRUE(result == 0 || octets_of(own) == octets_of(marked<Key>()));
        return result;
    }
    Octets encode(const Key &key) const {
        return two_calls([&](uint8_t *out, uint32_t *len) { return encode_key(&key, out, len); });
    }
};

const Codec<ZA_RSAPublicKey> kPublic{
    ZA_Decode_PublicKey, ZA_Encode_PublicKey, {256, 256}, 0, "rsa1024_pub.der"};
const Codec<ZA_RSAPrivateKey> kPrivate{ZA_Decode_PrivateKey,
                                       ZA_Encode_PrivateKey,
                                       {256, 256, 256, 128, 128, 128, 128, 128},
                                       1,
                                       "rsa1024.der"};

TEST(RsaKey, NumbersStandAtTheEndOfTheirFields) {
    ZA_RSAPublicKey key{};
    EXPECT_EQ(to_hex(kPublic.encode(key)), "30 04 02 00 02 00") << "zero is an empty INTEGER";
    key.modulus[254] = 0x80;
    key.exponent[255] = 1;
    EXPECT_EQ(to_hex(kPublic.encode(key)), "30 08 02 03 00 80 00 02 01 01");
}

template <class Key>
void expect_codec(const Codec<Key> &codec) {
    SCOPED_TRACE(codec.file);
    const Octets good = key_file(codec.file);
    const Trail no_memory = {"------>ZAPR_Malloc", "------>ZACERT_MemoryErr"};
    std::string large = codec.file;
    large.replace(3, 4, "2048");
    for (const Octets &der : {good, key_file(large)}) {
        auto key = marked<Key>();
        ASSERT_EQ(codec.decode(der, &key), 0u);
        EXPECT_EQ(to_hex(codec.encode(key)), to_hex(der));
        Octets expected;
        for (size_t k = 0; k < codec.widths.size(); ++k) {
            const Octets number = content_of(children_of(der)[codec.num_before + k]);
            expected.resize(expected.size() + codec.widths[k]);
            const size_t len = std::min(number.size(), codec.widths[k]);
            std::copy_n(number.rbegin(), len, expected.rbegin());
        }
        EXPECT_EQ(to_hex(octets_of(key)), to_hex(expected));
        expect_allocation_faults_survived([&] { return codec.decode(der); });
        expect_allocation_faults_survived([&] {
            uint32_t len = 77;
            const TraceRecord record;
            const uint32_t result = codec.encode_key(&key, nullptr, &len);
            EXPECT_EQ(len, result == 0 ? der.size() : 77);
            EXPECT_EQ(record.failures(), result == 0 ? Trail{} : no_memory);
            return result;
        });
    }
    const std::vector<Octets> fields = children_of(good);
    for (size_t k = 0; k < codec.widths.size(); ++k) {
        SCOPED_TRACE(k);
        const size_t place = codec.num_before + k;
        const Octets full(codec.widths[k], 0x11);
        EXPECT_EQ(codec.decode(first(fields, place)), 113u);
        EXPECT_EQ(codec.decode(with(fields, place, element(2, join({{0x11}, full})))), 101u);
        EXPECT_EQ(codec.decode(with(fields, place, element(2, join({Octets(9, 0), full})))), 0u);
    }
    EXPECT_EQ(codec.decode(sequence({join(fields), {0x05, 0x00}})), 0u) << "a further element";
    expect_refused("rsa_refused.txt", [&](const Octets &der) { return codec.decode(der); });
    expect_damage_survived(good, [&](const Octets &der) { return codec.decode(der); });

    Key key{};
    uint32_t len = 77;
    EXPECT_EQ(codec.decode_key(&key, good.data(), -1), 101u);
    EXPECT_EQ(codec.decode_key(&key, nullptr, 5), 108u);
    EXPECT_EQ(codec.encode_key(&key, nullptr, nullptr), 108u);
    const TraceRecord record;
    EXPECT_EQ(codec.encode_key(nullptr, nullptr, &len), 100u);
    EXPECT_EQ(codec.decode_key(nullptr, good.data(), 1), 100u);
    EXPECT_EQ(record.failures(), Trail(2, "------>Pointer is NULL"));
}

TEST(RsaKey, PublicKeys) {
    expect_codec(kPublic);
    EXPECT_EQ(kPublic.decode(key_file("rsa4096_pub.der")), 101u);
    const TraceRecord record;
    EXPECT_EQ(kPublic.decode({}), 101u);
    EXPECT_EQ(record.failures(), Trail{"------>derPublicKeyLen <= 0"});
}

TEST(RsaKey, PrivateKeys) {
    expect_codec(kPrivate);
    const TraceRecord record;
    EXPECT_EQ(kPrivate.decode({}), 101u);
    EXPECT_EQ(record.lines(), (Trail{"======>ZA_Decode_PrivateKey Begin",
                                     "======>Decode PrivateKey;", "------>derPrivateKeyLen <= 0"}));
}

Octets wrap(const Octets &pkcs1, uint32_t *status = nullptr) {
    const auto call = [&](uint8_t *out, uint32_t *len) {
        return ZI_PKCS1to8KEY(pkcs1.data(), uint32_t(pkcs1.size()), out, len);
    };
    return two_calls(call, status);
}

uint32_t wrapping_result(const Octets &pkcs1) {
    uint32_t status = 0;
    wrap(pkcs1, &status);
    return status;
}

TEST(RsaKey, BecomesThePkcs8OfOpensslAndLeavesNoSecret) {
    EXPECT_EQ(to_hex(wrap(key_file("rsa2048.der"))), to_hex(key_file("rsa2048_p8.der")));
    const Octets good = key_file("rsa1024.der");
    expect_refused("pkcs1_refused.txt", wrapping_result);
    EXPECT_EQ(ZI_PKCS1to8KEY(good.data(), 5, nullptr, nullptr), 108u);
    ZA_RSAPrivateKey key;
    ASSERT_EQ(kPrivate.decode(good, &key), 0u);
    const FreedSecret secret(std::span(key.prime1).last(64));
    EXPECT_EQ(kPrivate.encode(key), good);
    expect_allocation_faults_survived([&] { return wrapping_result(good); });
    EXPECT_FALSE(secret.found());
    expect_damage_survived(good, wrapping_result);
}

}  // namespace
