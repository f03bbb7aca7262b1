#include "cert/za_cert_support.hpp"
#include "request/za_crl_attributes.hpp"
#include "request/za_crl_support.hpp"
#include "request/za_crl_times.hpp"
#include "support/attribute_page.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <ctime>
#include <random>

namespace za::test {
namespace {

TEST(CrlAttributes, EveryIdentifierHasTheAccessorsOfItsKind) {
    const std::vector<Row> table = rows_of("crls/identifiers.txt");
    for (int32_t id = 1000; id <= 1070; ++id) {
        SCOPED_TRACE(id);
        const auto expected = [&](const char *accessor, char direction) {
            const auto row = std::ranges::find_if(table, [&](const Row &in) {
                return std::stoi(in[0]) <= id && id <= std::stoi(in[1]) && in[2] == accessor;
            });
            return row == table.end() || row->at(3).find(direction) == Row::value_type::npos ? 110u
                                                                                             : 0u;
        };
        const bool is_settable = expected("Char", 'S') == 0;
        const CrlHandle crl;
        uint32_t len = 7;
        uint32_t value = 7;
        EXPECT_EQ(ZACert_GetCrlAttributeChar(crl, id, nullptr, &len), expected("Char", 'G'));
        EXPECT_EQ(len, 0u) << "nothing is there yet";
        EXPECT_EQ(ZACert_GetCrlAttributeInt(crl, id, &value), expected("Int", 'G'));
        EXPECT_EQ(value, expected("Int", 'G') == 0 ? 0u : 7u);
        EXPECT_EQ(crl.set(id, {}), 101u);
        EXPECT_EQ(ZACert_SetCrlAttributeChar(crl, id, nullptr, 1), 108u);

        const bool needs_entry = id == CRL_REVOCATIONDATE || id == CRLEX_CRLREASON;
        const uint32_t early = id == CRL_REVOCATIONDATE ? crl.set_int(id, 1) : crl.set(id, {'0'});
        EXPECT_EQ(early, needs_entry ? 100u : is_settable ? 0u : 110u);
        EXPECT_EQ(crl.set(CRL_CERT_SERIALNUMBER, {'1'}), 0u);
        EXPECT_EQ(crl.set(id, {'1'}), is_settable ? 0u : 110u);
        EXPECT_EQ(crl.set_int(id, -1), expected("Int", 'S'));
        if (is_settable && expected("Char", 'G') == 0) {
            const bool is_entry = id < CRL_THISUPDATE && id > CRL_ISSUER_DN;
            const bool is_first = is_entry || id == CRL_CERT_SERIALNUMBER;
            EXPECT_EQ(crl.get(id).at(0), is_first ? '0' : '1');
        }
        EXPECT_TRUE(expected("Int", 'G') != 0 || crl.number(id) == "4294967295");
    }
    EXPECT_EQ(ZACert_GetCrlAttributeChar(nullptr, 1001, nullptr, nullptr), 108u);
    EXPECT_EQ(ZACert_GetCrlAttributeInt(nullptr, 1004, nullptr), 108u);
    EXPECT_EQ(ZACert_SetCrlAttributeChar(nullptr, 1002, nullptr, 0), 108u);
    EXPECT_EQ(ZACert_SetCrlAttributeInt(nullptr, 1004, 1), 108u);
}

TEST(CrlAttributes, ThePageTellsWhatTheRowsTell) {
    expect_page_tells("Attributes of a certificate revocation list", request::crl_attributes());
}

TEST(CrlAttributes, AccessorsThatHaveLinesOfTheirOwnWriteThem) {
    const CrlHandle crl;
    uint32_t value = 0;
    const TraceRecord trace;
    crl.set_int(CRL_REVOCATIONDATE, 1);
    EXPECT_EQ(trace.lines()[1], "======>Please Set Revoke Certificate First!");
    crl.set(CRLEX_CRLREASON, {1});
    EXPECT_EQ(trace.lines()[4], "======>Please Set Revoke Certificate First!");
    crl.set(CRLEX_AUTHORITY_KEYIDENTIFIER_CRITICAL, {1});
    EXPECT_EQ(trace.lines()[6], "======>Set CERTEX_AUTHORITY_KEYIDENTIFIER");
    ZACert_GetCrlAttributeInt(crl, CRL_REVOCATIONDATE, &value);
    EXPECT_EQ(trace.lines()[9], "======>Get CRL_CERT_REVOCATIONDATE");
    ZACert_GetCrlAttributeChar(crl, CRLEX_CRLREASON, nullptr, &value);
    EXPECT_EQ(trace.lines()[13], "======>Get CRL_RevokedCertificates_DER");
    crl.set(CRL_ISSUER_DN, {1});
    ZACert_GetCrlAttributeInt(crl, CRL_CERT_NEXT, &value);
    EXPECT_EQ(trace.failures(), (Trail{"------>Set ZACERT_AttributeNotSupportErr",
                                       "------>Get ZACERT_AttributeNotSupportErr"}));
}

// ---- Signing

struct Signing {
    uint32_t announced = 2;
    uint32_t written = 2;
    int32_t first = 0;
    int32_t second = 0;
    uint32_t result = 0;
    std::string calls = "NULL 0 key, room 2 key, ";
};
Signing signing;  // what the function below is to do, and `calls` what it saw
Octets signed_octets;

int32_t sign(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len, void *context) {
    const std::string key(static_cast<const char *>(context), 3);
    signing.calls +=
        (out == nullptr ? "NULL " : "room ") + std::to_string(*out_len) + " " + key + ", ";
    signed_octets.assign(in, in + in_len);
    *out_len = out == nullptr ? signing.announced : signing.written;
    std::fill_n(out, out == nullptr ? 0 : signing.announced, uint8_t{0x5A});
    return out == nullptr ? signing.first : signing.second;
}

// "IDENTIFIER=VALUE, ...": a decimal number for times and the version, octets for the rest.
uint32_t set_all(const CrlHandle &crl, const std::string &attributes) {
    for (const std::string &step : split(attributes, ',')) {
        const int32_t id = std::stoi(step);
        const std::string value = step.substr(5);
        const bool is_int = id == CRL_VERSION || id == CRL_THISUPDATE || id == CRL_NEXTUPDATE ||
                            id == CRL_REVOCATIONDATE;
        const uint32_t result =
            is_int ? crl.set_int(id, std::stoi(value)) : crl.set(id, from_hex(value));
        if (result != 0) {
            return result;
        }
    }
    return ZACert_SetCrlSignFunc(crl, sign, reinterpret_cast<const uint8_t *>("key"), 3);
}

TEST(CrlSigning, CallsTheFunctionAsPromised) {
    const NoLeak no_leak;
    for (const Signing &row :
         {Signing{}, Signing{2, 1}, Signing{10239, 10239, 0, 0, 0, "NULL 0 key, room 10239 key, "},
          Signing{10240, 0, 0, 0, 107, "NULL 0 key, "}, Signing{2, 3, 0, 0, 107},
          Signing{0, 0, 0, 0, 101, "NULL 0 key, room 0 key, "}, Signing{2, 0, 0, 0, 101},
          Signing{2, 2, -5, 0, 0xFFFFFFFB, "NULL 0 key, "}, Signing{2, 2, 0, 77, 77}}) {
        SCOPED_TRACE(std::to_string(row.announced) + " " + std::to_string(row.written));
        const CrlHandle crl;
        uint32_t status = 7;
        EXPECT_EQ(crl.set(CRL_ISSUER_COMMONNAME, {'A'}), 0u);
        EXPECT_TRUE(crl.encode(&status).empty());
        EXPECT_EQ(status, 119u);
        ASSERT_EQ(set_all(crl, "1004=1"), 0u);
        signing = row;
        signing.calls = "";
        const Octets der = crl.encode(&status);
        EXPECT_EQ(status, row.result);
        EXPECT_EQ(signing.calls, row.calls);
        // A failure leaves nothing behind; a success is kept and not signed again.
        signing = {.calls = ""};
        EXPECT_EQ(crl.encode().empty(), false);
        EXPECT_EQ(signing.calls, row.result == 0 ? "" : Signing().calls);
        EXPECT_TRUE(row.result != 0 || crl.encode() == der);
    }
    EXPECT_EQ(ZACert_SetCrlSignFunc(nullptr, sign, nullptr, 0), 108u);
    EXPECT_EQ(ZACert_EncodeCrl(nullptr, nullptr, nullptr), 108u);
}

// ---- Encoding

TEST(CrlEncoding, WritesWhatWasSet) {
    signing = {};
    for (const Row &row : rows_of("crls/encode.txt")) {
        SCOPED_TRACE(row.at(0));
        const CrlHandle crl;
        const Octets tbs = from_hex(row.at(3));
        uint32_t status = 7;
        ASSERT_EQ(set_all(crl, row.at(1) + ", 1002=2A04"), 0u);
        {
            const TraceRecord trace;
            const Octets der = crl.encode(&status);
            EXPECT_EQ(status, number_of(row.at(2)));
            EXPECT_EQ(trace.failures(), list_of(row.at(4)));
            const Octets rest = from_hex("30(06(2A04) 05()) 03(005A5A)");
            EXPECT_EQ(to_hex(der), status == 0 ? to_hex(element(0x30, join({tbs, rest}))) : "");
        }
        EXPECT_EQ(crl.get(CRL_TBS_CERTLIST), tbs);
        EXPECT_EQ(crl.hex(CRL_CA_SIGNATURE), status == 0 ? "5A 5A" : "");
        EXPECT_TRUE(status != 0 || signed_octets == tbs);
        expect_allocation_faults_survived([&] {
            const CrlHandle again;
            uint32_t len = 7;
            const uint32_t set = set_all(again, row.at(1));
            const uint32_t result = set != 0 ? set : ZACert_EncodeCrl(again, nullptr, &len);
            EXPECT_TRUE(result == 0 || (len == 7 && again.crl.whole.empty()));
            return result;
        });
    }
}

TEST(CrlEncoding, IssuerComesFromACertificate) {
    Octets der = certificate("rsa_all");
    const Context ca;
    ASSERT_EQ(ca.decode(der), 0u);
    void *ctx = nullptr;
    uint32_t len = 0;
    const auto create = [&](const Octets &from) {
        return ZACert_CreateCrlEncodeCtx_Ex(&ctx, from.data(), uint32_t(from.size()));
    };
    expect_allocation_faults_survived([&] {
        const uint32_t result = create(der);
        EXPECT_EQ(ctx != nullptr, result == 0);
        EXPECT_TRUE(result != 0 || equal(static_cast<request::Crl *>(ctx)->issuer.der.bytes(),
                                         ca.get(CERT_SUBJECT_DERDN)));
        EXPECT_EQ(ZACert_DestroyCrlDecodeCtx(std::exchange(ctx, nullptr)), 0u);
        return result;
    });
    Parts parts("rsa_all");
    parts.tbs[5] = from_hex("30(31(30(06(550403) 0C(41*2028))))");
    ASSERT_EQ(parts.tbs[5].size(), 2049u);
    EXPECT_EQ(create(parts.der()), 101u);
    EXPECT_EQ(create(Octets(der.begin(), der.end() - 1)), 102u);
    EXPECT_EQ(ZACert_CreateCrlEncodeCtx_Ex(&ctx, der.data(), 0), 108u);
    EXPECT_EQ(ZACert_CreateCrlEncodeCtx_Ex(&ctx, nullptr, 1), 108u);
    EXPECT_EQ(ctx, nullptr);
    EXPECT_EQ(create(der), 0u);
    EXPECT_EQ(ZACert_SetCrlAttributeChar(ctx, CRL_ISSUER_COMMONNAME, der.data(), 1), 0u);
    EXPECT_EQ(ZACert_EncodeCrl(ctx, nullptr, &len), 108u) << "an issuer in both forms";
    EXPECT_EQ(ZACert_DestroyCrlEncodeCtx(ctx), 0u);
}

TEST(CrlEncoding, PiecesAreHandedOutAlone) {
    const CrlHandle crl;
    const auto expect_piece = [&](const auto &write, void *from, const std::string &expected) {
        const Handed out = handed([&](Anybuf **place) { return write(from, place); });
        EXPECT_EQ(to_hex(out.record.get()), expected);
        return out.result;
    };
    for (const auto &write :
         {ZI_CRL_EncodeRevokedCRL, ZI_Crl_EncodeExtensions, ZI_Crl_EncodeCRLDPs}) {
        EXPECT_EQ(expect_piece(write, crl, "(none)"), 0u);
        EXPECT_EQ(write(nullptr, nullptr), 108u);
    }
    ASSERT_EQ(set_all(crl, "1029=05, 1030=86400, 1057=75"), 0u);
    const std::string point = "30(06(551D1C) 04(30(A0(A0(86(75))))))";
    const auto hex = [](const std::string &text) { return to_hex(from_hex(text)); };
    expect_piece(ZI_CRL_EncodeRevokedCRL, crl,
                 hex("30(30(02(05) 17(3730303130323030303030305A)))"));
    expect_piece(ZI_Crl_EncodeExtensions, crl, hex("A0(30(" + point + "))"));
    expect_piece(ZI_Crl_EncodeCRLDPs, crl, hex(point));
    const Octets octet{4};
    Anybuf reason = borrowed(octet);
    const Handed out = handed([&](Anybuf **to) { return ZI_CRL_WriteEntryExtension(&reason, to); });
    EXPECT_EQ(describe(out.record.get()), "16 " + hex("30(30(06(551D15) 04(0A(04))))"));
    EXPECT_EQ(crl.set_int(CRL_REVOCATIONDATE, -1), 0u);
    EXPECT_EQ(expect_piece(ZI_CRL_EncodeRevokedCRL, crl, "(none)"), 115u);
}

TEST(CrlEncoding, DatesAreWrittenAsOtherTimesInEveryZone) {
    std::mt19937 random(7);
    for (const char *zone :
         {"Asia/Shanghai", "America/New_York", "Australia/Lord_Howe", "Africa/Monrovia",
          "Pacific/Apia", "right/UTC", "ABC5DEF,M3.2.0/0:30,M11.1.0", "UTC"}) {
        SCOPED_TRACE(zone);
        setenv("TZ", zone, 1);
        request::TimeTexts texts;
        for (int i = 0; i < 60000; ++i) {
            // Every second one lies in the first days, when offsets were odd.
            const auto any = static_cast<int32_t>(random() >> 1);
            const int32_t time = i % 2 == 0 ? any % (900 * 86400) : any;
            asn1::TimeText ours{};
            asn1::TimeText expected{};
            ASSERT_EQ(texts.text(time, ours), Status::ok);
            ASSERT_EQ(asn1::time_to_text(time, expected), Status::ok);
            ASSERT_TRUE(ours == expected) << time;
        }
    }
    tzset();
}

// ---- Entries

TEST(CrlEntries, AreWalkedFromTheFirstToBehindTheLast) {
    signing = {};
    for (const auto &[added, expected] : std::map<std::string, std::string>{
             {"1004=1", ""},
             {"1029=01FF, 1030=1, 1063=01", "[01 FF 1 01]"},
             {"1029=01, 1063=01, 1029=02, 1030=2, 1029=03", "[01 0 01][02 2 ][03 0 ]"}}) {
        const CrlHandle made;
        const CrlHandle read;
        ASSERT_EQ(set_all(made, "1012=41, " + added), 0u);
        ASSERT_EQ(read.decode(made.encode()), 0u);
        for (const CrlHandle *crl : {&made, &read}) {
            EXPECT_EQ(crl->entries(), expected);
            EXPECT_FALSE(crl->move());
            EXPECT_FALSE(crl->move());
            EXPECT_EQ(crl->entries(), "");
            EXPECT_EQ(crl->number(CRL_REVOCATIONDATE), "0");
        }
        EXPECT_TRUE(made.get(CRLEX_CRLREASON).empty());
        const std::vector<Octets> tbs = children_of(read.get(CRL_TBS_CERTLIST));
        EXPECT_EQ(read.get(CRLEX_CRLREASON), tbs.size() == 4 ? Octets{} : tbs.at(4));
        // What is added to a decoded list stands behind it; what was decoded is not changed.
        EXPECT_EQ(read.set_int(CRL_REVOCATIONDATE, 5), 100u);
        EXPECT_EQ(set_all(read, "1029=09, 1030=5"), 0u);
        EXPECT_EQ(read.entries(), "[09 5 ]");
    }
}

TEST(CrlEntries, CostOneBlockAndOneLineWhateverTheirNumber) {
    constexpr uint32_t kEntries = 100000;
    signing = {};
    const CrlHandle made;
    const CrlHandle read;
    const size_t build = heap_peak([&] {
        for (uint32_t i = 0; i < kEntries; ++i) {
            made.set(CRL_CERT_SERIALNUMBER, {1, uint8_t(i >> 16), uint8_t(i >> 8), uint8_t(i)});
            made.set_int(CRL_REVOCATIONDATE, int32_t(1700000000 + i * 997 % 90000000));
        }
        uint32_t len = 0;
        EXPECT_EQ(set_all(made, "1012=41"), 0u);
        EXPECT_EQ(ZACert_EncodeCrl(made, nullptr, &len), 0u);
    });
    const Octets der = made.encode();
    EXPECT_LE(build, 4 * der.size());

    const size_t before = heap_count().allocations;
    const TraceRecord trace;
    EXPECT_LE(heap_peak([&] { EXPECT_EQ(read.decode(der), 0u); }), der.size() + 8192);
    EXPECT_EQ(trace.lines(),
              (Trail{"======>ZACert_DecodeCrl Begin", "======>ZI_CRL_DecodeRevokedCerts",
                     "======>ZI_CRL_DecodeTBS", "======>ZACert_DecodeCrl End"}));
    for (uint32_t i = 1; i < kEntries; ++i) {
        ASSERT_TRUE(read.move());
    }
    EXPECT_EQ(read.hex(CRL_CERT_SERIALNUMBER), "01 01 86 9F");
    EXPECT_LE(heap_count().allocations - before, 4u);
}

}  // namespace
}  // namespace za::test
