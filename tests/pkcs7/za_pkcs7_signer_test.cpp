#include "pkcs7/za_pkcs7_base_signer.hpp"
#include "pkcs7/za_pkcs7_signed_support.hpp"
#include "support/handed.hpp"

#include <optional>
#include <tuple>

namespace za::test {
namespace {

using pkcs7::SignerInfo;

const Octets kSha1 = from_hex("2B0E03021A");
const Octets kSm2WithSm3 = from_hex("2A811CCF55018375");
const std::string kText = "signed by openssl";
const Octets kContent(kText.begin(), kText.end());
const std::string kFolder = "pkcs7/signer/";

uint32_t len(const Octets &octets) {
    return uint32_t(octets.size());
}

Octets changed_at(Octets octets, size_t at) {
    octets.at(at) ^= 1;
    return octets;
}

uint32_t encode(SignerInfo &signer, const Octets *put, Octets &out) {
    uint32_t status = 0;
    out = two_calls(
        [&](uint8_t *to, uint32_t *to_len) {
            return put == nullptr ? ZA_PKCS7_EncodeSignerInfo(&signer, to, to_len)
                                  : ZA_PKCS7_EncodeSignerInfoPutdata(&signer, put->data(),
                                                                     len(*put), to, to_len);
        },
        &status);
    return status;
}

// The caller's octets are gone when the context is used.
uint32_t decode(SignerInfo &signer, Octets der) {
    const uint32_t result = ZA_PKCS7_DecodeSignerInfo(&signer, der.data(), len(der));
    std::ranges::fill(der, uint8_t{0});
    return result;
}

// ---- Functions of the caller that show what they got: the digest is D0, the first octet and the
// length of what is digested; the signature is 5A and what is signed.

std::array<uint32_t, 2> calls;  // that digest, that sign
uint32_t behind;                // octets that the signature has more at every call
uint32_t claimed;               // as written, where not 0
int32_t code;                   // as returned
const Octets kBlock{0xC0, 0xFF, 0xEE, 0x5E, 0xC2, 0xE7, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66};
bool fresh_blocks;

// Every call finds the block as it was installed, and then spoils it.
void use_block(void *block) {
    auto *octets = static_cast<uint8_t *>(block);
    fresh_blocks =
        fresh_blocks && octets != nullptr && std::equal(kBlock.begin(), kBlock.end(), octets);
    std::fill_n(octets, octets == nullptr ? 0 : kBlock.size(), uint8_t{0xEE});
}

int32_t show_digest(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                    void *block) {
    use_block(block);
    ++calls[0];
    const Octets digest{0xD0, in[0], uint8_t(in_len)};
    std::ranges::copy(digest, out);
    *out_len = len(digest);
    return 0;
}

int32_t show_signed(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                    void *block) {
    use_block(block);
    const uint32_t more = behind * ++calls[1];
    EXPECT_GE(*out_len, 4096u);
    *out = 0x5A;
    std::copy_n(in, in_len, out + 1);
    *out_len = 1 + in_len + more;
    return 0;
}

// The other way round.
int32_t open_shown(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len, void *) {
    std::copy(in + 1, in + in_len, out);
    *out_len = in_len - 1;
    return 0;
}

int32_t misbehave(const uint8_t *, uint32_t, uint8_t *, uint32_t *out_len, void *) {
    *out_len = claimed == 0xFFFF ? *out_len + 1 : claimed;
    return code;
}

std::pair<int32_t, uint32_t> answer;
Octets checked;

int32_t answer_as_told(const uint8_t *digest, uint32_t digest_len, const uint8_t *signature,
                       uint32_t signature_len, uint32_t *verdict, void *block) {
    use_block(block);
    checked = join({Octets(digest, digest + digest_len),
                    {0xFF},
                    Octets(signature, signature + signature_len),
                    {uint8_t(*verdict)}});
    *verdict = answer.second;
    return answer.first;
}

uint32_t install(SignerInfo &signer) {
    calls = {};
    behind = 0;
    fresh_blocks = true;
    const auto [block, size] = std::pair(kBlock.data(), len(kBlock));
    uint32_t result = ZA_PKCS7_SetSignerInfoDigestFunc(&signer, show_digest, block, size);
    result =
        result != 0 ? result : ZA_PKCS7_SetSignerInfoEncSignFunc(&signer, show_signed, block, size);
    return result != 0
               ? result
               : ZA_PKCS7_SetSignerInfoDecEcVerifyFunc(&signer, answer_as_told, block, size);
}

// With functions that show what they got.
void fill(SignerInfo &signer, const Octets &digest_algorithm, bool attributes) {
    EXPECT_EQ(fill_signer(&signer, "rsa1024", attributes), 0u);
    EXPECT_EQ(set_all(ZA_PKCS7_SetSignerInfoAttributeChar, &signer,
                      {{PKCS7_SIGNER_DIGEST_ALGO, digest_algorithm},
                       {PKCS7_SIGNER_CONTENTTYPE, kDataOid},
                       {PKCS7_SIGNER_CONTENT, kContent}}),
              0u);
    EXPECT_EQ(install(signer), 0u);
}

// ---- Rows

std::string plain(std::span<const uint8_t> octets) {
    std::string hex = to_hex(octets);
    std::erase(hex, ' ');
    return hex;
}

uint32_t take_step(std::optional<SignerInfo> &signer, const Row &row, Octets &out) {
    const std::string &kind = row[0];
    const Octets octets = octets_of_cell(row[2]);
    void *const ctx = &*signer;
    uint32_t status = 0;
    if (kind == "new") {
        signer.emplace();
    } else if (kind == "set") {
        status = set_signer(ctx, std::stoi(row[1]), octets);
    } else if (kind == "get") {
        out = get_signer(ctx, std::stoi(row[1]), &status);
    } else if (kind == "read" || kind == "unread") {
        out = get_attribute(
            ctx, kind == "read" ? ZA_PKCS7_GetSignerAttribute : ZA_PKCS7_GetSignerUnAttribute,
            std::stoi(row[1]), &status);
    } else if (kind == "attribute") {
        status = add_attribute(ctx, from_hex(row[1]), octets);
    } else if (kind == "unattribute") {
        const Octets oid = from_hex(row[1]);
        status =
            ZA_PKCS7_SetSignerUnAttribute(ctx, oid.data(), len(oid), octets.data(), len(octets));
    } else if (kind == "count") {
        uint32_t counts[]{7, 7};
        status = ZA_PKCS7_GetSignerInfoAttributesNum(ctx, &counts[0]) +
                 ZA_PKCS7_GetSignerInfoUnAttributesNum(ctx, &counts[1]);
        out = {uint8_t(counts[0]), uint8_t(counts[1])};
    } else if (kind == "encode" || kind == "put") {
        calls = {};
        status = encode(*signer, kind == "put" ? &octets : nullptr, out);
    } else if (kind == "verify") {
        const std::string told = verify(ctx);
        status = number_of(split(told, '/')[0]);
        EXPECT_TRUE(status == 100 ? told == "100/300" : told == row[1]) << told;
    } else if (kind == "answers") {
        answer = {octets.at(0), octets.at(1)};
    } else {
        status = kind == "decode"    ? decode(*signer, octets)
                 : kind == "install" ? install(*signer)
                 : kind == "opens" ? ZA_PKCS7_SetSignerInfoDecSignFunc(ctx, open_shown, nullptr, 0)
                                   : ZA_PKCS7_SetSignerInfoDigestFunc(ctx, nullptr, nullptr, 0);
    }
    return status;
}

// "step | what | octets | result | failures | what comes out | digests; signatures"; "verify" is
// told "STATUS/RESULT", "answers" what the function that checks gives.
TEST(Signer, StepsEndAsWritten) {
    const std::vector<Row> rows = rows_of(kFolder + "steps.txt");
    std::optional<SignerInfo> signer(std::in_place);
    for (const Row &row : rows) {
        SCOPED_TRACE(row[0] + "|" + row[1] + "|" + row[2]);
        const TraceRecord trace;
        Octets out;
        EXPECT_EQ(take_step(signer, row, out), number_of(row[3]));
        EXPECT_EQ(trace.failures(), list_of(row[4]));
        EXPECT_EQ(to_hex(out), to_hex(octets_of_cell(row.size() > 5 ? row[5] : "")));
        if (row.size() > 6) {
            EXPECT_EQ(std::to_string(calls[0]) + "; " + std::to_string(calls[1]), row[6]);
        }
    }
    EXPECT_TRUE(fresh_blocks);
    const auto all_steps = [&] {
        std::optional<SignerInfo> again(std::in_place);
        for (const Row &row : rows) {
            Octets out;
            const uint32_t status = take_step(again, row, out);
            if (status != number_of(row[3])) {
                return status;
            }
        }
        return 0u;
    };
    EXPECT_EQ(all_steps(), 0u);
    expect_allocation_faults_survived(all_steps);
}

// "IDENTIFIER=VALUE" or "IDENTIFIER<LENGTH>" of what is there, then "OID and value" of attributes.
std::string seen(SignerInfo &signer) {
    const auto shown = [](const Octets &value) {
        return value.size() > 24 ? "<" + std::to_string(value.size()) + ">" : "=" + plain(value);
    };
    std::string all;
    for (int32_t id = PKCS7_SIGNER_DN; id <= PKCS7_SIGNER_SIGNATURE; ++id) {
        const Octets value = get_signer(&signer, id);
        all += value.empty() ? "" : " " + std::to_string(id) + shown(value);
    }
    for (const auto &[letter, count, get] :
         {std::tuple(" a", &ZA_PKCS7_GetSignerInfoAttributesNum, &ZA_PKCS7_GetSignerAttribute),
          std::tuple(" u", &ZA_PKCS7_GetSignerInfoUnAttributesNum,
                     &ZA_PKCS7_GetSignerUnAttribute)}) {
        for (const Octets &value : get_attributes(&signer, count, get)) {
            all += letter + shown(value);
        }
    }
    return all.empty() ? all : all.substr(1);
}

TEST(Signer, RowsDecodeAsWritten) {
    const std::set<uint32_t> refused{101, 102, 106, 108, 121, 122, 123, 0xFFFFFFFE, 0xFFFFFFFF};
    expect_decoded(kFolder + "decode.txt", refused, [&](const Octets &in, std::string &out) {
        SignerInfo signer;
        const uint32_t result = decode(signer, in);
        out = out.empty() ? seen(signer) : out;  // not again for every damage
        return result;
    });
}

// ---- Verification

const std::string kGood = "0/200";
const std::string kBad = "0/300";
const std::string kUnopened = "126/300";

// `der` signs kContent, and nothing else is verified by it.
void expect_verified(const Octets &der, const std::string &key, int32_t digest, bool attributes) {
    const Octets other = changed_at(kContent, 3);
    const Octets none;
    SignerInfo signer;
    const auto verify_with = [&](const Octets &octets, const Octets &content) {
        EXPECT_EQ(decode(signer, octets), 0u);
        EXPECT_EQ(set_signer(&signer, PKCS7_SIGNER_CONTENT, content), 0u);
        return verify(&signer);
    };
    install_opening(&signer, key, digest);
    EXPECT_EQ(verify_with(der, kContent), kGood);
    EXPECT_EQ(verify_with(der, other), kBad);
    EXPECT_EQ(verify_with(changed_at(der, der.size() - 1), kContent), kUnopened);
    // As an argument content is what was signed: not where attributes were.
    EXPECT_EQ(decode(signer, der), 0u);
    EXPECT_EQ(verify(&signer, &kContent), attributes ? kBad : kGood);
    EXPECT_EQ(verify(&signer, &other), kBad);
    EXPECT_EQ(verify(&signer, &none), attributes ? kGood : "108/300");
    install_opening(&signer, key == "rsa1024" ? "rsa2048" : "rsa1024", digest);
    EXPECT_EQ(verify_with(der, kContent), kUnopened);
}

TEST(SignerVerification, WhatWasSignedVerifiesAndNothingElse) {
    for (const std::string key : {"rsa1024", "rsa2048"}) {
        for (const bool attributes : {false, true}) {
            for (const bool put : {false, true}) {
                SCOPED_TRACE(key + (attributes ? " attributes" : "") + (put ? " put" : ""));
                SignerInfo signer;
                Octets der;
                ASSERT_EQ(fill_signer(&signer, key, attributes), 0u);
                ASSERT_EQ(set_signer(&signer, PKCS7_SIGNER_CONTENTTYPE, kDataOid), 0u);
                ASSERT_EQ(set_signer(&signer, PKCS7_SIGNER_CONTENT, put ? Octets{} : kContent), 0u);
                ASSERT_EQ(encode(signer, put ? &kContent : nullptr, der), 0u);
                expect_verified(der, key, 9, attributes);
            }
        }
    }
}

TEST(SignerVerification, OpensslsSignaturesVerify) {
    using Message = std::tuple<std::string, int32_t, bool>;
    for (const auto &[name, digest, attributes] :
         {Message("cms_attributes", 9, true), Message("cms_plain", 9, false),
          Message("smime_attributes", 7, true)}) {
        SCOPED_TRACE(name);
        const Octets der = data_file(kFolder + name + ".der");
        expect_verified(der, "rsa1024", digest, attributes);
        SignerInfo signer;
        Octets again;
        EXPECT_EQ(decode(signer, der), 0u);
        EXPECT_EQ(encode(signer, &kContent, again), 0u);
        EXPECT_EQ(again, der);
        // A message that tells it the content changes nothing; one that tells other content does.
        const auto kept = [&](const Octets &content) {
            EXPECT_EQ(pkcs7::give_content(signer, kDataOid, content), Status::ok);
            return !signer.fields.encoded.empty();
        };
        EXPECT_TRUE(kept(kContent) && kept(kContent));
        EXPECT_FALSE(kept({}));
        EXPECT_TRUE(signer.fields.content.empty());
    }
}

// "content type | content | values of messageDigest attributes | result"
TEST(SignerVerification, AttributesCoverTheContent) {
    const Octets message_digest = from_hex("2A864886F70D010904");
    for (const Row &row : rows_of(kFolder + "covers.txt")) {
        SCOPED_TRACE(row[0] + "|" + row[1] + "|" + row[2]);
        SignerInfo signer;
        Octets der;
        fill(signer, kSha1, true);
        ASSERT_EQ(set_signer(&signer, PKCS7_SIGNER_CONTENT, {}), 0u);
        for (const std::string &stated : list_of(row[2])) {
            ASSERT_EQ(add_attribute(&signer, message_digest, from_hex(stated)), 0u);
        }
        ASSERT_EQ(encode(signer, nullptr, der), 0u);
        ASSERT_EQ(decode(signer, der), 0u);
        ASSERT_EQ(ZA_PKCS7_SetSignerInfoDecSignFunc(&signer, open_shown, nullptr, 0), 0u);
        pkcs7::refer_content(signer, {}, {}, false);
        ASSERT_EQ(verify(&signer), kGood) << "the attributes alone";
        const Octets type = from_hex(row[0]);
        const Octets content = from_hex(row[1]);
        pkcs7::refer_content(signer, type, content, true);
        EXPECT_EQ(verify(&signer), "0/" + row[3]);
    }
}

// ---- Functions of the caller

TEST(SignerFunctions, TheOneThatIsNeededMustBeThere) {
    for (const Octets &algorithm : {kSha1, kSm2WithSm3}) {
        for (int installed = 0; installed < 8; ++installed) {
            SCOPED_TRACE(installed);
            SignerInfo signer;
            fill(signer, algorithm, false);
            answer = {0, 0};
            const auto digest = installed & 1 ? show_digest : nullptr;
            const auto open = installed & 2 ? open_shown : nullptr;
            const auto check = installed & 4 ? answer_as_told : nullptr;
            ZA_PKCS7_SetSignerInfoDigestFunc(&signer, digest, nullptr, 0);
            ZA_PKCS7_SetSignerInfoDecSignFunc(&signer, open, nullptr, 0);
            ZA_PKCS7_SetSignerInfoDecEcVerifyFunc(&signer, check, nullptr, 0);
            const int needed = algorithm == kSha1 ? 3 : 5;
            EXPECT_EQ(verify(&signer), (installed & needed) == needed ? kBad : "121/100");
            EXPECT_EQ(verify(&signer, &kContent), verify(&signer));
        }
    }
}

TEST(SignerFunctions, Sm2IsCheckedByItsOwn) {
    SignerInfo signer;
    fill(signer, kSm2WithSm3, false);
    Octets der;
    ASSERT_EQ(encode(signer, nullptr, der), 0u);
    answer = {0, 1};
    const TraceRecord trace;
    EXPECT_EQ(verify(&signer), kGood);
    EXPECT_EQ(std::ranges::count(trace.lines(), "======>Func ECC VerifyOK"), 1);
    EXPECT_EQ(to_hex(checked), "D0 73 11 FF 5A D0 73 11 00") << "the bare digest";
}

// The next signature is longer, but what was signed once is kept.
TEST(SignerFunctions, BlocksAreCopiedAndWiped) {
    const NoLeak no_leak;
    const NoSecret no_secret(kBlock);
    SignerInfo signer;
    Octets first;
    Octets second;
    fill(signer, kSha1, true);
    behind = 100;
    EXPECT_EQ(encode(signer, nullptr, first), 0u);
    EXPECT_EQ(pkcs7::give_content(signer, kDataOid, kContent), Status::ok);
    EXPECT_EQ(encode(signer, nullptr, second), 0u);
    EXPECT_EQ(second, first);
    EXPECT_EQ(encode(signer, &kContent, second), 0u);
    EXPECT_GT(second.size(), first.size() + 99);
    EXPECT_EQ(pkcs7::give_content(signer, kDataOid, kContent), Status::ok);
    EXPECT_EQ(encode(signer, &kContent, first), 0u);
    EXPECT_EQ(second, first);
    EXPECT_TRUE(fresh_blocks);
    // Without octets there is no block, not even the one before.
    ASSERT_EQ(ZA_PKCS7_SetSignerInfoEncSignFunc(&signer, show_signed, nullptr, 5), 0u);
    EXPECT_EQ(encode(signer, nullptr, second), 0u);
    EXPECT_FALSE(fresh_blocks);
}

TEST(SignerFunctions, WhatTheyClaimIsNotBelieved) {
    using Case = std::tuple<uint32_t, int32_t, uint32_t, uint32_t, std::string>;
    for (const auto &[claims, returns, digests, signs, opens] :
         {Case(0xFFFF, 0, 125, 107, kUnopened), Case(0, 0, 125, 107, kBad),
          Case(0xFFFFFFFF, -7, 0xFFFFFFF9, 0xFFFFFFF9, "4294967289/300")}) {
        SCOPED_TRACE(claims);
        claimed = claims;
        code = returns;
        SignerInfo signer;
        Octets der;
        fill(signer, kSha1, false);
        ASSERT_EQ(encode(signer, nullptr, der), 0u);
        ZA_PKCS7_SetSignerInfoDecSignFunc(&signer, misbehave, nullptr, 0);
        EXPECT_EQ(verify(&signer), opens);
        EXPECT_EQ(encode(signer, nullptr, der), signs);
        ASSERT_EQ(install(signer), 0u);
        ZA_PKCS7_SetSignerInfoDigestFunc(&signer, misbehave, nullptr, 0);
        EXPECT_EQ(encode(signer, nullptr, der), digests);
        EXPECT_EQ(verify(&signer), std::to_string(digests) + "/300");
    }
}

// ---- Codec steps

// "algorithm | digest | result | what is signed | lines"
TEST(DigestInfo, RowsAreWritten) {
    for (const Row &row : rows_of(kFolder + "digest_info.txt")) {
        SCOPED_TRACE(row[0]);
        const Octets algorithm = from_hex(row[0]);
        const Octets digest = from_hex(row[1]);
        const ZA_AlgorithmIdentifier record{0, borrowed(algorithm)};
        const auto call = [&](uint8_t *out, uint32_t *out_len) {
            return ZI_MakeDigestInfo(&record, digest.data(), len(digest), out, out_len);
        };
        const TraceRecord trace;
        uint32_t status = 0;
        EXPECT_EQ(to_hex(two_calls(call, &status)), to_hex(from_hex(row[3])));
        EXPECT_EQ(status, number_of(row[2]));
        EXPECT_EQ(trace.lines().at(1), row[4]);
        expect_allocation_faults_survived([&] {
            uint32_t out_len = 7;
            const uint32_t result = call(nullptr, &out_len);
            EXPECT_EQ(result != 0, out_len == 7);
            return result;
        });
    }
}

struct FreeAttributes {
    void operator()(ZA_PKCS7_Attribute *list) const {
        while (list != nullptr) {
            ZAPR_Free(list->attrType.data);
            ZAPR_Free(list->attrValue.data);
            ZAPR_Free(std::exchange(list, list->next));
        }
    }
};

// "name | SET | result | count, then OID:value of each | failures"
TEST(Attributes, RowsAreReadAndWrittenAgain) {
    const std::set<uint32_t> refused{101, 102, 106, 108, 121, 122};
    expect_decoded(kFolder + "attributes.txt", refused, [&](const Octets &in, std::string &out) {
        Anybuf set_record = borrowed(in, 3);
        ZA_PKCS7_Attribute untouched{};
        ZA_PKCS7_Attribute *list = &untouched;
        const uint32_t result = ZI_PKCS7_DecodeAttributes(&set_record, &list);
        EXPECT_EQ(result != 0, list == &untouched);
        const std::unique_ptr<ZA_PKCS7_Attribute, FreeAttributes> owner(result == 0 ? list
                                                                                    : nullptr);
        if (owner == nullptr) {
            return result;
        }
        std::string text = std::to_string(owner->attrCount);
        for (const auto *at = owner.get(); at != nullptr; at = at->next) {
            EXPECT_EQ(std::pair(at->attrType.dataType, at->attrValue.dataType), std::pair(6u, 52u));
            text += "; " + plain(bytes_of(at->attrType)) + ":" + plain(bytes_of(at->attrValue));
        }
        const Handed made =
            handed([&](Anybuf **to) { return ZI_PKCS7_EncodeAttributes(owner.get(), to); });
        if (made.result != 0) {
            return made.result;
        }
        EXPECT_EQ(describe(made.record.get()).substr(0, 3), "17 ");
        if (out.empty()) {
            out = text;
            EXPECT_EQ(to_hex(made.record.get()), to_hex(in));
        }
        return result;
    });
}

TEST(Signer, MissingArgumentsAreRefused) {
    SignerInfo signer;
    void *const ctx = &signer;
    uint32_t n = 7;
    uint8_t out = 7;
    const ZA_AlgorithmIdentifier algorithm{};
    const std::vector<uint32_t> results{
        ZA_PKCS7_CreateEncodeSignerInfo(nullptr),
        ZA_PKCS7_SetSignerInfoAttributeChar(nullptr, 2, &out, 1),
        ZA_PKCS7_GetSignerInfoAttributeChar(ctx, 2, &out, nullptr),
        ZA_PKCS7_SetSignerAttribute(nullptr, &out, 1, &out, 1),
        ZA_PKCS7_GetSignerUnAttribute(ctx, &out, nullptr, &out, &n, 1),
        ZA_PKCS7_GetSignerInfoAttributesNum(ctx, nullptr),
        ZA_PKCS7_EncodeSignerInfo(nullptr, &out, &n),
        ZA_PKCS7_EncodeSignerInfoPutdata(ctx, &out, 1, &out, nullptr),
        ZA_PKCS7_DecodeSignerInfo(ctx, nullptr, 1),
        ZA_PKCS7_SetSignerInfoEncSignFunc(nullptr, show_signed, &out, 1),
        ZA_PKCS7_VerifySignerSignature(nullptr, &n),
        ZA_PKCS7_VerifySignerSignature2(nullptr, &out, 1, nullptr),
        ZI_MakeDigestInfo(&algorithm, nullptr, 1, &out, &n),
        ZI_PKCS7_EncodeAttributes(nullptr, nullptr),
        ZI_PKCS7_DecodeAttributes(nullptr, nullptr)};
    EXPECT_EQ(results, std::vector<uint32_t>(results.size(), 108));
    EXPECT_EQ(std::pair(n, out), std::pair(7u, uint8_t{7}));
    // Lengths that are negative elsewhere, or come without octets, are not taken for none.
    for (uint8_t *octets : {&out, static_cast<uint8_t *>(nullptr)}) {
        const uint32_t length = octets == nullptr ? 1 : 0x80000000;
        EXPECT_EQ(ZA_PKCS7_SetSignerInfoAttributeChar(ctx, 16, octets, length), 101u);
        EXPECT_EQ(ZA_PKCS7_SetSignerAttribute(ctx, octets, length, &out, 1), 101u);
        EXPECT_EQ(ZA_PKCS7_EncodeSignerInfoPutdata(ctx, octets, length, &out, &n), 101u);
    }
    EXPECT_EQ(ZA_PKCS7_VerifySignerSignature2(ctx, &out, 0x80000000, &n), 101u);
    EXPECT_EQ(ZA_PKCS7_DestoryEncodeSignerInfo(nullptr), 0u);
    EXPECT_EQ(ZA_PKCS7_VerifySignerSignature2(nullptr, &out, 1, &n), 0u);
    EXPECT_EQ(n, 108u);
}

TEST(Signer, ThreeSettersOfFunctionsOnlyWarn) {
    const TraceRecord trace;
    EXPECT_EQ(ZA_PKCS7_SetSignerInfoDigestFunc(nullptr, show_digest, nullptr, 0), 0u);
    EXPECT_EQ(ZA_PKCS7_SetSignerInfoDecSignFunc(nullptr, open_shown, nullptr, 0), 0u);
    EXPECT_EQ(ZA_PKCS7_SetSignerInfoDecEcVerifyFunc(nullptr, answer_as_told, nullptr, 0), 0u);
    const Trail lines = trace.lines();
    const std::string head = "======>warning: pPKCS7SignerInfo is NULL, in ZA_PKCS7_SetSignerInfo";
    EXPECT_EQ(
        (Trail{lines.at(1), lines.at(4), lines.at(7)}),
        (Trail{head + "DigestFunc Fun", head + "DecSignFunc Fun", head + "DecEcVerifyFunc Fun"}));
}

}  // namespace
}  // namespace za::test
