#include "names/za_low_general_name.hpp"

#include "names/za_low_name_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <gtest/gtest.h>

namespace za::test {
namespace {

// subjectAltName values that openssl made.
constexpr const char *kManyForms =
    "3081A2A01C060A2B060104018237140203A00E0C0C75736572406578616D706C65810D6140657861"
    "6D706C652E6F7267820F7777772E6578616D706C652E6F7267820B6578616D706C652E6F7267A422"
    "3020310B300906035504061302434E3111300F06035504030C08446972204E616D65861468747470"
    "3A2F2F6578616D706C652E6F72672F788704C0000201871020010DB8000000000000000000000001"
    "88032A0304";
constexpr const char *kFewForms =
    "304E8704C0000207A437303531153013060355040A0C0CC3A7C29BC2AEC3A5C2BDC295311C301A06"
    "092A864886F70D010901160D64406578616D706C652E6E6574820D2A2E6578616D706C652E6E6574";

std::string describe(const ZI_GeneralName &record) {
    std::string text = to_hex(record.present);
    for (const Anybuf *value : {&record.rfc822Name, &record.dNSName,
                                &record.uniformResourceIdentifier, &record.iPAddress}) {
        text += " | " + to_hex(std::span(value->data, value->dataLen));
    }
    return text + " | " + describe_entries(record.directoryName.first);
}

void clear(ZI_GeneralName &record) {
    for (Anybuf *value : {&record.rfc822Name, &record.dNSName, &record.uniformResourceIdentifier,
                          &record.iPAddress}) {
        ZI_ClearAnybuf(value);
    }
    ZI_FreeName(record.directoryName.first);
    record = {};
}

uint32_t decode(const Octets &der, std::string &out, uint32_t *found = nullptr) {
    const Anybuf in = borrowed(der);
    ZI_GeneralName record{};
    uint32_t flag = 7;
    const uint32_t result = ZI_DecodeGeneralNameS(&in, &record, &flag);
    out = describe(record);
    EXPECT_TRUE(result == 0 || (out == describe(ZI_GeneralName{}) && flag == 0));
    clear(record);
    if (found != nullptr) {
        *found = flag;
    }
    return result;
}

const std::string kNothing = "00 00 00 00 00 00 00 00 |  |  |  |  | ";

struct Row {
    const char *name;
    const char *der;
    uint32_t found;
    std::string record;
};

const Row kRows[] = {
    {"empty", "30 00", 0, kNothing},
    {"otherName alone", "30 09 A0 07 06 01 2A A0 02 05 00", 0, kNothing},
    {"x400Address, ediPartyName, registeredID", "30 07 A3 00 A5 00 88 01 2A", 0, kNothing},
    {"the first of two", "30 06 82 01 61 82 01 62", 1, "00 00 01 00 00 00 00 00 |  | 61 |  |  | "},
    {"empty value", "30 02 82 00", 1, "00 00 01 00 00 00 00 00 |  |  |  |  | "},
    {"empty directoryName", "30 04 A4 02 30 00", 1, "00 00 00 00 01 00 00 00 |  |  |  |  | "},
    {"many forms", kManyForms, 1,
     "00 01 01 00 01 00 01 01 | 61 40 65 78 61 6D 70 6C 65 2E 6F 72 67 | 77 77 77 2E 65 78 61 6D "
     "70 6C "
     "65 2E 6F 72 67 | 68 74 74 70 3A 2F 2F 65 78 61 6D 70 6C 65 2E 6F 72 67 2F 78 | C0 00 02 01 | "
     "25 "
     "19 43 4E; 22 12 44 69 72 20 4E 61 6D 65"},
    {"few forms", kFewForms, 1,
     "00 00 01 00 01 00 00 01 |  | 2A 2E 65 78 61 6D 70 6C 65 2E 6E 65 74 |  | C0 00 02 07 | 29 12 "
     "C3 "
     "A7 C2 9B C2 AE C3 A5 C2 BD C2 95; 13 22 64 40 65 78 61 6D 70 6C 65 2E 6E 65 74"},
};

TEST(GeneralNames, Decode) {
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.name);
        const Octets der = from_hex(row.der);
        std::string record;
        uint32_t found = 7;
        EXPECT_EQ(decode(der, record, &found), 0u);
        EXPECT_EQ(record, row.record);
        EXPECT_EQ(found, row.found);
        expect_allocation_faults_survived([&] { return decode(der, record); });
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
    uint32_t found = 0;
    EXPECT_EQ(ZI_DecodeGeneralNameS(&in, &record, &found), 0u);
    EXPECT_EQ(found, 1u);
    EXPECT_EQ(describe(record), "00 01 09 00 01 00 00 00 | 62 | 7A |  |  | ");
    record.present[1] = 1;
    EXPECT_EQ(ZI_DecodeGeneralNameS(&in, &record, &found), 0u);
    EXPECT_EQ(found, 0u);
    ZI_ClearAnybuf(&record.rfc822Name);
}

TEST(GeneralNames, LeaveOneLinePerLevelOfAFailure) {
    const struct {
        const char *der;
        uint32_t result;
        std::vector<std::string> failures;
    } rows[] = {
        {"31 00", 108, {"------>pMidData[0]!=0x30", "------>ZAsn1_ReadSequence"}},
        {"30 08 82 01 61 A4 03 30 02 05",
         102,
         {"------>ZACERT_LengthNotEqualErr", "------>ZAsn1_ReadSequence",
          "------>ZI_DecodeIssuerSubject"}},
        {"30 07 82 01 61 A4 02 05 00",
         108,
         {"------>pMidData[0]!=0x30", "------>ZAsn1_ReadSequence",
          "------>ZI_DecodeIssuerSubject"}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.der);
        const TraceRecord trace;
        std::string record;
        EXPECT_EQ(decode(from_hex(row.der), record), row.result);
        EXPECT_EQ(trace.failures(), row.failures);
    }
    const Octets der = from_hex("30 00");
    const Anybuf in = borrowed(der);
    ZI_GeneralName record{};
    uint32_t found = 7;
    EXPECT_EQ(ZI_DecodeGeneralNameS(nullptr, &record, &found), 108u);
    EXPECT_EQ(ZI_DecodeGeneralNameS(&in, nullptr, &found), 108u);
    EXPECT_EQ(ZI_DecodeGeneralNameS(&in, &record, nullptr), 108u);
    EXPECT_EQ(found, 7u);
    EXPECT_EQ(ZI_DecodeGeneralName(nullptr, nullptr), 0u);
}

TEST(GeneralNames, NameTheFormThatCannotBeCopied) {
    const struct {
        const char *der;
        const char *text;
    } rows[] = {
        {"30 03 81 01 61", "------>Rfc822Name ZI_CopyAnybuf"},
        {"30 03 82 01 61", "------>dNSName ZI_CopyAnybuf"},
        {"30 03 86 01 61", "------>uniformResourceIdentifier ZI_CopyAnybuf"},
        {"30 03 87 01 61", "------>iPAddress ZI_CopyAnybuf"},
    };
    for (const auto &row : rows) {
        const TraceRecord trace;
        std::string record;
        fail_allocation(1);
        EXPECT_EQ(decode(from_hex(row.der), record), 100u);
        EXPECT_EQ(trace.failures(), (std::vector<std::string>{"------>ZAPR_Malloc", row.text}));
    }
}

TEST(GeneralNames, SurviveCutAndChangedOctets) {
    for (const char *hex : {kManyForms, kFewForms}) {
        const Octets der = from_hex(hex);
        std::string record;
        for (size_t size = 0; size < der.size(); ++size) {
            EXPECT_NE(decode(Octets(der.begin(), der.begin() + static_cast<long>(size)), record),
                      0u);
        }
        const NoLeak no_leak;
        for (size_t at = 0; at < der.size(); ++at) {
            for (unsigned value = 0; value < 0x100; ++value) {
                Octets changed = der;
                changed[at] = static_cast<uint8_t>(value);
                const uint32_t result = decode(changed, record);
                EXPECT_TRUE(result == 0 || result == 101 || result == 102 || result == 106 ||
                            result == 108 || result == 121 || result >= 0xFFFFFFFE)
                    << result << " with " << value << " at " << at;
            }
        }
    }
}

// The engine of certificates decodes without copying: one block for each entry of the directory
// name.
TEST(GeneralNames, ViewsCostNothing) {
    const Octets der = from_hex(kManyForms);
    names::GeneralNames forms;
    bool found = false;
    const size_t before = heap_count().allocations;
    ASSERT_EQ(names::decode_general_names(asn1::Element(der), forms, found), Status::ok);
    EXPECT_EQ(heap_count().allocations - before, 2u);
    EXPECT_TRUE(found);
    EXPECT_GE(forms.dns_name.data(), der.data());
    EXPECT_EQ(to_hex(forms.ip_address), "C0 00 02 01");
}

// A record to be written. What it borrows outlives it.
struct Record {
    ZI_GeneralName value{};
    Entries directory;

