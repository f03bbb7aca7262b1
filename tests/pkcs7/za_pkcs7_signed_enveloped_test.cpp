#include "pkcs7/za_pkcs7_SignedAndEnvelopedData.hpp"
#include "pkcs7/za_pkcs7_signed_support.hpp"

#include <openssl/pkcs7.h>

namespace za::test {
namespace {

const Octets kKey = from_hex("C0FFEE5EC27A11BB2233445566778899");
const Octets kIv(16, 0x17);
const Octets kPlain = from_hex("00112233445566778899AABBCCDDEEFF 5A*32 77");
constexpr std::array kRecipients{"rsa1024", "rsa2048"};

std::vector<Octets> keys_told;
size_t times_encrypted = 0;

int32_t encrypt_key(const uint8_t *in, uint32_t len, uint8_t *out, uint32_t *out_len, void *key) {
    keys_told.emplace_back(in, in + len);
    return ZA_PublicKeyEncryptFunc_Ref(in, len, out, out_len, key);
}

int32_t encrypt(const uint8_t *in, uint32_t len, uint8_t *out, uint32_t *out_len, void *block) {
    const auto *key = static_cast<const uint8_t *>(block);
    ++times_encrypted;
    return int32_t(ZA_PKCS12_AESEncrypt(2, key, 16, key + 16, 16, in, len, out, out_len));
}

int32_t decrypt(const uint8_t *in, uint32_t len, uint8_t *out, uint32_t *out_len, void *block) {
    const auto *key = static_cast<const uint8_t *>(block);
    return int32_t(ZA_PKCS12_AESDecrypt(2, key, 16, key + 16, 16, in, len, out, out_len));
}

void *new_recipient(const std::string &key) {
    void *recipient = nullptr;
    const Octets block = public_block(key);
    EXPECT_EQ(ZA_PKCS7_CreateEncodeRecipientInfo(&recipient), 0u);
    EXPECT_EQ(set_all(ZA_PKCS7_SetRecipientInfoAttributeChar, recipient,
                      {{PKCS7_RECIPIENT_DN, name_of(key, 0x13)},
                       {PKCS7_RECIPIENT_SERIAL, {0x4D}},
                       {PKCS7_RECIPIENT_KEYENCRYPTION_ALGO, from_hex("2A864886F70D010101")}}),
              0u);
    EXPECT_EQ(ZA_PKCS7_SetRecipientInfoKeyEncFunc(recipient, encrypt_key, block.data(),
                                                  uint32_t(block.size())),
              0u);
    return recipient;
}

// AES-128 in CBC mode.
void *new_encrypted() {
    void *part = nullptr;
    const Octets block = join({kKey, kIv});
    EXPECT_EQ(ZA_PKCS7_CreateEnocdeEncryptedContent(&part), 0u);
    EXPECT_EQ(set_all(ZA_PKCS7_SetEncryptedContentAttributeChar, part,
                      {{PKCS7_ENCRYPT_ALGO, from_hex("608648016503040102")},
                       {PKCS7_ENCRYPT_PARAMETER, element(4, kIv)}}),
              0u);
    EXPECT_EQ(ZA_PKCS7_SetEncryptContentEncFunc(part, encrypt, block.data(), 32), 0u);
    return part;
}

// Everything but what `without` names.
void fill(const Message &message, const std::string &without = {}, bool attributes = false) {
    EXPECT_EQ(without == "version" ? 0u : message->set_int(message, 44, 1), 0u);
    EXPECT_EQ(
        set_all(kEnveloped.set, message,
                {{45, certificate_for("rsa1024")}, {47, kSha256Oid}, {49, kDataOid}, {50, kKey}}),
        0u);
    EXPECT_EQ(without == "content" ? 0u : message.set(48, kPlain), 0u);
    const auto attach = [&](const std::string &what, auto set, auto make) {
        EXPECT_EQ(without == what ? 0u : set(message, make()), 0u) << what;
    };
    for (const char *key : kRecipients) {
        attach("recipients", ZA_PKCS7_SetSignedAndEnvelopedData_RecipientInfo,
               [&] { return new_recipient(key); });
    }
    attach("encrypted", ZA_PKCS7_SetSignedAndEnvelopedData_EncryptedContent, new_encrypted);
    attach("signers", kEnveloped.attach, [&] { return new_signer("rsa1024", attributes); });
}

TEST(SignedAndEnvelopedFields, StepsEndAsWritten) {
    expect_steps(kEnveloped, "pkcs7/signed/enveloped_steps");
}

TEST(SignedAndEnvelopedFields, NullIsRefused) {
    const Message message(kEnveloped);
    void *handle = nullptr;
    const auto recipient = ZA_PKCS7_GetSignedAndEnvelopedData_RecipientInfo;
    const auto content = ZA_PKCS7_GetSignedAndEnvelopedData_EncryptedContent;
    EXPECT_EQ(message.set(45, {1}), 0u);
    expect_null_refused(
        kEnveloped, true,
        {ZA_PKCS7_CreateSignedAndEnvelopedDataEncodeCtx(nullptr),
         kEnveloped.get(message, 45, nullptr, nullptr, 1),
         ZA_PKCS7_SetSignedAndEnvelopedData_RecipientInfo(nullptr, &handle),
         ZA_PKCS7_SetSignedAndEnvelopedData_RecipientInfo(message, nullptr),
         ZA_PKCS7_SetSignedAndEnvelopedData_EncryptedContent(nullptr, &handle),
         ZA_PKCS7_SetSignedAndEnvelopedData_EncryptedContent(message, nullptr),
         content(nullptr, &handle), content(message, nullptr), recipient(nullptr, &handle, 1),
         recipient(message, nullptr, 1), recipient(message, &handle, 1)});
    EXPECT_EQ(content(message, &handle), 121u);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(ZA_PKCS7_DestorySignedAndEnvelopedDataDecodeCtx(nullptr), 0u);
}

TEST(SignedAndEnvelopedFields, LinesHaveTheNamesThatLogsKnow) {
    const Message message(kEnveloped);
    void *handle = nullptr;
    const TraceRecord trace;
    message.counts();
    ZA_PKCS7_GetSignedAndEnvelopedData_EncryptedContent(message, &handle);
    ZA_PKCS7_GetSignedAndEnvelopedData_RecipientInfo(message, &handle, 1);
    kEnveloped.signer(message, &handle, 1);
    Trail begun = trace.lines();
    std::erase_if(begun, [](const std::string &line) { return !line.ends_with("Begin"); });
    Trail expected;
    for (const std::string name :
         {"RecipientInfoNum", "CertificatesNum", "CrlsNum", "SignerInfoNum", "EncryptedContent",
          "RecipientInfo", "SignerInfo"}) {
        expected.push_back("======>ZA_PKCS7_GetSignedAndRecipientData_" + name + " Begin");
    }
    EXPECT_EQ(begun, expected);
}

// What libcrypto makes of it: the content, or nothing unless a certificate in it verifies it.
Octets opened_by_libcrypto(const Octets &der, const char *recipient) {
    const uint8_t *at = der.data();
    const std::shared_ptr<PKCS7> p7(d2i_PKCS7(nullptr, &at, long(der.size())), PKCS7_free);
    const std::shared_ptr<BIO> content(
        PKCS7_dataDecode(p7.get(), key_named(recipient), nullptr, nullptr), BIO_free_all);
    Octets plain(1000);
    const int size = BIO_read(content.get(), plain.data(), int(plain.size()));
    plain.resize(size < 0 ? 0 : size_t(size));
    PKCS7_SIGNER_INFO *signer = sk_PKCS7_SIGNER_INFO_value(PKCS7_get_signer_info(p7.get()), 0);
    const PKCS7_ISSUER_AND_SERIAL *who = signer->issuer_and_serial;
    X509 *certificate =
        X509_find_by_issuer_and_serial(p7->d.signed_and_enveloped->cert, who->issuer, who->serial);
    const bool good = PKCS7_signatureVerify(content.get(), p7.get(), signer, certificate) == 1;
    return good ? plain : Octets{};
}

Octets opened_by_us(const Message &message, int32_t recipient) {
    void *part = nullptr;
    EXPECT_EQ(ZA_PKCS7_GetSignedAndEnvelopedData_RecipientInfo(message, &part, recipient), 0u);
    const Octets &block = private_block(kRecipients[size_t(recipient - 1)]);
    EXPECT_EQ(ZA_PKCS7_SetRecipientInfoKeyDecFunc(part, ZA_PrivateKeyDecryptFunc_Ref, block.data(),
                                                  uint32_t(block.size())),
              0u);
    Octets key(512);
    uint32_t len = 0;
    EXPECT_EQ(ZA_PKCS7_DecryptDesKey(part, key.data(), &len), 0u);
    key.resize(len);
    const Octets with = join({key, kIv});
    EXPECT_EQ(ZA_PKCS7_GetSignedAndEnvelopedData_EncryptedContent(message, &part), 0u);
    EXPECT_EQ(ZA_PKCS7_SetEncryptContentDecFunc(part, decrypt, with.data(), uint32_t(with.size())),
              0u);
    return two_calls([&](uint8_t *out, uint32_t *size) {
        return ZA_PKCS7_GetEncryptedContentInformation(part, out, size);
    });
}

TEST(SignedAndEnvelopedWritten, IsOpenedAndVerifiedByBothSides) {
    for (const bool attributes : {false, true}) {
        const Message message(kEnveloped);
        fill(message, {}, attributes);
        keys_told.clear();
        times_encrypted = 0;
        uint32_t status = 7;
        const Octets der = message.encode(&status);
        ASSERT_EQ(status, 0u);
        EXPECT_EQ(keys_told, std::vector<Octets>(2, kKey));
        EXPECT_EQ(times_encrypted, 1u);
        const Message read(kEnveloped);
        ASSERT_EQ(read.decode(der), 0u);
        EXPECT_EQ(read.counts(), "2 1 0 1");
        for (const int32_t i : {1, 2}) {
            EXPECT_EQ(opened_by_libcrypto(der, kRecipients[size_t(i - 1)]), kPlain);
            EXPECT_EQ(opened_by_us(read, i), kPlain);
        }
        EXPECT_EQ(read.encode(), der) << "also when its content is known";
        void *signer = read.signer(1);
        Octets other = kPlain;
        other[0] ^= 1;
        EXPECT_EQ(verdict(signer, kPlain), "0/200");
        EXPECT_EQ(verdict(signer, other), "0/300");
        EXPECT_EQ(message.set(48, other), 0u);
        EXPECT_EQ(opened_by_libcrypto(message.encode(), "rsa2048"), other);
    }
}

// Whoever knows the content can sign it too: all the rest is written as it came.
TEST(SignedAndEnvelopedWritten, TakesFurtherSigners) {
    const Message message(kEnveloped);
    fill(message);
    const Message read(kEnveloped);
    ASSERT_EQ(read.decode(message.encode()), 0u);
    EXPECT_EQ(read.set(48, opened_by_us(read, 1)), 0u);
    EXPECT_EQ(read->attach(read, new_signer("rsa2048", false)), 0u);
    const Message again(kEnveloped);
    ASSERT_EQ(again.decode(read.encode()), 0u);
    EXPECT_EQ(opened_by_us(again, 2), kPlain);
    EXPECT_EQ(verdict(again.signer(1), kPlain) + verdict(again.signer(2), kPlain), "0/2000/200");
}

TEST(SignedAndEnvelopedWritten, MissingPartsAreTold) {
    const std::string early = "------------> The ctx's some item is null";
    const std::string late = " The ctx's some item is null";
    for (const auto &[without, line] : std::map<std::string, std::string>{{"version", early},
                                                                          {"recipients", early},
                                                                          {"signers", early},
                                                                          {"content", late},
                                                                          {"encrypted", late}}) {
        SCOPED_TRACE(without);
        const Message message(kEnveloped);
        fill(message, without);
        uint32_t status = 0;
        const TraceRecord trace;
        message.encode(&status);
        EXPECT_EQ(status, 121u);
        const Trail lines = trace.lines();
        EXPECT_EQ(std::ranges::count(lines, line), 1);
    }
}

TEST(SignedAndEnvelopedWritten, SecretsAreWiped) {
    for (const Octets &secret : {kKey, kPlain}) {
        const NoLeak no_leak;
        const NoSecret no_secret(secret);
        const Message message(kEnveloped);
        fill(message, {}, true);
        const Octets der = message.encode();
        EXPECT_EQ(message.set(48, {1, 2, 3}), 0u);
        EXPECT_FALSE(message.encode().empty());
        const Message read(kEnveloped);
        EXPECT_EQ(read.decode(der), 0u);
        EXPECT_EQ(opened_by_us(read, 2), kPlain);
    }
}

TEST(SignedAndEnvelopedWritten, DamageAndNoMemoryAreSurvived) {
    const Message message(kEnveloped);
    fill(message);
    const Octets whole = message.encode();
    const auto decode = [](const Octets &der) {
        pkcs7::SignedAndEnvelopedData read;
        uint32_t len = 7;
        uint32_t result = kEnveloped.decode(&read, der.data(), uint32_t(der.size()));
        EXPECT_TRUE(result == 0 || (read.kept.empty() && !read.has_version));
        result = result != 0 ? result
                             : set_all(kEnveloped.set, &read, {{45, {1}}, {47, {2}}, {48, {3}}});
        result = result != 0 ? result : kEnveloped.encode(&read, nullptr, &len);
        EXPECT_TRUE(result == 0 || len == 7);
        return result;
    };
    EXPECT_EQ(decode(whole), 0u);
    expect_allocation_faults_survived([&] { return decode(whole); });
    const std::vector<Row> steps = rows_of("pkcs7/signed/enveloped_steps");
    const auto step = std::ranges::find_if(
        steps, [](const Row &row) { return row[0] == "decode" && row[3] == "0"; });
    const Octets small = octets_of_cell(step->at(2));
    ASSERT_EQ(decode(small), 0u);
    expect_damage_survived(
        small, {101, 102, 106, 108, 112, 113, 121, 122, 123, 0xFFFFFFFE, 0xFFFFFFFF}, decode);
}

}  // namespace
}  // namespace za::test
