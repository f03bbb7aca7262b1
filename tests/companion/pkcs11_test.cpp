#include <zacert/pkcs11.h>

#include "companion/callback.hpp"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <p11-kit/pkcs11.h>
#include <thread>

namespace za::test {
namespace {

const Octets kMessage = from_hex("77686174206973207369676E6564");
const std::string kModule = "?module-path=" ZACERT_SOFTHSM;

// The token of tests/data/companion/make-token.sh.
class Pkcs11 : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        std::string name = testing::TempDir() + "zacert-token-XXXXXX";
        folder = ::mkdtemp(name.data());
        ::setenv("SOFTHSM2_CONF", (folder + "/conf").c_str(), 1);
        const std::string make = "bash " ZACERT_TEST_DATA "/companion/make-token.sh " + folder;
        ASSERT_EQ(std::system((make + " " ZACERT_SOFTHSM " >/dev/null").c_str()), 0);
    }
    static void TearDownTestSuite() { std::filesystem::remove_all(folder); }

    static zacert_pkcs11_key open(const std::string &what, int32_t digest = 9) {
        zacert_pkcs11_key key{};
        const std::string uri = "pkcs11:token=a%20token;" + what + kModule + "&pin-value=12%334";
        EXPECT_EQ(zacert_pkcs11_open(uri.c_str(), nullptr, 0, digest, &key), 0U) << what;
        return key;
    }
    static Octets public_key(const zacert_pkcs11_key &key) {
        return two_calls(
            [&](uint8_t *out, uint32_t *len) { return zacert_pkcs11_public_key(&key, out, len); });
    }
    static Octets signature(zacert_pkcs11_key key, const Octets &in = kMessage) {
        return run(zacert_pkcs11_sign, in, &key, 256).octets;
    }
    static inline std::string folder;
};

TEST_F(Pkcs11, SignsWithEveryKeyAndDigest) {
    for (const auto &[what, file, most] : {std::tuple("object=rsa", "keys/spki_rsa2048.der", 256U),
                                           {"id=%A2", "keys/spki_p384.der", 104U},
                                           {"object=ec;id=%03", "keys/spki_p256.der", 72U}}) {
        zacert_pkcs11_key key = open(what);
        const Octets spki = data_file(file);
        EXPECT_EQ(to_hex(public_key(key)), to_hex(spki));
        uint32_t len = 0;
        EXPECT_EQ(zacert_pkcs11_sign(nullptr, 9, nullptr, &len, &key), 0);
        EXPECT_EQ(len, most);
        EXPECT_EQ(run(zacert_pkcs11_sign, kMessage, &key, most - 1).code, ZACERT_LengthErr);
        for (const auto &[selector, name] :
             {std::pair(7, "SHA1"), {9, "SHA256"}, {11, "SHA384"}, {13, "SHA512"}}) {
            key.digest = selector;
            const Octets sig = run(zacert_pkcs11_sign, kMessage, &key, most).octets;
            EXPECT_TRUE(verifies(spki, EVP_get_digestbyname(name), kMessage, sig)) << selector;
        }
        key.digest = 8;
        EXPECT_EQ(run(zacert_pkcs11_sign, kMessage, &key, 512).code, 118);
        EXPECT_EQ(zacert_pkcs11_close(&key), 0U);
        EXPECT_EQ(zacert_pkcs11_close(&key), 0U);
    }
}

TEST_F(Pkcs11, DigestsAreMadeBeforeHereOrOnTheToken) {
    Octets bare(32);
    EVP_Digest(kMessage.data(), kMessage.size(), bare.data(), nullptr, EVP_sha256(), nullptr);
    zacert_pkcs11_key ec = open("id=%03", 0);
    EXPECT_TRUE(verifies(public_key(ec), EVP_sha256(), kMessage, signature(ec, bare)));
    zacert_pkcs11_close(&ec);
    zacert_pkcs11_key rsa = open("object=rsa", 0);
    const Octets expected =
        signature(rsa, join({from_hex("3031300D060960864801650304020105000420"), bare}));
    EXPECT_TRUE(verifies(public_key(rsa), EVP_sha256(), kMessage, expected));
    EXPECT_EQ(run(zacert_pkcs11_sign, Octets(246), &rsa, 256).code, ZACERT_LengthErr);
    zacert_pkcs11_close(&rsa);
    std::ofstream(folder + "/conf", std::ios::app) << "slots.mechanisms = CKM_SHA256_RSA_PKCS\n";
    rsa = open("object=rsa");
    EXPECT_EQ(signature(rsa), expected);
    rsa.digest = 0;
    EXPECT_EQ(run(zacert_pkcs11_sign, kMessage, &rsa, 256).code, 118);
    zacert_pkcs11_close(&rsa);
    std::ofstream(folder + "/conf", std::ios::app) << "slots.mechanisms = ALL\n";
}

