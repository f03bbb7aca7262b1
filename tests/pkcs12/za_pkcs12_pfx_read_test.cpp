#include "pkcs12/za_pkcs12_file_support.hpp"
#include "support/heap.hpp"

#include <openssl/x509.h>

namespace za::test {
namespace {

using namespace p12;

const std::set<uint32_t> kRefused{101, 102, 106, 108, 112, 113,        120,
                                  121, 122, 123, 126, 139, 0xFFFFFFFE, 0xFFFFFFFF};

const Octets kSecret(16, 0x5E);

// A verdict is told whatever becomes of the call.
uint32_t decode(const Context &context, const Octets &der, uint32_t &verdict,
                const Octets &password = kPassword) {
    verdict = 7;
    const uint32_t result =
        context.created != 0
            ? context.created
            : ZA_PKCS12_DecodePFX(context, password.data(), uint32_t(password.size()), der.data(),
                                  uint32_t(der.size()), &verdict);
    EXPECT_TRUE(context.created != 0 || verdict == 300 || (result == 0 && verdict == 200));
    return result;
}

// Key and certificate.
std::pair<Octets, Octets> by_shortcut(const Octets &der, uint32_t *result,
                                      const Octets &password = kPassword) {
    std::pair<Octets, Octets> out{Octets(der.size()), Octets(der.size())};
    uint32_t key_len = 0;
    uint32_t len = 0;
    *result = ZA_PKCS12_GetKeyAndCertFromNspP12(der.data(), uint32_t(der.size()), password.data(),
                                                uint32_t(password.size()), out.first.data(),
                                                &key_len, out.second.data(), &len);
    EXPECT_TRUE(*result == 0 || key_len + len == 0);
    out.first.resize(key_len);
    out.second.resize(len);
    return out;
}

// As libcrypto sees them.
bool belong_together(const Octets &key, const Octets &certificate) {
    const uint8_t *at = key.data();
    const std::shared_ptr<EVP_PKEY> pkey(d2i_AutoPrivateKey(nullptr, &at, long(key.size())),
                                         EVP_PKEY_free);
    at = certificate.data();
    const std::shared_ptr<X509> x509(d2i_X509(nullptr, &at, long(certificate.size())), X509_free);
    return pkey && x509 && X509_check_private_key(x509.get(), pkey.get()) == 1;
}

// certtool and pk12util iterate 600,000 times: theirs are opened once.
TEST(Pkcs12Files, OfOtherProgramsAreRead) {
    for (const Row &row : rows_of("pkcs12/theirs.txt")) {
        SCOPED_TRACE(row.at(0));
        const Octets der = data_file("pkcs12/" + row[0]);
        const Context context;
        uint32_t verdict = 0;
        EXPECT_EQ(decode(context, der, verdict), number_of(row.at(1)));
        EXPECT_EQ(verdict, number_of(row.at(2)));
        const Octets key = key_in(context);
        const Octets first = certificate_in(context, 1);
        uint32_t certificates = 0;
        while (!certificate_in(context, certificates + 1).empty()) {
            ++certificates;
        }
        const std::string attributes = key_attributes(context);
        const auto inside = uint32_t(std::ranges::count(attributes, '*'));
        const std::vector<size_t> found{key.size(), inside, attributes.size() / 2 - inside,
                                        certificates,
                                        certificate_attributes(context, 1).size() / 2};
        for (size_t i = 0; i < found.size(); ++i) {
            EXPECT_EQ(found[i], number_of(row.at(3 + i))) << i;
        }
        const bool slow = row[0].starts_with("certtool") || row[0].starts_with("pk12util");
        if (!key.empty() && !first.empty() && !slow) {
            uint32_t result = 7;
            const auto [info, certificate] = by_shortcut(der, &result);
            EXPECT_TRUE(belong_together(info, certificate));
            EXPECT_EQ(certificate, first);
            EXPECT_NE(std::search(info.begin(), info.end(), key.begin(), key.end()), info.end());
        }
    }
}

void expect_found(const Octets &der, const std::string &expected) {
    uint32_t result = 7;
    const auto [key, certificate] = by_shortcut(der, &result);
    const bool found = expected != "none";
    EXPECT_EQ(result, found ? 0 : 0xFFFFFFFF);
    EXPECT_EQ(key, found ? private_key_info(split(expected, ' ')[0]) : Octets{});
    EXPECT_EQ(certificate, found ? p12::certificate(expected.back()) : Octets{});
}

// A file that cannot be read adds nothing to what was read before.
TEST(Pkcs12Files, RowsAreReadAsWritten) {
    for (const Row &row : rows_of("pkcs12/files.txt")) {
        SCOPED_TRACE(row.at(0));
        const Octets der = file(row.at(1), row.at(2));
        const Context context;
        const Context used;
        uint32_t verdict = 0;
        EXPECT_EQ(decode(context, der, verdict), number_of(row.at(3)));
        EXPECT_EQ(verdict, number_of(row.at(4)));
        EXPECT_EQ(seen(context), row.at(5));
        expect_found(der, row.at(6));
        ASSERT_EQ(decode(used, file("D A+x; D k*y+z"), verdict), 0u);
        EXPECT_EQ(decode(used, der, verdict), number_of(row.at(3)));
        EXPECT_EQ(seen(used) == "k*y+z A+x", row.at(5) == "-");
    }
}

// The derivation of keys knows no code of its own for it.
TEST(Pkcs12Files, NoMemoryIsSurvived) {
    const Octets der = file("E A+a K*b; D k*c+d B+e");
    expect_allocation_faults_survived([&] {
        const Context context;
        uint32_t verdict = 0;
        const uint32_t result = decode(context, der, verdict);
        EXPECT_TRUE(result == 0 || context.created != 0 || seen(context) == "-");
        return result == 126 ? 100 : result;
    });
    expect_allocation_faults_survived([&] {
        uint32_t result = 7;
        by_shortcut(der, &result);
        return result == 126 || result == 0xFFFFFFFF ? 100 : result;
    });
}

TEST(Pkcs12Files, LeaveNoSecrets) {
    const Octets der = file("R A; D K*a P");
    for (const Octets &secret :
         {kSecret, kPassword, from_hex("00610062006300310032"), mac_key(7, {})}) {
        const NoSecret no_secret(secret);
        const Context context;
        uint32_t result = 0;
        EXPECT_EQ(decode(context, der, result), 0u);
        by_shortcut(der, &result);
        EXPECT_EQ(result, 0u);
    }
}

TEST(Pkcs12Files, AppendWhatIsInThem) {
    const Context context;
    uint32_t verdict = 0;
    for (const char *text : {"D A+x; D k*y+z", "D A+x; D K*y+z", "D B+u"}) {
        EXPECT_EQ(decode(context, file(text), verdict), 0u);
    }
    EXPECT_EQ(seen(context), "K*y*y+z+z A+x A+x B+u");
}

TEST(Pkcs12Files, OtherPasswordsOpenNothing) {
    for (const Octets &password : {Octets{'a', 'b', 'c', '1', '2', '4'}, Octets{}}) {
        const Context context;
        uint32_t verdict = 0;
        uint32_t result = 0;
        EXPECT_NE(decode(context, file("R A; D K"), verdict, password), 0u);
        EXPECT_EQ(seen(context), "-");
        by_shortcut(file("R A; D K"), &result, password);
        EXPECT_EQ(result, 0xFFFFFFFF);
        EXPECT_EQ(decode(context, file("D A; D P"), verdict, password), 0u);
        EXPECT_EQ(verdict, 300u);
        EXPECT_EQ(seen(context), "- A");
    }
}

// Every bit changed and every cut: other values of an octet would be as many derivations of keys.
void expect_bits_survived(const Octets &whole,
                          const std::function<uint32_t(const Octets &)> &call) {
    const NoLeak no_leak;
    for (size_t at = 0; at < 9 * whole.size(); ++at) {
        Octets der(whole.begin(), at % 9 == 8 ? whole.begin() + long(at / 9) : whole.end());
        der.resize(std::max<size_t>(der.size(), 1));
        der[at / 9 % der.size()] ^= uint8_t(at % 9 == 8 ? 0 : 1u << at % 9);
        const uint32_t result = call(der);
        EXPECT_TRUE(result == 0 || kRefused.contains(result)) << result << " at " << at;
    }
}

// What is changed is never taken for right.
TEST(Pkcs12Files, DamageIsSurvived) {
    expect_bits_survived(file("R A; D K"), [](const Octets &der) {
        const Context context;
        uint32_t verdict = 0;
        const uint32_t result = decode(context, der, verdict);
        EXPECT_TRUE(verdict == 300 || seen(context) == "K A");
        return result;
    });
    expect_bits_survived(file("R A; D ~8", "none"), [](const Octets &der) {
        uint32_t result = 7;
        by_shortcut(der, &result);
        return result;
    });
}

TEST(Pkcs12Shortcuts, SafeContentsNestThirtyTwoDeep) {
    for (const size_t bags : {1u, 31u, 32u, 1000u}) {
        Octets contents = safe_contents("K A");
        for (size_t i = 0; i < bags; ++i) {
            contents =
                sequence({sequence({object_id(oid::kSafeContentsBag), element(0xA0, contents)})});
        }
        expect_found(sequence({integer(3), data_info(sequence({data_info(contents)}))}),
                     bags < 32 ? "K A" : "none");
    }
}

uint32_t take_bare(const Octets &der, std::vector<Octets> &out) {
    uint32_t len[3] = {7777, 7777, 7777};
    out.assign(3, Octets(der.size()));
    const uint32_t result =
        ZA_PKCS12_Decode_TRLM(der.data(), uint32_t(der.size()), kPassword.data(), 6, out[0].data(),
                              &len[0], out[1].data(), &len[1], out[2].data(), &len[2]);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(len[i] == 7777, result != 0);
        out[i].resize(result == 0 ? len[i] : 0);
    }
    return result;
}

TEST(Pkcs12Shortcuts, BareContentsGiveOneKeyAndTwoCertificates) {
    const NoSecret no_secret(kSecret);
    const Octets none;
    const Octets big = key_named("K");
    std::vector<Octets> out;
    for (const auto &[bags, expected] : std::map<std::string, std::vector<Octets>>{
             {"K A B", {big, certificate('A'), certificate('B')}},
             {"A P*a+b B C", {big, certificate('A'), certificate('B')}},
             {"A B k K", {key_named("k"), certificate('A'), certificate('B')}},
             {"K+a A+b", {big, certificate('A'), none}},
             {"A", {none, certificate('A'), none}},
             {"", {none, none, none}}}) {
        EXPECT_EQ(take_bare(safe_contents(bags), out), 0u);
        EXPECT_EQ(out, expected) << bags;
    }
    EXPECT_EQ(
        take_bare(sequence({sequence({object_id(oid::kCertBag), from_hex("A0(30())")})}), out),
        121u);
    const Octets whole = safe_contents("A K B");
    expect_allocation_faults_survived([&] {
        const uint32_t result = take_bare(whole, out);
        return result == 126 ? 100 : result;
    });
    expect_bits_survived(safe_contents("A P k"),
                         [&](const Octets &der) { return take_bare(der, out); });
}

// Parameters of two fields are taken for salt and iterations whatever they are: those who decrypt
// know the algorithm or refuse it.
TEST(Pkcs12Shortcuts, EncryptedKeysAreTakenApart) {
    struct Case {
        Octets der;
        uint32_t result;
        size_t salt_len = 0;
        uint32_t iterations = 0;
    };
    for (const auto &[der, expected, salt_len, iterations] : std::vector<Case>{
             {encrypted_key("K", {}), 0, 8, 1},
             {data_file("pkcs12/openssl_pkcs8.der"), 0, 8, 2048},
             {from_hex("30(30(06(2A) 30(30(06(2A) 05()) 30(0102))) 04(00))"), 0, 5, 0x0102},
             {from_hex("30(30(06(2A) 30(04())) 04(00))"), 108},
             {from_hex("30(30(06(2A) 05()) 04(00))"), 108},
             {from_hex("30(30(06(2A)) 04(00))"), 108},
             {from_hex("30(04(00))"), 122}}) {
        std::vector<Octets> out(3, Octets(der.size()));
        uint32_t len[3] = {};
        uint32_t read = 0;
        EXPECT_EQ(ZA_PKCS12_DealWithEncKeyBag(out[0].data(), &len[0], out[1].data(), &len[1],
                                              out[2].data(), &len[2], &read, der.data(),
                                              uint32_t(der.size())),
                  expected);
        EXPECT_EQ(read, iterations);
        EXPECT_EQ(len[2], salt_len);
        if (expected == 0) {
            out[0].resize(len[0]);
            out[1].resize(len[1]);
            EXPECT_EQ(element(0x06, out[0]), children_of(children_of(der)[0])[0]);
            EXPECT_EQ(element(0x04, out[1]), children_of(der)[1]);
        }
    }
}

TEST(Pkcs12Shortcuts, MissingArgumentsAreRefused) {
    expect_refused(ZA_PKCS12_DealWithEncKeyBag, nullptr, {7, 8}, 108,
                   {"------------>ZACERT_GeneralErr"});
    expect_refused(ZA_PKCS12_DealWithEncKeyBag, nullptr, {0, 1, 2, 3, 4, 5, 6});
    expect_refused(ZA_PKCS12_GetKeyAndCertFromNspP12, nullptr, {4, 6});
    expect_refused(ZA_PKCS12_Decode_TRLM, nullptr, {4, 6, 8});
}

}  // namespace
}  // namespace za::test
