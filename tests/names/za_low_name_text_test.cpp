#include "names/za_low_name_support.hpp"

namespace za::test {
namespace {

std::string dn_of(const ZI_NameEntry *first) {
    const Octets text = two_calls([&](uint8_t *out, uint32_t *len) {
        return ZI_GetDN(first, reinterpret_cast<char *>(out), len);
    });
    return {text.begin(), text.end()};
}

TEST(NameText, FollowsTheOrderOfKeysAndKeepsEveryAttribute) {
    Entries entries{{38, "", "39"},     {23, "55 04 04", "41 2C 42"},
                    {35, "", "38"},     {34, "", "37"},
                    {26, "", "36"},     {30, "", "61"},
                    {27, "", "35"},     {13, "", "34"},
                    {0, "2A 03", "65"}, {22, "", "33"},
                    {30, "", "62"},     {0, "2A 80", "6F"},
                    {22, "", "33 62"},  {29, "", "32"},
                    {25, "", "31"},     {53, "55 04 2E", ""}};
    const std::string expected =
        "C=1,O=2,OU=a,OU=b,CN=3,CN=3b,E=4,S=5,L=6,PA=7,PC=8,Phone=9,OID.2.5.4.4=A,B,"
        "OID.1.2.3=e,OID.2A80=o,OID.2.5.4.46=";
    EXPECT_EQ(dn_of(entries.name()->first), expected);
    expect_allocation_faults_survived([&] {
        uint32_t len = 77;
        const uint32_t result = ZI_GetDN(entries.name()->first, nullptr, &len);
        EXPECT_EQ(len, result == 0 ? expected.size() : 77);
        return result;
    });
    // Of an empty list it is empty.
    uint32_t len = 77;
    EXPECT_EQ(ZI_GetDN(nullptr, nullptr, &len), 0u);
    EXPECT_EQ(len, 0u);
    EXPECT_EQ(ZI_GetDN(nullptr, nullptr, nullptr), 108u);
}

}  // namespace
}  // namespace za::test
