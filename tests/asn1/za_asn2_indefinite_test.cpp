#include "support/bytes.hpp"
#include "support/heap.hpp"
#include "support/table.hpp"
#include "support/trace.hpp"

#include <gtest/gtest.h>
#include <string>

namespace za::test {
namespace {

// Both calls, the second into a buffer that has the size of the input and nothing to spare.
uint32_t convert(const Octets &in, Octets &out) {
    const uint32_t size = static_cast<uint32_t>(in.size());
    uint32_t length = 7;
    uint32_t written = 7;
    out.assign(in.size(), 0xEE);
    const uint32_t asked = ZAsn1_IndefiniteToDefinite(in.data(), size, nullptr, &length);
    const uint32_t result = ZAsn1_IndefiniteToDefinite(in.data(), size, out.data(), &written);
    if (result != 0) {
        EXPECT_EQ(written, 7u);
        EXPECT_EQ(out, Octets(in.size(), 0xEE));
        EXPECT_EQ(asked, result == 101 ? 0 : result);
        EXPECT_TRUE(asked != 0 || length > size);
        return result;
    }
    EXPECT_EQ(asked, 0u);
    EXPECT_EQ(length, written);
    out.resize(written);
    return 0;
}

std::string repeated(const char *text, size_t times) {
    std::string all;
    while (times-- > 0) {
        all += text;
    }
    return all;
}

TEST(Indefinite, BecomesDefinite) {
    for (const Fields &row : table("asn1/indefinite.txt")) {
        SCOPED_TRACE(row[0]);
        const TraceRecord trace;
        Octets out;
        EXPECT_EQ(convert(from_hex(row[1]), out), row[2].empty() ? 123u : 0u);
        if (row[2].empty()) {
            EXPECT_EQ(trace.failures().back(), "------>ZACERT_IndefiniteErr");
        } else {
            EXPECT_EQ(to_hex(out), row[2]);
        }
    }
}

TEST(Indefinite, StreamedMessageAsOpenSslWritesIt) {
    const std::string folder = ZACERT_TEST_DATA "/der/";
    Octets out;
    ASSERT_EQ(convert(read_file(folder + "signed.ber"), out), 0u);
    EXPECT_EQ(to_hex(out), to_hex(read_file(folder + "signed.der")));
    ASSERT_EQ(convert(read_file(folder + "enveloped.ber"), out), 0u);
    Octets again;
    ASSERT_EQ(convert(out, again), 0u);
    EXPECT_EQ(again, out);
}

TEST(Indefinite, NeedsItsArguments) {
    const uint8_t octet = 5;
    uint32_t length = 7;
    EXPECT_EQ(ZAsn1_IndefiniteToDefinite(nullptr, 1, nullptr, &length), 108u);
    EXPECT_EQ(ZAsn1_IndefiniteToDefinite(&octet, 0, nullptr, &length), 108u);
    EXPECT_EQ(ZAsn1_IndefiniteToDefinite(&octet, 1, nullptr, nullptr), 108u);
    EXPECT_EQ(length, 7u);
}

// From 65535 content octets on the header takes more than the two octets and the closing pair.
TEST(Indefinite, ResultLongerThanItsInputIsALengthError) {
    for (const uint32_t content : {65534u, 65535u}) {
        const uint32_t inner = content - 4;
        Octets in = from_hex("30 80 04 82 FF");
        in.push_back(static_cast<uint8_t>(inner));
        in.resize(in.size() + inner, 0x55);
        in.resize(in.size() + 2);
        Octets out;
        EXPECT_EQ(convert(in, out), content == 65535 ? 101u : 0u);
        uint32_t length = 0;
        EXPECT_EQ(ZAsn1_IndefiniteToDefinite(in.data(), static_cast<uint32_t>(in.size()), nullptr,
                                             &length),
                  0u);
        EXPECT_EQ(length, content == 65535 ? in.size() + 1 : in.size());
    }
}

TEST(Indefinite, NestsSixtyFourDeep) {
    for (const char *container : {"30 80", "A0 80", "24 80"}) {
        Octets out;
        const auto nested = [&](size_t depth) {
            return from_hex("30 80" + repeated(container, depth - 1) + repeated("00 00", depth));
        };
        EXPECT_EQ(convert(nested(64), out), 0u) << container;
        EXPECT_EQ(convert(nested(65), out), 123u) << container;
        EXPECT_EQ(convert(nested(100000), out), 123u) << container;
    }
}

// Each level of these is looked at for pieces, in vain; time must not double with every level.
TEST(Indefinite, DeepPiecesThatDoNotFoldEnd) {
    Octets out;
    const std::string closing = repeated("00 00", 62);
    ASSERT_EQ(convert(from_hex("30 80" + repeated("24 80", 61) + "05 00" + closing), out), 0u);
    EXPECT_EQ(to_hex(out).substr(to_hex(out).size() - 23), "24 06 24 04 24 02 05 00");
    const std::string pieces = repeated("04 01 AA", 10000) + "05 00";
    EXPECT_EQ(convert(from_hex("30 80" + repeated("24 80", 61) + pieces + closing), out), 0u);
}

}  // namespace
}  // namespace za::test
