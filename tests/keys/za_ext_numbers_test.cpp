#include "key_files.hpp"

#include <algorithm>

using namespace za::test;

namespace {

const std::set<Trail> kNoMemory = {{"------>ZAPR_Malloc", "------>ZACERT_MemoryErr"}};
const Codec<ZA_RSAPublicKey> kPublic{ZA_Decode_PublicKey, ZA_Encode_PublicKey, kNoMemory};
const Codec<ZA_RSAPrivateKey> kPrivate{ZA_Decode_PrivateKey, ZA_Encode_PrivateKey, kNoMemory};
const Codec<ZA_ECCSignStruct> kSignature{
    ZA_Decode_DerDataToECCSignStruct,
    ZA_Encode_ECCSignStructToDerData,
    {{"------>ZAPR_Malloc", "------>ZAsn1_Low_WriteTagAndLength", "------>ZAsn1_WriteIntegerArray",
      "------>ZA_Integer_To_IntegerArray"},
     {"------>ZAPR_Malloc", "------>ZAsn1_Low_CreateAnyBuf", "------>ZAsn1_Low_WriteTagAndLength",
      "------>ZAsn1_WriteIntegerArray", "------>ZA_Integer_To_IntegerArray"},
     {"------>ZAPR_Malloc", "------>ZAsn1_WriteSequence"},
     {"------>ZAPR_Malloc", "------>ZAsn1_Low_CreateAnyBuf", "------>ZAsn1_WriteSequence"},
     {"------>ZAPR_Malloc", "------>ZACERT_MemoryErr"}}};

TEST(RsaKey, NumbersStandAtTheEndOfTheirFields) {
    ZA_RSAPublicKey key{};
    EXPECT_EQ(to_hex(kPublic.encode(key)), "30 04 02 00 02 00") << "zero is an empty INTEGER";
    key.modulus[254] = 0x80;
    key.exponent[255] = 1;
    EXPECT_EQ(to_hex(kPublic.encode(key)), "30 08 02 03 00 80 00 02 01 01");
}

// The elements behind the first `num_before` are the numbers, each in a field of its width.
template <class Key>
void expect_numbers(const Codec<Key> &codec, const std::vector<Octets> &files, size_t num_before,
                    const std::vector<size_t> &widths, const Trail &null_lines) {
    for (const Octets &der : files) {
        Key key;
        ASSERT_EQ(codec.decode(der, &key), 0u);
        EXPECT_EQ(to_hex(codec.encode(key)), to_hex(der));
        Octets expected;
        for (size_t k = 0; k < widths.size(); ++k) {
            const Octets number = content_of(children_of(der)[num_before + k]);
            expected.resize(expected.size() + widths[k]);
            std::copy_n(number.rbegin(), std::min(number.size(), widths[k]), expected.rbegin());
        }
        EXPECT_EQ(to_hex(octets_of(key)), to_hex(expected));
        codec.expect_faults_survived(der, key);
    }
    const std::vector<Octets> fields = children_of(files[0]);
    for (size_t k = 0; k < widths.size(); ++k) {
        SCOPED_TRACE(k);
        std::vector<Octets> changed = fields;
        Octets &number = changed[num_before + k];
        const Octets full(widths[k], 0x11);
        EXPECT_EQ(codec.decode(first(fields, num_before + k)), 113u);
        number = element(2, join({{0x11}, full}));
        EXPECT_EQ(codec.decode(sequence(changed)), 101u);
        number = element(2, join({Octets(9, 0), full}));
        EXPECT_EQ(codec.decode(sequence(changed)), 0u);
    }
    EXPECT_EQ(codec.decode(sequence({join(fields), {0x05, 0x00}})), 0u) << "a further element";
    codec.expect_refused("keys/rsa_refused.txt");

    Key key{};
    uint32_t len = 77;
    EXPECT_EQ(codec.decode_key(&key, nullptr, -1), 101u);
    EXPECT_EQ(codec.decode_key(&key, nullptr, 5), 108u);
    EXPECT_EQ(codec.encode_key(&key, nullptr, nullptr), 108u);
    const TraceRecord record;
    EXPECT_EQ(codec.encode_key(nullptr, nullptr, &len), 100u);
    EXPECT_EQ(codec.decode_key(nullptr, nullptr, 1), 100u);
    EXPECT_EQ(codec.decode({}), 101u);
    EXPECT_EQ(record.failures(), null_lines);
}

TEST(RsaKey, PublicKeys) {
    expect_numbers(
        kPublic, {key_file("rsa1024_pub.der"), key_file("rsa2048_pub.der")}, 0, {256, 256},
        {"------>Pointer is NULL", "------>Pointer is NULL", "------>derPublicKeyLen <= 0"});
    EXPECT_EQ(kPublic.decode(key_file("rsa4096_pub.der")), 101u);
}

TEST(RsaKey, PrivateKeys) {
    expect_numbers(
        kPrivate, {key_file("rsa1024.der"), key_file("rsa2048.der")}, 1,
        {256, 256, 256, 128, 128, 128, 128, 128},
        {"------>Pointer is NULL", "------>Pointer is NULL", "------>derPrivateKeyLen <= 0"});
    const TraceRecord record;
    EXPECT_EQ(kPrivate.decode({}), 101u);
    EXPECT_EQ(record.lines(), (Trail{"======>ZA_Decode_PrivateKey Begin",
                                     "======>Decode PrivateKey;", "------>derPrivateKeyLen <= 0"}));
}

TEST(EccSignature, ComesBackInTheShortestForm) {
    const Octets der = key_file("ecdsa_p256.der");
    expect_numbers(
        kSignature, {der, from_hex("30 26 02 01 01 02 21 00 80 00*31")}, 0, {32, 32},
        {"------>pSignStruct = NULL", "------>pSignStruct is NULL", "------>pDerSignDataLen <= 0"});
    EXPECT_EQ(kSignature.decode(key_file("ecdsa_p384.der")), 101u);
    ZA_ECCSignStruct signature;
    uint32_t len = 0;
    const TraceRecord record;
    EXPECT_EQ(kSignature.decode(der, &signature), 0u);
    EXPECT_EQ(kSignature.encode_key(&signature, nullptr, &len), 0u);
    EXPECT_EQ(record.lines(),
              (Trail{"======>ZA_Decode_SignDerDataTo SignStruct ",
                     "========>ZA_Decode_SignDerDataTo SignStruct End",
                     "======>ZA_Encode_PublicKey", "=====>ZA_Encode_PublicKey End"}));
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
        EXPECT_EQ(record.lines(), (Trail{"======>ZA_Encode_PublicKey", "------>ZA_TraceZero"}));
        EXPECT_EQ(len, 77u);
        EXPECT_EQ(out[0], 0xA5);
    }
}

