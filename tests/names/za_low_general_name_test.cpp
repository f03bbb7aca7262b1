#include "names/za_low_name_support.hpp"

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
    expect_decoded("names/general_names.txt", kNameCodes, decode);
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

        const std::pair<decltype(&ZI_EncodeGeneralName), std::string> encoders[] = {
            {ZI_EncodeGeneralName, row.at(6)}, {ZI_EncodeGeneralNameS, row.at(7)}};
        for (const auto &[encoder, expected] : encoders) {
            SCOPED_TRACE(row.at(0) + ": " + expected);
            const auto encode = [&, call = encoder] {
                return handed([&](Anybuf **out) { return call(&record, out); });
            };
            {
                const TraceRecord trace;
                const Handed der = encode();
                EXPECT_EQ(der.result, expected == "(none)" ? number_of(row.at(5)) : 0);
                EXPECT_EQ(to_hex(der.record.get()), expected);
                EXPECT_EQ(trace.failures(), der.result == 0 ? Trail{} : list_of(row.at(8)));
            }
            expect_allocation_faults_survived([&] {
                const uint32_t result = encode().result;
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
