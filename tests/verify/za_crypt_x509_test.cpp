#include "verify/za_crypt_x509.hpp"

#include <zacert.h>

#include "cert/za_cert_decode.hpp"
#include "support/heap.hpp"
#include "support/rows.hpp"
#include "support/trace.hpp"
#include "verify/issued.hpp"

#include <gtest/gtest.h>
#include <optional>

namespace za::test {
namespace {

std::string seen;  // by the callback: the result as it found it, where the point is, the prime
std::optional<std::pair<int32_t, uint32_t>> answer;  // its status and result, whatever it finds

// ECDSA with SHA-256 by libcrypto, for one key.
int32_t ecdsa(const uint8_t *tbs, uint32_t tbs_len, void *pass, const ZA_ECCSignStruct *signature,
              const ZA_ECCPOINT *pub, uint32_t *result) {
    const auto &key = *static_cast<const ZACERT_EccPubKey *>(pass);
    const char *place = pub->x == &key.x[0] ? " inside " : " outside ";
    seen += std::to_string(*result) + place + to_hex(key.curve.p);
    const Octets der = two_calls([&](uint8_t *out, uint32_t *len) {
        return ZA_Encode_ECCSignStructToDerData(signature, out, len);
    });
    const std::shared_ptr<EVP_MD_CTX> md(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    EVP_DigestVerifyInit(md.get(), nullptr, EVP_sha256(), nullptr, key_named("p256"));
    const Octets info = public_key_of("p256");
    const bool good = Octets(info.end() - 64, info.end()) == octets_of(*pub) &&
                      EVP_DigestVerify(md.get(), der.data(), der.size(), tbs, tbs_len) == 1;
    *result = answer ? answer->second : good;
    return answer ? answer->first : 0;
}

enum Family { kRsa, kEcc };
constexpr const char *kKeys[]{"rsa2048", "p256"};
constexpr const char *kOtherKeys[]{"rsa1024", "secp256k1"};

constexpr std::pair<Family, Kind> kAll[]{
    {kRsa, kCertificate}, {kRsa, kCertificateByKey}, {kRsa, kCrl}, {kRsa, kRequest},
    {kEcc, kCertificate}, {kEcc, kCertificateByKey}, {kEcc, kCrl}, {kEcc, kRequest}};

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

// With attribute 54 of the CA's certificate where a key is wanted.
uint32_t call(Family family, Kind kind, const Octets &ca, const Octets &object) {
    cert::Certificate issuer;
    Bytes by = ca;
    if (kind == kCertificateByKey) {
        if (const Status status = cert::decode_certificate(issuer, ca); status != Status::ok) {
            return uint32_t(status);
        }
        by = issuer.key.bits.bytes();
    }
    return call(family, kind, {by.data(), int32_t(by.size()), object.data(), int(object.size())});
}

// The result, and that the last line of a failure is the one that belongs to its code.
void expect(uint32_t result, Family family, Kind kind, const Octets &ca, const Octets &object) {
    const std::map<uint32_t, std::string> last_lines{{116, "------>ZACERT_DnNotEqualErr"},
                                                     {117, "------>ZACERT_TimeOutRangeErr"},
                                                     {118, "------>ZACERT_InvalidSignatureAlgErr"},
                                                     {128, "------>ZA_VerifyData"}};
    const NoLeak no_leak;
    const TraceRecord trace;
    EXPECT_EQ(call(family, kind, ca, object), result) << family << kind;
    const Trail failures = trace.failures();
    EXPECT_EQ(failures.empty(), result == 0);
    if (last_lines.contains(result) && !failures.empty()) {
        EXPECT_EQ(failures.back(), last_lines.at(result));
    }
}

Octets new_ca(const char *key, Issue issue = {}) {
    issue.subject = "CA";
    return issued(kCertificate, key, issue);
}

TEST(Verification, SignaturesOfEveryKind) {
    for (const auto &which : kAll) {
        const Family family = which.first;
        const Kind kind = which.second;
        // Names with the same text in another string type are equal.
        const Octets ca = new_ca(kKeys[family]);
        const Octets good = issued(kind, kKeys[family], {.string_type = 0x0C});
        const Octets other = issued(kind, kOtherKeys[family]);
        // The key in a request counts, so the other one's signature is put behind it.
        const Octets tbs = children_of(kind == kRequest ? good : other)[0];
        expect(0, family, kind, ca, good);
        expect(128, family, kind, ca, sequence({tbs, children_of(good)[1], children_of(other)[2]}));
        answer = {0, 1};  // the finding itself needs the heap
        expect_allocation_faults_survived([&] { return call(family, kind, ca, good); });
        answer.reset();
    }
    const Octets user = issued(kCertificate, "rsa2048");
    expect(128, kRsa, kCertificate, new_ca("p256"), user);
    expect(0, kRsa, kCertificate, new_ca("rsa1024"), issued(kCertificate, "rsa1024"));
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
            const Octets user = issued(kCertificate, kKeys[family], of_user);
            expect(results[family], family, kCertificate, ca, user);
            expect(0, family, kCertificateByKey, ca, user);
            expect(results[family] == 116 ? 116 : 0, family, kCrl, ca,
                   issued(kCrl, kKeys[family], of_user));
        }
    }
}

TEST(Verification, EveryTimeMayEqualItsBound) {
    for (const Row &row : rows_of("verify/bounds.txt")) {
        const auto number = [&](size_t cell) { return int32_t(std::stol(row.at(cell))); };
        cert::Certificate ca;
        cert::Certificate user;
        ca.not_before.set(10);
        ca.not_after.set(number(0));
        user.not_before.set(number(1));
        user.not_after.set(number(2));
        for (const size_t i : {0u, 1u}) {
            const auto validity = i == 0 ? verify::Validity::beginning : verify::Validity::whole;
            EXPECT_EQ(verify::check_validity(ca, user, validity, uint32_t(number(3))),
                      Status(number(4 + i)));
        }
    }
}

TEST(Verification, AlgorithmSelectsTheDigest) {
    const std::string rsa = "2A 86 48 86 F7 0D 01 01 ";
    for (const Row &row : rows_of("verify/algorithms.txt")) {
        SCOPED_TRACE(row[0]);
        const EVP_MD *digest = EVP_get_digestbyname(row[1].c_str());
        const Octets user =
            issued(kCertificate, "rsa2048", {.digest = digest, .algorithm = rsa + row[0]});
        expect(number_of(row[2]), kRsa, kCertificate, new_ca("rsa2048"), user);
    }
    // MD2 is in no libcrypto of today, which pads and signs all the same.
    std::vector<Octets> md2 =
        children_of(issued(kCertificate, "rsa2048", {.algorithm = rsa + "02"}));
    Octets info = from_hex("30 20 30 0C 06 08 2A 86 48 86 F7 0D 02 02 05 00 04 10 00*16");
    uint32_t len = 0;
    ZA_PKCS7_DigestMessage(3, md2[0].data(), int(md2[0].size()), &info[18], &len);
    size_t size = 256;
    EVP_PKEY_CTX *signer = EVP_PKEY_CTX_new(key_named("rsa2048"), nullptr);
    EVP_PKEY_sign_init(signer);
    EVP_PKEY_sign(signer, &md2[2][5], &size, info.data(), info.size());
    EVP_PKEY_CTX_free(signer);
    expect(0, kRsa, kCertificate, new_ca("rsa2048"), sequence(md2));
}

// The changes include those that readers of single elements let pass.
TEST(Verification, EveryChangedOctetIsFound) {
    for (const auto &[family, kind] : kAll) {
        const Octets ca = new_ca(kKeys[family]);
        Octets object = issued(kind, kKeys[family]);
        const std::vector<Octets> parts = children_of(object);
        const size_t tbs = object.size() - content_of(object).size();
        const size_t signature = object.size() - content_of(parts[2]).size() + 1;
        for (size_t at = tbs; at < object.size(); ++at) {
            at = at == tbs + parts[0].size() ? signature : at;
            for (const int change : {0x01, 0x06, 0x20, 0x40, 0x80}) {
                object[at] = uint8_t(object[at] ^ change);
                EXPECT_NE(call(family, kind, ca, object), 0u) << kind << " " << at;
                object[at] = uint8_t(object[at] ^ change);
            }
        }
    }
}

// That it gets the signed octets, the signature and the point shows by what libcrypto finds.
TEST(Verification, CallbackGetsWhatItIsPromised) {
    const Octets ca = new_ca("p256");
    const Octets user = issued(kCertificate, "p256");
    seen.clear();
    expect(0, kEcc, kCertificate, ca, user);
    EXPECT_EQ(seen, "0 inside " + to_hex(from_hex("FF*4 00 00 00 01 00*12 FF*12")));
    const std::string failed = "--------->ZA_ECC_VerifySignature verifyFunc";
    for (const auto &[status, result] : {std::pair(0, 0u), {0, 2}, {-1, 1}}) {
        answer = {status, result};
        const TraceRecord trace;
        EXPECT_EQ(call(kEcc, kCertificate, ca, user), 128u);
        EXPECT_EQ(trace.failures().front() == failed, status != 0);
        EXPECT_EQ(trace.failures().back(), "------>ZA_VerifyData");
    }
    answer.reset();
}

TEST(Verification, CurveOfAnotherSize) {
    const Octets ca = new_ca("p384");
    testing::internal::CaptureStdout();
    expect(108, kEcc, kCrl, ca, issued(kCrl, "p256"));
    expect(108, kEcc, kRequest, {}, issued(kRequest, "p384"));
    expect(1, kEcc, kCertificate, ca, issued(kCertificate, "p256"));
    expect(1, kEcc, kCertificateByKey, ca, issued(kCertificate, "p256"));
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
        const Octets pem = pem_of(issued(kRequest, kKeys[family]));
        expect(0, family, kRequest, {}, pem);
        expect(101, family, kRequest, {}, {pem.begin(), pem.end() - 20});
        expect(101, family, kRequest, {}, pem_of(join({{0x30, 0x7F}, Octets(125)})));
        expect(102, family, kRequest, {}, pem_of(join({{0x30, 0x7F}, Octets(126)})));
    }
}

TEST(Verification, MissingArguments) {
    const uint8_t x[]{0x30, 0x00};
    const Arguments missing[]{
        {nullptr, 2, x, 2}, {x, 2, nullptr, 2}, {x, 0, x, 2}, {x, 2, x, 0}, {x, 2, x, 2, nullptr}};
    for (const Row &row : rows_of("verify/missing.txt")) {
        const TraceRecord trace;
        EXPECT_EQ(call(Family(row[0] == "1"), Kind(number_of(row[1])), missing[number_of(row[2])]),
                  109u);
        EXPECT_EQ(trace.failures(), Trail{row[3]});
    }
    EXPECT_EQ(call(kRsa, kRequest, {x, 2, x, -1}), 109u);
}

}  // namespace
}  // namespace za::test
