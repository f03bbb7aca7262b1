#include <zacert.h>

#include "support/bytes.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <gtest/gtest.h>
#include <string>

namespace za::test {
namespace {

bool is_empty(const Anybuf &record) {
    return record.data == nullptr && record.dataLen == 0 && record.unusedBits == 0 &&
           record.bufFlag == 0 && record.dataType == 0 && record.next == nullptr &&
           record.prev == nullptr;
}

// A record with every field set; its octets are of the library's heap.
Anybuf filled(Anybuf *neighbour) {
    Anybuf record{};
    EXPECT_EQ(ZI_SetAttributeCharValue(&record, from_hex("AA BB CC").data(), 3), 0u);
    record.unusedBits = 5;
    record.bufFlag = 2;
    record.dataType = 19;
    record.next = record.prev = neighbour;
    return record;
}

TEST(AnybufRecord, IsCreatedEmpty) {
    expect_allocation_faults_survived([] {
        const Handed out = handed(ZAsn1_Low_CreateAnyBuf);
        EXPECT_EQ(describe(out.record.get()), out.result == 0 ? "0 " : "(none)");
        return out.result;
    });
    const TraceRecord trace;
    fail_allocation(1);
    EXPECT_EQ(handed(ZAsn1_Low_CreateAnyBuf).result, 100u);
    EXPECT_EQ(trace.failures(), std::vector<std::string>{"------>ZAPR_Malloc"});
    EXPECT_EQ(ZAsn1_Low_CreateAnyBuf(nullptr), 108u);
}

TEST(AnybufRecord, InitFreesNothing) {
    const Octets octets(3);
    Anybuf record = borrowed(octets, 19);
    record.unusedBits = record.bufFlag = 2;
    record.next = record.prev = &record;
    EXPECT_EQ(ZI_InitAnybuf(&record), 0u);
    EXPECT_TRUE(is_empty(record));
    EXPECT_EQ(ZI_InitAnybuf(nullptr), 0u);
}

TEST(AnybufRecord, ClearLeavesTheChainAlone) {
    const NoLeak no_leak;
    Anybuf next{};
    EXPECT_EQ(ZI_SetAttributeCharValue(&next, from_hex("DD").data(), 1), 0u);
    Anybuf head = filled(&next);
    EXPECT_EQ(ZI_ClearAnybuf(&head), 0u);
    EXPECT_TRUE(is_empty(head));
    EXPECT_EQ(to_hex(&next), "DD");
    EXPECT_EQ(ZI_ClearAnybuf(&next), 0u);
    EXPECT_EQ(ZI_ClearAnybuf(nullptr), 0u);
}

TEST(AnybufRecord, FreeReleasesTheWholeChain) {
    constexpr size_t kLong = 200000;  // deeper than a recursion could go
    for (const size_t length : {size_t{1}, size_t{3}, kLong}) {
        const NoLeak no_leak;
        const size_t before = live_blocks();
        Anybuf *head = nullptr;
        for (size_t i = 0; i < length; ++i) {
            Anybuf *record = nullptr;
            ASSERT_EQ(ZAsn1_Low_CreateAnyBuf(&record), 0u);
            if (i % 2 == 0) {
                ASSERT_EQ(ZI_SetAttributeCharValue(record, from_hex("AA").data(), 1), 0u);
            }
            record->next = head;
            head = record;
        }
        EXPECT_EQ(live_blocks() - before, length + (length + 1) / 2);
        EXPECT_EQ(ZI_FreeAnybuf(head), 0u);
    }
    EXPECT_EQ(ZI_FreeAnybuf(nullptr), 0u);
}

TEST(AnybufRecord, CopyTakesEveryFieldAndOctetsOfItsOwn) {
    const NoLeak no_leak;
    Anybuf neighbour{};
    Anybuf src = filled(&neighbour);
    ZA_AlgorithmIdentifier to{};
    const ZA_AlgorithmIdentifier from{7, src};
    const auto expect_copy = [&](Anybuf &copy) {
        EXPECT_EQ(to_hex(&copy), "AA BB CC");
        EXPECT_NE(copy.data, src.data);
        EXPECT_TRUE(copy.unusedBits == 5 && copy.bufFlag == 2 && copy.dataType == 19);
        EXPECT_TRUE(copy.next == &neighbour && copy.prev == &neighbour);
        ZI_ClearAnybuf(&copy);
    };
    // The old octets are not freed, for nothing says that they are octets.
    Anybuf dst = borrowed(Octets(1));
    EXPECT_EQ(ZI_CopyAnybuf(&dst, &src), 0u);
    expect_copy(dst);
    EXPECT_EQ(ZI_CopyAlgorithm(&to, &from), 0u);
    EXPECT_EQ(to.algorithm, 7u);
    expect_copy(to.parameters);

    EXPECT_EQ(ZI_CopyAnybuf(&src, &src), 0u);
    EXPECT_EQ(to_hex(&src), "AA BB CC");
    EXPECT_EQ(ZI_CopyAnybuf(nullptr, &src), 0u);
    EXPECT_EQ(ZI_CopyAnybuf(&dst, nullptr), 0u);
    EXPECT_EQ(ZI_CopyAlgorithm(nullptr, &from), 0u);
    EXPECT_EQ(ZI_CopyAlgorithm(&to, nullptr), 0u);
    EXPECT_TRUE(is_empty(dst));

    fail_allocation(1);
    EXPECT_EQ(ZI_CopyAnybuf(&dst, &src), 0u);
    EXPECT_TRUE(dst.data == nullptr && dst.dataLen == 0 && dst.dataType == 19);
    ZI_ClearAnybuf(&src);
    for (Anybuf none : {Anybuf{nullptr, 3, 0, 0, 0, nullptr, nullptr}, borrowed(Octets())}) {
        dst.dataLen = 9;
        EXPECT_EQ(ZI_CopyAnybuf(&dst, &none), 0u);
        EXPECT_TRUE(dst.data == nullptr && dst.dataLen == 0);
    }
}

TEST(AnybufRecord, SettingAValueKeepsTheType) {
    const NoLeak no_leak;
    const Octets octets = from_hex("AA BB");
    for (const uint32_t length : {0u, 2u}) {
        expect_allocation_faults_survived([&] {
            Anybuf record{nullptr, 9, 9, 9, 19, &record, &record};
            const uint32_t result = ZI_SetAttributeCharValue(&record, octets.data(), length);
            if (result == 0) {
                EXPECT_NE(record.data, nullptr);
                EXPECT_EQ(to_hex(&record), length == 0 ? "" : "AA BB");
                EXPECT_TRUE(record.unusedBits == 0 && record.bufFlag == 0 &&
                            record.dataType == 19 && record.next == nullptr &&
                            record.prev == nullptr);
            } else {
                EXPECT_TRUE(record.dataLen == 9 && record.next == &record);
            }
            ZI_ClearAnybuf(&record);
            return result;
        });
    }
    Anybuf record{};
    EXPECT_EQ(ZI_SetAttributeCharValue(&record, nullptr, 1), 108u);
    EXPECT_EQ(ZI_SetAttributeCharValue(nullptr, octets.data(), 1), 108u);
}

TEST(AnybufRecord, NumberIsTheLowFiveBits) {
    for (const auto &[hex, expected] : {std::pair{"A3 00", 3u}, {"81", 1u}, {"BF 1F", 31u}}) {
        const Octets octets = from_hex(hex);
        const Anybuf record = borrowed(octets);
        uint32_t number = 0;
        EXPECT_EQ(ZI_GetNumberFromImpOrExplicit(&record, &number), 0u);
        EXPECT_EQ(number, expected);
    }
    uint32_t number = 7;
    const Anybuf empty{};
    EXPECT_EQ(ZI_GetNumberFromImpOrExplicit(&empty, &number), 1u);
    EXPECT_EQ(ZI_GetNumberFromImpOrExplicit(nullptr, &number), 108u);
    EXPECT_EQ(ZI_GetNumberFromImpOrExplicit(&empty, nullptr), 108u);
    EXPECT_EQ(number, 7u);
}

}  // namespace
}  // namespace za::test
