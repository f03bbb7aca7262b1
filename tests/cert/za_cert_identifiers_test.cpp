#include "cert/za_cert_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

namespace za::test {
namespace {

constexpr int32_t kFirst = -1;
constexpr int32_t kLast = 3010;

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
    const std::vector<Row> table = rows_of("identifiers");
    for (int32_t id = kFirst; id <= kLast; ++id) {
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

        const bool is_dotted_text = id == CERTEX_EXTKEY_USAGE_OID_DEFINE;
        EXPECT_EQ(cert.set(id, "1"), is_dotted_text ? 121 : expected(table, id, "Char", 'S'));
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
    for (int32_t id = kFirst; id <= kLast; ++id) {
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
    EXPECT_FALSE(cert->extensions_changed);
}

TEST(CertificateAttributes, AccessorsLeaveTheirLines) {
    const Context cert;
    const TraceRecord trace;
    cert.set(CERT_SERIALNUMBER, "1");
    cert.get(CERT_SERIALNUMBER);
    const std::string get = "======>ZACert_GetCertAttributeChar";
    EXPECT_EQ(trace.lines(),
              (Lines{"======>ZACert_SetCertAttributeChar Begin", "======>Set CERT_SERIALNUMBER",
                     "======>ZACert_SetCertAttributeChar End", get + " Begin",
                     "======>Get CERT_SERIALNUMBER LEN", get + " End", get + " Begin",
                     "======>Get CERT_SERIALNUMBER", get + " End"}));
    cert.set(CERT_ECC_PUBLICKEY_OID, "1");
    cert.get(CERT_ECC_PUBLICKEY_OID);
    EXPECT_EQ(trace.lines()[13], "======>Get ECC OID LEN");
    EXPECT_EQ(trace.lines()[16], "======>Get ECC OID End");
}

TEST(CertificateAttributes, RefusalsLeaveTheirLines) {
    const Context cert;
    for (const int32_t id : {504, 505, 509}) {
        EXPECT_EQ(cert.set(id, "a"), 0u);
    }
    for (const Row &row : rows_of("refusals")) {
        SCOPED_TRACE(row[0]);
        const TraceRecord trace;
        EXPECT_EQ(cert.set(std::stoi(row[0]), from_hex(row[1])), number(row[2]));
        EXPECT_EQ(trace.failures(), Lines(row.begin() + 3, row.end()));
    }
    const TraceRecord trace;
    uint32_t value = 0;
    ZACert_GetCertAttributeInt(cert, 5, &value);
    ZACert_SetCertAttributeInt(cert, 5, 1);
    EXPECT_EQ(trace.failures(), (Lines{"------>Get ZACERT_AttributeNotSupportErr",
                                       "------>Set ZACERT_AttributeNotSupportErr"}));
}

}  // namespace
}  // namespace za::test
