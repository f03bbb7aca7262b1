#include "cert/za_cert_support.hpp"
#include "request/za_crl_attributes.hpp"
#include "request/za_crl_times.hpp"
#include "support/attribute_page.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <array>
#include <ctime>
#include <gmock/gmock.h>
#include <map>
#include <random>

namespace za::test {
namespace {

struct CrlHandle {
    mutable request::Crl crl;

    operator void *() const { return &crl; }
    uint32_t set(int32_t id, const Octets &value) const {
        return ZACert_SetCrlAttributeChar(&crl, id, value.data(), int32_t(value.size()));
    }
    Octets get(int32_t id) const {
        return two_calls([&](uint8_t *out, uint32_t *len) {
            return ZACert_GetCrlAttributeChar(&crl, id, out, len);
        });
    }
    std::string hex(int32_t id) const { return to_hex(get(id)); }
    std::string number(int32_t id) const {
        uint32_t value = 7;
        EXPECT_EQ(ZACert_GetCrlAttributeInt(&crl, id, &value), 0u);
        return std::to_string(value);
    }
    bool move() const {
        uint8_t untouched = 0xA5;
        uint32_t len = 7;
        EXPECT_EQ(ZACert_GetCrlAttributeChar(&crl, CRL_CERT_NEXT, &untouched, &len), 0u);
        EXPECT_EQ(untouched, 0xA5);
        return len == 1;
    }
    uint32_t decode(const Octets &der) const {
        return ZACert_DecodeCrl(&crl, der.data(), uint32_t(der.size()));
    }
    Octets encode(uint32_t *status = nullptr) const {
        return two_calls(
            [&](uint8_t *out, uint32_t *len) { return ZACert_EncodeCrl(&crl, out, len); }, status);
    }
    // "[serial date reason]" of the current entry and of all behind it.
    std::string entries() const {
        std::string all;
        for (bool more = !get(CRL_CERT_SERIALNUMBER).empty(); more; more = move()) {
            all += "[" + hex(CRL_CERT_SERIALNUMBER) + " " + number(CRL_REVOCATIONDATE) + " " +
                   hex(CRLEX_CRLREASON) + "]";
        }
        return all;
    }
};

// "IDENTIFIER=VALUE": a decimal number for times and the version, octets for the rest.
uint32_t set_one(const CrlHandle &crl, const std::string &step) {
    const int32_t id = std::stoi(step);
    const std::string value = step.substr(5);
    constexpr std::array kInt{CRL_VERSION, CRL_THISUPDATE, CRL_NEXTUPDATE, CRL_REVOCATIONDATE};
    return std::ranges::find(kInt, id) != kInt.end()
               ? ZACert_SetCrlAttributeInt(crl, id, std::stoi(value))
               : crl.set(id, from_hex(value));
}

TEST(CrlAttributes, AreSetAndReadByTheirAccessorsAlone) {
    std::map<int32_t, Row> table;
    for (const Row &row : rows_of("crls/identifiers.txt")) {
        for (int32_t id = std::stoi(row[0]); id <= std::stoi(row[1]); ++id) {
            table[id] = row;
        }
    }
    const Row unknown{"", "", "", "110", "110", "110", ""};
    for (int32_t id = 1000; id <= 1070; ++id) {
        SCOPED_TRACE(id);
        const Row &row = table.try_emplace(id, unknown).first->second;
        const bool is_int = row[2] == "Int";
        const CrlHandle crl;
        uint32_t len = 7;
        uint32_t value = 7;
        const uint32_t got = ZACert_GetCrlAttributeChar(crl, id, nullptr, &len);
        EXPECT_EQ(got, is_int ? 110 : number_of(row[5]));
        EXPECT_EQ(len, 0u) << "nothing is there yet";
        EXPECT_EQ(ZACert_GetCrlAttributeInt(crl, id, &value), is_int ? 0u : 110u);
        EXPECT_EQ(value, is_int ? 0u : 7u);
        for (const uint8_t place : {uint8_t{3}, uint8_t{4}}) {
            const uint32_t set = ZACert_SetCrlAttributeInt(crl, id, -1);
            EXPECT_EQ(set, is_int ? number_of(row[place]) : 110);
            EXPECT_EQ(crl.set(id, {place}), is_int ? 110 : number_of(row[place]));
            EXPECT_EQ(crl.set(CRL_CERT_SERIALNUMBER, {1}), 0u);
        }
        EXPECT_EQ(is_int ? crl.number(id) : crl.hex(id), row[6]);
        EXPECT_EQ(crl.set(id, {}), 101u);
        EXPECT_EQ(ZACert_SetCrlAttributeChar(crl, id, nullptr, 1), 108u);
    }
    expect_page_tells("Attributes of a certificate revocation list", request::crl_attributes());
}

TEST(CrlAttributes, SomeHaveLinesOfTheirOwn) {
    const CrlHandle crl;
    const TraceRecord trace;
    EXPECT_EQ(set_one(crl, "1030=1") + set_one(crl, "1063=01"), 200u);
    EXPECT_EQ(set_one(crl, "1032=01"), 0u);
    EXPECT_EQ(crl.number(CRL_REVOCATIONDATE) + crl.hex(CRLEX_CRLREASON), "0");
    EXPECT_THAT(trace.lines(), testing::IsSupersetOf({"======>Please Set Revoke Certificate First!",
                                                      "======>Please Set Revoke Certificate First!",
                                                      "======>Set CERTEX_AUTHORITY_KEYIDENTIFIER",
                                                      "======>Get CRL_CERT_REVOCATIONDATE",
                                                      "======>Get CRL_RevokedCertificates_DER"}));
}

// ---- Decoding

std::string describe(const CrlHandle &handle) {
    const Octets issuer = handle.get(CRL_ISSUER_DN);
    std::string text = handle.number(CRL_VERSION);
    text += ", " + handle.hex(CRL_INNER_SIGNATUREALGORITHM);
    text += ", " + handle.hex(CRL_OUTER_SIGNATUREALGORITHM);
    text += ", " + std::to_string(handle.get(CRL_CA_SIGNATURE).size());
    text += ", " + std::string(issuer.begin(), issuer.end());
    text += ", " + handle.number(CRL_THISUPDATE) + ", " + handle.number(CRL_NEXTUPDATE);
    const request::Crl &crl = handle.crl;
    for (const auto *extension : {&crl.crl_number, &crl.delta_indicator,
                                  &crl.authority_key_identifier, &crl.distribution_point}) {
        text += ", " + (extension->state.decoded ? to_hex(extension->value.bytes()) : "-");
        text += extension->state.critical != 0 ? "!" : "";
    }
    return text + handle.entries();
}

void expect_read(const std::string &file) {
    const std::set<uint32_t> refused{101, 102, 104, 106, 108, 111, 121, 0xFFFFFFFF};
    expect_decoded(file, refused, [](const Octets &der, std::string &out) {
        const CrlHandle crl;
        const uint32_t result = crl.decode(der);
        out = result == 0 ? describe(crl) : "";
        return result;
    });
}

TEST(CrlDecoding, ReadsListsOfOthers) {
    expect_read("crls/theirs.txt");
}

TEST(CrlDecoding, ReadsOrLeavesOneLinePerLevelOfAFailure) {
    expect_read("crls/decode.txt");
}

TEST(CrlDecoding, KeepsWhatTheHeaderAnnounces) {
    const Octets der = data_file("crls/openssl.der");
    const CrlHandle crl;
    const CrlHandle kept;
    EXPECT_EQ(crl.decode(join({der, der})), 0u);
    EXPECT_EQ(crl.encode(), der);
    EXPECT_EQ(setCRL2Context(kept, der.data(), uint32_t(der.size()) - 1), 102u);
    EXPECT_EQ(setCRL2Context(kept, der.data(), uint32_t(der.size())), 0u);
    EXPECT_EQ(kept.encode(), der);
    EXPECT_TRUE(kept.get(CRL_TBS_CERTLIST).empty());
}

TEST(CrlDecoding, PiecesDecodeAloneFromCopies) {
    const CrlHandle whole;
    const CrlHandle tbs;
    const CrlHandle pieces;
    ASSERT_EQ(whole.decode(data_file("crls/openssl.der")), 0u);
    {
        const Octets octets = whole.get(CRL_TBS_CERTLIST);
        const std::vector<Octets> fields = children_of(octets);
        Anybuf record = borrowed(octets);
        Anybuf revoked = borrowed(fields[5]);
        Anybuf extensions = borrowed(fields[6]);
        EXPECT_EQ(ZI_CRL_DecodeTBS(tbs, &record), 0u);
        EXPECT_EQ(ZI_CRL_DecodeRevokedCerts(pieces, &revoked), 0u);
        EXPECT_EQ(ZI_Crl_DecodeExtensions(&extensions, pieces), 0u);
        EXPECT_EQ(ZI_CRL_DecodeRevokedCerts(pieces, &record), 108u) << "keeps the list it has";
    }
    EXPECT_EQ(pieces.hex(CRLEX_CRLNUMBER), "01 02");
    const std::string entries = whole.entries();
    EXPECT_EQ(tbs.entries(), entries);
    EXPECT_EQ(pieces.entries(), entries);
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

uint32_t set_all(const CrlHandle &crl, const std::string &attributes) {
    for (const std::string &step : split(attributes, ',')) {
        if (const uint32_t result = set_one(crl, step); result != 0) {
            return result;
        }
    }
    return ZACert_SetCrlSignFunc(crl, sign, reinterpret_cast<const uint8_t *>("key"), 3);
}

TEST(CrlSigning, CallsTheFunctionAsPromised) {
    const std::string longest = "NULL 0 key, room 10239 key, ";
    const std::string nothing = "NULL 0 key, room 0 key, ";
    const std::string first = "NULL 0 key, ";
    for (const Signing &row : {Signing{}, Signing{2, 1}, Signing{10239, 10239, 0, 0, 0, longest},
                               Signing{10240, 0, 0, 0, 107, first}, Signing{2, 3, 0, 0, 107},
                               Signing{0, 0, 0, 0, 101, nothing}, Signing{2, 0, 0, 0, 101},
                               Signing{2, 2, -5, 0, 0xFFFFFFFB, first}, Signing{2, 2, 0, 77, 77}}) {
        SCOPED_TRACE(std::to_string(row.announced) + " " + std::to_string(row.written));
        const CrlHandle crl;
        uint32_t status = 7;
        EXPECT_EQ(set_one(crl, "1012=41"), 0u);
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
        EXPECT_EQ(crl.encode() == der, row.result == 0);
        EXPECT_EQ(signing.calls, row.result == 0 ? "" : Signing().calls);
    }
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
    const Octets der = certificate("rsa_all");
    const Parts parts("rsa_all");
    Parts long_name = parts;
    long_name.tbs[5] = from_hex("30(31(30(06(550403) 0C(41*2028))))");
    void *ctx = nullptr;
    const auto create = [&](const Octets &from) {
        return ZACert_CreateCrlEncodeCtx_Ex(&ctx, from.data(), uint32_t(from.size()));
    };
    EXPECT_EQ(long_name.tbs[5].size(), 2049u);
    EXPECT_EQ(create(long_name.der()), 101u);
    EXPECT_EQ(create(Octets(der.begin(), der.end() - 1)), 102u);
    EXPECT_EQ(ZACert_CreateCrlEncodeCtx_Ex(&ctx, der.data(), 0), 108u);
    EXPECT_EQ(ZACert_CreateCrlEncodeCtx_Ex(&ctx, nullptr, 1), 108u);
    expect_allocation_faults_survived([&] {
        const uint32_t result = create(der);
        EXPECT_EQ(ctx != nullptr, result == 0);
        if (ctx != nullptr) {
            auto &crl = *static_cast<request::Crl *>(ctx);
            EXPECT_TRUE(equal(crl.issuer.der.bytes(), parts.tbs[5]));
            uint32_t len = 0;
            ZACert_SetCrlAttributeChar(ctx, CRL_ISSUER_COMMONNAME, der.data(), 1);
            EXPECT_TRUE(crl.issuer.entries.empty() || ZACert_EncodeCrl(ctx, nullptr, &len) == 108);
        }
        EXPECT_EQ(ZACert_DestroyCrlDecodeCtx(std::exchange(ctx, nullptr)), 0u);
        return result;
    });
}

TEST(CrlEncoding, PiecesAreHandedOutAlone) {
    const CrlHandle crl;
    const auto piece = [](auto write, void *from) {
        const Handed out = handed([&](Anybuf **place) { return write(from, place); });
        return std::to_string(out.result) + " " + to_hex(out.record.get());
    };
    const auto hex = [](const std::string &text) { return "0 " + to_hex(from_hex(text)); };
    EXPECT_EQ(piece(ZI_CRL_EncodeRevokedCRL, crl), "0 (none)");
    EXPECT_EQ(piece(ZI_Crl_EncodeExtensions, crl), "0 (none)");
    EXPECT_EQ(piece(ZI_Crl_EncodeCRLDPs, nullptr), "108 (none)");
    EXPECT_EQ(set_all(crl, "1029=05, 1030=86400, 1057=75"), 0u);
    const std::string point = "30(06(551D1C) 04(30(A0(A0(86(75))))))";
    EXPECT_EQ(piece(ZI_CRL_EncodeRevokedCRL, crl),
              hex("30(30(02(05) 17(3730303130323030303030305A)))"));
    EXPECT_EQ(piece(ZI_Crl_EncodeExtensions, crl), hex("A0(30(" + point + "))"));
    EXPECT_EQ(piece(ZI_Crl_EncodeCRLDPs, crl), hex(point));
    EXPECT_EQ(set_one(crl, "1030=-1"), 0u);
    EXPECT_EQ(piece(ZI_CRL_EncodeRevokedCRL, crl), "115 (none)");
    const Octets code{4};
    Anybuf reason = borrowed(code);
    const auto write = [&](void *, Anybuf **to) { return ZI_CRL_WriteEntryExtension(&reason, to); };
    EXPECT_EQ(piece(write, nullptr), hex("30(30(06(551D15) 04(0A(04))))"));
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
        EXPECT_EQ(set_one(read, "1030=5"), 100u);
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
            ZACert_SetCrlAttributeInt(made, CRL_REVOCATIONDATE, int32_t(1700000000 + i * 997));
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
