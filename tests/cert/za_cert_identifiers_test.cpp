#include "support/heap.hpp"
#include "support/trace.hpp"
#include "za_cert_support.hpp"

namespace za::test {
namespace {

struct Range {
    int32_t first;
    int32_t last;
    const char *accessors;  // S: settable, G: readable
};

const Range kChar[] = {
    {1, 1, "G"},      {2, 3, "SG"},      {5, 7, "SG"},       {8, 8, "G"},      {9, 18, "SG"},
    {31, 31, "SG"},   {32, 32, "G"},     {33, 42, "SG"},     {53, 54, "SG"},   {64, 64, "S"},
    {65, 65, "SG"},   {84, 84, "S"},     {85, 87, "SG"},     {91, 93, "S"},    {101, 105, "S"},
    {106, 107, "SG"}, {109, 113, "S"},   {114, 115, "SG"},   {119, 121, "SG"}, {128, 128, "S"},
    {129, 129, "SG"}, {130, 130, "S"},   {131, 131, "SG"},   {135, 137, "S"},  {155, 155, "S"},
    {501, 503, "S"},  {504, 505, "SG"},  {509, 510, "SG"},   {512, 512, "S"},  {533, 534, "S"},
    {537, 545, "S"},  {3001, 3002, "S"}, {3003, 3003, "SG"},
};
const Range kInt[] = {{4, 4, "SG"}, {29, 30, "SG"}};
const Range kAsked[] = {{-1, 600, ""}, {1000, 1070, ""}, {2000, 2030, ""}, {3000, 3006, ""}};

uint32_t expected(std::span<const Range> table, int32_t id, char accessor) {
    for (const Range &range : table) {
        if (range.first <= id && id <= range.last) {
            return std::string_view(range.accessors).find(accessor) != std::string_view::npos ? 0
                                                                                              : 110;
        }
    }
    return 110;
}

template <class Visit>
void for_each_identifier(const Visit &visit) {
    for (const Range &range : kAsked) {
        for (int32_t id = range.first; id <= range.last; ++id) {
            SCOPED_TRACE(id);
            visit(id);
        }
    }
}

TEST(CertificateAttributes, EveryIdentifierHasTheAccessorsOfItsKind) {
    const NoLeak no_leak;
    for_each_identifier([](int32_t id) {
        const Context cert;
        const bool is_dotted_text = id == 155;
        EXPECT_EQ(cert.set(id, "1"), is_dotted_text ? 121 : expected(kChar, id, 'S'));
        uint32_t len = 7;
        EXPECT_EQ(ZACert_GetCertAttributeChar(cert, id, nullptr, &len), expected(kChar, id, 'G'));
        EXPECT_TRUE(expected(kChar, id, 'G') == 0 || len == 0) << len;

        uint32_t value = 7;
        EXPECT_EQ(ZACert_SetCertAttributeInt(cert, id, 0x7FFFFFFF), expected(kInt, id, 'S'));
        EXPECT_EQ(ZACert_GetCertAttributeInt(cert, id, &value), expected(kInt, id, 'G'));
        EXPECT_EQ(value, expected(kInt, id, 'G') == 0 ? 0x7FFFFFFFu : 7u);
    });
}

TEST(CertificateAttributes, NothingThatIsNotThereHasALength) {
    const Context cert;
    for_each_identifier([&](int32_t id) {
        uint32_t value = 7;
        EXPECT_EQ(cert.hex(id), "");
        if (ZACert_GetCertAttributeInt(cert, id, &value) == 0) {
            EXPECT_EQ(value, 0u);
        }
    });
}

TEST(CertificateAttributes, ArgumentsAreLookedAtBeforeTheIdentifier) {
    const Context cert;
    const uint8_t octet = '1';
    uint8_t out = 0;
    uint32_t number = 0;
    for_each_identifier([&](int32_t id) {
        EXPECT_EQ(ZACert_SetCertAttributeChar(cert, id, &octet, 0), 101u);
        EXPECT_EQ(ZACert_SetCertAttributeChar(cert, id, nullptr, -1), 101u);
        EXPECT_EQ(ZACert_SetCertAttributeChar(cert, id, nullptr, 1), 108u);
        EXPECT_EQ(ZACert_SetCertAttributeChar(nullptr, id, &octet, 1), 108u);
        EXPECT_EQ(ZACert_GetCertAttributeChar(cert, id, &out, nullptr), 108u);
        EXPECT_EQ(ZACert_GetCertAttributeChar(nullptr, id, &out, &number), 108u);
        EXPECT_EQ(ZACert_SetCertAttributeInt(nullptr, id, 1), 108u);
        EXPECT_EQ(ZACert_GetCertAttributeInt(cert, id, nullptr), 108u);
        EXPECT_EQ(ZACert_GetCertAttributeInt(nullptr, id, &number), 108u);
    });
    EXPECT_FALSE(cert->extensions_changed);
}

TEST(CertificateAttributes, AccessorsLeaveTheirLines) {
    const Context cert;
    const struct {
        int32_t id;
        const char *name;
    } rows[] = {{CERT_SERIALNUMBER, "CERT_SERIALNUMBER"},
                {CERT_SUBJECT_DERDN, "CERT_SUBJECT_DERDN"}};
    for (const auto &row : rows) {
        const std::string name = row.name;
        const TraceRecord trace;
        EXPECT_EQ(cert.set(row.id, "1"), 0u);
        cert.get(row.id);
        const std::string get = "======>ZACert_GetCertAttributeChar";
        EXPECT_EQ(trace.lines(), (std::vector<std::string>{
                                     "======>ZACert_SetCertAttributeChar Begin",
                                     "======>Set " + name, "======>ZACert_SetCertAttributeChar End",
                                     get + " Begin", "======>Get " + name + " LEN", get + " End",
                                     get + " Begin", "======>Get " + name, get + " End"}));
    }
    EXPECT_EQ(cert.set(CERT_ECC_PUBLICKEY_OID, "1"), 0u);
    const TraceRecord trace;
    cert.get(CERT_ECC_PUBLICKEY_OID);
    EXPECT_EQ(trace.lines()[1], "======>Get ECC OID LEN");
    EXPECT_EQ(trace.lines()[4], "======>Get ECC OID End");
}

TEST(CertificateAttributes, RefusalsLeaveOneLine) {
    const Context cert;
    const Octets long_table(257, 1);
    EXPECT_EQ(cert.set(CERT_SUBJECT_ALT_RFC822NAME, "a"), 0u);
    EXPECT_EQ(cert.set(CERT_SUBJECT_ALT_DNSNAME, "a"), 0u);
    EXPECT_EQ(cert.set(CERT_SUBJECT_ALT_UNIFORMRESOURCEIDENTIFIER, "a"), 0u);
    const struct {
        int32_t id;
        Octets value;
        uint32_t result;
        std::vector<std::string> failures;
    } rows[] = {
        {9999,
         {},
         101,
         {"------>ZACert_SetCertAttributeChar Err, certAttributeValueLen<=0 Err, "
          "certAttributeType:9999"}},
        {9999, {1}, 110, {"------>Set ZACERT_AttributeNotSupportErr"}},
        {504, {1}, 114, {"------>ZACERT_AttributeAlreadySet"}},
        {505, {1}, 114, {"------>CERT_SUBJECT_ALT_DNSNAME ZACERT_AttributeAlreadySet"}},
        {509, {1}, 114, {"------>CERT_SUBJECT_ALT_DNSNAME ZACERT_AttributeAlreadySet"}},
        {87,
         {1, 2, 3},
         114,
         {"------>CertTex_KeyUsage_SetUnuseBit  Err", "----->Set CertTex_KeyUsage_SetUnuseBit"}},
        {3001, long_table, 108, {"------>ZACERT_GeneralErr"}},
        {3002, long_table, 108, {"------>ZACERT_GeneralErr"}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.id);
        const TraceRecord trace;
        EXPECT_EQ(cert.set(row.id, row.value), row.result);
        EXPECT_EQ(trace.failures(), row.failures);
    }
    const TraceRecord trace;
    EXPECT_EQ(cert.set(CERTEX_EXTKEY_USAGE_OID_DEFINE, "1.2.x"), 121u);
    EXPECT_EQ(trace.failures().back(),
              "------>CERTEX_EXTKEY_USAGE_OID_DEFINE: input oid is invalid.");
    uint32_t number = 0;
    ZACert_GetCertAttributeInt(cert, 5, &number);
    EXPECT_EQ(trace.failures().back(), "------>Get ZACERT_AttributeNotSupportErr");
    ZACert_SetCertAttributeInt(cert, 5, 1);
    EXPECT_EQ(trace.failures().back(), "------>Set ZACERT_AttributeNotSupportErr");
}

}  // namespace
}  // namespace za::test
