#include "cert/za_cert_encode.hpp"

#include "cert/za_cert_support.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <iterator>

namespace za::test {
namespace {

// "IDENTIFIER=VALUE; ...": the first failure, except of what is kept all the same. Identifier 0 is
// a private extension: two octets of identifier, one of criticality, the value.
uint32_t set_all(void *cert, const std::string &setters) {
    for (const std::string &setter : list_of(setters)) {
        const Row pair = split(setter, '=');
        const int32_t id = std::stoi(pair[0]);
        const bool is_int = id == CERT_VERSION || id == CERT_VALIDFROM || id == CERT_VALIDTO;
        const Octets value = is_int ? Octets{} : value_of(pair[1]);
        const auto size = static_cast<int32_t>(value.size());
        const uint32_t result =
            is_int ? ZACert_SetCertAttributeInt(cert, id, std::stoi(pair[1]))
            : id == 0
                ? ZACert_SetCertAttributePrivate(cert, &value[0], 2, value[2], &value[3], size - 3)
                : ZACert_SetCertAttributeChar(cert, id, value.data(), size);
        if (result != 0 && result != 114) {
            return result;
        }
    }
    return 0;
}

// What the function does, and what it was given, with "first" or "room" and the key in a line.
struct Signing {
    uint32_t first = 0;
    uint32_t second = 0;
    uint32_t length = 2;
    std::vector<std::string> calls;
    Octets in;
};
Signing signing;

// Key octets end in a zero octet here. Writes as much as the library has room for.
int32_t sign_as_planned(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                        void *key) {
    constexpr uint32_t kPhysicalRoom = 10240;
    signing.in.assign(in, in + in_len);
    signing.calls.push_back((out == nullptr ? "first " : "room ") + std::to_string(*out_len) + " " +
                            (key == nullptr ? "(none)" : static_cast<const char *>(key)));
    if (out == nullptr) {
        *out_len = 7777;
        return int32_t(signing.first);
    }
    std::fill_n(out, std::min(signing.length, kPhysicalRoom), uint8_t{0xA5});
    *out_len = signing.length;
    return int32_t(signing.second);
}

uint32_t install_signer(void *cert, const std::string &key) {
    return ZACert_SetCertSignFunc(cert, sign_as_planned,
                                  reinterpret_cast<const uint8_t *>(key.c_str()),
                                  int32_t(key.size() + 1));
}

struct Issuing : Context {
    explicit Issuing(const std::string &setters, const std::string &key = "k") {
        signing = {};
        EXPECT_EQ(set_all(*this, setters), 0u);
        EXPECT_EQ(install_signer(*this, key), 0u);
    }
};

Octets encoded(void *cert, uint32_t *status = nullptr) {
    return two_calls([&](uint8_t *out, uint32_t *len) { return ZACert_EncodeCert(cert, out, len); },
                     status);
}

constexpr const char *kNames = "14=\"i\"; 38=\"s\"";

// Result and lines of failures stand in a row from a column on; none is the result 0.
void expect_outcome(const Row &row, size_t column, uint32_t result, const TraceRecord &trace) {
    const bool there = row.size() > column;
    EXPECT_EQ(result, there ? number_of(row[column]) : 0);
    EXPECT_EQ(trace.failures(), there ? Lines(row.begin() + long(column) + 1, row.end()) : Lines{});
}

TEST(CertificateEncoding, FieldsAreWhatWasSet) {
    std::vector<Row> rows = rows_of("certs/rows/encoded_fields");
    std::ranges::move(rows_of("certs/rows/encoded_extensions"), std::back_inserter(rows));
    for (const Row &row : rows) {
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
            EXPECT_EQ(to_hex(fields[number_of(row[1])]),
                      to_hex(from_hex(row.size() > 2 ? row[2] : "")));
        }
    }
}

TEST(CertificateSigning, ContractOfTheFunction) {
    for (const Row &row : rows_of("certs/rows/signing")) {
        SCOPED_TRACE(row[0] + " " + row[1] + " " + row[2]);
        const NoLeak no_leak;
        const Issuing cert(std::string(kNames) + "; 87=80", "the key");
        signing = {number_of(row[0]), number_of(row[1]), number_of(row[2]), {}, {}};
        uint32_t result = 0;
        const TraceRecord trace;
        Octets der = encoded(cert, &result);
        expect_outcome(row, 4, result, trace);
        EXPECT_TRUE(result != 0 || trace.lines() == rows_of("certs/rows/issuing_trace")[0]);
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
    const Context from;
    ASSERT_EQ(from.decode(certificate("ec_named")), 0u);
    for (const auto &[kind, parameters] : std::map<uint32_t, const char *>{
             {0, "05 00"}, {1, "02 01 01"}, {7, "02 01 07"}, {8, "05 00"}, {11, "04 01 AA"}}) {
        const Issuing cert(std::string(kNames) + "; 3003=0401AA");
        ASSERT_EQ(cert.set(CERT_SUBJECTPUBLICKEYINFO, from.get(CERT_SUBJECTPUBLICKEYINFO)), 0u);
        cert->key.kind = kind;
        const auto key = children_of(children_of(children_of(encoded(cert))[0])[Parts::kKey]);
        EXPECT_EQ(to_hex(children_of(key[0])[1]), parameters);
        EXPECT_EQ(key[1].size(), kind == 0 ? 292u : 68u);
    }
}

TEST(CertificateEncoding, DecodingGivesBackWhatWasSet) {
    const Issuing set(rows_of("certs/rows/everything")[0][0]);
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
    const std::string setters = rows_of("certs/rows/everything")[0][0];
    const size_t whole = encoded(Issuing(setters)).size();
    expect_allocation_faults_survived([&] {
        cert::Certificate cert;
        uint32_t len = 7;
        uint32_t result = set_all(&cert, setters);
        result = result != 0 ? result : install_signer(&cert, "k");
        result = result != 0 ? result : ZACert_EncodeCert(&cert, nullptr, &len);
        EXPECT_EQ(cert.whole.bytes().size(), result == 0 ? whole : 0) << "all of it or nothing";
        EXPECT_EQ(len == 7, result != 0);
        return result;
    });
    // Two extensions tell their failures by another one's name.
    for (const auto &[setter, name] :
         {std::pair{"155=\"1.2.3\"", "KeyUsage"}, std::pair{"0=2A03000500", "Unknown"}}) {
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
    const Issuing cert("0=2A030005; 0=2A030106; 136=\"u\"; 29=0; 30=1");
    EXPECT_EQ(part(cert, ZI_Cert_EncodeExtension_Private),
              "16 30 07 06 02 2A 03 04 01 05; 16 30 0A 06 02 2A 03 01 01 FF 04 01 06");
    EXPECT_EQ(part(cert, ZI_CERT_EncodeDiscriptList),
              "16 30 0F 30 0D 06 08 2B 06 01 05 05 07 30 01 86 01 75");
    EXPECT_TRUE(part(cert, ZI_Cert_EncodeValidity).starts_with("16 30 1E 17 0D 37 30"));
    EXPECT_TRUE(part(cert, ZI_Cert_EncodeExtensions).starts_with("163 A3 "));
    EXPECT_EQ(part(empty, ZI_Cert_EncodeExtensions), "(none)");
    EXPECT_EQ(ZI_Cert_EncodeExtensions(cert, nullptr), 108u);
    EXPECT_EQ(ZACert_EncodeCert(cert, nullptr, nullptr), 108u);
    EXPECT_EQ(ZACert_SetCertSignFunc(nullptr, nullptr, nullptr, 0), 108u);
}

}  // namespace
}  // namespace za::test