    explicit Record(std::initializer_list<size_t> forms) {
        static const Octets a = from_hex("61");
        static const Octets b = from_hex("62");
        static const Octets uri = from_hex("75 3A");
        static const Octets address = from_hex("7F 00 00 01");
        for (const size_t form : forms) {
            value.present[form] = 1;
        }
        value.rfc822Name = borrowed(a);
        value.dNSName = borrowed(b);
        value.uniformResourceIdentifier = borrowed(uri);
        value.iPAddress = borrowed(address);
        directory.add(25, from_hex("55 04 06"), from_hex("43 4E"));
        value.directoryName = *directory.name();
    }
    void set_other(uint32_t type, const char *oid, const Octets &octets) {
        value.present[0] = 1;
        value.otherNameType = type;
        value.otherNameOid = oid;
        value.otherNameOidLen = 0xFFFFFFFF;
        value.otherNameValue = borrowed(octets);
    }
};

using Encoder = uint32_t (*)(ZI_GeneralName *, Anybuf **);

uint32_t encode(Encoder encoder, ZI_GeneralName &record, std::string &out) {
    Anybuf *der = nullptr;
    const uint32_t result = encoder(&record, &der);
    EXPECT_TRUE(result == 0 || der == nullptr);
    out = to_hex(der);
    ZI_FreeAnybuf(der);
    return result;
}

// An otherName's identifier that cannot be written is 108 even where memory is the reason.
uint32_t as_memory(uint32_t result) {
    return result == 108 ? 100 : result;
}

TEST(GeneralName, EncodesTheFirstFormOrAll) {
    const struct {
        Record record;
        uint32_t result;
        const char *single;
        const char *all;
    } rows[] = {
        {Record({}), 110, "(none)", "30 00"},
        {Record({3, 5}), 110, "(none)", "30 00"},
        {Record({1, 2}), 0, "81 01 61", "30 06 81 01 61 82 01 62"},
        {Record({2, 3, 6}), 0, "82 01 62", "30 07 82 01 62 86 02 75 3A"},
        {Record({4, 6, 7}), 0, "A4 0F 30 0D 31 0B 30 09 06 03 55 04 06 13 02 43 4E",
         "30 1B A4 0F 30 0D 31 0B 30 09 06 03 55 04 06 13 02 43 4E 86 02 75 3A 87 04 7F 00 00 01"},
        {Record({6}), 0, "86 02 75 3A", "30 04 86 02 75 3A"},
        {Record({7}), 0, "87 04 7F 00 00 01", "30 06 87 04 7F 00 00 01"},
    };
    for (const auto &row : rows) {
        ZI_GeneralName record = row.record.value;
        std::string der;
        EXPECT_EQ(encode(ZI_EncodeGeneralName, record, der), row.result);
        EXPECT_EQ(der, row.single);
        EXPECT_EQ(encode(ZI_EncodeGeneralNameS, record, der), 0u);
        EXPECT_EQ(der, row.all);
        expect_allocation_faults_survived(
            [&] { return encode(ZI_EncodeGeneralName, record, der); });
        expect_allocation_faults_survived(
            [&] { return encode(ZI_EncodeGeneralNameS, record, der); });
    }
}

TEST(GeneralName, EncodesOtherNames) {
    const struct {
        uint32_t type;
        const char *value;
        const char *element;
    } rows[] = {
        {3, "80", "03 02 00 80"},       {4, "FF", "04 01 FF"},  {12, "D6 D0", "0C 03 E4 B8 AD"},
        {19, "41", "13 01 41"},         {22, "40", "16 01 40"}, {30, "D6 D0", "1E 02 4E 2D"},
        {0, "D6 D0", "0C 03 E4 B8 AD"}, {99, "41", "0C 01 41"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.type);
        const Octets value = from_hex(row.value);
        Record record({});
        record.set_other(row.type, "1.2.3", value);
        const Octets element = from_hex(row.element);
        Octets bare = from_hex("A0 00 06 02 2A 03");
        bare.insert(bare.end(), element.begin(), element.end());
        bare[1] = static_cast<uint8_t>(bare.size() - 2);
        Octets all = from_hex("30 00 A0 00 06 02 2A 03 A0 00");
        all.insert(all.end(), element.begin(), element.end());
        for (const size_t length_at : {1u, 3u, 9u}) {
            all[length_at] = static_cast<uint8_t>(all.size() - length_at - 1);
        }
        std::string der;
        EXPECT_EQ(encode(ZI_EncodeGeneralName, record.value, der), 0u);
        EXPECT_EQ(der, to_hex(bare));
        EXPECT_EQ(encode(ZI_EncodeGeneralNameS, record.value, der), 0u);
        EXPECT_EQ(der, to_hex(all));
        for (const Encoder encoder : {ZI_EncodeGeneralName, ZI_EncodeGeneralNameS}) {
            expect_allocation_faults_survived(
                [&] { return as_memory(encode(encoder, record.value, der)); });
        }
    }
}

TEST(GeneralName, RefusesAnOtherNameItCannotWrite) {
    const Octets invalid = from_hex("FF");
    const struct {
        uint32_t type;
        const char *oid;
        uint32_t result;
        std::vector<std::string> failures;
    } rows[] = {
        {4, nullptr, 108, {"------>ZACERT_GeneralErr", "------>ZACert_GetOIDValue"}},
        {4, "", 108, {"------>ZACERT_GeneralErr", "------>ZACert_GetOIDValue"}},
        {4, "3.1", 108, {"------>ZACERT_IvaliedAlgo", "------>ZACert_GetOIDValue"}},
        {30, "1.2.3", 0xFFFFFFFF, {"------>iconv", "------>ZI_Chinese2BmpString"}},
        {12, "1.2.3", 0xFFFFFFFF, {"------>iconv", "------>ZI_EnCodeUtf8"}},
    };
    for (const auto &row : rows) {
        Record record({1});
        record.set_other(row.type, row.oid, invalid);
        for (const Encoder encoder : {ZI_EncodeGeneralName, ZI_EncodeGeneralNameS}) {
            const TraceRecord trace;
            std::string der;
            EXPECT_EQ(encode(encoder, record.value, der), row.result);
            EXPECT_EQ(trace.failures(), row.failures);
        }
    }
}

TEST(GeneralName, RefusesNullArguments) {
    const TraceRecord trace;
    Record record({1});
    Anybuf *der = nullptr;
    EXPECT_EQ(ZI_EncodeGeneralName(nullptr, &der), 108u);
    EXPECT_EQ(trace.failures(), std::vector<std::string>{"------>pGenName is Null."});
    EXPECT_EQ(ZI_EncodeGeneralName(&record.value, nullptr), 108u);
    EXPECT_EQ(ZI_EncodeGeneralNameS(nullptr, &der), 108u);
    EXPECT_EQ(ZI_EncodeGeneralNameS(&record.value, nullptr), 108u);
}

}  // namespace
}  // namespace za::test
