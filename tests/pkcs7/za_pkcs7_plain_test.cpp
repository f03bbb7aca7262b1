#include "asn1/za_asn2_indefinite.hpp"
#include "pkcs7/za_pkcs7_Data.hpp"
#include "pkcs7/za_pkcs7_DigestedData.hpp"
#include "pkcs7/za_pkcs7_EncryptedData.hpp"
#include "pkcs7/za_pkcs7_context_support.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"

#include <functional>
#include <map>

namespace za::test {
namespace {

using namespace contexts;
using pkcs7::Data;
using pkcs7::DigestedData;
using pkcs7::EncryptedData;

constexpr uint32_t kNegative = 0xFFFFFFFF;
const std::set<uint32_t> kRefused{101, 102, 106, 108, 121, 122, 123};
const Octets kHello = from_hex("48656C6C6F2C20504B43532337");
const Octets kKey = from_hex("000102030405060708090A0B0C0D0E0F");

Octets message(const std::string &name) {
    return data_file("pkcs7/plain/" + name);
}

uint32_t set_content(void *ctx, int32_t, const uint8_t *value, uint32_t len) {
    return ZA_PKCS7_SetDataContent(ctx, value, len);
}

uint32_t get_content(void *ctx, int32_t, uint8_t *out, uint32_t *len) {
    return ZA_PKCS7_GetDataContent(ctx, out, len);
}

const Kind kData{{"data", 121, 110, {0}},
                 {ZA_PKCS7_CreateDataEncodeCtx, ZA_PKCS7_DestoryDataDecodeCtx},
                 {set_content, get_content},
                 {ZA_PKCS7_EncodePKCS7Data, ZA_PKCS7_DecodePKCS7Data},
                 {},
                 {}};
const Kind kDigested{
    {"digested", 121, 110, {62, 63, 64, 65}},
    {ZA_PKCS7_CreateDigestedDataEncodeCtx, ZA_PKCS7_DestoryDigestedDataDecodeCtx},
    {ZA_PKCS7_SetDigestedDataAttributeChar, ZA_PKCS7_GetDigestedDataAttributeChar},
    {ZA_PKCS7_EncodePKCS7DigestedData, ZA_PKCS7_DecodePKCS7DigestedData},
    {61, ZA_PKCS7_GetDigestedDataAttributeInt, ZA_PKCS7_SetDigestedDataAttributeInt},
    {}};
const Kind kEncrypted{
    {"encrypted", 121, 110, {59, 60}},
    {ZA_PKCS7_CreateEncryptedDataEncodeCtx, ZA_PKCS7_DestoryEncryptedDataDecodeCtx},
    {ZA_PKCS7_SetEncryptedDataAttributeChar, ZA_PKCS7_GetEncryptedDataAttributeChar},
    {ZA_PKCS7_EncodePKCS7EncryptedData, ZA_PKCS7_DecodePKCS7EncryptedData},
    {58, ZA_PKCS7_GetEncryptedDataAttributeInt, ZA_PKCS7_SetEncryptedDataAttributeInt},
    {}};

// What a function of the caller's is told to do, and what it was given.
struct Called {
    int32_t code = 0;
    uint32_t extra_len = 0;  // claimed beside what fits
    uint32_t calls = 0;
    uint32_t room = 0;
    Octets block;
};
Called called;

int32_t answer(const std::function<int32_t()> &work, uint32_t *out_len, void *block, size_t size) {
    auto *octets = static_cast<uint8_t *>(block);
    ++called.calls;
    called.room = *out_len;
    called.block.assign(octets, octets + size);
    const int32_t result = work();
    std::fill_n(octets, size, uint8_t{0xEE});
    *out_len = called.extra_len == 0 ? *out_len : called.room + called.extra_len;
    return result != 0 ? result : called.code;
}

// SHA-256, whose number it finds in its block.
int32_t hash(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len, void *block) {
    return answer([&] { return ZA_DigestFunc_Ref(in, in_len, out, out_len, block); }, out_len,
                  block, sizeof(int32_t));
}

template <auto kCipher>
int32_t crypt(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len, void *block) {
    return answer([&] { return aes<kCipher>(in, in_len, out, out_len, block); }, out_len, block,
                  32);
}

constexpr int32_t kSha256 = 9;

uint32_t install_hash(void *ctx) {
    const Octets block = octets_of(kSha256);
    called = {};
    return ZA_PKCS7_SetDigestedDataHashFunc(ctx, hash, block.data(), uint32_t(block.size()));
}

uint32_t install(decltype(Callbacks::encrypt) function, ZA_CryptFunc cipher, void *part) {
    const Octets iv = get(kEncryptedContent, part, PKCS7_ENCRYPT_PARAMETER);
    const Octets block = join({kKey, iv.empty() ? Octets(16) : content_of(iv)});
    called = {};
    return function(part, cipher, block.data(), uint32_t(block.size()));
}

uint32_t hash_result(void *ctx) {
    uint32_t result = 0;
    EXPECT_EQ(ZA_PKCS7_GetDigestedDataHashResult(ctx, &result), 0u);
    return result;
}

// A part for what openssl encrypted, with its IV.
uint32_t make_part(void *&part) {
    const Octets der = message("encrypted.der");
    uint32_t result = kEncryptedContent.create(&part);
    for (const auto &[id, value] : {std::pair(18, from_hex("608648016503040102")),
                                    {19, Octets(der.begin() + 46, der.begin() + 64)}}) {
        result = result == 0 ? set(kEncryptedContent, part, id, value) : result;
    }
    return result;
}

uint32_t install_function(const Kind &kind, void *ctx) {
    void *part = nullptr;
    if (&kind == &kDigested) {
        return install_hash(ctx);
    }
    const uint32_t result = ZA_PKCS7_GetEncrytpedData_EncryptedContent(ctx, &part);
    return result == 0 ? install(kEncryptedContent.encrypt, crypt<ZA_PKCS12_AESEncrypt>, part)
                       : result;
}

std::string opened(void *ctx) {
    void *part = nullptr;
    EXPECT_EQ(ZA_PKCS7_GetEncrytpedData_EncryptedContent(ctx, &part), 0u);
    EXPECT_EQ(install(kEncryptedContent.decrypt, crypt<ZA_PKCS12_AESDecrypt>, part), 0u);
    return "[" + plain_hex(get(kEncryptedContent, part, PKCS7_ENCRYPT_CONTENT)) + "]";
}

std::string seen(const Kind &kind, void *ctx) {
    if (&kind == &kData) {
        return "[" + plain_hex(get(kind, ctx, 0)) + "]";
    }
    uint32_t version = 0;
    EXPECT_EQ(kind.get_int(ctx, kind.version, &version), 0u);
    std::string all = std::to_string(version) + " ";
    for (const int32_t id : kind.ids) {
        const Octets value = get(kind, ctx, id);
        const bool counted = id == 60 || id == 65;
        all += (counted ? "<" + std::to_string(value.size()) + ">" : plain_hex(value)) + " ";
    }
    return all + (&kind == &kDigested ? std::to_string(hash_result(ctx)) : opened(ctx));
}

template <class Message>
void expect_rows(const Kind &kind) {
    const auto decoded = [&](const Octets &in, std::string &out) {
        Message data;
        uint32_t result = &kind == &kDigested ? install_hash(&data) : 0;
        result = result == 0 ? decode(kind, &data, in) : result;
        out = result == 0 && out.empty() ? seen(kind, &data) : out;
        return result;
    };
    expect_decoded("pkcs7/plain/rows/" + kind.name, kRefused, decoded);
}

uint32_t decode_content(const Octets &in, std::string &out) {
    Octets type(in.size());
    Octets content(in.size());
    uint32_t type_len = 0;
    uint32_t len = 0;
    const uint32_t result = ZA_PKCS7_DecodePKCS7DerTypeData(
        in.data(), uint32_t(in.size()), type.data(), &type_len, content.data(), &len);
    type.resize(type_len);
    content.resize(len);
    out = result == 0 && out.empty() ? plain_hex(type) + " [" + plain_hex(content) + "]" : out;
    return result;
}

TEST(PlainMessages, RowsDecodeAsWritten) {
    expect_rows<Data>(kData);
    expect_rows<DigestedData>(kDigested);
    expect_rows<EncryptedData>(kEncrypted);
    expect_decoded("pkcs7/plain/rows/content", kRefused, decode_content);
}

// Every octet of the contentInfo and of the digest counts; without a function none does.
TEST(PlainMessages, DamageNeverComparesEqual) {
    Octets octets = message("digested-info.der");
    size_t differ = 0;
    DigestedData data;
    ASSERT_EQ(decode(kDigested, &data, octets), 0u);
    EXPECT_EQ(hash_result(&data), 100u);
    for (size_t bit = 8 * 33; bit < 8 * octets.size(); ++bit) {
        const auto change = static_cast<uint8_t>(1u << bit % 8);
        DigestedData damaged;
        ASSERT_EQ(install_hash(&damaged), 0u);
        octets[bit / 8] ^= change;
        decode(kDigested, &damaged, octets);
        octets[bit / 8] ^= change;
        EXPECT_NE(hash_result(&damaged), 200u) << bit;
        differ += hash_result(&damaged) == 300 ? 1 : 0;
    }
    EXPECT_GE(differ, 8 * (13u + 32u));
}

TEST(PieceJoining, NestsSixtyFourDeep) {
    for (const size_t depth : {64u, 65u, 1000u}) {
        Octets pieces = element(0x04, {0xAA});
        for (size_t i = 0; i < depth; ++i) {
            pieces = element(0x24, pieces);
        }
        za::Octets joined;
        EXPECT_EQ(asn1::join_octet_string(pieces, joined),
                  depth == 64 ? Status::ok : Status::indefinite);
    }
}

// A new part takes the place of the one before, and only that.
uint32_t attach_part(void *ctx) {
    void *part = nullptr;
    uint32_t result = make_part(part);
    result = result == 0 ? ZA_PKCS7_SetEncrytpedData_EncryptedContent(ctx, part) : result;
    EXPECT_TRUE(result != 0 || ZA_PKCS7_SetEncrytpedData_EncryptedContent(ctx, part) == 121);
    kEncryptedContent.destroy(part);  // one that is attached stays
    return result;
}

uint32_t take_step(const Kind &kind, void *ctx, const Row &row, Octets &out) {
    if (row[0] != "function") {
        return row[0] == "part" ? attach_part(ctx) : take_usual_step(kind, ctx, row, out);
    }
    const uint32_t result = install_function(kind, ctx);
    called.code = std::stoi(list_of(row[1])[0]);
    called.extra_len = number_of(list_of(row[1])[1]);
    return result;
}

template <class Message>
void expect_steps(const Kind &kind, const Octets &block) {
    const NoLeak no_leak;
    Message data;
    called = {};
    for (const Row &row : rows_of("pkcs7/plain/rows/" + kind.name + "-steps")) {
        SCOPED_TRACE(row[0] + "|" + row[1] + "|" + row[2]);
        const TraceRecord trace;
        Octets out;
        EXPECT_EQ(take_step(kind, &data, row, out), number_of(row[3]));
        EXPECT_EQ(to_hex(out), row[0] == "encode" ? to_hex(octets_of_cell(row[2])) : "");
        EXPECT_EQ(called.calls, number_of(row[4]));
        EXPECT_TRUE(called.calls == 0 || (called.block == block && called.room >= 4096));
        EXPECT_EQ(trace.failures(), list_of(row[5]));
    }
}

TEST(PlainMessages, StepsEndAsWritten) {
    expect_steps<DigestedData>(kDigested, octets_of(kSha256));
    const NoSecret no_key(kKey);
    const NoSecret no_content(kHello);
    const Octets der = message("encrypted.der");
    expect_steps<EncryptedData>(kEncrypted,
                                join({kKey, Octets(der.begin() + 48, der.begin() + 64)}));
}

template <class Message>
void expect_faults_survived(const Kind &kind, const std::map<int32_t, Octets> &values,
                            const std::string &expected) {
    const auto call = [&] {
        Message data;
        Octets out(200);
        uint32_t len = 7;
        uint32_t result = &kind == &kEncrypted ? attach_part(&data) : 0;
        if (&kind != &kData) {
            result = result == 0 ? install_function(kind, &data) : result;
            result = result == 0 ? kind.set_int(&data, kind.version, 0) : result;
        }
        for (const auto &[id, value] : values) {
            result = result == 0 ? set(kind, &data, id, value) : result;
        }
        result = result == 0 ? kind.encode(&data, out.data(), &len) : result;
        out.resize(result == 0 ? len : 0);
        EXPECT_TRUE(result == 0 ? out == message(expected) : len == 7);
        return result;
    };
    EXPECT_EQ(call(), 0u);
    expect_allocation_faults_survived(call);
}

TEST(PlainMessages, AllocationFaultsAreReported) {
    const Octets type = from_hex("2A864886F70D010701");
    expect_faults_survived<Data>(kData, {{0, kHello}}, "data.der");
    expect_faults_survived<DigestedData>(
        kDigested, {{62, from_hex("608648016503040201")}, {63, type}, {64, kHello}},
        "digested-info.der");
    expect_faults_survived<EncryptedData>(kEncrypted, {{59, type}, {60, kHello}}, "encrypted.der");
}

TEST(ContentInfo, IsPutTogetherAndTakenApart) {
    for (const Row &row : rows_of("pkcs7/plain/rows/wrapping")) {
        SCOPED_TRACE(row[0]);
        const Octets type = from_hex(row[2]);
        const Octets octets = from_hex(row[3]);
        const Octets whole = from_hex(row[4]);
        const auto type_len = uint32_t(type.size());
        const auto len = uint32_t(octets.size());
        Anybuf content = borrowed(octets, 3);  // records marked as BIT STRINGs lose no octet
        const auto wrap = [&](Anybuf **out) {
            return ZI_MakeContentToSequence(len == 0 ? nullptr : &content, type.data(), type_len,
                                            out, number_of(row[1]));
        };
        EXPECT_EQ(describe(handed(wrap).record.get()), "16 " + to_hex(whole));
        expect_allocation_faults_survived([&] { return handed(wrap).result; });
        const auto encode = [&](uint8_t *out, uint32_t *out_len) {
            return ZA_PKCS7_EncodePKCS7DerTypeData(octets.data(), len, type.data(), type_len, out,
                                                   out_len);
        };
        EXPECT_EQ(two_calls(encode) == whole, row[1] == "0");
        expect_allocation_faults_survived([&] {
            Anybuf in = borrowed(whole, 3);
            Anybuf *found_type = nullptr;
            Anybuf *found = nullptr;
            const uint32_t result = ZI_MakeSequenceToContent(&in, &found_type, &found);
            const Record owners[] = {Record(found_type), Record(found)};
            EXPECT_EQ(describe(found_type), result == 0 ? "6 " + to_hex(type) : "(none)");
            EXPECT_EQ(describe(found),
                      result == 0 && len > 0 ? row[5] + " " + to_hex(octets) : "(none)");
            return row[1] == "0" ? result : result == 122 ? 0 : result;
        });
    }
}

TEST(PlainArguments, MissingOnesAreRefused) {
    const NoLeak no_leak;
    uint8_t octet = 7;
    uint32_t len = 7;
    const auto with = [](Kind kind, Life life) {
        static_cast<Life &>(kind) = life;
        return kind;
    };
    for (const Kind &kind :
         {kData, with(kData, {kData.create, ZA_PKCS7_DestoryDataEncodeCtx}), kDigested,
          with(kDigested,
               {ZA_PKCS7_CreateDigestedDataDecodeCtx, ZA_PKCS7_DestoryDigestedDataEncodeCtx}),
          kEncrypted,
          with(kEncrypted,
               {ZA_PKCS7_CreateEncryptedDataDecodeCtx, ZA_PKCS7_DestoryEncryptedDataEncodeCtx})}) {
        expect_null_refused(kind);
        const Context ctx(kind);
        for (const uint32_t none : {0u, kNegative}) {
            EXPECT_EQ(kind.decode(ctx, &octet, none), 121u);
            EXPECT_EQ(kind.set(ctx, kind.ids[0], &octet, none), 121u);
        }
    }
    const Context empty(kData);
    EXPECT_EQ(kData.encode(empty, nullptr, &len), 108u);
    Anybuf none{};
    Anybuf *record = &none;
    EXPECT_EQ(ZI_MakeContentToSequence(nullptr, nullptr, 1, &record, 0), 108u);
    EXPECT_EQ(ZI_MakeContentToSequence(nullptr, &octet, 0, &record, 0), 101u);
    EXPECT_EQ(ZI_MakeSequenceToContent(nullptr, &record, &record), 108u);
    EXPECT_EQ(ZI_MakeSequenceToContent(&none, &record, &record), 108u) << "an empty record";
    EXPECT_EQ(ZA_PKCS7_EncodePKCS7DerTypeData(&octet, kNegative, &octet, 1, &octet, &len), 101u);
    EXPECT_EQ(ZA_PKCS7_DecodePKCS7DerTypeData(&octet, 1, &octet, nullptr, &octet, &len), 108u);
    EXPECT_TRUE(octet == 7 && len == 7 && record == &none);
}

TEST(PlainArguments, EveryIdentifierHasTheAccessorsOfItsKind) {
    expect_accessors(kDigested);
    expect_accessors(kEncrypted);
    EncryptedData encrypted;
    for (const auto &[id, line] : {std::pair(59, "======>Set PKCS7_CONTENTTYPE"), {60, ""}}) {
        const TraceRecord trace;
        set(kEncrypted, &encrypted, id, {1});
        EXPECT_EQ(trace.lines().size(), *line == 0 ? 2u : 3u);
        EXPECT_TRUE(*line == 0 || trace.lines()[1] == line);
    }
}

}  // namespace
}  // namespace za::test
