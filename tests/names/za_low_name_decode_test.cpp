#include "names/za_low_name.hpp"
#include "names/za_low_name_support.hpp"

namespace za::test {
namespace {

uint32_t decode(const Octets &der, std::string &out) {
    const Anybuf name = borrowed(der);
    ZI_NameEntry *entries = nullptr;
    const uint32_t result = ZI_DecodeIssuerSubject(&name, &entries);
    EXPECT_TRUE(result == 0 || entries == nullptr);
    out = describe_entries(entries);
    EXPECT_EQ(ZI_FreeName(entries), 0u);
    return result;
}

// Kinds follow no arithmetic as a whole, so every one is written down: the kinds of 2.5.4.3 to .40.
TEST(Name, EveryKindHasItsObjectIdentifier) {
    std::vector<std::pair<uint32_t, Octets>> rows = {{53, from_hex("55 04 2E")},
                                                     {13, from_hex("2A 86 48 86 F7 0D 01 09 01")}};
    uint8_t arc = 3;
    for (const uint8_t kind : std::initializer_list<uint8_t>{
             22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 60, 33, 34, 35, 36, 37, 38, 39,
             40, 41, 42, 43, 44, 45, 46, 47, 48, 49, 50, 51, 52, 54, 55, 56, 57, 58, 59}) {
        rows.push_back({kind, {0x55, 0x04, arc++}});
    }
    for (const auto &[kind, oid] : rows) {
        EXPECT_EQ(names::kind_of(oid), kind);
        EXPECT_EQ(to_hex(names::oid_of_kind(kind)), to_hex(oid));
    }
    for (const char *oid : {"", "55 04", "55 04 02", "55 04 29", "55 04 2D", "55 04 2F", "55 04 FF",
                            "55 05 03", "55 04 03 01"}) {
        EXPECT_EQ(names::kind_of(from_hex(oid)), 0u) << oid;
    }
    for (const uint32_t kind : {0u, 12u, 14u, 21u, 61u}) {
        EXPECT_TRUE(names::oid_of_kind(kind).empty()) << kind;
    }
}

TEST(Name, DecodesOrLeavesOneLinePerLevelOfAFailure) {
    expect_decoded("names/decode.txt", kNameCodes, decode);
}

TEST(Name, RefusesNullArguments) {
    const Anybuf name{};
    ZI_NameEntry *entries = nullptr;
    EXPECT_EQ(ZI_DecodeIssuerSubject(nullptr, &entries), 108u);
    EXPECT_EQ(ZI_DecodeIssuerSubject(&name, nullptr), 108u);
    EXPECT_EQ(ZI_DecodeIssuerSubject(&name, &entries), 108u);
    EXPECT_EQ(ZI_FreeName(nullptr), 0u);
}

// An entry behind the tail would be lost.
TEST(Name, ListKeepsItsOrder) {
    const NoLeak no_leak;
    names::NameList list;
    names::NameList rest;
    ASSERT_EQ(list.append(22, from_hex("41")), Status::ok);
    ASSERT_EQ(rest.append(25, from_hex("42 43"), 19), Status::ok);
    list.append(std::move(rest));
    list.append(names::NameList());
    ASSERT_EQ(list.append(0, from_hex("2A 03"), {}, 12), Status::ok);
    EXPECT_EQ(describe_entries(list.first()), "22 0 41, 25 19 42 43, 0 12");
    EXPECT_EQ(to_hex(&list.first()->attrOid), "55 04 03");
    EXPECT_TRUE(rest.empty());
    ASSERT_EQ(rest.append(30, from_hex("44")), Status::ok);
    EXPECT_EQ(describe_entries(rest.first()), "30 0 44");
}

}  // namespace
}  // namespace za::test
