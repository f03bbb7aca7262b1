#include "keys/za_ext_public_key.hpp"

#include "key_files.hpp"

#include <algorithm>

using namespace za::test;

namespace {

// A ZI_PubKey that is cleared at the end.
class Key {
  public:
    Key() = default;
    ~Key() {
        for (Anybuf *record : {&key_.algorithm, &key_.parameters, &key_.keyBits, &key_.rawBits}) {
            ZI_ClearAnybuf(record);
        }
    }
    Key(const Key &) = delete;
    Key &operator=(const Key &) = delete;

    uint32_t decode(const Octets &spki) {
        const Anybuf record = borrowed(spki, 16);
        const uint32_t result = ZI_DecodePubKey(&record, &key_);
        EXPECT_EQ(key_.tag, result == 0 ? 16u : 0u);
        return result;
    }
    const ZI_PubKey *operator->() const { return &key_; }

  private:
    ZI_PubKey key_{};
};

TEST(PublicKey, KindsOfKeys) {
    for (const auto &row : rows_of("keys/spki.txt")) {
        SCOPED_TRACE(row.at(0));
        const Octets spki = octets_of_cell(row.at(1));
        Key key;
        EXPECT_EQ(key.decode(spki), 0u);
        EXPECT_EQ(key->algorithm.dataLen, number_of(row.at(2)));
        EXPECT_EQ(key->parameters.dataLen, number_of(row.at(3)));
        EXPECT_EQ(key->parameters.data == nullptr, row.at(3) == "0");
        EXPECT_EQ(key->keyKind, number_of(row.at(4)));
        EXPECT_EQ(key->hasEcc, number_of(row.at(5)));
        EXPECT_EQ(key->keyBits.dataLen, number_of(row.at(6)));
        EXPECT_EQ(to_hex(std::span(key->ecc.curve.p).first(1)), row.at(7));
        EXPECT_TRUE(std::equal(spki.rbegin(), spki.rbegin() + key->rawBits.dataLen,
                               std::reverse_iterator(key->rawBits.data + key->rawBits.dataLen)));
        expect_allocation_faults_survived([&] { return Key().decode(spki); });
        if (key->hasEcc != 0) {
            EXPECT_EQ(memcmp(key->ecc.x, key->rawBits.data + 1, 64), 0);
            ZACERT_EccPubKey own;
            uint32_t len = 0;
            ZACERT_DecodeEccPubKey(key->keyBits.data, int32_t(key->keyBits.dataLen), &own, &len);
            EXPECT_EQ(octets_of(own), octets_of(key->ecc));
        }
    }
}

TEST(PublicKey, RefusedInput) {
    expect_refused("spki_refused.txt", [](const Octets &spki) { return Key().decode(spki); });
    const Anybuf empty{};
    ZI_PubKey key{};
    EXPECT_EQ(ZI_DecodePubKey(nullptr, &key), 108u);
    EXPECT_EQ(ZI_DecodePubKey(&empty, nullptr), 108u);
    EXPECT_EQ(ZI_DecodePubKey(&empty, &key), 108u);
    for (const char *file : {"spki_rsa2048.der", "spki_p256.der", "spki_p256_explicit.der"}) {
        expect_damage_survived(key_file(file),
                               [](const Octets &spki) { return Key().decode(spki); });
    }
}

TEST(PublicKey, TheViewAllocatesNothing) {
    const Octets spki = key_file("spki_p256.der");
    const size_t before = heap_count().allocations;
    za::keys::PublicKeyInfo info;
    EXPECT_EQ(za::keys::decode_public_key_info(za::asn1::Element(za::Bytes(spki)), info),
              za::Status::ok);
    EXPECT_EQ(heap_count().allocations, before);
}

}  // namespace
