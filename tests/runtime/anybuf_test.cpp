#include <zacert.h>

#include "support/bytes.hpp"
#include "support/heap.hpp"

#include <gtest/gtest.h>
#include <string>
#include <tuple>

namespace za::test {
namespace {

auto fields(const Anybuf &record) {
    return std::tuple(to_hex(&record), record.data == nullptr, record.unusedBits, record.bufFlag,
                      record.dataType, record.next, record.prev);
}

const auto kEmpty = fields(Anybuf{});

// A record with every field set; its octets are of the library's heap.
Anybuf filled(Anybuf *neighbour) {
    Anybuf octets{};
    EXPECT_EQ(ZI_SetAttributeCharValue(&octets, from_hex("AA BB CC").data(), 3), 0u);
    return {octets.data, 3, 5, 2, 19, neighbour, neighbour};
}

TEST(AnybufRecord, InitFreesNothingAndClearLeavesTheChainAlone) {
    const NoLeak no_leak;
    Anybuf next = filled(nullptr);
    Anybuf head = filled(&next);
    Anybuf forgotten = head;
    EXPECT_EQ(ZI_InitAnybuf(&forgotten), 0u);
    EXPECT_EQ(fields(forgotten), kEmpty);
    EXPECT_EQ(ZI_ClearAnybuf(&head), 0u);
    EXPECT_EQ(fields(head), kEmpty);
    EXPECT_EQ(to_hex(&next), "AA BB CC");
    EXPECT_EQ(ZI_ClearAnybuf(&next), 0u);
}

TEST(AnybufRecord, FreeReleasesTheWholeChain) {
    for (const size_t length : {1u, 3u, 200000u}) {  // deeper than a recursion could go
        const NoLeak no_leak;
        Anybuf *head = nullptr;
        for (size_t i = 0; i < length; ++i) {
            Anybuf *record = nullptr;
            ASSERT_EQ(ZAsn1_Low_CreateAnyBuf(&record), 0u);
            *record = i % 2 == 0 ? filled(head) : Anybuf{nullptr, 0, 0, 0, 0, head, nullptr};
            head = record;
        }
        EXPECT_EQ(ZI_FreeAnybuf(head), 0u);
    }
}

TEST(AnybufRecord, CopyTakesEveryFieldAndOctetsOfItsOwn) {
    const NoLeak no_leak;
    Anybuf neighbour{};
    Anybuf src = filled(&neighbour);
    ZA_AlgorithmIdentifier to{};
    const ZA_AlgorithmIdentifier from{7, src};
    // The old octets are not freed, for nothing says that they are octets.
    Anybuf dst = borrowed(Octets(1));
    EXPECT_EQ(ZI_CopyAnybuf(&dst, &src), 0u);
    EXPECT_EQ(ZI_CopyAlgorithm(&to, &from), 0u);
    EXPECT_EQ(to.algorithm, 7u);
    for (Anybuf *copy : {&dst, &to.parameters}) {
        EXPECT_EQ(fields(*copy), fields(src));
        EXPECT_NE(copy->data, src.data);
        ZI_ClearAnybuf(copy);
    }
    EXPECT_EQ(ZI_CopyAnybuf(&src, &src), 0u);
    EXPECT_EQ(to_hex(&src), "AA BB CC");
    fail_allocation(1);
    EXPECT_EQ(ZI_CopyAnybuf(&dst, &src), 0u);
    EXPECT_TRUE(dst.data == nullptr && dst.dataLen == 0 && dst.dataType == 19);
    ZI_ClearAnybuf(&src);
    Anybuf without_octets[2]{};
    without_octets[0].dataLen = 3;
    for (const Anybuf &none : without_octets) {
        dst.dataLen = 9;
        EXPECT_EQ(ZI_CopyAnybuf(&dst, &none), 0u);
        EXPECT_TRUE(dst.data == nullptr && dst.dataLen == 0);
    }
}

TEST(AnybufRecord, SettingAValueKeepsTheType) {
    const Octets octets = from_hex("AA BB");
    for (const uint32_t length : {0u, 2u}) {
        expect_allocation_faults_survived([&] {
            Anybuf record{nullptr, 9, 9, 9, 19, &record, &record};
            const uint32_t result = ZI_SetAttributeCharValue(&record, octets.data(), length);
            if (result == 0) {
                EXPECT_EQ(fields(record), std::tuple(length == 0 ? "" : "AA BB", false, 0u, 0u, 19u,
                                                     nullptr, nullptr));
            } else {
                EXPECT_TRUE(record.dataLen == 9 && record.next == &record);
            }
            ZI_ClearAnybuf(&record);
            return result;
        });
    }
}

TEST(AnybufRecord, NumberIsTheLowFiveBits) {
    uint32_t number = 7;
    const Anybuf empty{};
    EXPECT_EQ(ZI_GetNumberFromImpOrExplicit(&empty, &number), 1u);
    EXPECT_EQ(number, 7u);
    for (const auto &[hex, expected] : {std::pair{"A3 00", 3u}, {"81", 1u}, {"BF 1F", 31u}}) {
        const Octets octets = from_hex(hex);
        const Anybuf record = borrowed(octets);
        EXPECT_EQ(ZI_GetNumberFromImpOrExplicit(&record, &number), 0u);
        EXPECT_EQ(number, expected);
    }
}

TEST(AnybufRecord, Null) {
    Anybuf record{};
    ZA_AlgorithmIdentifier algorithm{};
    const uint8_t octet = 0;
    uint32_t number = 0;
    const uint32_t ignored =
        ZI_InitAnybuf(nullptr) | ZI_ClearAnybuf(nullptr) | ZI_FreeAnybuf(nullptr) |
        ZI_CopyAnybuf(nullptr, &record) | ZI_CopyAnybuf(&record, nullptr) |
        ZI_CopyAlgorithm(nullptr, &algorithm) | ZI_CopyAlgorithm(&algorithm, nullptr);
    EXPECT_EQ(ignored, 0u);
    EXPECT_EQ(ZI_SetAttributeCharValue(&record, nullptr, 1), 108u);
    EXPECT_EQ(ZI_SetAttributeCharValue(nullptr, &octet, 1), 108u);
    EXPECT_EQ(ZI_GetNumberFromImpOrExplicit(nullptr, &number), 108u);
    EXPECT_EQ(ZI_GetNumberFromImpOrExplicit(&record, nullptr), 108u);
}

}  // namespace
}  // namespace za::test
