#include "verify/za_crypt_x509.hpp"

#include <zacert.h>

#include "support/heap.hpp"
#include "support/trace.hpp"
#include "verify/issued.hpp"

#include <gtest/gtest.h>
#include <optional>

namespace za::test {
namespace {

// What a callback got, how often one was called, and what it answers in the place of its finding.
struct Call {
    uint32_t count = 0;
    Octets tbs;
    Octets key;
    Octets signature;
    bool point_in_key = false;
    uint32_t preset = 0;
    bool operator==(const Call &) const = default;
} seen;
std::optional<std::pair<int32_t, uint32_t>> answer;  // status, result

// ECDSA with SHA-256 by libcrypto, for one key.
bool is_ecdsa(const Octets &tbs, const ZA_ECCSignStruct &signature, const ZA_ECCPOINT &point) {
    uint8_t *encoded = nullptr;
    const size_t size = EVP_PKEY_get1_encoded_public_key(key_named("p256"), &encoded);
    const bool same = Octets(encoded, encoded + size) == join({{4}, octets_of(point)});
    OPENSSL_free(encoded);
    const Octets der = two_calls([&](uint8_t *out, uint32_t *len) {
        return ZA_Encode_ECCSignStructToDerData(&signature, out, len);
    });
    const std::shared_ptr<EVP_MD_CTX> md(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    EVP_DigestVerifyInit(md.get(), nullptr, EVP_sha256(), nullptr, key_named("p256"));
    return same && EVP_DigestVerify(md.get(), der.data(), der.size(), tbs.data(), tbs.size()) == 1;
}

int32_t ecdsa(const uint8_t *tbs, uint32_t tbs_len, void *pass, const ZA_ECCSignStruct *signature,
              const ZA_ECCPOINT *pub, uint32_t *result) {
    const auto &key = *static_cast<const ZACERT_EccPubKey *>(pass);
    seen = {seen.count + 1,        {tbs, tbs + tbs_len}, octets_of(key),
            octets_of(*signature), pub->x == &key.x[0],  *result};
    *result = answer ? answer->second : is_ecdsa(seen.tbs, *signature, *pub);
    return answer ? answer->first : 0;
}

enum Family { kRsa, kEcc };
constexpr const char *kKeys[]{"rsa2048", "p256"};
constexpr const char *kOtherKeys[]{"rsa1024", "secp256k1"};

enum Kind { kCertificate, kCertificateByKey, kCrl, kRequest };

struct Arguments {
    const uint8_t *by;  // the CA's certificate, or the issuer's key
    int32_t by_len;
    const uint8_t *object;
    int32_t object_len;
    ZA_EccVerifyFunc function = ecdsa;
};

uint32_t call(Family family, Kind kind, const Arguments &in) {
    const auto &[by, by_len, object, len, function] = in;
    const auto u_by = uint32_t(by_len);
    const auto u_len = uint32_t(len);
    switch (kind) {
        case kCertificate:
            return family == kRsa ? ZA_VerifyCert(by, u_by, object, u_len)
                                  : ZA_ECC_VerifyCert(by, u_by, object, u_len, function);
        case kCertificateByKey:
            return family == kRsa ? VerifyUserCertByCACert(object, len, by, by_len)
                                  : ZA_ECC_VerifyCertForSpeed(by, u_by, object, u_len, function);
        case kCrl:
            return family == kRsa ? ZA_VerifyCrl(by, u_by, object, u_len)
                                  : ZA_ECC_VerifyCrl(by, u_by, object, u_len, function);
        default:
            return family == kRsa ? ZA_VerifyCsr_Sign(object, len)
                                  : ZA_VerifyECCsr(object, len, function);
    }
}

uint32_t call(Family family, Kind kind, const Octets &by, const Octets &object) {
    return call(family, kind, {by.data(), int32_t(by.size()), object.data(), int(object.size())});
}

// The result, and that the last line of a failure is the one that belongs to its code.
void expect(uint32_t result, Family family, Kind kind, const Octets &by, const Octets &object) {
    const std::map<uint32_t, std::string> last_lines{{116, "------>ZACERT_DnNotEqualErr"},
                                                     {117, "------>ZACERT_TimeOutRangeErr"},
                                                     {118, "------>ZACERT_InvalidSignatureAlgErr"},
                                                     {128, "------>ZA_VerifyData"}};
    const NoLeak no_leak;
    const TraceRecord trace;
    EXPECT_EQ(call(family, kind, by, object), result) << family << kind;
    const Trail failures = trace.failures();
    EXPECT_EQ(failures.empty(), result == 0);
    if (last_lines.contains(result) && !failures.empty()) {
        EXPECT_EQ(failures.back(), last_lines.at(result));
    }
}

Octets new_ca(const char *key, Issue issue = {}) {
    issue.subject = "CA";
    return new_certificate(key, issue);
}

// Attribute 54.
Octets key_of(const Octets &certificate) {
    void *ctx = nullptr;
    ZACert_CreateCertDecodeCtx(&ctx);
    EXPECT_EQ(ZACert_DecodeCert(ctx, certificate.data(), uint32_t(certificate.size())), 0u);
    const Octets key = two_calls([&](uint8_t *out, uint32_t *len) {
        return ZACert_GetCertAttributeChar(ctx, CERT_SUBJECTPUBLICKEYINFO, out, len);
    });
    ZACert_DestroyCertDecodeCtx(ctx);
    return key;
}

// One of each kind by one key, and what it is verified by.
struct Objects {
    Octets by[4];
    Octets object[4];

    Objects(Family family, const char *signer)
        : by{new_ca(kKeys[family]), key_of(new_ca(kKeys[family])), new_ca(kKeys[family]), {}},
          object{new_certificate(signer, {}), new_certificate(signer, {}), new_crl(signer, {}),
                 new_request(signer)} {}
};

void for_each_kind(const std::function<void(Family, Kind)> &test) {
    for (const Family family : {kRsa, kEcc}) {
        for (const Kind kind : {kCertificate, kCertificateByKey, kCrl, kRequest}) {
            test(family, kind);
        }
    }
}

TEST(Verification, SignaturesOfEveryKind) {
    for_each_kind([](Family family, Kind kind) {
        const Objects good(family, kKeys[family]);
        const Objects other(family, kOtherKeys[family]);
        const Octets &by = good.by[kind];
        // The key in a request counts, so the other one's signature is put behind it.
        std::vector<Octets> parts = children_of((kind == kRequest ? good : other).object[kind]);
        parts[2] = children_of(other.object[kind])[2];
        expect(0, family, kind, by, good.object[kind]);
        expect(128, family, kind, by, sequence(parts));
        answer = {0, 1};  // the finding itself needs the heap
        expect_allocation_faults_survived(
            [&] { return call(family, kind, by, good.object[kind]); });
        answer.reset();
    });
    const Octets user = new_certificate("rsa2048", {});
    expect(128, kRsa, kCertificate, new_ca("p256"), user);
    expect(101, kRsa, kCertificateByKey, data_file("keys/rsa4096_pub.der"), user);
    expect(0, kRsa, kCertificate, new_ca("rsa1024"), new_certificate("rsa1024", {}));
}

TEST(Verification, NamesAndTimes) {
    const struct {
        Issue ca;
        Issue user;
        uint32_t results[2];  // of each family
    } rows[]{
        {{}, {.issuer = "Ca"}, {116, 116}},
        {{}, {.from = -1001}, {117, 117}},
        {{}, {.from = 900}, {117, 117}},
        {{.from = -5000}, {.from = -3000, .to = -1000}, {0, 117}},
        {{}, {.to = 1001}, {0, 117}},
        {{.to = 2500000000 - epoch()}, {.to = 2400000000 - epoch()}, {0, 0}},
        {{.generalized = true}, {.generalized = true}, {0, 117}},
        {{}, {.generalized = true}, {117, 117}},
        {{.generalized = true}, {}, {0, 117}},
    };
    for (const auto &[of_ca, of_user, results] : rows) {
        for (const Family family : {kRsa, kEcc}) {
            const Octets ca = new_ca(kKeys[family], of_ca);
            const Octets user = new_certificate(kKeys[family], of_user);
            expect(results[family], family, kCertificate, ca, user);
            expect(0, family, kCertificateByKey, key_of(ca), user);
            const uint32_t of_crl = results[family] == 116 ? 116 : 0;
            expect(of_crl, family, kCrl, ca, new_crl(kKeys[family], of_user));
        }
    }
}

TEST(Verification, EveryTimeMayEqualItsBound) {
    const struct {
        int32_t ca_to, from, to;
        uint32_t now, results[2];
    } rows[]{
        {90, 10, 90, 10, {0, 0}},   {90, 10, 90, 90, {0, 0}},     {90, 9, 90, 50, {117, 117}},
        {90, 10, 91, 50, {0, 117}}, {90, 10, 90, 9, {117, 117}},  {90, 10, 90, 91, {0, 117}},
        {-90, 20, -91, 50, {0, 0}}, {-90, 20, -89, 50, {0, 117}}, {90, -20, 90, 50, {117, 117}}};
    for (const auto &row : rows) {
        cert::Certificate ca;
        cert::Certificate user;
        ca.not_before.set(10);
        ca.not_after.set(row.ca_to);
        user.not_before.set(row.from);
        user.not_after.set(row.to);
        for (const auto validity : {verify::Validity::beginning, verify::Validity::whole}) {
            EXPECT_EQ(uint32_t(verify::check_validity(ca, user, validity, row.now)),
                      row.results[validity == verify::Validity::whole])
                << &row - rows;
        }
    }
}

// MD2 is in no libcrypto of today, which pads and signs all the same.
Octets signed_with_md2(const std::string &algorithm) {
    std::vector<Octets> parts = children_of(new_certificate("rsa2048", {.algorithm = algorithm}));
    Octets info = from_hex("30 20 30 0C 06 08 2A 86 48 86 F7 0D 02 02 05 00 04 10 00*16");
    uint32_t len = 0;
    ZA_PKCS7_DigestMessage(3, parts[0].data(), int(parts[0].size()), &info[18], &len);
    size_t size = 256;
    const std::shared_ptr<EVP_PKEY_CTX> signer(EVP_PKEY_CTX_new(key_named("rsa2048"), nullptr),
                                               EVP_PKEY_CTX_free);
    EVP_PKEY_sign_init(signer.get());
    EVP_PKEY_sign(signer.get(), &parts[2][5], &size, info.data(), info.size());
    return sequence(parts);
}

TEST(Verification, AlgorithmSelectsTheDigest) {
    const std::string rsa = "2A 86 48 86 F7 0D 01 01 ";
    const EVP_MD *sha256 = EVP_sha256();
    const std::tuple<const char *, const EVP_MD *, uint32_t> rows[]{
        {"01", sha256, 128},     {"02", sha256, 128},      {"03", sha256, 118},
        {"04", EVP_md5(), 0},    {"04", sha256, 128},      {"05", EVP_sha1(), 0},
        {"06", sha256, 118},     {"0A", sha256, 118},      {"0B", sha256, 0},
        {"0B 00*7", sha256, 0},  {"0B 00*8", sha256, 118}, {"0B", EVP_sha512(), 128},
        {"0C", EVP_sha384(), 0}, {"0D", EVP_sha512(), 0}};
    for (const auto &[end, digest, result] : rows) {
        SCOPED_TRACE(end);
        const Issue issue{.digest = digest, .algorithm = rsa + end};
        expect(result, kRsa, kCertificate, new_ca("rsa2048"), new_certificate("rsa2048", issue));
    }
    expect(0, kRsa, kCertificate, new_ca("rsa2048"), signed_with_md2(rsa + "02"));
}

// The changes include those that readers of single elements let pass.
TEST(Verification, EveryChangedOctetIsFound) {
    for_each_kind([](Family family, Kind kind) {
        const Objects good(family, kKeys[family]);
        Octets object = good.object[kind];
        const std::vector<Octets> parts = children_of(object);
        const size_t tbs = object.size() - content_of(object).size();
        const size_t signature = object.size() - content_of(parts[2]).size() + 1;
        for (size_t at = tbs; at < object.size(); ++at) {
            at = at == tbs + parts[0].size() ? signature : at;
            for (const int change : {0x01, 0x06, 0x20, 0x40, 0x80}) {
                object[at] = uint8_t(object[at] ^ change);
                EXPECT_NE(call(family, kind, good.by[kind], object), 0u) << kind << " " << at;
                object[at] = uint8_t(object[at] ^ change);
            }
        }
    });
}

TEST(Verification, CallbackGetsWhatItIsPromised) {
    const Octets ca = new_ca("p256");
    const Octets user = new_certificate("p256", {});
    const std::vector<Octets> parts = children_of(user);
    const Octets der = key_of(ca);
    ZACERT_EccPubKey key{};
    ZA_ECCSignStruct signature{};
    uint32_t len = 0;
    ZACERT_DecodeEccPubKey(der.data(), int32_t(der.size()), &key, &len);
    const Octets bits = content_of(parts[2]);
    ZA_Decode_DerDataToECCSignStruct(&signature, &bits[1], int32_t(bits.size()) - 1);
    seen = {};
    expect(0, kEcc, kCertificate, ca, user);
    EXPECT_TRUE(seen == (Call{1, parts[0], octets_of(key), octets_of(signature), true, 0}));

    const std::string failed = "--------->ZA_ECC_VerifySignature verifyFunc";
    for (const auto &[given, result] :
         {std::pair(std::pair(0, 1u), 0u), {{0, 0}, 128}, {{0, 2}, 128}, {{-1, 1}, 128}}) {
        answer = given;
        const TraceRecord trace;
        EXPECT_EQ(call(kEcc, kCertificate, ca, user), result);
        EXPECT_EQ(trace.failures().size(), result == 0 ? 0u : given.first == 0 ? 1u : 2u);
        EXPECT_EQ(given.first != 0, !trace.failures().empty() && trace.failures()[0] == failed);
    }
    answer.reset();
}

TEST(Verification, CurveOfAnotherSize) {
    const Octets ca = new_ca("p384");
    testing::internal::CaptureStdout();
    expect(108, kEcc, kCrl, ca, new_crl("p256", {}));
    expect(108, kEcc, kRequest, {}, new_request("p384"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    testing::internal::CaptureStdout();
    expect(1, kEcc, kCertificate, ca, new_certificate("p256", {}));
    expect(1, kEcc, kCertificateByKey, key_of(ca), new_certificate("p256", {}));
    const std::string line = "ZACert_GetCertAttributeChar ZACERT_DecodeEccPubKey Error!code:108\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), line + line);
}

Octets pem_of(const Octets &der) {
    char pem[4096];
    uint32_t len = 0;
    DER2PEM_data_format(der.data(), uint32_t(der.size()), pem, &len, "-----B-----", "-----E-----");
    return {pem, pem + len};
}

TEST(Verification, RequestsInPem) {
    for (const Family family : {kRsa, kEcc}) {
        const Octets pem = pem_of(new_request(kKeys[family]));
        expect(0, family, kRequest, {}, pem);
        expect(101, family, kRequest, {}, {pem.begin(), pem.end() - 20});
        expect(101, family, kRequest, {}, pem_of(element(0x30, Octets(125))));
        expect(102, family, kRequest, {}, pem_of(join({{0x30, 0x7F}, Octets(126)})));
    }
}

TEST(Verification, MissingArguments) {
    const std::string certificates = "------>(derCaCert == NULL) || (derUserCert == NULL)";
    const std::string by_ca = "------>VerifyUserCertByCACert, pDer";
    const std::string of_ca[]{by_ca + "Pub==NULL || iDerPubLen<=0",
                              by_ca + "Cert==NULL || iDerCertLen<=0"};
    const std::string texts[2][4]{
        {certificates, "", "------>(derCaCert == NULL) || (derCrl == NULL)",
         "------>ZA_VerifyCsr_Sign  derCsr==NULL || derCsrLen<=0 Err"},
        {certificates, "------>ZA_ECC_VerifyCertForSpeed Parameter Error",
         "------>ZA_ECC_VerifyCrl Parameter Error",
         "------>ZA_VerifyECCsr  derCsr==NULL || derCsrLen<=0 Err"}};
    const uint8_t x[]{0x30, 0x00};
    const Arguments rows[]{
        {nullptr, 2, x, 2}, {x, 2, nullptr, 2}, {x, 0, x, 2}, {x, 2, x, 0}, {x, 2, x, 2, nullptr}};
    for_each_kind([&](Family family, Kind kind) {
        for (const Arguments &row : rows) {
            const bool of_object = row.object == nullptr || row.object_len == 0;
            if (row.function == nullptr ? family == kRsa : kind == kRequest && !of_object) {
                continue;
            }
            const TraceRecord trace;
            EXPECT_EQ(call(family, kind, row), 109u) << family << kind;
            const std::string &text = texts[family][kind];
            EXPECT_EQ(trace.failures(), Trail{text.empty() ? of_ca[of_object] : text});
        }
    });
    expect(109, kRsa, kRequest, {}, {});
}

}  // namespace
}  // namespace za::test
