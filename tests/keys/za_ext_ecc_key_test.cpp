#include "key_files.hpp"

using namespace za::test;

namespace {

template <class Key, auto Encode, auto Decode>
Codec<Key> codec(const std::string &step, const std::string &encoder) {
    return {[](Key *key, const uint8_t *der, int32_t der_len) {
                uint32_t len = 77;
                const uint32_t result = Decode(der, der_len, key, &len);
                EXPECT_EQ(len, result == 0 ? sizeof *key : 77);
                return result;
            },
            [](const Key *key, uint8_t *out, uint32_t *len) {
                return Encode(key, sizeof *key, out, len);
            },
            {{"------>ZAPR_Malloc", step, encoder}}};
}

const auto kPublic = codec<ZACERT_EccPubKey, ZACERT_EncodeEccPubKey, ZACERT_DecodeEccPubKey>(
    "----->ZACERT_EncodeEccPublicKey", "----->ZACERT_EncodeEccPubKey");
// The decoder that takes every form.
const auto kPrivate = codec<ZACERT_EccPriKey, ZACERT_EncodeEccPriKey, ZACERT_DecodeEccPriKey_New>(
    "----->ZACERT_EncodeEccPrivateKey", "----->ZACERT_EncodeEccPriKey");

template <auto Encode, auto... Decode, class Key>
void expect_arguments_refused(const Key &key, const std::string &encoder) {
    const int32_t size = sizeof key;
    const Octets der = two_calls(
        [&](uint8_t *out, uint32_t *out_len) { return Encode(&key, size, out, out_len); });
    uint32_t len = 77;
    const TraceRecord record;
    EXPECT_EQ(Encode(&key, size - 1, nullptr, &len), 101u);
    EXPECT_EQ(Encode(&key, size + 1, nullptr, &len), 101u);
    EXPECT_EQ(Encode(&key, 0, nullptr, &len), 108u);
    EXPECT_EQ(Encode(nullptr, size, nullptr, &len), 108u);
    EXPECT_EQ(record.failures(), Trail(4, encoder));
    EXPECT_EQ(Encode(&key, size, nullptr, nullptr), 108u);
    for (const auto decode : {Decode...}) {
        EXPECT_EQ(decode(nullptr, 5, nullptr, &len), 108u);
        EXPECT_EQ(decode(der.data(), -1, nullptr, &len), 108u);
        EXPECT_EQ(decode(der.data(), len_of(der), nullptr, nullptr), 108u);
    }
    EXPECT_EQ(len, 77u);
}

TEST(EccPublicKey, HasTheFormOfStrings) {
    for (const auto &row : rows_of("keys/ecc_public.txt")) {
        SCOPED_TRACE(row.at(0));
        const Octets der = octets_of_cell(row.at(1));
        ZACERT_EccPubKey key;
        EXPECT_EQ(kPublic.decode(der, &key), 0u);
        EXPECT_EQ(to_hex(octets_of(key)), to_hex(octets_of_cell(row.at(2))));
        EXPECT_EQ(kPublic.encode(key) == der, row.at(3) == "yes");
        kPublic.expect_faults_survived(der, key);
    }
}

TEST(EccPublicKey, RefusedInput) {
    kPublic.expect_refused("keys/ecc_public_refused.txt");
    expect_arguments_refused<ZACERT_EncodeEccPubKey, ZACERT_DecodeEccPubKey>(
        ZACERT_EccPubKey{}, "----->ZACERT_EncodeEccPubKey");
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
        ZACERT_EccPriKey key;
        ASSERT_EQ(kPrivate.decode(key_file(file), &key), 0u);
        const Octets der = kPrivate.encode(key);
        const Octets pub = kPublic.encode(key.pub);
        EXPECT_EQ(der, sequence({content_of(pub), element(0x13, octets_of(key.d))}));
        EXPECT_EQ(convert(der), key_file(file));
        for (const auto decode : {ZACERT_DecodeEccPriKey, ZACERT_DecodeEccPriKey_New}) {
            auto back = marked<ZACERT_EccPriKey>();
            uint32_t len = 0;
            EXPECT_EQ(decode(der.data(), len_of(der), &back, &len), 0u);
            EXPECT_EQ(octets_of(back), octets_of(key));
            EXPECT_EQ(decode(der.data(), len_of(der), nullptr, &len), 0u);
        }
    }
}

TEST(EccPrivateKey, IsReadFromEveryFormAndBecomesSec1) {
    for (const auto &row : rows_of("keys/ecc_private.txt")) {
        SCOPED_TRACE(row.at(0));
        const Octets der = octets_of_cell(row.at(1));
        const Octets d = from_hex(row.at(2));
        ZACERT_EccPriKey key;
        EXPECT_EQ(kPrivate.decode(der, &key), 0u);
        EXPECT_EQ(to_hex(key.d), to_hex(d));
        EXPECT_EQ(to_hex(key.pub.x) + " " + to_hex(key.pub.y),
                  to_hex(from_hex(row.at(3) + " " + row.at(4))));
        EXPECT_EQ(to_hex(std::span(key.pub.curve.p).first(1)), row.at(5));
        EXPECT_EQ(key.pub.curve.len1, 256);
        EXPECT_EQ(key.pub.curve.len2, 256);
        const Octets sec1 = octets_of_cell(row.at(7));
        EXPECT_EQ(to_hex(convert(der)), to_hex(sec1));
        EXPECT_EQ(conversion_result(der), number_of(row.at(6)));
        EXPECT_EQ(convert(sec1), sec1);

        const NoSecret no_secret(d);
        kPrivate.expect_faults_survived(der, key);
        expect_allocation_faults_survived([&] { return conversion_result(der); });
        expect_damage_survived(der, kKeyCodes, conversion_result);
    }
}

TEST(EccPrivateKey, RefusedInput) {
    kPrivate.expect_refused("keys/ecc_private_refused.txt");
    expect_arguments_refused<ZACERT_EncodeEccPriKey, ZACERT_DecodeEccPriKey,
                             ZACERT_DecodeEccPriKey_New>(ZACERT_EccPriKey{},
                                                         "----->ZACERT_EncodeEccPriKey");
    const Octets sec1 = key_file("sm2.der");
    uint32_t len = 77;
    const TraceRecord record;
    EXPECT_EQ(ZACERT_DecodeEccPriKey(sec1.data(), len_of(sec1), nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_DecodeEccPriKey(sec1.data() + 2, len_of(sec1) - 2, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_DecodeEccPriKey(sec1.data(), 0, nullptr, &len), 108u);
    EXPECT_EQ(record.failures(),
              (Trail{"------>pMidData[0]!=0x30", "----->ZACERT_DecodeEccCurve: ZAsn1_ReadSequence",
                     "----->ZACERT_DecodeEccPriKey: pDerEccPri[0] != 0x30",
                     "----->ZACERT_DecodeEccPriKey: pDerEccPri == NULL || iDerEccPriLen<=0"}));
    EXPECT_EQ(ZACERT_EcPrivateZqcspDerToCertDer(nullptr, 5, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_EcPrivateZqcspDerToCertDer(sec1.data(), 0, nullptr, &len), 108u);
    EXPECT_EQ(ZACERT_EcPrivateZqcspDerToCertDer(sec1.data(), 1, nullptr, nullptr), 108u);
    EXPECT_EQ(conversion_result(from_hex("30(02(01) 02(01))")), 122u);
    EXPECT_EQ(len, 77u);
}

}  // namespace
