// Identifier and length octets, and numbers as content octets.
#include "support/bytes.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/table.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace za::test {
namespace {

using Reader = uint32_t (*)(const uint8_t **pos, uint32_t *value, uint32_t *count);

template <auto function>
uint32_t cells(const uint8_t **pos, uint32_t *value, uint32_t *count) {
    uint32_t *value_cell = nullptr;
    uint32_t *count_cell = nullptr;
    const uint32_t result = function(pos, &value_cell, &count_cell);
    EXPECT_TRUE(result == 0 ? value_cell && count_cell : !value_cell && !count_cell);
    if (result == 0) {
        *value = *value_cell;
        *count = *count_cell;
    }
    ZAPR_Free(value_cell);
    ZAPR_Free(count_cell);
    return result;
}

uint32_t whole(const uint8_t **pos, uint32_t *value, uint32_t *) {
    return ZAsn1_GetCertLength(*pos, value);
}

const std::map<std::string, Reader> kReaders = {
    {"ZAsn1_Low_GetTagInfo", cells<ZAsn1_Low_GetTagInfo>},
    {"ZAsn1_Low_GetLengthInfo", cells<ZAsn1_Low_GetLengthInfo>},
    {"ZAsn1_GetCertLength", whole},
    {"ZAsn1_GetLengthInfo", ZAsn1_GetLengthInfo},
};

TEST(Header, Rows) {
    for (const Fields &row : table("asn1/headers.txt")) {
        SCOPED_TRACE(row[0] + " of " + row[1]);
        const Octets octets = from_hex(row[1]);
        const uint32_t expected = number(row[2]);
        bool reached_end = false;
        expect_allocation_faults_survived([&] {
            const uint8_t *pos = octets.data();
            uint32_t value = 7;
            uint32_t count = 0;
            const uint32_t result = kReaders.at(row[0])(&pos, &value, &count);
            if (result == 0) {
                EXPECT_EQ(value, number(row[3]));
                EXPECT_EQ(count, number(row[4]));
            } else {
                EXPECT_TRUE(value == 7 && count == 0);
            }
            const bool moves = result == 0 && row[0].find("_Low_") != row[0].npos;
            EXPECT_EQ(pos, octets.data() + (moves ? count : 0));
            reached_end = result == expected;
            return result;
        });
        EXPECT_TRUE(reached_end);
    }
}

TEST(Header, NeedsItsArguments) {
    const uint8_t *nowhere = nullptr;
    const uint8_t octet = 0xA3;
    const uint8_t *pos = &octet;
    uint32_t *cell = nullptr;
    uint32_t number = 0;
    Anybuf record{};
    Anybuf *out = nullptr;
    uint8_t *place = nullptr;
    const TraceRecord trace;
    EXPECT_EQ(ZAsn1_Low_ReadDNTag(nullptr, &number), 106u);
    EXPECT_EQ(trace.failures().at(0), "------>ZAsn1_Low_GetLengthInfo");
    EXPECT_EQ(ZAsn1_Low_ReadDNTag(&octet, &number), 0u);
    EXPECT_EQ(number, 0xA3u);
    EXPECT_EQ(ZAsn1_Low_ReadDNTag(&octet, nullptr), 108u);
    EXPECT_EQ(ZAsn1_Low_GetTagInfo(nullptr, &cell, &cell), 106u);
    EXPECT_EQ(ZAsn1_Low_GetTagInfo(&nowhere, &cell, &cell), 106u);
    EXPECT_EQ(ZAsn1_Low_GetTagInfo(&pos, nullptr, &cell), 108u);
    EXPECT_EQ(ZAsn1_Low_GetLengthInfo(&nowhere, &cell, &cell), 108u);
    EXPECT_EQ(ZAsn1_GetLengthInfo(&nowhere, &number, &number), 108u);
    EXPECT_EQ(ZAsn1_GetCertLength(nullptr, &number), 108u);
    EXPECT_EQ(ZAsn1_Low_WriteTagAndLength(&record, 4, &out, nullptr), 108u);
    EXPECT_EQ(ZAsn1_Low_ReadTagAndLength(&record, &nowhere, &out, &place), 108u);
    EXPECT_EQ(ZAsn1_Low_IntToChar(1, nullptr, &cell), 108u);
    EXPECT_EQ(ZAsn1_Low_CharToInt(nullptr, 1, &number), 108u);
    EXPECT_EQ(ZAsn1_Low_CharToInt(nullptr, 0, &number), 0u);
    EXPECT_EQ(number, 0u);
    EXPECT_TRUE(cell == nullptr && out == nullptr && place == nullptr && pos == &octet);
}

// Every writer of a header, and readers on records one octet off.
TEST(Header, LengthsReadBackAsWritten) {
    const NoLeak no_leak;
    for (const Fields &row : table("asn1/lengths.txt")) {
        SCOPED_TRACE(row[0]);
        const Octets content(number(row[0]), 0x55);
        Octets whole = from_hex("04 " + row[1]);
        whole.insert(whole.end(), content.begin(), content.end());
        Anybuf value = borrowed(content);
        const Handed written =
            handed([&](Anybuf **out) { return ZAsn1_WriteOctetString(&value, out); });
        ASSERT_EQ(written.result, 0u);
        ASSERT_TRUE(
            std::ranges::equal(std::span(written.record->data, written.record->dataLen), whole));
        const auto read = [&](uint32_t size) {
            Anybuf in = borrowed(whole);
            in.dataLen = size;
            return handed([&](Anybuf **out) { return ZAsn1_ReadOctetString(&in, out); });
        };
        const uint32_t size = static_cast<uint32_t>(whole.size());
        const Handed same = read(size);
        ASSERT_EQ(same.result, 0u);
        EXPECT_TRUE(
            std::ranges::equal(std::span(same.record->data, same.record->dataLen), content));
        EXPECT_EQ(read(size - 1).result, 102u);
        whole.push_back(0);
        EXPECT_EQ(read(size + 1).result, 102u);

        const Handed set = handed([&](Anybuf **out) { return ZAsn1_WriteSet(&value, out); });
        whole[0] = 0x31;
        EXPECT_TRUE(std::equal(whole.begin(), whole.end() - 1, set.record->data));
        if (!content.empty()) {
            const Handed tagged =
                handed([&](Anybuf **out) { return ZAsn1_WriteExplicit(&value, 4, out); });
            whole[0] = 0xA4;
            EXPECT_TRUE(std::equal(whole.begin(), whole.end() - 1, tagged.record->data));
        }
    }
}

TEST(Header, IntegersTakeTheFewestOctets) {
    for (const Fields &row : table("asn1/integers.txt")) {
        SCOPED_TRACE(row[0]);
        const uint32_t expected = number(row[0]);
        expect_allocation_faults_survived([&] {
            uint8_t *octets = nullptr;
            uint32_t *count = nullptr;
            const uint32_t result = ZAsn1_Low_IntToChar(expected, &octets, &count);
            EXPECT_TRUE(result == 0 || (octets == nullptr && count == nullptr));
            uint32_t value = expected;
            if (result == 0) {
                EXPECT_EQ(to_hex(std::span(octets, *count)), row[1]);
                EXPECT_EQ(ZAsn1_Low_CharToInt(octets, *count, &value), 0u);
            }
            EXPECT_EQ(value, expected);
            ZAPR_Free(octets);
            ZAPR_Free(count);
            return result;
        });
        const Handed element =
            handed([&](Anybuf **out) { return ZAsn1_WriteInteger(expected, out); });
        const size_t size = from_hex(row[1]).size();
        EXPECT_EQ(describe(element.record.get()), "2 02 0" + std::to_string(size) + " " + row[1]);
        uint32_t value = 0;
        EXPECT_EQ(ZAsn1_ReadInteger(element.record.get(), &value), 0u);
        EXPECT_EQ(value, expected);
    }
    uint32_t value = 0;
    const Octets six = from_hex("11 22 33 44 55 66");
    EXPECT_EQ(ZAsn1_Low_CharToInt(six.data(), 6, &value), 0u);
    EXPECT_EQ(value, 0x33445566u);
}

}  // namespace
}  // namespace za::test
