#include "names/za_low_name.hpp"
#include "names/za_low_name_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <array>
#include <gtest/gtest.h>

namespace za::test {
namespace {

const Octets kType = from_hex("55 04 03");

uint32_t encode(ZI_Name *name, const uint8_t *table, std::string &out) {
    Anybuf *der = nullptr;
    const uint32_t result = table == nullptr ? ZI_EncodeIssuerSuject(name, &der)
                                             : ZI_EncodeCertIssuerSuject(name, table, &der);
    EXPECT_TRUE(result == 0 || der == nullptr);
    out = to_hex(der);
    ZI_FreeAnybuf(der);
    return result;
}

// What a value becomes in a name of this one entry: its element, after 31 .. 30 .. 06 03 55 04 03.
struct Row {
    const char *name;
    uint32_t kind;
    uint32_t type;
    uint8_t selector;
    const char *value;
    uint32_t result;
    const char *element;
    uint32_t type_after;
};

const Row kRows[] = {
    {"printable", 22, 0, 0, "41 7A 30 20", 0, "13 04 41 7A 30 20", 19},
    {"all signs", 22, 0, 0, "20 27 28 29 2B 2C 2D 2E 2F 3A 3D 3F", 0,
     "13 0C 20 27 28 29 2B 2C 2D 2E 2F 3A 3D 3F", 19},
    {"empty", 22, 0, 0, "", 0, "13 00", 19},
    {"at sign", 22, 0, 0, "61 40", 0, "1E 04 00 61 00 40", 30},
    {"underscore", 22, 0, 0, "5F", 0, "1E 02 00 5F", 30},
    {"asterisk", 22, 19, 0, "2A", 0, "1E 02 00 2A", 30},
    {"GB18030", 22, 0, 0, "D6 D0", 0, "1E 02 4E 2D", 30},
    {"encoded as BMP before", 22, 30, 0, "D6 D0", 0, "1E 02 4E 2D", 30},
    {"read as UTF-8", 22, 12, 0, "E4 B8 AD", 0, "1E 02 4E 2D", 12},
    {"read as UTF-8, printable", 22, 12, 0, "41", 0, "13 01 41", 19},
    {"not GB18030", 22, 0, 0, "81", 0xFFFFFFFF, "", 0},
    {"not in UCS-2", 22, 0, 0, "90 30 81 30", 0xFFFFFFFE, "", 0},
    {"country whatever it holds", 25, 0, 0, "D6 5F", 0, "13 02 D6 5F", 19},
    {"telephone whatever it holds", 38, 30, 0, "2A", 0, "13 01 2A", 19},
    {"e-mail", 13, 0, 0, "61 40 5F", 0, "16 03 61 40 5F", 22},
    {"e-mail read as IA5String", 13, 22, 0, "61 40", 0, "16 02 61 40", 22},
    {"e-mail read as UTF-8", 13, 12, 0, "61 40", 0, "16 02 61 40", 22},
    {"e-mail with 19 preset", 13, 19, 0, "61 40", 0, "13 02 61 40", 19},

    {"printable chosen", 22, 0, 1, "40", 0, "13 01 40", 19},
    {"by tag", 13, 0, 19, "40", 0, "13 01 40", 19},
    {"BMP chosen", 25, 0, 2, "D6 D0", 0, "1E 02 4E 2D", 0},
    {"by tag", 25, 0, 30, "41", 0, "1E 02 00 41", 0},
    {"BMP of nothing", 22, 0, 2, "", 0, "1E 00", 0},
    {"UTF-8 chosen", 22, 0, 3, "D6 D0", 0, "0C 03 E4 B8 AD", 0},
    {"by tag", 22, 0, 12, "41", 0, "0C 01 41", 0},
    {"UTF-8 of UTF-8", 22, 12, 3, "E4 B8 AD", 0, "0C 03 E4 B8 AD", 12},
    {"BMP of UTF-8", 22, 12, 2, "E4 B8 AD", 0, "1E 02 4E 2D", 12},
    {"UTF-8 of invalid text", 22, 0, 3, "FF", 0xFFFFFFFF, "", 0},
    {"IA5 chosen", 22, 0, 4, "5F", 0, "16 01 5F", 22},
    {"by tag", 22, 0, 22, "5F", 0, "16 01 5F", 22},
    {"OCTET STRING keeps 19", 22, 0, 5, "FF", 0, "04 01 FF", 19},
    {"BIT STRING", 22, 0, 6, "80", 0, "03 02 00 80", 0},
    {"no such type", 22, 0, 7, "41", 1, "", 0},
    {"no such tag", 22, 0, 255, "41", 1, "", 0},
};

std::string one_entry_name(const char *element) {
    const Octets value = from_hex(element);
    Octets der = from_hex("30 00 31 00 30 00 06 03 55 04 03");
    der.insert(der.end(), value.begin(), value.end());
    for (const size_t length_at : {1u, 3u, 5u}) {
        der[length_at] = static_cast<uint8_t>(der.size() - length_at - 1);
    }
    return to_hex(der);
}

TEST(Name, ChoosesTheStringType) {
    for (const Row &row : kRows) {
        SCOPED_TRACE(std::string(row.name) + " " + row.value);
        std::array<uint8_t, 256> table{};
        table[0] = row.selector;
        Entries entries;
        entries.add(row.kind, kType, from_hex(row.value), row.type);
        ZI_Name *name = entries.name();
        const std::string expected = row.result == 0 ? one_entry_name(row.element) : "(none)";
        std::string der;
        EXPECT_EQ(encode(name, table.data(), der), row.result);
        EXPECT_EQ(der, expected);
        EXPECT_EQ(entries[0].attrValue.dataType, row.type_after);
        // A list is encoded as often as its owner likes.
        EXPECT_EQ(encode(name, table.data(), der), row.result);
        EXPECT_EQ(der, expected);
        // Without memory for the conversion a chosen type is left out before its text is judged.
        if (row.selector == 0 || row.result == 0) {
            expect_allocation_faults_survived(
                [&] { return encode(entries.name(), table.data(), der); });
        }
    }
}

TEST(Name, EncodesEveryEntryInOrder) {
    const std::array<uint8_t, 256> zeros{};
    Entries none;
    std::string der;
    EXPECT_EQ(encode(none.name(), nullptr, der), 0u);
    EXPECT_EQ(der, "30 00");

    Entries entries;
    entries.add(25, from_hex("55 04 06"), from_hex("43 4E"));
    entries.add(30, from_hex("55 04 0B"), from_hex("41"));
    entries.add(30, from_hex("55 04 0B"), from_hex("42"));
    const std::string expected =
        "30 25 31 0B 30 09 06 03 55 04 06 13 02 43 4E 31 0A 30 08 06 03 55 04 0B 13 "
        "01 41 31 0A 30 08 06 03 55 04 0B 13 01 42";
    EXPECT_EQ(encode(entries.name(), nullptr, der), 0u);
    EXPECT_EQ(der, expected);
    EXPECT_EQ(encode(entries.name(), zeros.data(), der), 0u);
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
    std::array<uint8_t, 256> table{};
    table[255] = 4;
    Entries entries;
    for (int i = 0; i < 257; ++i) {
        entries.add(22, kType, from_hex("41"));
    }
    Anybuf *der = nullptr;
    ASSERT_EQ(ZI_EncodeCertIssuerSuject(entries.name(), table.data(), &der), 0u);
    ZI_NameEntry *decoded = nullptr;
    ASSERT_EQ(ZI_DecodeIssuerSubject(der, &decoded), 0u);
    int place = 0;
    for (const ZI_NameEntry *entry = decoded; entry != nullptr; entry = entry->nextEntry, ++place) {
        EXPECT_EQ(entry->attrValue.dataType, place == 255 ? 22u : 19u) << place;
    }
    EXPECT_EQ(place, 257);
    ZI_FreeName(decoded);
    ZI_FreeAnybuf(der);
}

// A decoded name keeps its characters when it is encoded again, whatever string type they arrive
// in.
TEST(Name, ReencodesWhatWasDecoded) {
    const std::string utf8_as_bmp =
        "30 81 90 31 0B 30 09 06 03 55 04 06 13 02 43 4E 31 0D 30 0B 06 03 55 04 08 1E 04 53 17 4E "
        "AC "
        "31 1D 30 1B 06 03 55 04 0A 1E 14 00 45 00 78 00 61 00 6D 00 70 00 6C 00 65 00 20 79 3A 4F "
        "8B "
        "31 0D 30 0B 06 03 55 04 0B 13 04 44 65 70 74 31 0D 30 0B 06 03 55 04 0B 13 04 54 65 61 6D "
        "31 17 30 15 06 03 55 04 03 1E 0E 6D 4B 8B D5 00 20 00 52 00 6F 00 6F 00 74 "
        "31 1C 30 1A 06 09 2A 86 48 86 F7 0D 01 09 01 16 0D 63 61 40 65 78 61 6D 70 6C 65 2E 63 6E";
    const struct {
        const char *der;
        std::string again;
    } rows[] = {{kUtf8Name, utf8_as_bmp}, {kBmpName, ""}};
    for (const auto &row : rows) {
        const Octets der = from_hex(row.der);
        names::NameList list;
        ASSERT_EQ(names::decode_issuer_subject(asn1::Element(der), list), Status::ok);
        std::string again;
        for (int run = 0; run < 2; ++run) {
            EXPECT_EQ(encode(list.holder(), nullptr, again), 0u);
            if (!row.again.empty()) {
                EXPECT_EQ(again, row.again);
            }
        }
    }
}

TEST(Name, TrailsOfEncoding) {
    Entries entries;
    entries.add(22, kType, from_hex("81"));
    std::array<uint8_t, 256> table{};
    std::string der;
    {
        const TraceRecord trace;
        EXPECT_EQ(encode(entries.name(), nullptr, der), 0xFFFFFFFFu);
        EXPECT_EQ(trace.failures(),
                  (std::vector<std::string>{"------>iconv", "------>ZI_Chinese2BmpString"}));
    }
    {
        // The type cannot be written: whatever the reason, memory is what is reported.
        const TraceRecord trace;
        fail_allocation(1);
        EXPECT_EQ(encode(entries.name(), nullptr, der), 100u);
        EXPECT_EQ(trace.failures().back(), "------>ZAPR_Malloc");
    }
    {
        // A chosen type without memory for the converted text: the value is left out.
        Entries chosen;
        chosen.add(22, kType, from_hex("41"));
        table[0] = 2;
        const TraceRecord trace;
        fail_allocation(3);
        EXPECT_EQ(encode(chosen.name(), table.data(), der), 0u);
        EXPECT_EQ(der, one_entry_name(""));
        EXPECT_EQ(trace.failures(),
                  (std::vector<std::string>{"------>ZAPR_Malloc", "------>ZI_Chinese2BmpString"}));
    }
    {
        // A PrintableString that cannot be written: logged, and the value is left out.
        Entries printable;
        printable.add(25, kType, from_hex("41"));
        const TraceRecord trace;
        fail_allocation(3);
        EXPECT_EQ(encode(printable.name(), nullptr, der), 0u);
        EXPECT_EQ(der, one_entry_name(""));
        EXPECT_EQ(trace.failures().back(), "------>ZAsn1_WritePrintableString");
    }
}

}  // namespace
}  // namespace za::test
