#include "names/za_low_name.hpp"
#include "names/za_low_name_support.hpp"
#include "names/za_low_oid.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <gtest/gtest.h>

namespace za::test {
namespace {

uint32_t decode(const Octets &der, std::string &out) {
    const Anybuf name = borrowed(der);
    ZI_NameEntry *entries = nullptr;
    const uint32_t result = ZI_DecodeIssuerSubject(&name, &entries);
    EXPECT_TRUE(result == 0 || entries == nullptr);
    out = describe_entries(entries);
    EXPECT_EQ(ZI_FreeName(entries), 0u);
    return result;
}

// Kinds follow no arithmetic as a whole, so every one is written down: the kinds of 2.5.4.3 to .40.
TEST(Name, EveryKindHasItsObjectIdentifier) {
    const uint32_t kinds[] = {22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 60, 33,
                              34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46,
                              47, 48, 49, 50, 51, 52, 54, 55, 56, 57, 58, 59};
    uint8_t arc = 3;
    for (const uint32_t kind : kinds) {
        const Octets oid{0x55, 0x04, arc++};
        EXPECT_EQ(names::kind_of(oid), kind);
        EXPECT_EQ(to_hex(names::oid_of_kind(kind)), to_hex(oid));
    }
    EXPECT_EQ(names::kind_of(from_hex("55 04 2E")), 53u);
    EXPECT_EQ(to_hex(names::oid_of_kind(53)), "55 04 2E");
    EXPECT_EQ(names::kind_of(from_hex("2A 86 48 86 F7 0D 01 09 01")), 13u);
    EXPECT_EQ(to_hex(names::oid_of_kind(13)), "2A 86 48 86 F7 0D 01 09 01");

    for (const char *oid : {"", "55", "55 04", "55 04 00", "55 04 02", "55 04 29", "55 04 2D",
                            "55 04 2F", "55 04 FF", "55 05 03", "55 04 03 01"}) {
        EXPECT_EQ(names::kind_of(from_hex(oid)), 0u) << oid;
    }
    for (const uint32_t kind : {0u, 12u, 14u, 21u, 61u}) {
        EXPECT_TRUE(names::oid_of_kind(kind).empty()) << kind;
    }
}

struct Row {
    const char *name;
    const char *der;
    const char *entries;
};

const Row kNames[] = {
    {"empty", "30 00", ""},
    {"UTF-8 stays", kUtf8Name,
     "25 19 43 4E; 27 12 E5 8C 97 E4 BA AC; 29 12 45 78 61 6D 70 6C 65 20 E7 A4 BA E4 BE 8B; "
     "30 12 44 65 70 74; 30 12 54 65 61 6D; 22 12 E6 B5 8B E8 AF 95 20 52 6F 6F 74; "
     "13 22 63 61 40 65 78 61 6D 70 6C 65 2E 63 6E"},
    {"several attributes in one RDN", kMultiValuedName,
     "25 19 44 45; 29 12 45 78 61 6D 70 6C 65 20 47 6D 62 48; 24 19 34 32; 30 12 4F 6E 65; "
     "22 12 68 6F 73 74 2E 65 78 61 6D 70 6C 65; 13 22 61 40 62 2E 64 65"},
    {"BMPString becomes GB18030, unknown types stay", kBmpName,
     "25 19 43 4E; 29 30 CA BE C0 FD B9 AB CB BE; 22 30 41 6C 69 63 65 5F 57 61 6E 67; "
     "0 22 65 78 61 6D 70 6C 65; 0 19 61 62"},
    {"empty SET", "30 0F 31 00 31 0B 30 09 06 03 55 04 06 13 02 43 4E", "25 19 43 4E"},
    {"empty value", "30 0B 31 09 30 07 06 03 55 04 03 0C 00", "22 12 "},
    {"empty type", "30 0A 31 08 30 06 06 00 13 02 43 4E", "0 19 43 4E"},
    {"third element ignored", "30 0F 31 0D 30 0B 06 03 55 04 06 13 02 43 4E 05 00", "25 19 43 4E"},
};

TEST(Name, Decodes) {
    for (const Row &row : kNames) {
        SCOPED_TRACE(row.name);
        const Octets der = from_hex(row.der);
        std::string entries;
        EXPECT_EQ(decode(der, entries), 0u);
        EXPECT_EQ(entries, row.entries);
        expect_allocation_faults_survived([&] { return decode(der, entries); });
        expect_allocation_faults_survived([&] {
            names::NameList list;
            const Status status = names::decode_issuer_subject(asn1::Element(der), list);
            EXPECT_EQ(describe_entries(list.first()), status == Status::ok ? row.entries : "");
            return static_cast<uint32_t>(status);
        });
    }
}

struct BadRow {
    const char *name;
    const char *der;
    uint32_t result;
    std::vector<std::string> failures;
};

const BadRow kBad[] = {
    {"no SEQUENCE", "31 00", 108, {"------>pMidData[0]!=0x30", "------>ZAsn1_ReadSequence"}},
    {"trailing octet",
     "30 00 00",
     102,
     {"------>ZACERT_LengthNotEqualErr", "------>ZAsn1_ReadSequence"}},
    {"no SET", "30 02 30 00", 106, {"------>TAG != ZA_DER_ID_SET", "------>ZAsn1_ReadSet"}},
    {"attribute is no SEQUENCE",
     "30 04 31 02 05 00",
     108,
     {"------>pMidData[0]!=0x30", "------>ZAsn1_ReadSequence"}},
    {"empty attribute", "30 04 31 02 30 00", 121, {"------>ZACERT_InvalidItem"}},
    {"no value", "30 09 31 07 30 05 06 03 55 04 03", 121, {"------>ZACERT_InvalidItem"}},
    {"surrogate in BMPString",
     "30 0D 31 0B 30 09 06 03 55 04 03 1E 02 D8 00",
     0xFFFFFFFF,
     {"------>iconv", "------>ZI_BmpString2Chinese"}},
    {"child beyond its end",
     "30 09 31 07 30 06 06 03 55 04 03",
     101,
     {"------>lTotalLength != 0", "------>ZAsn1_ReadSet"}},
};

TEST(Name, LeavesOneLinePerLevelOfAFailure) {
    for (const BadRow &row : kBad) {
        SCOPED_TRACE(row.name);
        const TraceRecord trace;
        std::string entries;
        EXPECT_EQ(decode(from_hex(row.der), entries), row.result);
        EXPECT_EQ(trace.failures(), row.failures);
    }
    Anybuf name{};
    ZI_NameEntry *entries = nullptr;
    EXPECT_EQ(ZI_DecodeIssuerSubject(nullptr, &entries), 108u);
    EXPECT_EQ(ZI_DecodeIssuerSubject(&name, nullptr), 108u);
    EXPECT_EQ(ZI_DecodeIssuerSubject(&name, &entries), 108u);
    EXPECT_EQ(ZI_FreeName(nullptr), 0u);
}

TEST(Name, OverlongBmpStringIsALengthError) {
    Octets der = from_hex("30 82 10 11 31 82 10 0D 30 82 10 09 06 03 55 04 03 1E 82 10 00");
    der.resize(der.size() + 4096, 0x41);
    std::string entries;
    EXPECT_EQ(decode(der, entries), 0u);
    for (const size_t length_at : {3u, 7u, 11u, 20u}) {
        der[length_at] = static_cast<uint8_t>(der[length_at] + 2);
    }
    der.resize(der.size() + 2, 0x41);
    EXPECT_EQ(decode(der, entries), 101u);
}

// An entry behind the tail would be lost, and one allocation per entry is what decoding may cost.
TEST(Name, ListKeepsItsOrderAndCountsItsBlocks) {
    const NoLeak no_leak;
    const size_t before = heap_count().allocations;
    names::NameList list;
    names::NameList rest;
    ASSERT_EQ(list.append(22, from_hex("41")), Status::ok);
    ASSERT_EQ(rest.append(25, from_hex("42 43"), 19), Status::ok);
    list.append(std::move(rest));
    list.append(names::NameList());
    ASSERT_EQ(list.append(0, from_hex("2A 03"), {}, 12), Status::ok);
    EXPECT_EQ(heap_count().allocations - before, 3u);
    EXPECT_EQ(describe_entries(list.first()), "22 0 41; 25 19 42 43; 0 12 ");
    EXPECT_TRUE(rest.empty());
    ASSERT_EQ(rest.append(30, from_hex("44")), Status::ok);
    EXPECT_EQ(describe_entries(rest.first()), "30 0 44");
    EXPECT_EQ(to_hex(&list.first()->attrOid), "55 04 03");

    names::NameList decoded;
    const Octets der = from_hex(kUtf8Name);
    const size_t start = heap_count().allocations;
    ASSERT_EQ(names::decode_issuer_subject(asn1::Element(der), decoded), Status::ok);
    EXPECT_EQ(heap_count().allocations - start, 7u);
}

// Every prefix and every changed octet of real names, in blocks that end where the octets end.
TEST(Name, SurvivesCutAndChangedOctets) {
    for (const char *hex : {kUtf8Name, kMultiValuedName, kBmpName}) {
        const Octets der = from_hex(hex);
        std::string entries;
        for (size_t size = 0; size < der.size(); ++size) {
            EXPECT_NE(decode(Octets(der.begin(), der.begin() + static_cast<long>(size)), entries),
                      0u);
        }
        const NoLeak no_leak;
        for (size_t at = 0; at < der.size(); ++at) {
            for (unsigned value = 0; value < 0x100; ++value) {
                Octets changed = der;
                changed[at] = static_cast<uint8_t>(value);
                const uint32_t result = decode(changed, entries);
                EXPECT_TRUE(result == 0 || result == 101 || result == 102 || result == 106 ||
                            result == 108 || result == 121 || result >= 0xFFFFFFFE)
                    << result << " with " << value << " at " << at;
            }
        }
    }
}

}  // namespace
}  // namespace za::test
