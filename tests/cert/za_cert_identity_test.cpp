#include "cert/za_cert_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

namespace za::test {
namespace {

TEST(CertificateIdentity, ExtensionsAreThoseOfTheTable) {
    for (const Row &row : rows_of("certs/rows/identity")) {
        SCOPED_TRACE(row[0] + "|" + row[1]);
        Octets value = value_of(row[1]);
        value.insert(value.begin(), 0x55);  // an odd address
        const auto set = [&](void *ctx, size_t size) {
            return ZACert_SetCertPrivate_GB(ctx, number_of(row[0]), value.data() + 1,
                                            uint32_t(size), number_of(row[2]));
        };
        const Context cert;
        const TraceRecord trace;
        const bool good = row[3] == "0";
        EXPECT_EQ(set(cert, value.size() - 1), number_of(row[3]));
        EXPECT_EQ(trace.failures(), list_of(row[5]));
        const std::string line = "=====>ZACert_SetCertPrivate_GB ";
        EXPECT_EQ(trace.lines()[0], line + "START");
        EXPECT_TRUE(!good || trace.lines()[1] == line + (row[0].ends_with('4') ? "START" : "END"));
        EXPECT_EQ(seen(cert, "private"), row[4]);
        EXPECT_EQ(cert->extensions_changed, good);
        if (good) {
            expect_allocation_faults_survived([&] {
                cert::Certificate fresh;
                const uint32_t result = set(&fresh, value.size() - 1);
                EXPECT_EQ(fresh.private_extensions.empty(), result != 0);
                return result == 108 ? 100 : result;  // a number that is not encoded is 108
            });
            const TraceRecord no_context;
            EXPECT_EQ(set(nullptr, value.size() - 1), 108u);
            EXPECT_EQ(no_context.failures(),
                      (Trail{"------>ZACERT_GeneralErr", "------>ZACert_SetCertAttributePrivate"}));
        }
    }
}

TEST(CertificateIdentity, SizesAndNullAreLookedAt) {
    const Octets record = from_hex("01 00*1560");
    const Context cert;
    const TraceRecord trace;
    EXPECT_EQ(ZACert_SetCertPrivate_GB(nullptr, 9999, nullptr, 1560, 7), 108u);
    EXPECT_EQ(trace.failures(), Trail{"------>pCertEncodeCtx or privData  is NULL"});
    EXPECT_EQ(ZACert_SetCertPrivate_GB(cert, 147, nullptr, 1560, 0), 108u);
    EXPECT_EQ(ZACert_SetCertPrivate_GB(cert, 147, record.data(), 1561, 0), 108u);
    EXPECT_EQ(ZACert_SetCertPrivate_GB(cert, 151, record.data(), 0xFFFFFFFF, 0), 108u);
    EXPECT_FALSE(cert->extensions_changed);
}

}  // namespace
}  // namespace za::test
