#include "names/za_low_oid.hpp"

#include <zacert.h>

#include "support/bytes.hpp"
#include "support/heap.hpp"

#include <gtest/gtest.h>
#include <string>

namespace za::test {
namespace {

struct Row {
    const char *text;
    uint32_t status;
    const char *content;
};

const Row kRows[] = {
    {"1.2.840.113549.1.1.1", 0, "2A 86 48 86 F7 0D 01 01 01"},
    {"1 2 840", 0, "2A 86 48"},
    {"1.2 840", 0, "2A 86 48"},
    {"0.39", 0, "27"},
    {"0.40", 139, ""},
    {"1.40", 0, "50"},
    {"1.45", 0, "55"},
    {"2.999", 0, "88 37"},
    {"2.0.127.128", 0, "50 7F 81 00"},
    {"2.0.16383.16384", 0, "50 FF 7F 81 80 00"},
    {"2.0.4294967295", 0, "50 8F FF FF FF 7F"},
    {"2.0.4294967296", 0, "50 00"},  // arcs wrap
    {"2.4294967216", 0, "00"},
    {"1.002", 0, "2A"},
    {"3.1", 139, ""},
    {"1.2a", 139, ""},
    {"1.2-3", 139, ""},
    {"12.3", 139, ""},
    {"1..2", 139, ""},
    {"1.2.", 139, ""},
    {"1.2 .3", 139, ""},
    {".1.2", 139, ""},
    {"1.", 139, ""},
    {"1", 139, ""},
    {"1.+2", 139, ""},
    {"", 108, ""},
};

TEST(Oid, ConvertsDottedText) {
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.text);
        for (const uint32_t text_len :
             {static_cast<uint32_t>(std::strlen(row.text)), 0xFFFFFFFFu}) {
            uint32_t status = 0;
            const Octets content = two_calls(
                [&](uint8_t *out, uint32_t *len) {
                    return ZACert_GetOIDValue(row.text, text_len, out, len);
                },
                &status);
            EXPECT_EQ(status, row.status);
            EXPECT_EQ(to_hex(content), row.content);
        }
        expect_allocation_faults_survived([&] {
            uint32_t len = 77;
            const uint32_t result = ZACert_GetOIDValue(row.text, 0xFFFFFFFF, nullptr, &len);
            EXPECT_TRUE(result == 0 || len == 77);
            return result;
        });
    }
}

TEST(Oid, RefusesArgumentsBeforeText) {
    uint32_t len = 77;
    EXPECT_EQ(ZACert_GetOIDValue(nullptr, 5, nullptr, &len), 108u);
    EXPECT_EQ(ZACert_GetOIDValue("1.2.3", 0, nullptr, &len), 108u);
    EXPECT_EQ(ZACert_GetOIDValue("1.2.3", 0x80000000, nullptr, &len), 108u);
    EXPECT_EQ(ZACert_GetOIDValue("1.2.3", 0xFFFFFFFE, nullptr, &len), 108u);
    EXPECT_EQ(ZACert_GetOIDValue("1.2.3", 5, nullptr, nullptr), 108u);
    EXPECT_EQ(ZACert_GetOIDValue("1.2\0.3", 6, nullptr, &len), 139u);
    EXPECT_EQ(len, 77u);
}

TEST(Oid, LimitsTheContentTo1024Octets) {
    std::string text = "1.2";
    for (size_t i = 1; i < 1024; ++i) {
        text += ".1";
    }
    uint32_t len = 0;
    EXPECT_EQ(ZACert_GetOIDValue(text.c_str(), 0xFFFFFFFF, nullptr, &len), 0u);
    EXPECT_EQ(len, 1024u);
    text += ".1";
    EXPECT_EQ(ZACert_GetOIDValue(text.c_str(), 0xFFFFFFFF, nullptr, &len), 139u);
}

// The octets as RFC 8017 prints them.
TEST(Oid, PrefixesAreThoseOfPkcs1) {
    const struct {
        Bytes prefix;
        const char *octets;
    } rows[] = {
        {oid::kMd2DigestInfo, "30 20 30 0C 06 08 2A 86 48 86 F7 0D 02 02 05 00 04 10"},
        {oid::kMd5DigestInfo, "30 20 30 0C 06 08 2A 86 48 86 F7 0D 02 05 05 00 04 10"},
        {oid::kSha1DigestInfo, "30 21 30 09 06 05 2B 0E 03 02 1A 05 00 04 14"},
        {oid::kSha256DigestInfo, "30 31 30 0D 06 09 60 86 48 01 65 03 04 02 01 05 00 04 20"},
        {oid::kSha384DigestInfo, "30 41 30 0D 06 09 60 86 48 01 65 03 04 02 02 05 00 04 30"},
        {oid::kSha512DigestInfo, "30 51 30 0D 06 09 60 86 48 01 65 03 04 02 03 05 00 04 40"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(to_hex(row.prefix), row.octets);
    }
}

TEST(Oid, TextOfContent) {
    const struct {
        const char *content;
        const char *text;
    } rows[] = {
        {"55 04 03", "2.5.4.3"},
        {"00", "0.0"},
        {"27", "0.39"},
        {"28", "1.0"},
        {"4F", "1.39"},
        {"7F", "2.47"},
        {"88 37", "2.999"},
        {"2A 86 48 86 F7 0D 01 09 01", "1.2.840.113549.1.9.1"},
        {"69 81 FF FF FF FF FF FF FF FF 7F", "2.25.18446744073709551615"},
        {"69 82 80 80 80 80 80 80 80 80 00", "6982808080808080808000"},  // above 64 bits
        {"55 04 83", "550483"},                                          // cut off
        {"55 80 03", "558003"},                                          // not minimal
        {"80", "80"},
        {"", ""},
    };
    for (const auto &row : rows) {
        za::Octets text;
        EXPECT_EQ(names::oid_to_text(from_hex(row.content), text), Status::ok);
        EXPECT_EQ(text_of(text.bytes()), row.text);
    }
}

}  // namespace
}  // namespace za::test
