#include "names/za_low_name_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <gtest/gtest.h>

namespace za::test {
namespace {

std::string dn_of(const ZI_NameEntry *first, uint32_t *status = nullptr) {
    const Octets text = two_calls(
        [&](uint8_t *out, uint32_t *len) {
            return ZI_GetDN(first, reinterpret_cast<char *>(out), len);
        },
        status);
    return {text.begin(), text.end()};
}

Octets octets(std::string_view text) {
    return {text.begin(), text.end()};
}

TEST(NameText, FollowsTheOrderOfKeysAndKeepsEveryAttribute) {
    const Octets none;
    Entries entries;
    entries.add(38, none, octets("9"));
    entries.add(23, from_hex("55 04 04"), octets("Sur,name"));
    entries.add(35, none, octets("8"));
    entries.add(34, none, octets("7"));
    entries.add(26, none, octets("6"));
    entries.add(30, none, octets("a"));
    entries.add(27, none, octets("5"));
    entries.add(13, none, octets("4"));
    entries.add(0, from_hex("09 92 26 89 93 F2 2C 64 01 19"), octets("example"));
    entries.add(22, none, octets("3"));
    entries.add(30, none, octets("b"));
    entries.add(0, from_hex("2A 80"), octets("odd"));
    entries.add(22, none, octets("3b"));
    entries.add(29, none, octets("2"));
    entries.add(25, none, octets("1"));
    entries.add(53, from_hex("55 04 2E"), none);
    const ZI_NameEntry *first = entries.name()->first;
    const std::string expected =
        "C=1,O=2,OU=a,OU=b,CN=3,CN=3b,E=4,S=5,L=6,PA=7,PC=8,Phone=9,OID.2.5.4.4=Sur,name,"
        "OID.0.9.2342.19200300.100.1.25=example,OID.2A80=odd,OID.2.5.4.46=";
    EXPECT_EQ(dn_of(first), expected);
    expect_allocation_faults_survived([&] {
        uint32_t len = 77;
        const uint32_t result = ZI_GetDN(first, nullptr, &len);
        EXPECT_EQ(len, result == 0 ? expected.size() : 77);
        return result;
    });
}

TEST(NameText, OfAnEmptyListIsEmpty) {
    uint32_t len = 77;
    EXPECT_EQ(ZI_GetDN(nullptr, nullptr, &len), 0u);
    EXPECT_EQ(len, 0u);
    EXPECT_EQ(ZI_GetDN(nullptr, nullptr, nullptr), 108u);
}

TEST(NameText, OfADecodedName) {
    const Octets der = from_hex(kBmpName);
    const Anybuf name = borrowed(der);
    ZI_NameEntry *entries = nullptr;
    ASSERT_EQ(ZI_DecodeIssuerSubject(&name, &entries), 0u);
    EXPECT_EQ(dn_of(entries),
              "C=CN,O=\xCA\xBE\xC0\xFD\xB9\xAB\xCB\xBE,CN=Alice_Wang,"
              "OID.0.9.2342.19200300.100.1.25=example,OID.2.5.4.45=ab");
    ZI_FreeName(entries);
}

}  // namespace
}  // namespace za::test
