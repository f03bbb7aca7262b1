#include "names/za_low_name.hpp"
#include "names/za_low_name_support.hpp"

#include <array>
#include <gtest/gtest.h>

namespace za::test {
namespace {

using Table = std::array<uint8_t, 256>;

uint32_t encode(ZI_Name *name, const uint8_t *table, std::string &out) {
    const Handed der = handed([&](Anybuf **record) {
        return table == nullptr ? ZI_EncodeIssuerSuject(name, record)
                                : ZI_EncodeCertIssuerSuject(name, table, record);
    });
    out = to_hex(der.record.get());
    return der.result;
}

Octets rdn(std::string_view oid, std::string_view value) {
    return element(0x31, sequence({element(6, from_hex(oid)), from_hex(value)}));
}

TEST(Name, ChoosesTheStringType) {
    for (const auto &row : rows_of("names/string_types.txt")) {
        SCOPED_TRACE(row.at(0) + " " + row.at(4));
        const auto number = [&](size_t cell) { return number_of(row.at(cell)); };
        const Table table{uint8_t(number(3))};
        Entries entries{{number(1), "55 04 03", row.at(4), number(2)}};
        const std::string expected =
            number(5) == 0 ? to_hex(sequence({rdn("55 04 03", row.at(6))})) : "(none)";
        std::string der;
        // A list is encoded as often as its owner likes.
        for (int run = 0; run < 2; ++run) {
            EXPECT_EQ(encode(entries.name(), table.data(), der), number(5));
            EXPECT_EQ(der, expected);
            EXPECT_EQ(entries.name()->first->attrValue.dataType, number(7));
        }
        // Without memory for the conversion a chosen type is left out before its text is judged.
        if (number(3) == 0 || number(5) == 0) {
            expect_allocation_faults_survived(
                [&] { return encode(entries.name(), table.data(), der); });
        }
    }
}

TEST(Name, EncodesEveryEntryInOrder) {
    const Table zeros{};
    Entries none;
    Entries entries{{25, "55 04 06", "43 4E"}, {30, "55 04 0B", "41"}, {30, "55 04 0B", "42"}};
    const std::string expected =
        to_hex(sequence({rdn("55 04 06", "13 02 43 4E"), rdn("55 04 0B", "13 01 41"),
                         rdn("55 04 0B", "13 01 42")}));
    std::string der;
    EXPECT_EQ(encode(none.name(), nullptr, der), 0u);
    EXPECT_EQ(der, "30 00");
    EXPECT_EQ(encode(entries.name(), nullptr, der), 0u);
    EXPECT_EQ(der, expected);
    Anybuf *out = nullptr;
    EXPECT_EQ(ZI_EncodeCertIssuerSuject(entries.name(), nullptr, &out), 0u);
    EXPECT_EQ(to_hex(out), expected);
    ZI_FreeAnybuf(out);
    EXPECT_EQ(ZI_EncodeIssuerSuject(nullptr, &out), 108u);
    EXPECT_EQ(ZI_EncodeIssuerSuject(entries.name(), nullptr), 108u);
    EXPECT_EQ(ZI_EncodeCertIssuerSuject(nullptr, zeros.data(), &out), 108u);
}

// Octet i belongs to entry i, and entries behind the table follow the rule.
TEST(Name, TableBelongsToPlaces) {
    Table table{};
    table[255] = 4;
    Entries entries;
    for (int i = 0; i < 257; ++i) {
        entries.add({22, "55 04 03", "41"});
    }
    std::vector<Octets> rdns(257, rdn("55 04 03", "13 01 41"));
    rdns[255] = rdn("55 04 03", "16 01 41");
    std::string der;
    EXPECT_EQ(encode(entries.name(), table.data(), der), 0u);
    EXPECT_EQ(der, to_hex(sequence(rdns)));
}

// A decoded name keeps its characters when it is encoded again, as often as one likes.
TEST(Name, ReencodesWhatWasDecoded) {
    const Octets der = data_file("names/utf8.der");
    names::NameList list;
    ASSERT_EQ(names::decode_issuer_subject(asn1::Element(der), list), Status::ok);
    for (int run = 0; run < 2; ++run) {
        std::string again;
        EXPECT_EQ(encode(list.holder(), nullptr, again), 0u);
        EXPECT_EQ(again, to_hex(data_file("names/utf8_as_bmp.der")));
    }
}

// Without memory a chosen type's converted text is left out, and so is a PrintableString.
TEST(Name, LeavesATrailWhereAValueIsMissing) {
    const std::tuple<Entries::Row, uint8_t, std::string> rows[] = {
        {{22, "55 04 03", "41"}, 2, "------>ZI_Chinese2BmpString"},
        {{25, "55 04 03", "41"}, 0, "------>ZAsn1_WritePrintableString"}};
    for (const auto &[entry, selector, line] : rows) {
        Entries entries{entry};
        const Table table{selector};
        const TraceRecord trace;
        fail_allocation(3);
        std::string der;
        EXPECT_EQ(encode(entries.name(), table.data(), der), 0u);
        EXPECT_EQ(der, to_hex(sequence({rdn("55 04 03", "")})));
        EXPECT_EQ(trace.failures().back(), line);
    }
}

}  // namespace
}  // namespace za::test
