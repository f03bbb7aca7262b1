#include "names/za_low_general_name.hpp"

#include "names/za_low_name_support.hpp"
#include "support/heap.hpp"
#include "support/rows.hpp"
#include "support/survival.hpp"
#include "support/trace.hpp"

#include <gtest/gtest.h>

namespace za::test {
namespace {

constexpr Anybuf ZI_GeneralName::*kStrings[] = {
    &ZI_GeneralName::rfc822Name, &ZI_GeneralName::dNSName,
    &ZI_GeneralName::uniformResourceIdentifier, &ZI_GeneralName::iPAddress};

std::string describe(const ZI_GeneralName &record) {
    const auto part = [](const std::string &text) { return " / " + (text.empty() ? "-" : text); };
    std::string text = to_hex(record.present);
    for (const auto string : kStrings) {
        text += part(to_hex(&(record.*string)));
    }
    return text + part(describe_entries(record.directoryName.first));
}

uint32_t decode(const Octets &der, std::string &out) {
    const Anybuf in = borrowed(der);
    ZI_GeneralName record{};
    uint32_t found = 7;
    const uint32_t result = ZI_DecodeGeneralNameS(&in, &record, &found);
    out = describe(record);
    const bool untouched = out == describe(ZI_GeneralName{});
    EXPECT_TRUE(result == 0 || untouched);
    EXPECT_EQ(found, untouched ? 0u : 1u);
    for (const auto string : kStrings) {
        ZI_ClearAnybuf(&(record.*string));
    }
    ZI_FreeName(record.directoryName.first);
    return result;
}

TEST(GeneralNames, DecodeOrLeaveOneLinePerLevelOfAFailure) {
    const std::set<uint32_t> refused{101, 102, 106, 108, 121, 0xFFFFFFFE, 0xFFFFFFFF};
    for (const auto &row : rows_of("names/general_names.txt")) {
        SCOPED_TRACE(row.at(0));
        const Octets names = octets_of_cell(row.at(1));
        std::string record;
        {
            const TraceRecord trace;
            fail_allocation(number_of(row.at(2)) == 100 ? 1 : 0);
            EXPECT_EQ(decode(names, record), number_of(row.at(2)));
            EXPECT_EQ(record, row.at(3));
            EXPECT_EQ(trace.failures(), list_of(row.at(4)));
        }
        if (number_of(row.at(2)) == 0) {
            expect_allocation_faults_survived([&] { return decode(names, record); });
            expect_survives_cuts_and_changes(
                names, refused, [&](const Octets &der) { return decode(der, record); });
        }
    }
}

// Whatever the record holds under a set flag stays, and children of that form are not even read.
TEST(GeneralNames, PassOverFormsThatAreThere) {
    const Octets der = from_hex("30 0A 82 01 61 A4 02 05 00 81 01 62");
    const Octets held = from_hex("7A");
    const Anybuf in = borrowed(der);
    ZI_GeneralName record{};
    record.present[2] = 9;
    record.present[4] = 1;
    record.dNSName = borrowed(held);
    for (const uint32_t expected : {1u, 0u}) {
        uint32_t found = 7;
        EXPECT_EQ(ZI_DecodeGeneralNameS(&in, &record, &found), 0u);
        EXPECT_EQ(found, expected);
        EXPECT_EQ(describe(record), "00 01 09 00 01 00 00 00 / 62 / 7A / - / - / -");
    }
    EXPECT_EQ(record.rfc822Name.dataType, 0x81u);
    ZI_ClearAnybuf(&record.rfc822Name);
}

// The engine of certificates decodes without copying: one block for each entry of the directory
// name.
TEST(GeneralNames, ViewsCostNothing) {
    const Octets der = data_file("names/many_forms.der");
    names::GeneralNames forms;
    bool found = false;
    const size_t before = heap_count().allocations;
    ASSERT_EQ(names::decode_general_names(asn1::Element(der), forms, found), Status::ok);
    EXPECT_EQ(heap_count().allocations - before, 2u);
    EXPECT_TRUE(found);
    EXPECT_EQ(to_hex(forms.ip_address), "C0 00 02 01");
}

using Encoder = uint32_t (*)(ZI_GeneralName *, Anybuf **);

uint32_t encode(Encoder encoder, ZI_GeneralName &record, std::string &out) {
    Anybuf *der = nullptr;
    const uint32_t result = encoder(&record, &der);
    EXPECT_TRUE(result == 0 || der == nullptr);
    out = to_hex(der);
    ZI_FreeAnybuf(der);
    return result;
}

TEST(GeneralName, EncodesTheFirstFormOrAll) {
    const Octets strings[] = {from_hex("61"), from_hex("62"), from_hex("75 3A"),
                              from_hex("7F 00 00 01")};
    Entries directory{{25, "55 04 06", "43 4E"}};
    for (const auto &row : rows_of("names/general_names_written.txt")) {
        ZI_GeneralName record{};
        for (size_t i = 0; i < std::size(strings); ++i) {
            record.*kStrings[i] = borrowed(strings[i]);
        }
        record.directoryName = *directory.name();
        for (const std::string &form : list_of(row.at(1))) {
            record.present[number_of(form)] = 1;
        }
        const Octets value = from_hex(row.at(4));
        record.otherNameType = row.at(2).empty() ? 0 : number_of(row.at(2));
        record.otherNameOid = row.at(3).c_str();
        record.otherNameOidLen = 0xFFFFFFFF;
        record.otherNameValue = borrowed(value);

        const std::pair<Encoder, std::string> encoders[] = {{ZI_EncodeGeneralName, row.at(6)},
                                                            {ZI_EncodeGeneralNameS, row.at(7)}};
        for (const auto &[encoder, expected] : encoders) {
            SCOPED_TRACE(row.at(0) + ": " + expected);
            std::string der;
            {
                const TraceRecord trace;
                const uint32_t result = expected == "(none)" ? number_of(row.at(5)) : 0;
                EXPECT_EQ(encode(encoder, record, der), result);
                EXPECT_EQ(der, expected);
                EXPECT_EQ(trace.failures(), result == 0 ? Trail{} : list_of(row.at(8)));
            }
            expect_allocation_faults_survived([&, call = encoder] {
                const uint32_t result = encode(call, record, der);
                // An otherName's identifier that cannot be written is 108 even without memory.
                return result == 108 ? 100 : result;
            });
        }
    }
}

TEST(GeneralName, RefusesNullArguments) {
    ZI_GeneralName record{};
    Anybuf *der = nullptr;
    uint32_t found = 7;
    const Anybuf in{};
    const TraceRecord trace;
    EXPECT_EQ(ZI_EncodeGeneralName(nullptr, &der), 108u);
    EXPECT_EQ(trace.failures(), Trail{"------>pGenName is Null."});
    EXPECT_EQ(ZI_EncodeGeneralName(&record, nullptr), 108u);
    EXPECT_EQ(ZI_EncodeGeneralNameS(nullptr, &der), 108u);
    EXPECT_EQ(ZI_EncodeGeneralNameS(&record, nullptr), 108u);
    EXPECT_EQ(ZI_DecodeGeneralNameS(nullptr, &record, &found), 108u);
    EXPECT_EQ(ZI_DecodeGeneralNameS(&in, nullptr, &found), 108u);
    EXPECT_EQ(ZI_DecodeGeneralNameS(&in, &record, nullptr), 108u);
    EXPECT_EQ(ZI_DecodeGeneralName(nullptr, nullptr), 0u);
}

}  // namespace
}  // namespace za::test
