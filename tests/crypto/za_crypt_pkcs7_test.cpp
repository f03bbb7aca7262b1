// What rows cannot say: results that differ each time.
#include "za_crypt_calls.hpp"

#include <cstring>
#include <gtest/gtest.h>
#include <thread>

namespace za::test {
namespace {

// Signed with one record and verified with the other.
void expect_a_pair(const ZA_RSArefPublicKey &pub, const ZA_RSArefPrivateKey &priv) {
    const Octets data{1, 2, 3};
    Octets signature(256);
    uint32_t len = 0;
    uint32_t verdict = 0;
    EXPECT_EQ(ZA_PKCS7_SignedData(9, data.data(), 3, signature.data(), &len, &priv), 0u);
    EXPECT_EQ(ZA_PKCS7_VerifySignature(9, data.data(), 3, signature.data(), len, &pub, &verdict),
              0u);
    EXPECT_EQ(verdict, 1u);
}

TEST(Pkcs7Crypt, EncryptsAnewEachTime) {
    for (const auto &[file, size] : {std::pair("rsa1024", 128u), {"rsa2048", 256u}}) {
        const auto pub = rsa_record<ZA_RSArefPublicKey>(file);
        const auto priv = rsa_record<ZA_RSArefPrivateKey>(file);
        for (const uint32_t text_len : {0u, 1u, size - 11}) {
            const Octets text(text_len, 0x5A);
            Octets once(size), again(size), back(size);
            uint32_t len = 0;
            for (Octets *cipher : {&once, &again}) {
                EXPECT_EQ(
                    ZA_PKCS7_RSAPublicEncrypt(cipher->data(), &len, text.data(), text_len, &pub),
                    0u);
                EXPECT_EQ(len, size);
            }
            EXPECT_NE(once, again);
            EXPECT_EQ(ZA_PrivateKeyDecryptFunc_Ref(once.data(), size, back.data(), &len,
                                                   const_cast<ZA_RSArefPrivateKey *>(&priv)),
                      0);
            EXPECT_EQ(Octets(back.begin(), back.begin() + len), text);
        }
    }
}

TEST(Pkcs7Crypt, MakesKeyPairs) {
    for (const auto &[generate, bits] :
         {std::pair(&ZA_PKCS7_GenRSAKeyPair, 1024u), {&ZA_PKCS7_GenRSAKeyPair_2048, 2048u}}) {
        ZA_RSArefPublicKey pub{};
        ZA_RSArefPrivateKey priv{};
        ASSERT_EQ(generate(&pub, &priv), 0u);
        EXPECT_EQ(pub.bits, bits);
        EXPECT_EQ(priv.bits, bits);
        EXPECT_EQ(to_hex(std::span(pub.exponent).last(4)), "00 01 00 01");
        EXPECT_EQ(memcmp(pub.modulus, priv.modulus, 512), 0);
        expect_a_pair(pub, priv);
        EXPECT_EQ(generate(&pub, nullptr), 108u);
        EXPECT_EQ(generate(nullptr, &priv), 108u);
    }
}

TEST(Pkcs7Crypt, GivesRandomOctets) {
    const uint32_t none = 0, count = 32;
    Octets first(40, 0xA5), second(40, 0xA5);
    EXPECT_EQ(ZA_PKCS7_GenerateBytes(first.data(), &count), 0u);
    EXPECT_EQ(ZA_PKCS7_GenerateBytes(second.data(), &count), 0u);
    EXPECT_NE(first, second);
    EXPECT_EQ(Octets(first.begin() + 32, first.end()), Octets(8, 0xA5));
    EXPECT_EQ(ZA_PKCS7_GenerateBytes(nullptr, &none), 0u);
    EXPECT_EQ(ZA_PKCS7_GenerateBytes(nullptr, &count), 108u);
    EXPECT_EQ(ZA_PKCS7_GenerateBytes(first.data(), nullptr), 108u);
}

TEST(Pkcs7Crypt, WorksInManyThreads) {
    const auto pub = rsa_record<ZA_RSArefPublicKey>("rsa1024");
    const auto priv = rsa_record<ZA_RSArefPrivateKey>("rsa1024");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k < 50; ++k) {
                expect_a_pair(pub, priv);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

}  // namespace
}  // namespace za::test
