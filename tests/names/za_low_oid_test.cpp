#include "names/za_low_oid.hpp"

#include <zacert.h>

#include "support/bytes.hpp"
#include "support/heap.hpp"
#include "support/rows.hpp"

#include <gtest/gtest.h>

namespace za::test {
namespace {

TEST(Oid, ConvertsDottedText) {
    for (const auto &row : rows_of("names/oid_from_text.txt")) {
        SCOPED_TRACE(row.at(0));
        for (const uint32_t text_len : {uint32_t(row.at(0).size()), 0xFFFFFFFFu}) {
            uint32_t status = 0;
            const auto call = [&](uint8_t *out, uint32_t *len) {
                return ZACert_GetOIDValue(row.at(0).c_str(), text_len, out, len);
            };
            EXPECT_EQ(to_hex(two_calls(call, &status)), row.at(2));
            EXPECT_EQ(std::to_string(status), row.at(1));
        }
    }
}

TEST(Oid, RefusesArgumentsBeforeText) {
    uint32_t len = 77;
    for (const uint32_t text_len : {0u, 0x80000000u, 0xFFFFFFFEu}) {
        EXPECT_EQ(ZACert_GetOIDValue("1.2.3", text_len, nullptr, &len), 108u);
    }
    EXPECT_EQ(ZACert_GetOIDValue(nullptr, 5, nullptr, &len), 108u);
    EXPECT_EQ(ZACert_GetOIDValue("", 0xFFFFFFFF, nullptr, &len), 108u);
    EXPECT_EQ(ZACert_GetOIDValue("1.2.3", 5, nullptr, nullptr), 108u);
    EXPECT_EQ(ZACert_GetOIDValue("1.2\0.3", 6, nullptr, &len), 139u);
    EXPECT_EQ(len, 77u);
}

TEST(Oid, LimitsTheContentTo1024Octets) {
    std::string text = "1.2";
    for (size_t i = 1; i < 1024; ++i) {
        text += ".1";
    }
    expect_allocation_faults_survived([&] {
        uint32_t len = 77;
        const uint32_t result = ZACert_GetOIDValue(text.c_str(), 0xFFFFFFFF, nullptr, &len);
        EXPECT_TRUE(result == 0 ? len == 1024 : result == 100 && len == 77) << result;
        return result;
    });
    text += ".1";
    uint32_t len = 0;
    EXPECT_EQ(ZACert_GetOIDValue(text.c_str(), 0xFFFFFFFF, nullptr, &len), 139u);
}

// The octets as RFC 8017 prints them.
TEST(Oid, PrefixesAreThoseOfPkcs1) {
    const std::pair<Bytes, const char *> rows[] = {
        {oid::kMd2DigestInfo, "30 20 30 0C 06 08 2A 86 48 86 F7 0D 02 02 05 00 04 10"},
        {oid::kMd5DigestInfo, "30 20 30 0C 06 08 2A 86 48 86 F7 0D 02 05 05 00 04 10"},
        {oid::kSha1DigestInfo, "30 21 30 09 06 05 2B 0E 03 02 1A 05 00 04 14"},
        {oid::kSha256DigestInfo, "30 31 30 0D 06 09 60 86 48 01 65 03 04 02 01 05 00 04 20"},
        {oid::kSha384DigestInfo, "30 41 30 0D 06 09 60 86 48 01 65 03 04 02 02 05 00 04 30"},
        {oid::kSha512DigestInfo, "30 51 30 0D 06 09 60 86 48 01 65 03 04 02 03 05 00 04 40"},
    };
    for (const auto &[prefix, octets] : rows) {
        EXPECT_EQ(to_hex(prefix), octets);
    }
}

TEST(Oid, TextOfContent) {
    for (const auto &row : rows_of("names/oid_to_text.txt")) {
        za::Octets text;
        EXPECT_EQ(names::oid_to_text(from_hex(row.at(0)), text), Status::ok);
        EXPECT_EQ(text_of(text.bytes()), row.at(1));
    }
}

}  // namespace
}  // namespace za::test
