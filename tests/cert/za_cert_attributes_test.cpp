#include "cert/za_cert_attributes.hpp"

#include "cert/za_cert_support.hpp"
#include "support/attribute_page.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <algorithm>

namespace za::test {
namespace {

uint32_t expected(const std::vector<Row> &table, int32_t id, const char *accessor, char direction) {
    for (const Row &row : table) {
        if (std::stoi(row[0]) <= id && id <= std::stoi(row[1]) && row[2] == accessor) {
            return row[3].find(direction) != std::string::npos ? 0 : 110;
        }
    }
    return 110;
}

TEST(CertificateAttributes, EveryIdentifierHasTheAccessorsOfItsKind) {
    const NoLeak no_leak;
    const std::vector<Row> table = rows_of("certs/rows/identifiers");
    for (int32_t id = -1; id <= 3010; ++id) {
        SCOPED_TRACE(id);
        const uint32_t get_char = expected(table, id, "Char", 'G');
        const uint32_t get_int = expected(table, id, "Int", 'G');
        const Context cert;
        uint32_t len = 7;
        uint32_t value = 7;
        EXPECT_EQ(ZACert_GetCertAttributeChar(cert, id, nullptr, &len), get_char);
        EXPECT_EQ(len, 0u) << "nothing is there yet";
        EXPECT_EQ(ZACert_GetCertAttributeInt(cert, id, &value), get_int);
        EXPECT_EQ(value, get_int == 0 ? 0u : 7u);

        EXPECT_EQ(cert.set(id, {'1'}),
                  id == CERTEX_EXTKEY_USAGE_OID_DEFINE ? 121 : expected(table, id, "Char", 'S'));
        EXPECT_EQ(ZACert_SetCertAttributeInt(cert, id, -1), expected(table, id, "Int", 'S'));
        ZACert_GetCertAttributeInt(cert, id, &value);
        EXPECT_EQ(value, get_int == 0 ? 0xFFFFFFFF : 7u);
    }
}

TEST(CertificateAttributes, ArgumentsAreLookedAtBeforeTheIdentifier) {
    const Context cert;
    const uint8_t octet = '1';
    uint8_t out = 0;
    uint32_t number = 0;
    for (const int32_t id : {-1, 4, 5, 121, 9999}) {
        SCOPED_TRACE(id);
        EXPECT_EQ(ZACert_SetCertAttributeChar(cert, id, &octet, 0), 101u);
        EXPECT_EQ(ZACert_SetCertAttributeChar(cert, id, nullptr, -1), 101u);
        EXPECT_EQ(ZACert_SetCertAttributeChar(cert, id, nullptr, 1), 108u);
        EXPECT_EQ(ZACert_SetCertAttributeChar(nullptr, id, &octet, 1), 108u);
        EXPECT_EQ(ZACert_GetCertAttributeChar(cert, id, &out, nullptr), 108u);
        EXPECT_EQ(ZACert_GetCertAttributeChar(nullptr, id, &out, &number), 108u);
        EXPECT_EQ(ZACert_SetCertAttributeInt(nullptr, id, 1), 108u);
        EXPECT_EQ(ZACert_GetCertAttributeInt(cert, id, nullptr), 108u);
        EXPECT_EQ(ZACert_GetCertAttributeInt(nullptr, id, &number), 108u);
    }
}

TEST(CertificateAttributes, StringTypesHaveOnePlacePerEntry) {
    const Context cert;
    EXPECT_EQ(cert.set(3001, Octets(256, 12)), 0u);
    EXPECT_EQ(cert.set(3002, Octets(256, 19)), 0u);
    EXPECT_EQ(cert.set(3001, Octets{30}), 0u);
    EXPECT_EQ(cert.set(3002, Octets(257, 22)), 108u);
    Octets types(256, 12);
    types[0] = 30;  // a shorter value writes no further
    EXPECT_TRUE(std::ranges::equal(cert->issuer.string_types, types));
    EXPECT_TRUE(std::ranges::equal(cert->subject.string_types, Octets(256, 19)));
}

TEST(CertificateAttributes, AllocationFaultsChangeNothing) {
    for (int32_t id = 1; id <= 3003; ++id) {
        const Context probe;
        const Octets value = value_of(id == CERTEX_EXTKEY_USAGE_OID_DEFINE ? "\"1.2\"" : "31");
        if (probe.set(id, value) != 0) {
            continue;
        }
        SCOPED_TRACE(id);
        expect_allocation_faults_survived([&] {
            cert::Certificate cert;
            uint32_t len = 0;
            const uint32_t result = ZACert_SetCertAttributeChar(&cert, id, value.data(),
                                                                static_cast<int32_t>(value.size()));
            ZACert_GetCertAttributeChar(&cert, id, nullptr, &len);
            EXPECT_EQ(len, result == 0 ? probe.get(id).size() : 0);
            EXPECT_EQ(cert.key.kind, result == 0 ? probe->key.kind : 0);
            EXPECT_EQ(cert.extensions_changed, result == 0 && probe->extensions_changed);
            return result;
        });
    }
}

TEST(CertificateAttributes, GettersThatMakeTextSurviveFaults) {
    const Context source;
    for (const int32_t id : {13, 13, 37, 37, 14, 38}) {
        EXPECT_EQ(source.set(id, value_of("\"unit\"")), 0u);
    }
    for (const int32_t id : {13, 37}) {
        expect_allocation_faults_survived([&] {
            uint32_t len = 7;
            const uint32_t result = ZACert_GetCertAttributeChar(source, id, nullptr, &len);
            EXPECT_EQ(len, result == 0 ? std::string_view("unit,OU=unit").size() : 0u);
            return result;
        });
    }
    for (const int32_t id : {8, 32}) {
        uint32_t len = 7;
        const TraceRecord trace;
        fail_allocation(1);
        EXPECT_EQ(ZACert_GetCertAttributeChar(source, id, nullptr, &len), 0u);
        fail_allocation(0);
        EXPECT_EQ(len, 0u);
        EXPECT_EQ(trace.lines()[3], "======>Get ZI_GetDN Len");
        expect_seen(source, std::to_string(id) + "=\"OU=unit,OU=unit,CN=unit\"");
    }
}

TEST(CertificateAttributes, ThePageTellsWhatTheRowsTell) {
    expect_page_tells("Attributes of a certificate", cert::attributes());
}

}  // namespace
}  // namespace za::test
