// To stand in for the random source, which only a call that has gone out of fashion allows.
#define OPENSSL_SUPPRESS_DEPRECATED

#include "pkcs12/za_pkcs12_file_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <openssl/rand.h>

namespace za::test {
namespace {

using namespace p12;

constexpr uint32_t kByLength = 7;

// "K" and "A" a key and a certificate, "*x", "+x" and "2x" attributes.
uint32_t set(void *ctx, const std::string &token) {
    const Octets value = is_key(token) ? key_named(token) : certificate(token[0]);
    const Octets values = attribute_values(token.back());
    const uint8_t *type = kAttributeType.data();
    const auto number = uint32_t(token[0] - '0');
    const auto len = uint32_t(value.size());
    return is_key(token)       ? ZA_PKCS12_SetPrivateKey(ctx, value.data(), len)
           : token.size() == 1 ? ZA_PKCS12_SetCertificate(ctx, value.data(), len)
           : token[0] == '*'   ? ZA_PKCS12_SetPrivateKey_Attribute(ctx, type, 2, values.data(), 5)
           : token[0] == '+'
               ? ZA_PKCS12_SetPrivateKeyBag_Attribute(ctx, type, 2, values.data(), 5)
               : ZA_PKCS12_SetCertificateBag_Attribute(ctx, type, 2, values.data(), 5, number);
}

uint32_t set_all(const Context &context, const std::string &tokens) {
    uint32_t result = context.created;
    for (const std::string &token : tokens.empty() ? Row{} : split(tokens, ' ')) {
        result = result == 0 ? set(context, token) : result;
    }
    return result;
}

uint32_t encode(void *ctx, uint32_t how, uint8_t *out, uint32_t *len) {
    const uint8_t *password = kPassword.data();
    return how == kByLength ? ZA_PKCS12_EncodePFX(ctx, password, 6, out, len)
                            : ZA_PKCS12_EncodePFXNEW(ctx, how, password, 6, out, len);
}

Octets encoded(void *ctx, uint32_t how = kByLength, uint32_t *result = nullptr) {
    return two_calls([&](uint8_t *out, uint32_t *len) { return encode(ctx, how, out, len); },
                     result);
}

// An element in elements, OCTET STRINGs among them.
Octets inside(Octets der, const std::vector<size_t> &path) {
    for (const size_t number : path) {
        der = children_of(der).at(number);
    }
    return der;
}

Salts salts_of(const Octets &pfx) {
    const Octets safe = inside(pfx, {1, 1, 0, 0});
    return {content_of(inside(safe, {0, 1, 0, 0, 0, 1, 0, 0, 1, 0})),
            content_of(inside(safe, {1, 1, 0, 1, 1, 1, 0})), content_of(inside(pfx, {2, 1})), 2000};
}

// What it should be, with salts of the right length that are in it.
void expect_made_of(const Octets &pfx, const std::string &containers) {
    const Salts salts = salts_of(pfx);
    EXPECT_EQ(to_hex(pfx), to_hex(file(containers, "sha1", salts)));
    EXPECT_TRUE(salts.key.size() == 8 && salts.container.size() == 8 && salts.mac.size() == 20);
}

TEST(Pkcs12Written, RowsAreWrittenAsSet) {
    const std::string wrong = "------------>ZA_PKCS12_EncodePFX Prvate Key Error";
    for (const Row &row : rows_of("pkcs12/written.txt")) {
        SCOPED_TRACE(row.at(0) + "|" + row.at(1));
        const Context context;
        uint32_t result = set_all(context, row[0]);
        ASSERT_EQ(result, 0u);
        const TraceRecord trace;
        const Octets pfx = encoded(context, number_of(row[1]), &result);
        EXPECT_EQ(result, number_of(row.at(2)));
        Trail failures = list_of(row.at(5));
        failures.insert(failures.end(), result == 120 ? 1 : 0, wrong);
        if (result == 0) {
            expect_made_of(pfx, row.at(3));
        }
        key_in(context, &result);
        EXPECT_EQ(result, number_of(row.at(4)));
        failures.insert(failures.end(), result == 120 ? 1 : 0, wrong);
        EXPECT_EQ(trace.failures(), failures);
    }
}

TEST(Pkcs12Written, IsAnotherFileEachTime) {
    const Context context;
    ASSERT_EQ(set_all(context, "K *a A 1b"), 0u);
    std::set<Octets> salts;
    uint32_t told = 0;
    EXPECT_EQ(encode(context, kByLength, nullptr, &told), 0u);
    for (int i = 0; i < 10; ++i) {
        const Octets pfx = encoded(context);
        const Salts used = salts_of(pfx);
        expect_made_of(pfx, "D K*a; R A+b");
        EXPECT_EQ(pfx.size(), told);
        salts.insert({used.key, used.container, used.mac});
    }
    EXPECT_EQ(salts.size(), 30u);
    EXPECT_EQ(seen(context), "K*a A+b");
}

// The derivation has one code for all that befalls it.
TEST(Pkcs12Written, NoMemoryIsSurvivedAndSecretsAreWiped) {
    for (const Octets &secret : {Octets(16, 0x5E), kPassword, from_hex("00610062006300310032")}) {
        const NoSecret no_secret(secret);
        const Context context;
        ASSERT_EQ(set_all(context, "k Q *a +b A 1c"), 0u);
        EXPECT_FALSE(encoded(context).empty());
    }
    expect_allocation_faults_survived([&] {
        const Context context;
        uint32_t len = 7;
        uint32_t result = set_all(context, "k Q *a +b A 1c");
        result = result != 0 ? result : encode(context, kByLength, nullptr, &len);
        EXPECT_EQ(len == 7, result != 0);
        return result == 126 ? 100 : result;
    });
}

// Whichever of the three salts cannot be had, there is no file.
TEST(Pkcs12Written, NoRandomOctetsNoFile) {
    static uint32_t left;
    RAND_METHOD source{};
    source.bytes = [](unsigned char *out, int len) {
        std::fill_n(out, len, uint8_t{7});
        return left-- > 0 ? 1 : 0;
    };
    const Context context;
    ASSERT_EQ(set_all(context, "K A"), 0u);
    ASSERT_EQ(RAND_set_rand_method(&source), 1);
    for (const uint32_t good : {0u, 1u, 2u, 3u}) {
        uint32_t len = 1;
        left = good;
        EXPECT_EQ(encode(context, kByLength, nullptr, &len), good < 3 ? 108u : 0u);
        EXPECT_EQ(len == 1, good < 3);
    }
    RAND_set_rand_method(nullptr);
}

TEST(Pkcs12Contexts, MissingArgumentsAreRefused) {
    const Context context;
    uint32_t n = 7;
    ASSERT_EQ(set_all(context, "K *a +b A 1c"), 0u);
    expect_refused(ZA_PKCS12_SetPrivateKey, context);
    expect_refused(ZA_PKCS12_SetPrivateKey_Attribute, context);
    expect_refused(ZA_PKCS12_SetPrivateKeyBag_Attribute, context);
    expect_refused(ZA_PKCS12_SetCertificate, context);
    expect_refused(ZA_PKCS12_SetCertificateBag_Attribute, context, {5});
    expect_refused(ZA_PKCS12_EncodePFX, context, {3});
    expect_refused(ZA_PKCS12_EncodePFXNEW, context, {1, 4});
    expect_refused(ZA_PKCS12_DecodePFX, context);
    expect_refused(ZA_PKCS12_GetPrivateKey, context, {1});
    expect_refused(ZA_PKCS12_GetPrivateKey_Attribute, context, {1, 3});
    expect_refused(ZA_PKCS12_GetPrivateKeyBag_Attribute, context, {1, 3});
    expect_refused(ZA_PKCS12_GetCertificateBag_Attribute, context, {1, 3});
    expect_refused(ZA_PKCS12_DestroyEncodePFX, context);
    expect_refused(ZA_PKCS12_DestroyDecodePFX, context);
    expect_refused(ZA_PKCS12_GetCertificate, context, {0, 1, 3});
    EXPECT_EQ(ZA_PKCS12_GetCertificate(nullptr, nullptr, &n, 1), 121u);
    EXPECT_EQ(ZA_PKCS12_CreateEncodePfx(nullptr), 121u);
    EXPECT_EQ(ZA_PKCS12_CreateDecodePfx(nullptr), 121u);
    EXPECT_EQ(seen(context), "K*a+b A+c");
}

// Attributes beyond the last are refused; a certificate beyond the last is none.
TEST(Pkcs12Contexts, NumbersHaveTheirEnds) {
    const Context context;
    uint32_t n = 7;
    uint8_t any = 7;
    EXPECT_EQ(ZA_PKCS12_GetCertificate(context, &any, &n, 1), 0u);
    EXPECT_EQ(ZA_PKCS12_GetCertificate(nullptr, &any, &n, 1), 0u);
    ASSERT_EQ(set_all(context, "*a +b A B 2c 2d 0e"), 0u);
    EXPECT_EQ(ZA_PKCS12_GetCertificate(context, &any, &n, 3), 0u);
    EXPECT_EQ(certificate_in(context, 0), certificate('A'));
    for (const auto &[number, of] :
         std::vector<std::pair<uint32_t, uint32_t>>{{0, 2}, {3, 2}, {1, 1}, {1, 0}, {1, 3}}) {
        EXPECT_EQ(ZA_PKCS12_GetCertificateBag_Attribute(context, &any, &n, &any, &n, number, of),
                  121u);
    }
    for (const uint32_t number : {0u, 2u}) {
        EXPECT_EQ(ZA_PKCS12_GetPrivateKey_Attribute(context, &any, &n, &any, &n, number), 121u);
        EXPECT_EQ(ZA_PKCS12_GetPrivateKeyBag_Attribute(context, &any, &n, &any, &n, number), 121u);
    }
    EXPECT_TRUE(n == 7 && any == 7);
}

}  // namespace
}  // namespace za::test
