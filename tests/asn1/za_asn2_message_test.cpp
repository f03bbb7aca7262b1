// Whole messages: of indefinite length, and cut and changed in blocks that end where they end.
#include "support/bytes.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/rows.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <gtest/gtest.h>
#include <string>

namespace za::test {
namespace {

Octets message(const std::string &file) {
    Octets octets = read_file(ZACERT_TEST_DATA "/der/" + file);
    octets.shrink_to_fit();
    return octets;
}

// Both calls, the second into a buffer that has the size of the input and nothing to spare.
uint32_t convert(const Octets &in, Octets &out) {
    const uint32_t size = static_cast<uint32_t>(in.size());
    uint32_t length = 7, written = 7;
    out.assign(in.size(), 0xEE);
    const uint32_t asked = ZAsn1_IndefiniteToDefinite(in.data(), size, nullptr, &length);
    const uint32_t result = ZAsn1_IndefiniteToDefinite(in.data(), size, out.data(), &written);
    EXPECT_EQ(asked, result == 101 ? 0 : result);
    EXPECT_EQ(length, result == 101 ? size + 1 : written);
    EXPECT_TRUE(result == 0 || (written == 7 && out == Octets(in.size(), 0xEE)));
    out.resize(result == 0 ? written : 0);
    return result;
}

Octets repeated(std::initializer_list<std::pair<size_t, const char *>> parts) {
    std::string all;
    for (const auto &[times, text] : parts) {
        for (size_t i = 0; i < times; ++i) {
            all += text;
        }
    }
    return from_hex(all);
}

TEST(Indefinite, BecomesDefinite) {
    Octets out, again;
    for (const Row &row : rows_of("asn1/indefinite.txt")) {
        SCOPED_TRACE(row[0]);
        const TraceRecord trace;
        ASSERT_EQ(convert(from_hex(row[1]), out), row[2].empty() ? 123u : 0u);
        EXPECT_EQ(row[2].empty() ? trace.failures().back() : to_hex(out),
                  row[2].empty() ? "------>ZACERT_IndefiniteErr" : row[2]);
    }
    ASSERT_EQ(convert(message("signed.ber"), out), 0u);
    EXPECT_EQ(out, message("signed.der"));
    ASSERT_EQ(convert(message("enveloped.ber"), out), 0u);
    ASSERT_EQ(convert(out, again), 0u);
    EXPECT_EQ(again, out);
}

// From 65535 content octets on the header takes more than the two octets and the closing pair.
TEST(Indefinite, ResultLongerThanItsInputIsALengthError) {
    for (const auto &[element, code] : {std::pair("04 82 FF FA", 0u), {"04 82 FF FB", 101u}}) {
        const size_t inner = code == 0 ? 65530 : 65531;
        const Octets in = repeated({{1, "30 80"}, {1, element}, {inner, "55"}, {2, "00"}});
        Octets out;
        EXPECT_EQ(convert(in, out), code);
    }
}

TEST(Indefinite, NestsSixtyFourDeep) {
    Octets out;
    for (const char *container : {"30 80", "A0 80", "24 80"}) {
        for (const size_t depth : {64u, 65u, 100000u}) {
            const Octets in = repeated({{1, "30 80"}, {depth - 1, container}, {depth, "00 00"}});
            EXPECT_EQ(convert(in, out), depth == 64 ? 0u : 123u) << container;
        }
    }
}

// Each level of these is looked at for pieces, in vain; time must not double with every level.
TEST(Indefinite, DeepPiecesThatDoNotFoldEnd) {
    for (const size_t pieces : {0u, 10000u}) {
        const Octets in = repeated(
            {{1, "30 80"}, {61, "24 80"}, {pieces, "04 01 AA"}, {1, "05 00"}, {62, "00 00"}});
        Octets out;
        ASSERT_EQ(convert(in, out), 0u);
        EXPECT_EQ(to_hex(out).substr(to_hex(out).size() - 14),
                  pieces == 0 ? "04 24 02 05 00" : "04 01 AA 05 00");
    }
}

uint32_t implicit_content(const Anybuf *in, Anybuf **out) {
    uint32_t number = 0;
    return ZAsn1_ReadImplicit(in, out, &number);
}

bool succeeds(uint32_t result) {
    constexpr std::array kDocumented{0u, 101u, 102u, 104u, 106u, 108u, 123u};
    EXPECT_EQ(std::ranges::count(kDocumented, result), 1) << result;
    return result == 0;
}

// Whether any reader takes the octets as a whole.
bool is_readable(const Octets &octets) {
    const Anybuf in = borrowed(octets);
    Octets definite(octets.size());
    uint32_t length = 0;
    bool readable =
        succeeds(ZAsn1_IndefiniteToDefinite(octets.data(), in.dataLen, definite.data(), &length));
    EXPECT_LE(length, octets.size());
    for (const auto read : {ZAsn1_ReadSequence, ZAsn1_ReadSet, implicit_content}) {
        readable |= succeeds(handed([&](Anybuf **out) { return read(&in, out); }).result);
    }
    return readable;
}

// Every element below, each by every reader of a primitive type.
size_t walk(const Anybuf &element) {
    uint32_t number = 0;
    uint8_t octet = 0;
    int32_t time = 0;
    ZA_ObjectIdentifier *oid = nullptr;
    succeeds(ZAsn1_ReadInteger(&element, &number));
    succeeds(ZAsn1_ReadBoolean(&element, &octet));
    succeeds(ZAsn1_ReadUtcTime(&element, &time));
    succeeds(ZAsn1_ReadGeneralizedTime(&element, &time));
    if (succeeds(ZAsn1_ReadObjectId(&element, &oid))) {
        ZI_ClearAnybuf(&oid->parameters);
        ZAPR_Free(oid);
    }
    handed([&](Anybuf **out) { return ZAsn1_ReadBitString(&element, out); });
    const Handed children = handed([&](Anybuf **out) { return implicit_content(&element, out); });
    size_t elements = 1;
    if (children.result == 0 && element.dataLen > 0 && (element.data[0] & 0x20) != 0) {
        for (const Anybuf *child = children.record.get(); child != nullptr; child = child->next) {
            elements += walk(*child);
        }
    }
    return elements;
}

TEST(Damage, IsRefusedOrReadWithADocumentedCode) {
    const NoLeak no_leak;
    for (const char *file :
         {"certificate.der", "request.der", "key.der", "signed.der", "signed.ber"}) {
        Octets octets = message(file);
        EXPECT_TRUE(is_readable(octets)) << file;
        for (size_t size = 0; size < octets.size(); ++size) {
            const Octets cut(octets.begin(), octets.begin() + static_cast<ptrdiff_t>(size));
            // The indefinite length alone reads as a length of 0.
            EXPECT_EQ(is_readable(cut), size == 2 && octets[1] == 0x80) << file << " " << size;
        }
        size_t elements = 0;
        for (uint8_t &octet : octets) {
            for (unsigned change = 1; change < 0x100; ++change) {
                const bool one_bit = std::has_single_bit(change);
                if (one_bit || octets.size() < 512) {  // of larger files only single bits change
                    octet = static_cast<uint8_t>(octet ^ change);
                    is_readable(octets);
                    elements += one_bit ? walk(borrowed(octets)) : 0;
                    octet = static_cast<uint8_t>(octet ^ change);
                }
            }
        }
        EXPECT_GE(elements, 8 * octets.size()) << file;
    }
}

}  // namespace
}  // namespace za::test