TEST_F(Pkcs11, CopiesServeManyThreadsAndQueriesNeedNone) {
    uint32_t len = 0;
    EXPECT_EQ(zacert_pkcs11_sign(nullptr, 9, nullptr, &len, nullptr), 0);
    EXPECT_EQ(len, uint32_t{ZACERT_PKCS11_QUERY_LEN});
    EXPECT_EQ(run(zacert_pkcs11_sign, kMessage, nullptr, 512).code, ZACERT_GeneralErr);
    zacert_pkcs11_key key = open("object=rsa");
    Octets odd = join({{0}, octets_of(key)});
    const Octets expected = signature(key);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < 8; ++n) {
                EXPECT_EQ(run(zacert_pkcs11_sign, kMessage, &odd[1], 256).octets, expected);
            }
        });
    }
    std::ranges::for_each(threads, &std::thread::join);
    odd[1] ^= 1;
    EXPECT_EQ(run(zacert_pkcs11_sign, kMessage, &odd[1], 256).code, ZACERT_TypeErr);
    EXPECT_EQ(zacert_pkcs11_close(&key), 0U);
}

TEST_F(Pkcs11, UrisNameOneKeyOrAreRefused) {
    for (auto [code, uri] : cases_of("companion/uris.txt")) {
        for (size_t at = 0; (at = uri.find("FOLDER")) != uri.npos;) {
            uri.replace(at, std::strlen("FOLDER"), folder);
        }
        zacert_pkcs11_key key{};
        EXPECT_EQ(zacert_pkcs11_open(uri.c_str(), nullptr, 0, 9, &key), code) << uri;
        EXPECT_EQ(key.session != nullptr, code == 0) << uri;
        EXPECT_EQ(zacert_pkcs11_close(&key), 0U);
    }
    const std::string uri = "pkcs11:token=a%20token;id=%01" + kModule + "&pin-value=1";
    const uint8_t pin[] = {'1', '2', '3', '4', '5'};
    zacert_pkcs11_key key{};
    EXPECT_EQ(zacert_pkcs11_open(uri.c_str(), pin, 4, 8, &key), 118U);
    EXPECT_EQ(zacert_pkcs11_open(uri.c_str(), pin, 5, 9, &key), 120U);
    EXPECT_EQ(zacert_pkcs11_token_result(), CKR_PIN_INCORRECT);
    EXPECT_EQ(zacert_pkcs11_open(uri.c_str(), pin, 4, 9, &key), 0U);
    EXPECT_EQ(zacert_pkcs11_close(&key), 0U);
}

// Somebody else uses the module meanwhile, and goes on doing so.
TEST_F(Pkcs11, KeysMayAskEachTimeOrHaveACertificateAlone) {
    void *const library = dlopen(ZACERT_SOFTHSM, RTLD_NOW);
    CK_FUNCTION_LIST *p11 = nullptr;
    reinterpret_cast<CK_C_GetFunctionList>(dlsym(library, "C_GetFunctionList"))(&p11);
    ASSERT_EQ(p11->C_Initialize(nullptr), CKR_OK);
    zacert_pkcs11_key key = open("object=asks");
    EXPECT_TRUE(verifies(public_key(key), EVP_sha256(), kMessage, signature(key)));
    EXPECT_TRUE(verifies(public_key(key), EVP_sha256(), kMessage, signature(key)));
    zacert_pkcs11_close(&key);
    key = open("object=certified");
    EXPECT_NE(to_hex(data_file("certs/ec_named.der")).find(to_hex(public_key(key))),
              std::string::npos);
    zacert_pkcs11_close(&key);
    key = open("object=alone");
    uint32_t len = 0;
    EXPECT_EQ(zacert_pkcs11_public_key(&key, nullptr, &len), 113U);
    zacert_pkcs11_key other = open("object=rsa");
    zacert_pkcs11_close(&key);
    EXPECT_FALSE(signature(other).empty());
    zacert_pkcs11_close(&other);
    EXPECT_EQ(p11->C_Finalize(nullptr), CKR_OK);
}

}  // namespace
}  // namespace za::test
