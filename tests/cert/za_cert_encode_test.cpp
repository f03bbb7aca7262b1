#include "cert/za_cert_encode.hpp"

#include "cert/za_cert_issuing.hpp"
#include "cert/za_cert_part_encode.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

namespace za::test {
namespace {

constexpr const char *kNames = "14=\"i\"; 38=\"s\"";

// Result and lines of failures stand in a row from a column on; none is the result 0.
void expect_outcome(const Row &row, size_t column, uint32_t result, const TraceRecord &trace) {
    const bool there = row.size() > column;
    EXPECT_EQ(result, there ? number_of(row[column]) : 0);
    EXPECT_EQ(trace.failures(), there ? Lines(row.begin() + long(column) + 1, row.end()) : Lines{});
}

TEST(CertificateEncoding, ExtensionsAreWhatWasSet) {
    for (const Row &row : rows_of("certs/rows/encoded_extensions")) {
        SCOPED_TRACE(row[0]);
        const Octets inner = from_hex(row.size() > 1 ? row[1] : "");
        const Octets wanted = inner.empty() ? inner : element(0xA3, element(0x30, inner));
        const NoLeak no_leak;
        const Issuing cert(row[0]);
        const TraceRecord trace;
        const Handed out =
            handed([&](Anybuf **record) { return ZI_Cert_EncodeExtensions(cert, record); });
        expect_outcome(row, 2, out.result, trace);
        EXPECT_EQ(to_hex(out.record.get()), wanted.empty() ? "(none)" : to_hex(wanted));
    }
}

TEST(CertificateEncoding, FieldsAreWhatWasSet) {
    for (const Row &row : rows_of("certs/rows/encoded_fields")) {
        SCOPED_TRACE(row[0]);
        const NoLeak no_leak;
        const Issuing cert(row[0]);
        uint32_t result = 0;
        const TraceRecord trace;
        const Octets der = encoded(cert, &result);
        expect_outcome(row, 3, result, trace);
        if (result == 0) {
            std::vector<Octets> fields = children_of(children_of(der)[0]);
            fields.resize(8);
            fields.push_back(der);
            EXPECT_EQ(to_hex(fields[number_of(row[1])]), to_hex(from_hex(row[2])));
        }
    }
}

TEST(CertificateEncoding, LinesOfASuccess) {
    const Issuing cert(std::string(kNames) + "; 87=80");
    const TraceRecord trace;
    uint32_t len = 0;
    EXPECT_EQ(ZACert_EncodeCert(cert, nullptr, &len), 0u);
    EXPECT_EQ(trace.lines(),
              (Lines{"======>ZACert_EncodeCert Begin", "======>ZI_Cert_EncodeExtension_KeyUsage",
                     "======>ZI_Cert_EncodeExtensions", "======>Set CERT_CA_SIGNATURE",
                     "======>ZACert_EncodeCert End"}));
    EXPECT_TRUE(cert.get(CERT_TBS_CERTIFICATE).empty()) << "decoding alone fills it";
}

TEST(CertificateSigning, ContractOfTheFunction) {
    for (const Row &row : rows_of("certs/rows/signing")) {
        SCOPED_TRACE(row[0] + " " + row[1] + " " + row[2]);
        const NoLeak no_leak;
        const Issuing cert(kNames, "the key");
        signing = {number_of(row[0]), number_of(row[1]), number_of(row[2]), {}, {}};
        uint32_t result = 0;
        const TraceRecord trace;
        Octets der = encoded(cert, &result);
        expect_outcome(row, 4, result, trace);
        Lines calls{"first 0 (none)", "room 512 the key"};
        calls.resize(number_of(row[3]));
        EXPECT_EQ(signing.calls, calls) << "reading it out signs nothing";
        EXPECT_EQ(cert->whole.empty(), result != 0);
        if (result != 0) {
            signing = {};
            der = encoded(cert, &result);
            EXPECT_EQ(result, 0u) << "it can be encoded after a failure";
        }
        EXPECT_EQ(signing.in, children_of(der)[0]);
        EXPECT_EQ(cert.get(CERT_CA_SIGNATURE), Octets(signing.length, 0xA5));
        EXPECT_EQ(set_all(cert, "5=09; 85=01"), 0u);
        EXPECT_EQ(encoded(cert), der) << "what is set afterwards does not touch it";
    }
}

TEST(CertificateSigning, FunctionAndKeyAreReplacedOneByOne) {
    const NoLeak no_leak;
    const std::string secret = "secret octets";
    const NoSecret no_secret(Bytes(reinterpret_cast<const uint8_t *>(secret.data()), 13));
    const Issuing cert(kNames, secret);
    uint32_t result = 0;
    const auto call_after = [&](ZACertSignFunc function, const uint8_t *key, int32_t len) {
        EXPECT_EQ(ZACert_SetCertSignFunc(cert, function, key, len), 0u);
        cert->whole = {};
        signing = {};
        encoded(cert, &result);
        return signing.calls.empty() ? "none" : signing.calls.back();
    };
    const uint8_t other[] = {'o', 0};
    EXPECT_EQ(call_after(sign_as_planned, nullptr, 5), "room 512 " + secret);
    EXPECT_EQ(call_after(sign_as_planned, other, 0), "room 512 " + secret);
    EXPECT_EQ(call_after(sign_as_planned, other, -1), "room 512 " + secret);
    EXPECT_EQ(call_after(sign_as_planned, other, 2), "room 512 o");
    const TraceRecord trace;
    EXPECT_EQ(call_after(nullptr, nullptr, 0), "none");
    EXPECT_EQ(result, 119u);
    EXPECT_EQ(trace.failures(), Lines{"------>ZACertSignFunc Not Set"});
    fail_allocation(1);
    EXPECT_EQ(install_signer(cert, secret), 100u);
    EXPECT_EQ(call_after(sign_as_planned, nullptr, 0), "room 512 o");
}

// Keys come out as the certificate they were read from has them, or are refused.
TEST(CertificateEncoding, DecodedCertificatesAndTheirKeysAreIssuedAgain) {
    const std::map<std::string, uint32_t> keys{
        {"rsa_all", 0}, {"ec_named", 0}, {"sm2", 0}, {"ec_explicit", 108}, {"ec_p384", 108}};
    for (const std::string name : kCertificates) {
        SCOPED_TRACE(name);
        const Context from;
        ASSERT_EQ(from.decode(certificate(name)), 0u);
        EXPECT_EQ(encoded(from), certificate(name)) << "no function is needed";
        if (!keys.contains(name)) {
            continue;
        }
        const Issuing to(kNames);
        for (const int32_t id :
             {CERT_ECC_PUBLICKEY_OID, CERT_SUBJECTPUBLICKEYINFO, CERT_PUBLICKEY_ALGORITHM}) {
            EXPECT_TRUE(from.get(id).empty() || to.set(id, from.get(id)) == 0);
        }
        uint32_t result = 0;
        const Octets der = encoded(to, &result);
        EXPECT_EQ(result, keys.at(name));
        EXPECT_TRUE(result != 0 ||
                    children_of(children_of(der)[0])[Parts::kKey] == Parts(name).tbs[Parts::kKey]);
    }
}

TEST(CertificateEncoding, KeyKinds) {
    const std::map<uint32_t, std::string> others{{11, "04 01 AA"}, {12, "06 03 04 01 AA"}};
    const Context from;
    ASSERT_EQ(from.decode(certificate("ec_named")), 0u);
    for (uint32_t kind = 0; kind <= 13; ++kind) {
        const Issuing cert(kNames);
        ASSERT_EQ(cert->key.parameters.assign(from_hex("0401AA")), Status::ok);
        ASSERT_EQ(cert.set(CERT_SUBJECTPUBLICKEYINFO, from.get(CERT_SUBJECTPUBLICKEYINFO)), 0u);
        cert->key.kind = kind;
        const auto key = children_of(children_of(children_of(encoded(cert))[0])[Parts::kKey]);
        const std::string number = "02 01 0" + std::to_string(kind);
        EXPECT_EQ(to_hex(children_of(key[0])[1]), others.contains(kind)    ? others.at(kind)
                                                  : kind >= 1 && kind <= 7 ? number
                                                                           : "05 00");
        EXPECT_EQ(key[1].size(), kind == 0 ? 292u : 68u);
    }
}

constexpr const char *kEverything =
    "4=2; 5=7F; 2=2A03; 6=2A03; 29=86400; 30=172800; 53=2A05; 54=0102; 65=01; 85=02; 87=86; 86=FF;"
    "106=\"an\"; 107=\"a@e\"; 114=\"in\"; 115=\"i@e\"; 120=FF; 119=FF; 121=03; 129=C0000000;"
    "131=\"u\"; 504=\"r\"; 505=\"d\"; 509=\"x\"; 510=0A000001; 136=\"o\"; 92=2A03; 93=\"p\";"
    "9=\"CN\"; 10=\"st\"; 11=\"l\"; 12=\"o\"; 13=\"u\"; 14=\"cn\"; 15=\"e@e\"; 16=\"pa\";"
    "17=\"pc\"; 18=\"1\"; 33=\"CN\"; 34=\"st\"; 35=\"l\"; 36=\"o\"; 37=\"u\"; 38=C4E3; 39=\"e@e\";"
    "40=\"pa\"; 41=\"pc\"; 42=\"1\"; 543=\"ai\"; 537=05; P=2A03 0 0500";

TEST(CertificateEncoding, DecodingGivesBackWhatWasSet) {
    const Issuing set(kEverything);
    const Context decoded;
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
        uint32_t len = 7;
        uint32_t result = set_all(&cert, kEverything);
        result = result != 0 ? result : install_signer(&cert, "k");
        result = result != 0 ? result : ZACert_EncodeCert(&cert, nullptr, &len);
        EXPECT_EQ(cert.whole.empty() && len == 7, result != 0);
        return result;
    });
    // Two extensions tell their failures by another one's name.
    for (const auto &[setter, name] :
         {std::pair{"155=\"1.2.3\"", "KeyUsage"}, std::pair{"P=2A03 0 0500", "Unknown"}}) {
        const Issuing cert(setter);
        const TraceRecord trace;
        Anybuf *out = nullptr;
        fail_allocation(1);
        EXPECT_EQ(ZI_Cert_EncodeExtensions(cert, &out), 100u);
        EXPECT_EQ(trace.failures().back(), std::string("------>ZI_Cert_EncodeExtension_") + name);
    }
}

