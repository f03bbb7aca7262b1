#include "pkcs12/za_pkcs12_support.hpp"
#include "pkcs7/za_pkcs7_signed_support.hpp"

#include <openssl/hmac.h>

namespace za::test {
namespace {

using namespace pkcs12;

const std::string kEncrypted = "ContentInfoOfEncryptedType";
const std::string kEnveloped = "ContentInfoOfEnvelopedType";
const std::string kDataSafe = "AuthSafeOfDataType";
const std::string kSignedSafe = "AuthSafeOfSignedType";
const Octets kSafeContents = from_hex("30(30(06(2A03) A0(30(5E*16 33*16))))");
const Octets kPassword = from_hex("5A*16");
const Octets kSalt = from_hex("0102030405060708");
const Octets kKey = from_hex("A0A1A2A3A4A5A6A7A8A9AAABACADAEAF");
constexpr uint8_t kMark = 0x77;

uint32_t set(const Structure &structure, const std::string &what, const Octets &value) {
    return structure.created != 0
               ? structure.created
               : structure("Set" + structure.family() + "_" + what, {to_hex(value)});
}

uint32_t encode(const Structure &structure, Octets &out) {
    Row values;
    const uint32_t result = structure("Encode" + structure.family(), {}, &values);
    out = result == 0 ? from_hex(values[0]) : Octets{};
    return result;
}

Octets get(const Structure &structure, const std::string &what, const std::string &number = "") {
    Row values;
    EXPECT_EQ(structure("Get" + structure.family() + "_" + what, {number}, &values), 0u);
    return values.at(0) == "-" ? Octets{} : from_hex(values[0]);
}

// A function of the library's with its record, whose octets live as long as the test.
template <class Install, class Record>
uint32_t install(const Structure &structure, Install function, ZA_CryptFunc crypt,
                 const Record &record) {
    const Octets block = octets_of(record);
    return function(structure, crypt, block.data(), uint32_t(block.size()));
}

// pbeWithSHAAnd3-KeyTripleDES-CBC
TEST(Pkcs12Containers, PasswordsEncrypt) {
    const Octets oid = from_hex("2A864886F70D010C0103");
    const ZA_PBE_RECORD record{oid.data(), 10, kPassword.data(), 16, kSalt.data(), 8, 3};
    Octets der;
    const auto write = [&] {
        const Structure content(kEncrypted);
        const auto parameter = ZA_PKCs12_SetContentInfoOfEncryptedType_DesParameter;
        const auto function = ZA_PKCS12_SetContentInfoOfEncryptedType_EncContentFunc;
        uint32_t result = set(content, "SafeContent", kSafeContents);
        result = result != 0 ? result : set(content, "DesAlgorithm", oid);
        result = result != 0 ? result : parameter(content, kSalt.data(), 8, 3);
        result = result != 0 ? result : install(content, function, ZA_EncryptFunc_Ref, record);
        return result != 0 ? result : encode(content, der);
    };
    const auto read = [&] {
        const Structure content(kEncrypted, "Decode");
        const auto function = ZA_PKCS12_SetContentInfoOfEncryptedType_DecContentFunc;
        Row values;
        uint32_t result = content.decode(der);
        result = result != 0 ? result : install(content, function, ZA_DecryptFunc_Ref, record);
        result = result != 0 ? result
                             : content("GetContentInfoOfEncryptedType_SafeContent", {}, &values);
        EXPECT_TRUE(result != 0 || from_hex(values[0]) == kSafeContents);
        return result;
    };
    for (const Octets &secret : {kPassword, Octets(16, 0x5E)}) {
        const NoSecret no_secret(secret);
        EXPECT_EQ(write(), 0u);
        EXPECT_EQ(read(), 0u);
    }
    const Structure content(kEncrypted, "Decode");
    EXPECT_EQ(content.decode(der), 0u);
    EXPECT_EQ(get(content, "SafeContent"), two_calls([&](uint8_t *out, uint32_t *len) {
                  return ZA_PKCS12_PbeWithDigestAlgoAndEncrypt(
                      oid.data(), 10, kPassword.data(), 16, kSalt.data(), 8, 3,
                      kSafeContents.data(), uint32_t(kSafeContents.size()), out, len);
              }));
    // The derivation of keys has one code for whatever fails.
    const auto told_apart = [](uint32_t result) { return result == 126 ? 100u : result; };
    expect_allocation_faults_survived([&] { return told_apart(read()); });
    expect_allocation_faults_survived([&] { return told_apart(write()); });
}

// The MAC covers what stands inside the OCTET STRING of the message, as libcrypto computes it.
TEST(Pkcs12Containers, MacCoversTheContents) {
    const NoSecret no_secret(kKey);
    const ZA_HMAC_RECORD record{7, kKey.data(), uint32_t(kKey.size())};
    const Structure safe(kDataSafe);
    ASSERT_EQ(
        set(safe, "ContentInfo", kSafeContents) | set(safe, "ContentInfo", {0x30, 0}) |
            set(safe, "DigestAlgorithm", from_hex("2B0E03021A")) |
            install(safe, ZA_PKCS12_SetAuthSafeOfDataType_GenMacFunc, ZA_HMACFunc_Ref, record),
        0u);
    const Octets covered = sequence({kSafeContents, {0x30, 0}});
    Octets mac(20);
    HMAC(EVP_sha1(), kKey.data(), int(kKey.size()), covered.data(), covered.size(), mac.data(),
         nullptr);
    Octets der;
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(encode(safe, der), 0u);
        const Octets digest_info = children_of(children_of(der)[2])[0];
        EXPECT_EQ(children_of(digest_info)[1], element(0x04, mac));
        const Structure read(kDataSafe, "Decode");
        ASSERT_EQ(read.decode(der), 0u);
        ASSERT_EQ(
            install(read, ZA_PKCS12_SetAuthSafeOfDataType_ParseMacFunc, ZA_HMACFunc_Ref, record),
            0u);
        EXPECT_TRUE(read.seen().ends_with("#200"));
        EXPECT_EQ(get(read, "ContentInfo", "3"), Octets{});
    }
}

// No octet that the MAC covers, and none of the MAC, can change without a verdict of 300.
TEST(Pkcs12Containers, DamageNeverVerifies) {
    const Octets der = from_hex(
        "30(02(03) 30(06(2A864886F70D010701)A0(04(30(30(02(02)) 3000)))) "
        "30(30(30(06(2A05)05())04(31 06 31 02 03 00 03 31 01)) 04() 02(00)))");
    size_t differ = 0;
    for (size_t bit = 0; bit < 8 * der.size(); ++bit) {
        Octets changed = der;
        changed[bit / 8] ^= uint8_t(1 << bit % 8);
        const Structure safe(kDataSafe, "Decode");
        ASSERT_EQ(install(safe, ZA_PKCS12_SetAuthSafeOfDataType_ParseMacFunc, crypt, uint8_t{1}),
                  0u);
        const bool covered = (bit / 8 >= 22 && bit / 8 < 31) || (bit / 8 >= 45 && bit / 8 < 54);
        const std::string seen = safe.decode(changed) == 0 ? safe.seen() : "";
        EXPECT_TRUE(!covered || !seen.ends_with("#200")) << bit;
        differ += seen.ends_with("#300") ? 1 : 0;
    }
    EXPECT_GE(differ, 8 * 9u);
}

// What was written is read as any other message, its key by the recipient.
Octets opened_by_recipient(const Octets &der) {
    void *message = nullptr;
    void *part = nullptr;
    EXPECT_EQ(ZA_PKCS7_CreateEnvelopedDataDecodeCtx(&message), 0u);
    EXPECT_EQ(ZA_PKCS7_DecodePKCS7EnvelopedData(message, der.data(), uint32_t(der.size())), 0u);
    EXPECT_EQ(ZA_PKCS7_GetEnvelopedData_RecipientInfo(message, &part, 1), 0u);
    EXPECT_EQ(ZA_PKCS7_SetRecipientInfoKeyDecFunc(part, crypt, &kMark, 1), 0u);
    EXPECT_EQ(contexts::read(ZA_PKCS7_DecryptDesKey, part), kKey);
    EXPECT_EQ(ZA_PKCS7_GetEnvelopedData_EncryptedContent(message, &part), 0u);
    EXPECT_EQ(ZA_PKCS7_SetEncryptContentDecFunc(part, crypt, &kMark, 1), 0u);
    const Octets content = contexts::read(ZA_PKCS7_GetEncryptedContentInformation, part);
    EXPECT_EQ(ZA_PKCS7_DestroyEnvelopedDataEncodeCtx(message), 0u);
    return content;
}

TEST(Pkcs12Containers, RecipientsOpenEnvelopes) {
    const NoLeak no_leak;
    for (const Octets &secret : {kKey, Octets(16, 0x5E)}) {
        const NoSecret no_secret(secret);
        const Structure content(kEnveloped);
        void *recipient = nullptr;
        Octets der;
        ASSERT_EQ(ZA_PKCS7_CreateEncodeRecipientInfo(&recipient), 0u);
        ASSERT_EQ(set_all(ZA_PKCS7_SetRecipientInfoAttributeChar, recipient,
                          {{28, {'C', 'A'}}, {33, {5}}, {35, {0x2A}}}) |
                      ZA_PKCS7_SetRecipientInfoKeyEncFunc(recipient, crypt, &kMark, 1),
                  0u);
        const auto attach = ZA_PKCS12_SetContentInfoOfEnvelopedType_RecipientInfo;
        ASSERT_EQ(attach(content, recipient), 0u);
        EXPECT_EQ(attach(content, recipient), 121u);
        EXPECT_EQ(attach(Structure(kEnveloped), recipient), 121u);
        EXPECT_EQ(ZA_PKCS7_DestoryEncodeRecipientInfo(recipient), 0u) << "goes with the context";
        ASSERT_EQ(set(content, "SafeContent", kSafeContents) |
                      set(content, "DesAlgorithm", {0x2A, 3}) |
                      set(content, "DesParameter", {0x05, 0}) | set(content, "EncContentKey", kKey),
                  0u);
        EXPECT_EQ(encode(content, der), 121u) << "no function";
        const auto function = ZA_PKCS12_SetContentInfoOfEnvelopedType_EncContentFunc;
        ASSERT_EQ(function(content, crypt, &kMark, 1), 0u);
        for (int i = 0; i < 2; ++i) {
            ASSERT_EQ(encode(content, der), 0u);
            EXPECT_EQ(opened_by_recipient(der), kSafeContents);
        }
        const Structure read(kEnveloped, "Decode");
        ASSERT_EQ(read.decode(der) | function(read, crypt, &kMark, 1), 0u);
        EXPECT_EQ(get(read, "SafeContent"), kSafeContents);
    }
}

TEST(Pkcs12Containers, SignersSignFiles) {
    const NoLeak no_leak;
    const Structure safe(kSignedSafe);
    const Structure read(kSignedSafe, "Decode");
    const auto attach = ZA_PKCS12_SetAuthSafeOfSignedType_SignerInfo;
    void *signer = new_signer("rsa1024", true);
    ASSERT_EQ(attach(safe, signer), 0u);
    EXPECT_EQ(attach(safe, signer), 121u);
    EXPECT_EQ(ZA_PKCS7_DestoryEncodeSignerInfo(signer), 0u) << "goes with the context";
    ASSERT_EQ(attach(safe, new_signer("rsa2048", false)), 0u);
    const std::vector<std::pair<std::string, Octets>> values{
        {"ContentInfo", kSafeContents}, {"ContentInfo", {0x30, 0}}, {"DigestAlgorithm", kSha256Oid},
        {"DigestAlgorithm", {0x2A}},    {"Cert", {0x30, 1, 1}},     {"Cert", {0x30, 1, 2}},
        {"Crl", {0x30, 1, 3}},          {"Crl", {0x30, 1, 4}}};
    for (const auto &[what, value] : values) {
        ASSERT_EQ(set(safe, what, value), 0u);
    }
    Octets der;
    ASSERT_EQ(encode(safe, der), 0u);
    ASSERT_EQ(encode(safe, der), 0u);
    ASSERT_EQ(read.decode(der), 0u);
    for (size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(get(read, values[i].first, std::to_string(i % 2 + 1)), values[i].second) << i;
        EXPECT_EQ(get(read, values[i].first, i % 2 == 0 ? "0" : "3"), Octets{});
    }
    for (const auto &[number, key] : {std::pair(1u, "rsa1024"), {2u, "rsa2048"}}) {
        ASSERT_EQ(ZA_PKCS12_GetAuthSafeOfSignedType_SignerInfo(read, &signer, number), 0u);
        install_opening(signer, key);
        EXPECT_EQ(verify(signer), "0/200");
        EXPECT_EQ(ZA_PKCS7_DestoryDecodeSignerInfo(signer), 0u) << "is borrowed";
    }
    for (const uint32_t number : {0u, 3u, 0x80000001u, 0xFFFFFFFFu}) {
        EXPECT_EQ(ZA_PKCS12_GetAuthSafeOfSignedType_SignerInfo(read, &signer, number), 121u);
    }
    expect_allocation_faults_survived([&] { return encode(safe, der); });
}

TEST(Pkcs12Containers, NestingEnds) {
    for (const Exported &function : kFunctions) {
        for (const std::string header : {"3080", "2480", "A080"}) {
            if (function.starts("Decode")) {
                Octets deep = from_hex(header);
                for (int i = 0; i < 11; ++i) {
                    deep.insert(deep.end(), deep.begin(), deep.end());
                }
                Structure structure(function.shape[0] == 'h' ? function.name.substr(6) : kDataSafe);
                Call call(function, structure, {to_hex(deep)});
                EXPECT_EQ(function.call(call.words), 123u) << function.name;
            }
        }
    }
}

}  // namespace
}  // namespace za::test
