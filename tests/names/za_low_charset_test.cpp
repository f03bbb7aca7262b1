#include <zacert.h>

#include "support/bytes.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <array>
#include <gtest/gtest.h>
#include <iconv.h>
#include <string>

namespace za::test {
namespace {

using Converter = uint32_t (*)(const uint8_t *, int32_t, uint8_t *, uint32_t *);

Octets convert(Converter converter, const Octets &in, uint32_t *status = nullptr) {
    return two_calls(
        [&](uint8_t *out, uint32_t *len) {
            return converter(in.data(), static_cast<int32_t>(in.size()), out, len);
        },
        status);
}

// The oracle: the C library's table of another name, asked one character at a time.
class GbkTable {
  public:
    explicit GbkTable(const char *to) : handle_(iconv_open(to, "GBK")) {}
    ~GbkTable() { iconv_close(handle_); }
    GbkTable(const GbkTable &) = delete;
    GbkTable &operator=(const GbkTable &) = delete;

    Octets look_up(const Octets &code) const {
        std::array<char, 8> area;
        char *from = const_cast<char *>(reinterpret_cast<const char *>(code.data()));
        char *to = area.data();
        size_t from_len = code.size();
        size_t to_len = area.size();
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        const bool known = iconv(handle_, &from, &from_len, &to, &to_len) == 0;
        return known ? Octets(area.data(), to) : Octets{};
    }

