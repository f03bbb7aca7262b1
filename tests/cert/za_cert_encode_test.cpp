#include "cert/za_cert_encode.hpp"

#include "cert/za_cert_issuing.hpp"
#include "cert/za_cert_part_encode.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <algorithm>

namespace za::test {
namespace {

constexpr const char *kNames = "14=\"i\"; 38=\"s\"";

// Result and lines of failures stand in a row from a column on; none is the result 0.
void expect_outcome(const Row &row, size_t column, uint32_t result, const TraceRecord &trace) {
    const bool fails = row.size() > column;
    EXPECT_EQ(result, fails ? number_of(row[column]) : 0);
    EXPECT_EQ(trace.failures(), fails ? Lines(row.begin() + long(column) + 1, row.end()) : Lines{});
}

TEST(CertificateEncoding, ExtensionsAreWhatWasSet) {
    for (const Row &row : rows_of("certs/rows/encoded_extensions")) {
        SCOPED_TRACE(row[0]);
        const Octets inner = from_hex(row.size() > 1 ? row[1] : "");
        const std::string wanted =
            inner.empty() ? "(none)" : to_hex(element(0xA3, element(0x30, inner)));
        const NoLeak no_leak;
        const Context cert;
        ASSERT_EQ(set_all(cert, row[0]), 0u);
        const TraceRecord trace;
        const Handed out =
            handed([&](Anybuf **record) { return ZI_Cert_EncodeExtensions(cert, record); });
        expect_outcome(row, 2, out.result, trace);
        EXPECT_EQ(to_hex(out.record.get()), out.result == 0 ? wanted : "(none)");
        EXPECT_EQ(std::ranges::count(trace.lines(), "======>ZI_Cert_EncodeExtensions"),
                  out.record != nullptr);
    }
}

TEST(CertificateEncoding, FieldsAreWhatWasSet) {
    for (const Row &row : rows_of("certs/rows/encoded_fields")) {
        SCOPED_TRACE(row[0]);
        const NoLeak no_leak;
        const Context cert;
        ASSERT_EQ(set_all(cert, row[0]), 0u);
        ASSERT_EQ(install_signer(cert), 0u);
        uint32_t result = 0;
        const TraceRecord trace;
        const Octets der = encoded(cert, &result);
        expect_outcome(row, 3, result, trace);
        if (result == 0) {
            auto fields = children(children(der)[0]);
            fields.resize(8);
            EXPECT_EQ(to_hex(fields[std::stoul(row[1])]), to_hex(from_hex(row[2])));
        }
    }
}

TEST(CertificateEncoding, WholeCertificate) {
    const Context cert;
    ASSERT_EQ(
        set_all(cert, std::string(kNames) + "; 4=2; 5=01; 6=2A03; 2=2A04; 29=0; 30=1; 53=2A05;"
                                            "54=01; 87=80"),
        0u);
    ASSERT_EQ(install_signer(cert), 0u);
    const char *const tbs =
        "30(A0(02(02)) 02(01) 30(06(2A03) 05()) 30(31(30(06(550403) 13(69))))"
        "30(17(3730303130313030303030305A) 17(3730303130313030303030315A))"
        "30(31(30(06(550403) 13(73)))) 30(30(06(2A05) 05()) 03(0001))"
        "A3(30(30(06(551D0F) 01(FF) 04(03(0780))))))";
    const TraceRecord trace;
    uint32_t len = 0;
    EXPECT_EQ(ZACert_EncodeCert(cert, nullptr, &len), 0u);
    EXPECT_EQ(trace.lines(),
              (Lines{"======>ZACert_EncodeCert Begin", "======>ZI_Cert_EncodeExtension_KeyUsage",
                     "======>ZI_Cert_EncodeExtensions", "======>Set CERT_CA_SIGNATURE",
                     "======>ZACert_EncodeCert End"}));
    EXPECT_EQ(to_hex(encoded(cert)),
              to_hex(from_hex("30(" + std::string(tbs) + "30(06(2A04) 05()) 03(00 A5*2))")));
    EXPECT_EQ(cert.hex(CERT_CA_SIGNATURE), "A5 A5");
    EXPECT_TRUE(cert.get(CERT_TBS_CERTIFICATE).empty()) << "decoding alone fills it";
}

struct SigningCase {
    SignPlan plan;
    uint32_t result;
    size_t num_calls;
    Lines failures;
};

TEST(CertificateSigning, ContractOfTheFunction) {
    const std::string empty =
        "------>ZACert_SetCertAttributeChar Err, certAttributeValueLen<=0 "
        "Err, certAttributeType:3";
    const std::vector<SigningCase> cases{
        {{0, 0, 1}, 0, 2, {}},
        {{0, 0, 512}, 0, 2, {}},
        {{0, 0, 10240}, 0, 2, {}},
        {{0, 0, 10241}, 107, 2, {"------>ZACERT_InvalidSignatureLenErr"}},
        {{0, 0, 0xFFFFFFFF}, 107, 2, {"------>ZACERT_InvalidSignatureLenErr"}},
        {{0, 0, 0}, 101, 2, {empty, "------>ZACert_SetCertAttributeChar"}},
        {{7, 0, 1}, 7, 1, {"------>ZACertSignFunc"}},
        {{0, -3, 1}, 0xFFFFFFFD, 2, {"------>ZACertSignFunc"}},
    };
    for (const SigningCase &signing : cases) {
        SCOPED_TRACE(signing.plan.length);
        const NoLeak no_leak;
        const Context cert;
        ASSERT_EQ(set_all(cert, kNames), 0u);
        ASSERT_EQ(install_signer(cert, "the key"), 0u);
        sign_plan = signing.plan;
        sign_calls.clear();
        uint32_t result = 0;
        const TraceRecord trace;
        const Octets der = encoded(cert, &result);
        EXPECT_EQ(result, signing.result);
        EXPECT_EQ(trace.failures(), signing.failures);
        ASSERT_EQ(sign_calls.size(), signing.num_calls) << "reading it out signs nothing";
        const Octets tbs = sign_calls[0].in;
        EXPECT_EQ(sign_calls[0], (SignCall{tbs, false, 0, "(none)"}));
        if (signing.num_calls == 2) {
            EXPECT_EQ(sign_calls[1], (SignCall{tbs, true, 512, "the key"}));
        }
        sign_plan = {};
        if (result == 0) {
            EXPECT_EQ(tbs, children(der)[0]);
            EXPECT_EQ(cert.get(CERT_CA_SIGNATURE), Octets(signing.plan.length, 0xA5));
        } else {
            EXPECT_TRUE(cert->whole.empty());
            EXPECT_EQ(encoded(cert, &result).size(), tbs.size() + 13) << "after a failure";
            EXPECT_EQ(result, 0u);
        }
        // What is set afterwards does not touch the certificate.
        const Octets kept = encoded(cert);
        EXPECT_EQ(set_all(cert, "5=09; 85=01"), 0u);
        EXPECT_EQ(encoded(cert), kept);
    }
}

TEST(CertificateSigning, FunctionAndKeyAreReplacedOneByOne) {
    const NoLeak no_leak;
    const std::string secret = "secret octets";
    const NoSecret no_secret(Bytes(reinterpret_cast<const uint8_t *>(secret.data()), 13));
    const Context cert;
    uint32_t result = 0;
    const auto key_after = [&](ZACertSignFunc function, const uint8_t *key, int32_t len) {
        EXPECT_EQ(ZACert_SetCertSignFunc(cert, function, key, len), 0u);
        cert->whole = {};
        sign_calls.clear();
        encoded(cert, &result);
        return sign_calls.empty() ? "not called" : sign_calls.back().key;
    };
    const uint8_t other[] = {'o', 0};
    ASSERT_EQ(set_all(cert, kNames), 0u);
    EXPECT_EQ(key_after(sign_as_planned, nullptr, 5), "(none)");
    EXPECT_EQ(install_signer(cert, secret), 0u);
    EXPECT_EQ(key_after(sign_as_planned, nullptr, 5), secret);
    EXPECT_EQ(key_after(sign_as_planned, other, 0), secret);
    EXPECT_EQ(key_after(sign_as_planned, other, -1), secret);
    EXPECT_EQ(key_after(sign_as_planned, other, 2), "o");
    const TraceRecord trace;
    EXPECT_EQ(key_after(nullptr, nullptr, 0), "not called");
    EXPECT_EQ(result, 119u);
    EXPECT_EQ(trace.failures(), Lines{"------>ZACertSignFunc Not Set"});
    EXPECT_EQ(key_after(sign_as_planned, nullptr, 0), "o");
    fail_allocation(1);
    EXPECT_EQ(install_signer(cert, secret), 100u);
    EXPECT_EQ(key_after(sign_as_planned, nullptr, 0), "o");
}

// Each key comes out as the certificate it was read from has it, or is refused.
TEST(CertificateEncoding, KeysAreIssuedAgain) {
    const std::map<std::string, uint32_t> results{
        {"rsa_all", 0}, {"ec_named", 0}, {"sm2", 0}, {"ec_explicit", 108}, {"ec_p384", 108}};
    for (const auto &[name, expected] : results) {
        SCOPED_TRACE(name);
        const Context from;
        const Context to;
        ASSERT_EQ(from.decode(certificate(name)), 0u);
        ASSERT_EQ(set_all(to, kNames), 0u);
        ASSERT_EQ(install_signer(to), 0u);
        for (const int32_t id :
             {CERT_ECC_PUBLICKEY_OID, CERT_SUBJECTPUBLICKEYINFO, CERT_PUBLICKEY_ALGORITHM}) {
            EXPECT_TRUE(from.get(id).empty() || to.set(id, from.get(id)) == 0);
        }
        uint32_t result = 0;
        const Octets der = encoded(to, &result);
        EXPECT_EQ(result, expected);
        if (result == 0) {
            EXPECT_EQ(children(children(der)[0])[6], Parts(name).tbs[Parts::kKey]);
            const Context again;
            EXPECT_EQ(again.decode(der), 0u);
            EXPECT_EQ(again.get(CERT_SUBJECTPUBLICKEYINFO), from.get(CERT_SUBJECTPUBLICKEYINFO));
        }
    }
}

TEST(CertificateEncoding, KeyKinds) {
    const Octets point = [] {
        const Context cert;
        EXPECT_EQ(cert.decode(certificate("ec_named")), 0u);
        return cert.get(CERT_SUBJECTPUBLICKEYINFO);
    }();
    for (uint32_t kind = 0; kind <= 13; ++kind) {
        SCOPED_TRACE(kind);
        cert::PublicKey key;
        key.kind = kind;
        ASSERT_EQ(key.parameters.assign(from_hex("0401AA")), Status::ok);
        ASSERT_EQ(key.bits.assign(point), Status::ok);
        asn1::Builder built;
        za::Octets der;
        constexpr TraceSource source{"test"};
        ASSERT_EQ(cert::write_public_key(source, key, built), Status::ok);
        ASSERT_EQ(built.finish(der), Status::ok);
        const auto parts = children(Octets(der.data(), der.data() + der.size()));
        EXPECT_EQ(to_hex(children(parts[0])[1]), kind == 11   ? "04 01 AA"
                                                 : kind == 12 ? "06 03 04 01 AA"
                                                 : kind >= 1 && kind <= 7
                                                     ? "02 01 0" + std::to_string(kind)
                                                     : "05 00");
        EXPECT_EQ(parts[1].size(), kind == 0 ? point.size() + 5 : 68u);
    }
}

TEST(CertificateEncoding, DecodedCertificatesComeOutAsTheyWere) {
    for (const char *name : kCertificates) {
        const Context cert;
        ASSERT_EQ(cert.decode(certificate(name)), 0u);
        EXPECT_EQ(encoded(cert), certificate(name)) << name;
        EXPECT_EQ(ZACert_SetCertSignFunc(cert, nullptr, nullptr, 0), 0u);
        EXPECT_EQ(encoded(cert), certificate(name)) << name;
    }
}

constexpr const char *kEverything =
    "4=2; 5=7F; 2=2A03; 6=2A03; 29=86400; 30=172800; 53=2A05; 54=0102; 65=01; 85=02; 87=86; 86=FF;"
    "106=\"an\"; 107=\"a@e\"; 114=\"in\"; 115=\"i@e\"; 120=FF; 119=FF; 121=03; 129=C0000000;"
    "131=\"u\"; 504=\"r\"; 505=\"d\"; 509=\"x\"; 510=0A000001; 136=\"o\"; 92=2A03; 93=\"p\";"
    "9=\"CN\"; 10=\"st\"; 11=\"l\"; 12=\"o\"; 13=\"u\"; 14=\"cn\"; 15=\"e@e\"; 16=\"pa\";"
    "17=\"pc\"; 18=\"1\"; 33=\"CN\"; 34=\"st\"; 35=\"l\"; 36=\"o\"; 37=\"u\"; 38=C4E3; 39=\"e@e\";"
    "40=\"pa\"; 41=\"pc\"; 42=\"1\"; 543=\"ai\"; 537=05";

TEST(CertificateEncoding, DecodingGivesBackWhatWasSet) {
    const Context set;
    const Context decoded;
    ASSERT_EQ(set_all(set, kEverything), 0u);
    ASSERT_EQ(install_signer(set), 0u);
    ASSERT_EQ(decoded.decode(encoded(set)), 0u);
    size_t compared = 0;
    for (int32_t id = 2; id <= 3003; ++id) {
        if (id != CERT_ISSUER_DERDN && id != CERT_SUBJECT_DERDN && !set.get(id).empty()) {
            ++compared;
            EXPECT_EQ(decoded.hex(id), set.hex(id)) << id;
        }
    }
    EXPECT_EQ(compared, 45u);
    EXPECT_EQ(seen(decoded, "AKI names") + seen(decoded, "AKI serial"), "22 550403 19 6169;05");
    EXPECT_EQ(decoded.number(CERT_VERSION) + decoded.number(CERT_VALIDTO), 172802u);
}

TEST(CertificateEncoding, MemoryMayRunOut) {
    expect_allocation_faults_survived([] {
        cert::Certificate cert;
        uint32_t result = set_all(&cert, kEverything);
        result = result != 0 ? result : install_signer(&cert);
        uint32_t len = 7;
        result = result != 0 ? result : ZACert_EncodeCert(&cert, nullptr, &len);
        EXPECT_EQ(cert.whole.empty(), result != 0);
        EXPECT_EQ(len == 7, result != 0);
        return result;
    });
    // The line of the extension that found no room; two of them have another one's name.
    for (const auto &[setter, line] :
         {std::pair{"155=\"1.2.3\"", "KeyUsage"}, std::pair{"P=2A03 0 0500", "Unknown"}}) {
        const Context cert;
        ASSERT_EQ(set_all(cert, setter), 0u);
        const TraceRecord trace;
        Anybuf *out = nullptr;
        fail_allocation(1);
        EXPECT_EQ(ZI_Cert_EncodeExtensions(cert, &out), 100u);
        EXPECT_EQ(trace.failures().back(), std::string("------>ZI_Cert_EncodeExtension_") + line);
    }
}

TEST(CertificateEncoding, PartsAreHandedOut) {
    const Context cert;
    const auto part = [&](auto encode) {
        return handed([&](Anybuf **out) { return encode(cert, out); });
    };
    EXPECT_EQ(describe(part(ZI_Cert_EncodeExtension_Private).record.get()), "(none)");
    EXPECT_EQ(describe(part(ZI_CERT_EncodeDiscriptList).record.get()), "16 30 00");
    ASSERT_EQ(set_all(cert, "P=2A03 0 05; P=2A03 1 06; 136=\"u\"; 29=0; 30=1"), 0u);
    EXPECT_EQ(describe(part(ZI_Cert_EncodeExtension_Private).record.get()),
              "16 30 07 06 02 2A 03 04 01 05; 16 30 0A 06 02 2A 03 01 01 FF 04 01 06");
    EXPECT_EQ(describe(part(ZI_CERT_EncodeDiscriptList).record.get()),
              "16 30 0F 30 0D 06 08 2B 06 01 05 05 07 30 01 86 01 75");
    EXPECT_EQ(part(ZI_Cert_EncodeValidity).record->dataLen, 32u);
    EXPECT_EQ(part(ZI_Cert_EncodeExtensions).record->dataType, 0xA3u);
    expect_allocation_faults_survived([&] { return part(ZI_Cert_EncodeExtension_Private).result; });
    expect_allocation_faults_survived([&] { return part(ZI_Cert_EncodeValidity).result; });

    Anybuf *out = nullptr;
    uint32_t len = 0;
    EXPECT_EQ(ZI_Cert_EncodeExtension_Private(nullptr, &out), 108u);
    EXPECT_EQ(ZI_Cert_EncodeExtensions(cert, nullptr), 108u);
    EXPECT_EQ(ZACert_EncodeCert(nullptr, nullptr, &len), 108u);
    EXPECT_EQ(ZACert_EncodeCert(cert, nullptr, nullptr), 108u);
    EXPECT_EQ(ZACert_SetCertSignFunc(nullptr, nullptr, nullptr, 0), 108u);
}

}  // namespace
}  // namespace za::test
