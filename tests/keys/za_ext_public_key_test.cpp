#include "key_files.hpp"

#include <cstring>

using namespace za::test;

namespace {

uint32_t decode(const Octets &spki, std::string &out) {
    const Anybuf record = borrowed(spki, 16);
    ZI_PubKey key{};
    const uint32_t result = ZI_DecodePubKey(&record, &key);
    out.clear();
    if (result == 0) {
        for (const size_t number :
             {size_t{key.algorithm.dataLen}, size_t{key.parameters.dataLen}, size_t(key.keyKind),
              size_t(key.hasEcc), size_t{key.keyBits.dataLen}}) {
            out += std::to_string(number) + " ";
        }
        out += to_hex(std::span(key.ecc.curve.p).first(1));
        EXPECT_EQ(key.parameters.data == nullptr, key.parameters.dataLen == 0);
        const std::span raw(key.rawBits.data, key.rawBits.dataLen);
        EXPECT_EQ(raw.size(), key.hasEcc != 0 ? 65 : key.keyBits.dataLen);
        EXPECT_TRUE(raw.empty() || memmem(spki.data(), spki.size(), raw.data(), raw.size()));
    }
    if (key.hasEcc != 0) {
        EXPECT_EQ(memcmp(key.ecc.x, key.rawBits.data + 1, 64), 0);
        ZACERT_EccPubKey own;
        uint32_t len = 0;
        ZACERT_DecodeEccPubKey(key.keyBits.data, int32_t(key.keyBits.dataLen), &own, &len);
        EXPECT_EQ(octets_of(own), octets_of(key.ecc));
    }
    EXPECT_EQ(key.tag, result == 0 ? 16u : 0u);
    for (Anybuf *part : {&key.algorithm, &key.parameters, &key.keyBits, &key.rawBits}) {
        EXPECT_TRUE(result == 0 || part->data == nullptr);
        ZI_ClearAnybuf(part);
    }
    return result;
}

TEST(PublicKey, KindsOfKeys) {
    expect_decoded("keys/spki.txt", kKeyCodes, decode);
    const Anybuf empty{};
    ZI_PubKey key{};
    EXPECT_EQ(ZI_DecodePubKey(nullptr, &key), 108u);
    EXPECT_EQ(ZI_DecodePubKey(&empty, nullptr), 108u);
    EXPECT_EQ(ZI_DecodePubKey(&empty, &key), 108u);
}

}  // namespace
