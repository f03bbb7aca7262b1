// Times in texts and elements, in the zones of the process. Expected seconds are those of date(1).
#include "support/bytes.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/table.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace za::test {
namespace {

// The zone of the process for the length of a scope.
class Zone {
  public:
    explicit Zone(const char *name)
        : before_(std::getenv("TZ") == nullptr ? "" : std::getenv("TZ")) {
        set(name);
    }
    ~Zone() { set(before_.c_str()); }
    Zone(const Zone &) = delete;
    Zone &operator=(const Zone &) = delete;

  private:
    static void set(const char *name) {
        setenv("TZ", name, 1);
        tzset();
    }
    std::string before_;
};

// The order of the columns of asn1/zones.txt behind the text.
constexpr const char *kZones[] = {"UTC", "Asia/Shanghai", "America/New_York"};

int32_t low_32(int64_t seconds) {
    return static_cast<int32_t>(static_cast<uint32_t>(seconds));
}

Octets element_of(uint8_t tag, const std::string &text) {
    Octets der(2 + text.size());
    der[0] = tag;
    der[1] = static_cast<uint8_t>(text.size());
    std::ranges::copy(text, der.begin() + 2);
    return der;
}

TEST(Time, TextsAreLocalTimeInEveryZone) {
    for (const Fields &row : table("asn1/zones.txt")) {
        for (size_t i = 0; i < std::size(kZones); ++i) {
            const Zone local(kZones[i]);
            int32_t time = 7;
            EXPECT_EQ(ZAsn1_Low_CtoITime(row[0].c_str(), 13, &time), 0u);
            EXPECT_EQ(time, low_32(std::stoll(row[1 + i]))) << kZones[i] << " " << row[0];
        }
    }
}

// Half a day's steps over 68 years meet every summer time; the hours a zone repeats are not among
// them.
TEST(Time, WhatIsWrittenIsReadBackInEveryZone) {
    for (const char *zone : kZones) {
        const Zone local(zone);
        for (int64_t seconds = 43200; seconds <= INT32_MAX; seconds += 43200 * 13) {
            const int32_t time = static_cast<int32_t>(seconds);
            const Handed utc = handed([&](Anybuf **out) { return ZAsn1_WriteUtcTime(&time, out); });
            int32_t back = 0;
            ASSERT_EQ(ZAsn1_ReadUtcTime(utc.record.get(), &back), 0u);
            ASSERT_EQ(back, time) << zone;
        }
    }
}

TEST(Time, WritesThirteenCharacters) {
    const Zone zone("UTC");
    struct {
        int32_t time;
        uint32_t result;
        const char *text;
    } const rows[] = {
        {0, 0, "700101000000Z"},         {946684799, 0, "991231235959Z"},
        {946684800, 0, "000101000000Z"}, {INT32_MAX, 0, "380119031407Z"},
        {-1, 115, "ZAsn1_Low_ItoCTime"}, {INT32_MIN, 115, "ZAsn1_Low_ItoCTime"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.time);
        expect_allocation_faults_survived([&] {
            char *text = nullptr;
            uint32_t *length = nullptr;
            const uint32_t result = ZAsn1_Low_ItoCTime(row.time, &text, &length);
            EXPECT_EQ(result == 0, text != nullptr && length != nullptr);
            EXPECT_TRUE(result == row.result || allocation_failed());
            if (result == 0) {
                EXPECT_EQ(std::string(text, *length), row.text);
            }
            ZAPR_Free(text);
            ZAPR_Free(length);
            return result;
        });
        const TraceRecord trace;
        expect_allocation_faults_survived([&] {
            const Handed utc =
                handed([&](Anybuf **out) { return ZAsn1_WriteUtcTime(&row.time, out); });
            const Handed generalized =
                handed([&](Anybuf **out) { return ZAsn1_WriteGeneralizedTime(&row.time, out); });
            for (const auto &[tag, out] : {std::pair(23, &utc), std::pair(24, &generalized)}) {
                EXPECT_TRUE(out->result == row.result || allocation_failed()) << tag;
                if (out->result == 0) {
                    EXPECT_EQ(describe(out->record.get()),
                              std::to_string(tag) + " " +
                                  to_hex(element_of(static_cast<uint8_t>(tag), row.text)));
                }
            }
            return std::max(utc.result, generalized.result);
        });
        const std::vector<std::string> trail{"------>invalid Time", "------>ZAsn1_Low_ItoCTime",
                                             "------>ZAsn1_Low_WriteLongTime"};
        if (row.result != 0) {
            const std::vector<std::string> failures = trace.failures();
            ASSERT_GE(failures.size(), 3u);
            EXPECT_TRUE(std::equal(trail.begin(), trail.end(), failures.begin()));
        }
    }
    // Any identifier will do, and its low five bits become the type.
    const Handed tagged =
        handed([](Anybuf **out) { return ZAsn1_Low_WriteLongTime(0, 0x81, out); });
    EXPECT_EQ(describe(tagged.record.get()).substr(0, 7), "1 81 0D");
    // In a zone west of Greenwich time 0 lies in 1969, which no reader takes for 1969.
    const Zone new_york("America/New_York");
    char *text = nullptr;
    uint32_t *length = nullptr;
    ASSERT_EQ(ZAsn1_Low_ItoCTime(0, &text, &length), 0u);
    EXPECT_EQ(std::string(text, 13), "691231190000Z");
    ZAPR_Free(text);
    ZAPR_Free(length);
}

TEST(Time, ReadersTakeWhatTheirTypeHolds) {
    using Reader = uint32_t (*)(const Anybuf *, int32_t *);
    const std::map<std::string, Reader> readers = {
        {"ZAsn1_ReadUtcTime", ZAsn1_ReadUtcTime},
        {"ZAsn1_ReadGeneralizedTime", ZAsn1_ReadGeneralizedTime},
        {"ZAsn1_Low_ReadLongTime", ZAsn1_Low_ReadLongTime},
    };
    const Zone utc("UTC");
    for (const Fields &row : table("asn1/times.txt")) {
        SCOPED_TRACE(row[0] + " of " + row[3]);
        const Octets der = element_of(static_cast<uint8_t>(number(row[1])), row[3]);
        const Anybuf in = borrowed(der, number(row[2]));
        int32_t time = 7;
        EXPECT_EQ(readers.at(row[0])(&in, &time), number(row[4]));
        EXPECT_EQ(time, row[5] == "-" ? 7 : low_32(std::stoll(row[5])));
    }
}

TEST(Time, ReadersWantOneWholeElement) {
    const Octets der = from_hex("17 0D 32 34 30 32 32 39 31 32 30 30 30 30 5A 00");
    for (const uint32_t size : {0u, 1u, 2u, 14u, 16u}) {
        Octets cut(der.begin(), der.begin() + size);
        Anybuf in = borrowed(cut, 23);
        int32_t time = 7;
        if (size == 0) {
            in.data = const_cast<uint8_t *>(der.data());
        }
        EXPECT_EQ(ZAsn1_ReadUtcTime(&in, &time), 102u) << size;
        in.dataType = 24;
        EXPECT_EQ(ZAsn1_ReadGeneralizedTime(&in, &time), 102u) << size;
        EXPECT_EQ(ZAsn1_Low_ReadLongTime(&in, &time), size == 16 ? 0u : 102u) << size;
    }
    Anybuf none{};
    none.dataType = 23;
    int32_t time = 7;
    EXPECT_EQ(ZAsn1_ReadUtcTime(&none, &time), 108u);
    EXPECT_EQ(ZAsn1_Low_ReadLongTime(&none, &time), 108u);
    EXPECT_EQ(ZAsn1_ReadUtcTime(nullptr, &time), 108u);
    EXPECT_EQ(ZAsn1_WriteUtcTime(nullptr, nullptr), 108u);
    EXPECT_EQ(time, 7);
}

TEST(Time, ThirteenthCharacterIsZOrNothing) {
    const Zone utc("UTC");
    int32_t time = 7;
    EXPECT_EQ(ZAsn1_Low_CtoITime("240229120000", 0, &time), 0u);
    EXPECT_EQ(time, 1709208000);
    const TraceRecord trace;
    EXPECT_EQ(ZAsn1_Low_CtoITime("240229120000z", 13, &time), 104u);
    EXPECT_EQ(trace.failures(), std::vector<std::string>{"------>ZACERT_InvalidTimeEndErr"});
    EXPECT_EQ(ZAsn1_Low_CtoITime(nullptr, 13, &time), 108u);
}

TEST(Time, DigitsGoInPairs) {
    char digits[2] = {};
    uint32_t value = 0;
    for (uint32_t expected = 0; expected <= 99; ++expected) {
        EXPECT_EQ(ZAsn1_Low_TimeIntToChar(expected, digits), 0u);
        EXPECT_EQ(std::atoi(std::string(digits, 2).c_str()), static_cast<int>(expected));
        EXPECT_EQ(ZAsn1_Low_TimeCharToInt(digits, &value), 0u);
        EXPECT_EQ(value, expected);
    }
    EXPECT_EQ(ZAsn1_Low_TimeIntToChar(100, digits), 103u);
    EXPECT_EQ(ZAsn1_Low_TimeIntToChar(1, nullptr), 108u);
}

}  // namespace
}  // namespace za::test