  private:
    iconv_t handle_;
};

TEST(Charset, EveryTwoOctetCodeOfGbkRoundTripsAsItsTableSays) {
    const GbkTable ucs2_table("UTF-16BE");
    const GbkTable utf8_table("UTF-8");
    size_t codes = 0;
    for (unsigned high = 0x81; high <= 0xFE; ++high) {
        for (unsigned low = 0x40; low <= 0xFE; ++low) {
            const Octets code{static_cast<uint8_t>(high), static_cast<uint8_t>(low)};
            const Octets ucs2 = ucs2_table.look_up(code);
            if (ucs2.empty()) {
                continue;
            }
            ++codes;
            const Octets utf8 = utf8_table.look_up(code);
            EXPECT_EQ(convert(ZI_Chinese2BmpString, code), ucs2) << to_hex(code);
            EXPECT_EQ(convert(ZI_Chinese2UTF8String, code), utf8) << to_hex(code);
            EXPECT_EQ(convert(ZI_BmpString2Chinese, ucs2), code) << to_hex(code);
            EXPECT_EQ(convert(ZI_UTF8String2Chinese, utf8), code) << to_hex(code);
            EXPECT_EQ(convert(ZI_BmpString2UTF8, ucs2), utf8) << to_hex(code);
            EXPECT_EQ(convert(ZI_UTF82BmpString, utf8), ucs2) << to_hex(code);
        }
    }
    EXPECT_EQ(codes, 21791u);
}

struct Row {
    const char *name;
    Converter converter;
    const char *in;
    uint32_t status;
    const char *out;
};

constexpr uint32_t kInvalid = ZI_CHARSET_INVALID;
constexpr uint32_t kNotRepresentable = ZI_CHARSET_NOT_REPRESENTABLE;

const Row kRows[] = {
    {"ASCII", ZI_Chinese2BmpString, "43 4E", 0, "00 43 00 4E"},
    {"four octets", ZI_Chinese2BmpString, "81 30 81 30", 0, "00 80"},
    {"supplementary to UCS-2", ZI_Chinese2BmpString, "90 30 81 30", kNotRepresentable, ""},
    {"two octets, supplementary", ZI_Chinese2BmpString, "FE 51", kNotRepresentable, ""},
    {"lone lead octet", ZI_Chinese2BmpString, "41 81", kInvalid, ""},
    {"80 is no Euro sign", ZI_Chinese2BmpString, "80", kInvalid, ""},
    {"FF", ZI_Chinese2UTF8String, "41 FF", kInvalid, ""},
    {"earlier character decides", ZI_Chinese2BmpString, "90 30 81 30 FF", kNotRepresentable, ""},
    {"earlier octets decide", ZI_Chinese2BmpString, "FF 90 30 81 30", kInvalid, ""},
    {"supplementary to UTF-8", ZI_Chinese2UTF8String, "90 30 81 30", 0, "F0 90 80 80"},
    {"mark written", ZI_Chinese2BmpString, "84 31 95 33", 0, "FE FF"},

    {"mark skipped", ZI_BmpString2Chinese, "FE FF 00 41", 0, "41"},
    {"mark skipped inside", ZI_BmpString2Chinese, "00 41 FE FF 00 42", 0, "41 42"},
    {"reversed mark", ZI_BmpString2Chinese, "FF FE 41 00", 0, "41"},
    {"reversed mark inside", ZI_BmpString2Chinese, "4E 2D FF FE 2D 4E", 0, "D6 D0 D6 D0"},
    {"mark in reversed order", ZI_BmpString2Chinese, "FF FE FF FE 41 00", 0, "41"},
    {"high surrogate", ZI_BmpString2Chinese, "D8 00", kInvalid, ""},
    {"low surrogate", ZI_BmpString2UTF8, "00 41 DF FF", kInvalid, ""},
    {"surrogate in reversed order", ZI_BmpString2Chinese, "FF FE 00 D8", kInvalid, ""},
    {"odd octet", ZI_BmpString2Chinese, "00 41 00", kInvalid, ""},
    {"BMP to UTF-8", ZI_BmpString2UTF8, "4E 2D", 0, "E4 B8 AD"},

    {"UTF-8, one to four octets", ZI_UTF8String2Chinese, "41 C2 80 E4 B8 AD F0 90 80 80", 0,
     "41 81 30 81 30 D6 D0 90 30 81 30"},
    {"overlong, two", ZI_UTF8String2Chinese, "C1 BF", kInvalid, ""},
    {"overlong, three", ZI_UTF8String2Chinese, "E0 9F BF", kInvalid, ""},
    {"overlong, four", ZI_UTF8String2Chinese, "F0 8F BF BF", kInvalid, ""},
    {"overlong, five", ZI_UTF8String2Chinese, "F8 87 BF BF BF", kInvalid, ""},
    {"overlong, six", ZI_UTF8String2Chinese, "FC 83 BF BF BF BF", kInvalid, ""},
    {"cut off", ZI_UTF8String2Chinese, "41 E4 B8", kInvalid, ""},
    {"stray continuation", ZI_UTF8String2Chinese, "80", kInvalid, ""},
    {"bad continuation", ZI_UTF8String2Chinese, "E4 41 AD", kInvalid, ""},
    {"FE is no lead", ZI_UTF8String2Chinese, "FE 80 80 80 80 80 80", kInvalid, ""},
    {"last of Unicode", ZI_UTF8String2Chinese, "F4 8F BF BF", 0, "E3 32 9A 35"},
    {"above Unicode", ZI_UTF8String2Chinese, "F4 90 80 80", kNotRepresentable, ""},
    {"five octets", ZI_UTF8String2Chinese, "F8 88 80 80 80", kNotRepresentable, ""},
    {"six octets", ZI_UTF8String2Chinese, "FD BF BF BF BF BF", kNotRepresentable, ""},
    {"surrogate in UTF-8", ZI_UTF8String2Chinese, "ED A0 80", kNotRepresentable, ""},
    {"surrogate before invalid", ZI_UTF8String2Chinese, "ED A0 80 80", kNotRepresentable, ""},
    {"UTF-8 to BMP", ZI_UTF82BmpString, "41 E4 B8 AD", 0, "00 41 4E 2D"},
    {"supplementary in UTF-8 to BMP", ZI_UTF82BmpString, "F0 90 80 80", kNotRepresentable, ""},
    {"U+FFFE cannot be written", ZI_UTF82BmpString, "EF BF BE", kNotRepresentable, ""},
    {"U+FFFF can", ZI_UTF82BmpString, "EF BF BF", 0, "FF FF"},
};

TEST(Charset, ConvertsOrSaysWhy) {
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.name);
        const Octets in = from_hex(row.in);
        uint32_t status = 0;
        const NoLeak no_leak;
        EXPECT_EQ(to_hex(convert(row.converter, in, &status)), row.out);
        EXPECT_EQ(status, row.status);

