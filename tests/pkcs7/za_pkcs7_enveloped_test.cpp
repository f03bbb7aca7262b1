#include "pkcs7/za_pkcs7_EnvelopedData.hpp"
#include "pkcs7/za_pkcs7_context_support.hpp"
#include "support/heap.hpp"

#include <map>
#include <memory>

namespace za::test {
namespace {

using namespace contexts;
using Values = std::map<int32_t, Octets>;

const Kind kRecipient{
    {"recipient", 108, 110, {24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 35, 36, 37}},
    {ZA_PKCS7_CreateEncodeRecipientInfo, ZA_PKCS7_DestoryDecodeRecipientInfo},
    {ZA_PKCS7_SetRecipientInfoAttributeChar, ZA_PKCS7_GetRecipientInfoAttributeChar},
    {ZA_PKCS7_EncodeRecipientInfo, ZA_PKCS7_DecodeRecipientInfo},
    {23, ZA_PKCS7_GetRecipientInfoAttributeInt},
    {ZA_PKCS7_SetRecipientInfoKeyEncFunc, ZA_PKCS7_SetRecipientInfoKeyDecFunc,
     ZA_PKCS7_DecryptDesKey, ZA_PKCS7_SetEnvelopedData_RecipientInfo}};
const Kind &kEncrypted = kEncryptedContent;
const Kind kMessage{
    {"message", 101, 110, {52, 53, 54}},
    {ZA_PKCS7_CreateEnvelopedDataEncodeCtx, ZA_PKCS7_DestroyEnvelopedDataEncodeCtx},
    {ZA_PKCS7_SetEnvelopedDataAttributeChar, ZA_PKCS7_GetEnvelopedDataAttributeChar},
    {ZA_PKCS7_EncodePKCS7EnvelopedData, ZA_PKCS7_DecodePKCS7EnvelopedData},
    {51, ZA_PKCS7_GetEnvelopedDataAttributeInt, ZA_PKCS7_SetEnvelopedDataAttributeInt},
    {}};
const std::map<std::string, const Kind *> kKinds{
    {"recipient", &kRecipient}, {"encrypted", &kEncrypted}, {"message", &kMessage}};

uint32_t set(const Kind &kind, void *handle, const Values &values) {
    uint32_t result = 0;
    for (const auto &[id, value] : values) {
        result |= set(kind, handle, id, value);
    }
    return result;
}

void *recipient_in(const Context &message, int32_t index) {
    void *part = nullptr;
    EXPECT_EQ(ZA_PKCS7_GetEnvelopedData_RecipientInfo(message, &part, index), 0u);
    return part;
}

void *content_in(const Context &message) {
    void *part = nullptr;
    EXPECT_EQ(ZA_PKCS7_GetEnvelopedData_EncryptedContent(message, &part), 0u);
    return part;
}

// "IDENTIFIER=VALUE", or "IDENTIFIER<LENGTH>" of long ones, of all that is there.
std::string seen(const Kind &kind, void *handle) {
    std::string all;
    uint32_t version = 0;
    if (kind.get_int != nullptr) {
        EXPECT_EQ(kind.get_int(handle, kind.version, &version), 0u);
        all += " v" + std::to_string(version);
    }
    for (const int32_t id : kind.ids) {
        const Octets value = get(kind, handle, id);
        const std::string shown =
            value.size() >= 16 ? "<" + std::to_string(value.size()) + ">" : "=" + plain_hex(value);
        all += value.empty() ? "" : " " + std::to_string(id) + shown;
    }
    return all.empty() ? all : all.substr(1);
}

std::string seen_with_parts(const Context &context) {
    std::string all = seen(context.kind(), context);
    if (&context.kind() == &kMessage) {
        uint32_t num = 0;
        EXPECT_EQ(ZA_PKCS7_GetEnvelopedData_RecipientInfoNum(context, &num), 0u);
        for (int32_t i = 1; i <= int32_t(num); ++i) {
            all += "; " + seen(kRecipient, recipient_in(context, i));
        }
        all += "; " + seen(kEncrypted, content_in(context));
    }
    return all;
}

int32_t told_code = 0;
uint32_t told_claims = 0;  // octets, where not those that were written
uint32_t calls = 0;

// Fills all its room, which is what a function may do, and spoils its block. The result is the
// block's octet and the complement of the input.
int32_t crypt(const uint8_t *in, uint32_t len, uint8_t *out, uint32_t *out_len, void *block) {
    auto *octet = static_cast<uint8_t *>(block);
    const uint8_t mark = octet == nullptr ? 0 : *octet;
    EXPECT_GE(*out_len, std::max<uint32_t>(len + 330, 4096));
    std::fill_n(out, *out_len, uint8_t{0xEE});
    std::fill_n(octet, octet == nullptr ? 0 : 1, uint8_t{0xFF});
    ++calls;
    out[0] = mark;
    std::transform(in, in + len, out + 1, [](uint8_t x) { return uint8_t(~x); });
    *out_len = told_claims == 0 ? len + 1 : told_claims;
    return told_code;
}

uint32_t take_step(const Kind &kind, void *handle, const Row &row, Octets &out) {
    const std::string &what = row[0];
    const Octets octets = octets_of_cell(row[2]);
    const auto len = uint32_t(octets.size());
    if (what == "told") {
        told_code = std::stoi(row[1]);
        told_claims = octets.empty() ? 0 : number_of("0x" + row[2]);
    } else if (what == "open") {
        uint32_t result = 0;
        out = read(kind.open, handle, &result);
        return result;
    }
    return what == "encrypt"   ? kind.encrypt(handle, crypt, octets.data(), len)
           : what == "decrypt" ? kind.decrypt(handle, crypt, octets.data(), len)
           : what == "bare"    ? kind.encrypt(handle, nullptr, nullptr, 0)
           : what == "shut"    ? kind.decrypt(handle, nullptr, nullptr, 0)
                               : take_usual_step(kind, handle, row, out);
}

TEST(EnvelopedParts, StepsEndAsWritten) {
    std::unique_ptr<Context> context;
    const Kind *kind = nullptr;
    void *handle = nullptr;
    for (const Row &row : rows_of("pkcs7/enveloped/steps.txt")) {
        SCOPED_TRACE(row[0] + "|" + row[1] + "|" + row[2]);
        if (row[0] == "new" || row[0] == "part") {
            kind = kKinds.at(row[1]);
        }
        if (row[0] == "new") {
            context = std::make_unique<Context>(*kind);
            handle = *context;
        } else if (row[0] == "part") {
            EXPECT_EQ(kind->create(&handle) + kind->attach(*context, handle), 0u);
        } else if (row[0] == "back") {
            kind = &context->kind();
            handle = *context;
        }
        const TraceRecord trace;
        Octets out;
        calls = 0;
        EXPECT_EQ(take_step(*kind, handle, row, out), number_of(row[3]));
        Trail failures = trace.lines();
        std::erase_if(failures, [](const std::string &line) { return line.starts_with("="); });
        Trail expected = list_of(row[5]);
        std::ranges::for_each(expected, [](auto &line) { std::ranges::replace(line, '~', ' '); });
        EXPECT_EQ(failures, expected);
        EXPECT_EQ(to_hex(out), to_hex(octets_of_cell(row.size() > 6 ? row[6] : "")));
        EXPECT_EQ(seen(*kind, handle), row[4]);
        EXPECT_EQ(calls, row.size() > 7 ? number_of(row[7]) : 0);
    }
}

TEST(EnvelopedParts, RowsDecodeAsWritten) {
    const std::set<uint32_t> refused{101, 102, 106, 108, 121, 122, 123, 0xFFFFFFFE, 0xFFFFFFFF};
    for (const auto &named : kKinds) {
        const auto decode = [&](const Octets &in, std::string &out) {
            const Context context(*named.second);
            const uint32_t result = context.decode(in);
            if (out.empty()) {  // not again for every damage
                Octets again;
                out = result == 0 ? seen_with_parts(context) : seen(context.kind(), context);
                out += result == 0 && context.encode(again) == 0 && again == in ? "; same" : "";
            }
            return result;
        };
        expect_decoded("pkcs7/enveloped/" + named.first + ".txt", refused, decode);
    }
}

TEST(EnvelopedParts, ArgumentsAreChecked) {
    const Context message(kMessage);
    uint8_t octet = 7;
    uint32_t n = 7;
    void *part = &octet;
    std::vector<uint32_t> results{ZA_PKCS7_SetEnvelopedDataAttributeInt(nullptr, 51, 0)};
    for (const Kind *kind : {&kRecipient, &kEncrypted, &kMessage}) {
        expect_null_refused(*kind);
        expect_accessors(*kind);
        if (kind->open != nullptr) {
            const Context context(*kind);
            EXPECT_EQ(kind->encrypt(nullptr, crypt, &octet, 1), 108u);
            EXPECT_EQ(kind->decrypt(nullptr, crypt, &octet, 1), 108u);
            results.insert(results.end(),
                           {kind->decrypt(context, crypt, &octet, 0x80000000),
                            kind->attach(message, nullptr), kind->attach(nullptr, context)});
        }
    }
    for (void *in : {static_cast<void *>(nullptr), static_cast<void *>(message)}) {
        void **out = in == nullptr ? &part : nullptr;
        results.insert(results.end(), {ZA_PKCS7_GetEnvelopedData_RecipientInfoNum(
                                           in, in == nullptr ? &n : nullptr),
                                       ZA_PKCS7_GetEnvelopedData_RecipientInfo(in, out, 1),
                                       ZA_PKCS7_GetEnvelopedData_EncryptedContent(in, out)});
    }
    EXPECT_EQ(results, std::vector<uint32_t>(results.size(), 101));
    const TraceRecord trace;
    EXPECT_EQ(kMessage.encode(message, nullptr, &n), 121u);
    EXPECT_EQ(trace.lines()[0], "=======>ZA_PKCS7_EncodePKCS7EnvelopedData Begin");
    EXPECT_TRUE(octet == 7 && n == 7 && part == &octet);
}

// ---- Whole messages

const Octets kData = from_hex("2A864886F70D010701");
const Octets kRsa = from_hex("2A864886F70D010101");
const Octets kAesCbc = from_hex("608648016503040102");
const Octets kKey = from_hex("000102030405060708090A0B0C0D0E0F");
const Octets kIv(16, 0x33);
const Octets kText(50, 0x5A);

template <class Record>
Octets rsa(const std::string &file) {
    return octets_of(rsa_record<Record>(file));
}

// Attached before anything in it is set.
uint32_t add(const Kind &kind, const Context &message, const Values &values, ZA_CryptFunc encrypt,
             const Octets &block) {
    void *part = nullptr;
    uint32_t result = kind.create(&part);
    result = result == 0 ? kind.attach(message, part) : result;
    if (result != 0) {
        kind.destroy(part);
        return result;
    }
    return set(kind, part, values) |
           kind.encrypt(part, encrypt, block.data(), uint32_t(block.size()));
}

uint32_t add_recipient(const Context &message, const Octets &public_key) {
    return add(kRecipient, message, {{28, {'C', 'A'}}, {33, {5}}, {35, kRsa}},
               ZA_PublicKeyEncryptFunc_Ref, public_key);
}

uint32_t add_content(const Context &message) {
    return add(kEncrypted, message, {{18, kAesCbc}, {19, element(0x04, kIv)}},
               aes<ZA_PKCS12_AESEncrypt>, join({kKey, kIv}));
}

uint32_t set_fields(const Context &message) {
    return ZA_PKCS7_SetEnvelopedDataAttributeInt(message, PKCS7_ENVELOPEDDATA_VERSION, 0) |
           set(kMessage, message, {{52, kText}, {53, kData}, {54, kKey}});
}

// The content as the owner of a key reads it.
Octets opened(const Context &message, int32_t index, const std::string &key_file) {
    const auto install = [](const Kind &kind, void *part, ZA_CryptFunc decrypt,
                            const Octets &block) {
        EXPECT_EQ(kind.decrypt(part, decrypt, block.data(), uint32_t(block.size())), 0u);
    };
    void *recipient = recipient_in(message, index);
    install(kRecipient, recipient, ZA_PrivateKeyDecryptFunc_Ref,
            rsa<ZA_RSArefPrivateKey>(key_file));
    const Octets key = read(ZA_PKCS7_DecryptDesKey, recipient);
    EXPECT_EQ(get(kRecipient, recipient, PKCS7_RECIPIENT_KEY), key);
    const Octets iv = content_of(get(kEncrypted, content_in(message), PKCS7_ENCRYPT_PARAMETER));
    install(kEncrypted, content_in(message), aes<ZA_PKCS12_AESDecrypt>, join({key, iv}));
    return get(kEncrypted, content_in(message), PKCS7_ENCRYPT_CONTENT);
}

TEST(EnvelopedData, MessagesOfOpensslAreRead) {
    for (const Row &row : rows_of("pkcs7/enveloped/theirs.txt")) {
        SCOPED_TRACE(row[0] + " " + row[1]);
        const Context message(kMessage);
        const Context second(kMessage);
        ASSERT_EQ(message.decode(data_file("pkcs7/enveloped/" + row[0])), 0u);
        const Octets text = opened(message, std::stoi(row[1]), row[2]);
        ASSERT_EQ(text.size(), number_of(row[3]));
        EXPECT_EQ(std::string(text.end() - long(row[4].size()), text.end()), row[4]);
        // What was decrypted is no part of what is written.
        Octets again;
        EXPECT_EQ(message.encode(again) | second.decode(again), 0u);
        EXPECT_EQ(get(kMessage, second, 52), get(kMessage, message, 52));
        EXPECT_EQ(get(kMessage, message, 52).size() % 16, 0u);
    }
}

TEST(EnvelopedData, DecodedMessagesGrow) {
    const Context message(kMessage);
    const Octets received = data_file("pkcs7/enveloped/one.der");
    ASSERT_EQ(message.decode(received), 0u);
    const Octets text = opened(message, 1, "rsa1024");
    const Octets key = get(kRecipient, recipient_in(message, 1), PKCS7_RECIPIENT_KEY);
    // Nobody encrypts another content, so it is not written.
    ASSERT_EQ(set(kMessage, message, {{52, kText}, {54, key}}) |
                  add_recipient(message, rsa<ZA_RSArefPublicKey>("rsa2048")),
              0u);
    Octets der;
    ASSERT_EQ(message.encode(der), 0u);
    const Context both(kMessage);
    ASSERT_EQ(both.decode(der), 0u);
    EXPECT_EQ(opened(both, 2, "rsa2048"), text);
    const auto first_recipient = [](const Octets &whole) {
        return children_of(children_of(content_of(children_of(whole)[1]))[1])[0];
    };
    EXPECT_EQ(first_recipient(der), first_recipient(received));
    // A failure leaves what was decoded before.
    const std::string before = seen_with_parts(both);
    EXPECT_EQ(both.decode(data_file("pkcs7/enveloped/keyid.der")), 122u);
    EXPECT_EQ(seen_with_parts(both), before);
    EXPECT_EQ(both.decode(received), 0u);
    EXPECT_EQ(opened(both, 1, "rsa1024"), text);
}

TEST(EnvelopedData, PartsHaveOneOwner) {
    const NoLeak no_leak;
    const Context message(kMessage);
    const Context other(kMessage);
    void *part = &calls;
    EXPECT_EQ(ZA_PKCS7_GetEnvelopedData_EncryptedContent(message, &part), 121u);
    ASSERT_EQ(add_recipient(message, {1}) | add_content(message), 0u);
    for (const int32_t index : {INT32_MIN, -1, 0, 2, INT32_MAX}) {
        EXPECT_EQ(ZA_PKCS7_GetEnvelopedData_RecipientInfo(message, &part, index), 101u);
    }
    EXPECT_EQ(part, &calls);
    for (const Context *owner : {&message, &other}) {
        EXPECT_EQ(kRecipient.attach(*owner, recipient_in(message, 1)), 121u);
        EXPECT_EQ(kEncrypted.attach(*owner, content_in(message)), 121u);
    }
    EXPECT_EQ(ZA_PKCS7_DestoryEncodeRecipientInfo(recipient_in(message, 1)), 0u);
    EXPECT_EQ(ZA_PKCS7_DestoryEncodeEncryptedContent(content_in(message)), 0u);
    EXPECT_EQ(get(kRecipient, recipient_in(message, 1), PKCS7_RECIPIENT_SERIAL), Octets{5});
    part = content_in(message);
    EXPECT_EQ(get(kEncrypted, part, PKCS7_ENCRYPT_ALGO), kAesCbc);
    EXPECT_EQ(add_content(message), 0u);
    EXPECT_NE(content_in(message), part) << "the one before went";
}

TEST(EnvelopedData, SecretsAreWipedAndFaultsReported) {
    const Octets pub = rsa<ZA_RSArefPublicKey>("rsa1024");
    const Octets block = join({kKey, kIv});
    const auto made = [&](const Context &message) {
        uint32_t result = message.created;
        result = result == 0 ? set_fields(message) : result;
        result = result == 0 ? add_content(message) : result;
        return result == 0 ? add_recipient(message, pub) : result;
    };
    const auto write = [&] {
        const Context message(kMessage);
        uint32_t len = 7;
        uint32_t result = made(message);
        result = result == 0 ? kMessage.encode(message, nullptr, &len) : result;
        EXPECT_EQ(len == 7, result != 0);
        return result;
    };
    Octets der;
    const Context message(kMessage);
    ASSERT_EQ(made(message) | message.encode(der), 0u);
    const auto read = [&] {
        const Context decoded(kMessage);
        uint32_t len = 7;
        uint32_t result = decoded.decode(der);
        if (result == 0) {
            void *part = content_in(decoded);
            result = kEncrypted.decrypt(part, aes<ZA_PKCS12_AESDecrypt>, block.data(), 32);
            result = result == 0 ? kEncrypted.open(part, nullptr, &len) : result;
        }
        EXPECT_EQ(len, result == 0 ? kText.size() : 7u);
        return result;
    };
    expect_allocation_faults_survived(write);
    expect_allocation_faults_survived(read);
    for (const Octets &secret : {kKey, kText, rsa<ZA_RSArefPrivateKey>("rsa1024")}) {
        const NoSecret no_secret(secret);
        const Context decoded(kMessage);
        EXPECT_EQ(write() | read() | decoded.decode(der), 0u);
        EXPECT_EQ(opened(decoded, 1, "rsa1024"), kText);
    }
}

// Nothing is reserved for what cannot be counted.
TEST(EnvelopedData, LengthsBeyondCountingAreRefused) {
    const Octets one{1};
    pkcs7::RecipientInfo recipient;
    pkcs7::EncryptedContentInfo content;
    uint32_t len = 7;
    EXPECT_EQ(kRecipient.decrypt(&recipient, crypt, nullptr, 0), 0u);
    EXPECT_EQ(kEncrypted.decrypt(&content, crypt, nullptr, 0), 0u);
    recipient.fields.encrypted_key.refer(Bytes(one.data(), 0xFFFFFEB6));
    content.fields.encrypted_content.refer(Bytes(one.data(), 0xFFFFFEB6));
    const size_t before = heap_count().allocations;
    EXPECT_EQ(kRecipient.open(&recipient, nullptr, &len), 101u);
    EXPECT_EQ(kEncrypted.open(&content, nullptr, &len), 101u);
    EXPECT_EQ(heap_count().allocations, before);
    EXPECT_EQ(len, 7u);
}

}  // namespace
}  // namespace za::test
