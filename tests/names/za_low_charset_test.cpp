#include <zacert.h>

#include "support/bytes.hpp"
#include "support/heap.hpp"
#include "support/rows.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <iconv.h>

namespace za::test {
namespace {

using Converter = uint32_t (*)(const uint8_t *, int32_t, uint8_t *, uint32_t *);

struct Conversion {
    std::string name;
    Converter convert;
    size_t most;      // input octets
    size_t at_limit;  // octets of the output, which nothing limits, when all of them are 41
};

const Conversion kConversions[] = {
    {"ZI_Chinese2BmpString", ZI_Chinese2BmpString, 2048, 4096},
    {"ZI_Chinese2UTF8String", ZI_Chinese2UTF8String, 2048, 2048},
    {"ZI_BmpString2Chinese", ZI_BmpString2Chinese, 4096, 8192},
    {"ZI_UTF8String2Chinese", ZI_UTF8String2Chinese, 4096, 4096},
    {"ZI_BmpString2UTF8", ZI_BmpString2UTF8, 4096, 6144},
    {"ZI_UTF82BmpString", ZI_UTF82BmpString, 4096, 8192},
};

Octets convert(Converter converter, const Octets &in, uint32_t *status = nullptr) {
    const auto call = [&](uint8_t *out, uint32_t *len) {
        return converter(in.data(), int32_t(in.size()), out, len);
    };
    return two_calls(call, status);
}

// The oracle: the C library's table of another name, asked one character at a time.
Octets look_up(iconv_t table, Octets code) {
    std::array<char, 8> area;
    char *from = reinterpret_cast<char *>(code.data());
    char *to = area.data();
    size_t from_len = code.size();
    size_t to_len = area.size();
    iconv(table, nullptr, nullptr, nullptr, nullptr);
    const bool known = iconv(table, &from, &from_len, &to, &to_len) == 0;
    return known ? Octets(area.data(), to) : Octets{};
}

TEST(Charset, EveryTwoOctetCodeOfGbkRoundTripsAsItsTableSays) {
    const iconv_t to_ucs2 = iconv_open("UTF-16BE", "GBK");
    const iconv_t to_utf8 = iconv_open("UTF-8", "GBK");
    size_t codes = 0;
    for (unsigned number = 0x8140; number <= 0xFEFE; ++number) {
        const Octets code{uint8_t(number >> 8), uint8_t(number)};
        const Octets ucs2 = look_up(to_ucs2, code);
        if (ucs2.empty()) {
            continue;
        }
        ++codes;
        const Octets utf8 = look_up(to_utf8, code);
        EXPECT_EQ(convert(ZI_Chinese2BmpString, code), ucs2) << to_hex(code);
        EXPECT_EQ(convert(ZI_Chinese2UTF8String, code), utf8) << to_hex(code);
        EXPECT_EQ(convert(ZI_BmpString2Chinese, ucs2), code) << to_hex(code);
        EXPECT_EQ(convert(ZI_UTF8String2Chinese, utf8), code) << to_hex(code);
        EXPECT_EQ(convert(ZI_BmpString2UTF8, ucs2), utf8) << to_hex(code);
        EXPECT_EQ(convert(ZI_UTF82BmpString, utf8), ucs2) << to_hex(code);
    }
    EXPECT_EQ(codes, 21791u);
    iconv_close(to_ucs2);
    iconv_close(to_utf8);
}

TEST(Charset, ConvertsOrSaysWhy) {
    for (const auto &row : rows_of("names/charset.txt")) {
        SCOPED_TRACE(row.at(0));
        const Converter converter =
            std::find_if(std::begin(kConversions), std::end(kConversions), [&](auto &x) {
                return x.name == row.at(1);
            })->convert;
        const Octets in = from_hex(row.at(2));
        uint32_t status = 0;
        const TraceRecord trace;
        EXPECT_EQ(to_hex(convert(converter, in, &status)), row.at(4));
        EXPECT_EQ(trace.failures(), status == 0 ? Trail{} : Trail{"------>iconv"});
        EXPECT_EQ(status, number_of(row.at(3)));
        expect_allocation_faults_survived([&] {
            uint8_t out[64] = {0x5A};
            uint32_t len = sizeof out;
            const uint32_t result = converter(in.data(), int32_t(in.size()), out, &len);
            EXPECT_TRUE(result == 0 || (len == sizeof out && out[0] == 0x5A));
            return result;
        });
    }
}

TEST(Charset, LimitsTheInputAloneAndTakesNothingFromAnEmptyOne) {
    for (const Conversion &row : kConversions) {
        SCOPED_TRACE(row.name);
        Octets in(row.most, 0x41);
        EXPECT_EQ(convert(row.convert, in).size(), row.at_limit);
        in.push_back(0x41);
        const TraceRecord trace;
        uint32_t status = 0;
        convert(row.convert, in, &status);
        EXPECT_EQ(status, 101u);
        EXPECT_EQ(trace.lines(), (Trail{"======>" + row.name + " Begin",
                                        "------>inDataLen>" + std::to_string(row.most)}));
        for (const int32_t in_len : {0, -5}) {
            uint32_t len = 77;
            EXPECT_EQ(row.convert(nullptr, in_len, nullptr, &len), 0u);
            EXPECT_EQ(len, 0u);
        }
        uint32_t len = 77;
        EXPECT_EQ(row.convert(nullptr, 1, nullptr, &len), 108u);
        EXPECT_EQ(row.convert(nullptr, 0, nullptr, nullptr), 108u);
    }
}

}  // namespace
}  // namespace za::test