TEST(CertificateEncoding, PartsAreHandedOut) {
    const auto part = [](const Context &cert, auto encode) {
        const auto call = [&] { return handed([&](Anybuf **out) { return encode(cert, out); }); };
        expect_allocation_faults_survived([&] { return call().result; });
        return describe(call().record.get());
    };
    const Context empty;
    EXPECT_EQ(part(empty, ZI_Cert_EncodeExtension_Private), "(none)");
    EXPECT_EQ(part(empty, ZI_CERT_EncodeDiscriptList), "16 30 00");
    const Issuing cert("P=2A03 0 05; P=2A03 1 06; 136=\"u\"; 29=0; 30=1");
    EXPECT_EQ(part(cert, ZI_Cert_EncodeExtension_Private),
              "16 30 07 06 02 2A 03 04 01 05; 16 30 0A 06 02 2A 03 01 01 FF 04 01 06");
    EXPECT_EQ(part(cert, ZI_CERT_EncodeDiscriptList),
              "16 30 0F 30 0D 06 08 2B 06 01 05 05 07 30 01 86 01 75");
    EXPECT_TRUE(part(cert, ZI_Cert_EncodeValidity).starts_with("16 30 1E 17 0D 37 30"));
    EXPECT_TRUE(part(cert, ZI_Cert_EncodeExtensions).starts_with("163 A3 "));
    EXPECT_EQ(ZI_Cert_EncodeExtensions(cert, nullptr), 108u);
    EXPECT_EQ(ZACert_EncodeCert(cert, nullptr, nullptr), 108u);
    EXPECT_EQ(ZACert_SetCertSignFunc(nullptr, nullptr, nullptr, 0), 108u);
}

}  // namespace
}  // namespace za::test