uint32_t wrap(const Octets &pkcs1, std::string &pkcs8) {
    uint32_t status = 0;
    pkcs8 = to_hex(two_calls(
        [&](uint8_t *out, uint32_t *len) {
            return ZI_PKCS1to8KEY(pkcs1.data(), uint32_t(pkcs1.size()), out, len);
        },
        &status));
    return status;
}

TEST(RsaKey, BecomesThePkcs8OfOpensslAndLeavesNoSecret) {
    const Octets good = key_file("rsa1024.der");
    EXPECT_EQ(ZI_PKCS1to8KEY(good.data(), 5, nullptr, nullptr), 108u);
    ZA_RSAPrivateKey key;
    ASSERT_EQ(kPrivate.decode(good, &key), 0u);
    std::string pkcs8;
    EXPECT_EQ(wrap(key_file("rsa2048.der"), pkcs8), 0u);
    EXPECT_EQ(pkcs8, to_hex(key_file("rsa2048_p8.der")));
    expect_decoded("keys/pkcs1_refused.txt", kKeyCodes, wrap);

    const NoSecret no_secret(std::span(key.prime1).last(64));
    EXPECT_EQ(kPrivate.encode(key), good);
    expect_allocation_faults_survived([&] { return wrap(good, pkcs8); });
    expect_damage_survived(good, kKeyCodes, [&](const Octets &der) { return wrap(der, pkcs8); });
}

}  // namespace
