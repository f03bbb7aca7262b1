#include "cert/za_cert_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <cstring>

namespace za::test {
namespace {

// "flag", "flag octets" or "flag #length", for each number of a record; else octets.
Octets identity_value(const std::string &cell) {
    const Row numbers = list_of(cell);
    if (numbers.size() != 3) {
        return value_of(cell);
    }
    Octets record(1560);
    for (size_t i = 0; i < numbers.size(); ++i) {
        const Row words = split(numbers[i], ' ');
        const std::string rest = words.size() > 1 ? words[1] : "#0";
        const Octets octets = rest[0] == '#' ? Octets{} : value_of(rest);
        const uint32_t flag = number_of(words[0]);
        const int32_t length = rest[0] == '#' ? std::stoi(rest.substr(1)) : int32_t(octets.size());
        std::memcpy(&record[4 * i], &flag, sizeof flag);
        std::ranges::copy(octets, &record[12 + 516 * i]);
        std::memcpy(&record[524 + 516 * i], &length, sizeof length);
    }
    return record;
}

TEST(CertificateIdentity, ExtensionsAreThoseOfTheTable) {
    for (const Row &row : rows_of("certs/rows/identity")) {
        SCOPED_TRACE(row[0] + "|" + row[1]);
        Octets value = identity_value(row[1]);
        value.insert(value.begin(), 0x55);  // an odd address
        const auto set = [&](void *ctx, size_t size) {
            return ZACert_SetCertPrivate_GB(ctx, number_of(row[0]), &value[1], uint32_t(size),
                                            number_of(row[2]));
        };
        const Context cert;
        const TraceRecord trace;
        const bool good = row[3] == "0";
        EXPECT_EQ(set(cert, value.size() - 1), number_of(row[3]));
        EXPECT_EQ(trace.failures(), list_of(row[5]));
        const bool is_taxation = row[0] == "154" || row[0] == "164";
        EXPECT_EQ(trace.lines()[0], "=====>ZACert_SetCertPrivate_GB START");
        EXPECT_TRUE(!good ||
                    trace.lines().at(1) ==
                        (is_taxation ? trace.lines()[0] : "=====>ZACert_SetCertPrivate_GB END"));
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
    const Octets record = identity_value("1 \"1\"; 0; 0");
    const Context cert;
    const TraceRecord trace;
    EXPECT_EQ(ZACert_SetCertPrivate_GB(nullptr, 9999, nullptr, 1560, 7), 108u);
    EXPECT_EQ(trace.failures(), Trail{"------>pCertEncodeCtx or privData  is NULL"});
    EXPECT_EQ(ZACert_SetCertPrivate_GB(cert, 147, nullptr, 1560, 0), 108u);
    EXPECT_EQ(ZACert_SetCertPrivate_GB(cert, 147, record.data(), 1559, 0), 108u);
    EXPECT_EQ(ZACert_SetCertPrivate_GB(cert, 147, record.data(), 1561, 0), 108u);
    EXPECT_EQ(ZACert_SetCertPrivate_GB(cert, 151, record.data(), 0xFFFFFFFF, 0), 108u);
    EXPECT_FALSE(cert->extensions_changed);
}

}  // namespace
}  // namespace za::test