        uint8_t untouched[64] = {0x5A};
        uint32_t len = 77;
        if (row.status != 0) {
            EXPECT_EQ(row.converter(in.data(), static_cast<int32_t>(in.size()), untouched, &len),
                      row.status);
            EXPECT_EQ(untouched[0], 0x5A);
            EXPECT_EQ(len, 77u);
        }
        expect_allocation_faults_survived([&] {
            len = 77;
            const uint32_t result =
                row.converter(in.data(), static_cast<int32_t>(in.size()), nullptr, &len);
            EXPECT_TRUE(result == 0 || len == 77);
            return result;
        });
    }
}

struct Limit {
    Converter converter;
    size_t most;
    const char *text;
    const char *widest;  // one character whose output is as long as any
    size_t factor;       // output octets for each input octet, times two
};

// At the limit of the input the output is up to twice as long; only the input is limited.
const Limit kLimits[] = {
    {ZI_Chinese2BmpString, 2048, "------>inDataLen>2048", "41", 4},
    {ZI_Chinese2UTF8String, 2048, "------>inDataLen>2048", "D6 D0", 3},
    {ZI_BmpString2Chinese, 4096, "------>inDataLen>4096", "00 80", 4},
    {ZI_UTF8String2Chinese, 4096, "------>inDataLen>4096", "C2 80", 4},
    {ZI_BmpString2UTF8, 4096, "------>inDataLen>4096", "4E 2D", 3},
    {ZI_UTF82BmpString, 4096, "------>inDataLen>4096", "41", 4},
};

TEST(Charset, LimitsTheInputAlone) {
    for (const Limit &limit : kLimits) {
        SCOPED_TRACE(limit.text);
        const Octets character = from_hex(limit.widest);
        Octets in;
        while (in.size() < limit.most) {
            in.insert(in.end(), character.begin(), character.end());
        }
        uint32_t status = 1;
        EXPECT_EQ(convert(limit.converter, in, &status).size(), limit.most * limit.factor / 2);
        EXPECT_EQ(status, 0u);

        in.push_back(0x41);
        const TraceRecord trace;
        uint32_t len = 77;
        EXPECT_EQ(limit.converter(in.data(), static_cast<int32_t>(in.size()), nullptr, &len), 101u);
        EXPECT_EQ(len, 77u);
        EXPECT_EQ(trace.failures(), std::vector<std::string>{limit.text});
    }
}

TEST(Charset, TakesNothingFromAnEmptyInput) {
    for (const Limit &limit : kLimits) {
        uint32_t len = 77;
        EXPECT_EQ(limit.converter(nullptr, 0, nullptr, &len), 0u);
        EXPECT_EQ(len, 0u);
        len = 77;
        EXPECT_EQ(limit.converter(nullptr, -5, nullptr, &len), 0u);
        EXPECT_EQ(len, 0u);
        EXPECT_EQ(limit.converter(nullptr, 1, nullptr, &len), 108u);
        EXPECT_EQ(limit.converter(nullptr, 0, nullptr, nullptr), 108u);
    }
}

TEST(Charset, TracesOneFailureOnceAndTheFrameAroundIt) {
    const TraceRecord trace;
    const Octets in = from_hex("81");
    uint32_t len = 0;
    EXPECT_EQ(ZI_Chinese2BmpString(in.data(), 1, nullptr, &len), kInvalid);
    EXPECT_EQ(ZI_Chinese2BmpString(nullptr, 0, nullptr, &len), 0u);
    EXPECT_EQ(trace.lines(),
              (std::vector<std::string>{"======>ZI_Chinese2BmpString Begin", "------>iconv",
                                        "======>ZI_Chinese2BmpString Begin",
                                        "======>ZI_Chinese2BmpString End"}));
}

}  // namespace
}  // namespace za::test
