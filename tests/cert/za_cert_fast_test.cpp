#include "cert/za_cert_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

namespace za::test {
namespace {

using Record = std::array<uint8_t, sizeof(ZA_CERTINFO)>;

void put_number(uint8_t *to, size_t number) {
    const auto value = static_cast<uint32_t>(number);
    std::memcpy(to, &value, sizeof value);
}

Octets key_of(const Context &cert) {
    const Bytes bits = cert->key.raw_bits.bytes();
    const Octets key(bits.begin(), bits.end());
    if (cert.hex(CERT_PUBLICKEY_ALGORITHM) != "2A 86 48 CE 3D 02 01" || key.size() >= 140) {
        return key;
    }
    const Octets parameters = cert.get(CERT_ECC_PUBLICKEY_OID);
    Octets block(412);
    put_number(&block[0], parameters.size() < 30 ? 12 : 11);
    put_number(&block[4], key.size());
    std::ranges::copy(key, &block[8]);
    put_number(&block[148], parameters.size());
    std::ranges::copy(parameters, &block[152]);
    return block;
}

// Identifier and places of a field's octets and, where it has one, its length; key and times apart.
struct Place {
    int32_t id;
    size_t octets;
    size_t length;
};
const std::map<std::string, Place> kPlaces{
    {"serial", {CERT_SERIALNUMBER, 1025, 1156}},
    {"der", {CERT_ISSUER_DERDN, 3220, 4244}},
    {"issuer", {CERT_ISSUER_COMMONNAME, 0, 0}},
    {"subject", {CERT_SUBJECT_COMMONNAME, 513, 0}},
    {"key", {CERT_SUBJECTPUBLICKEYINFO, 1168, 3216}},
    {"algorithm", {CERT_PUBLICKEY_ALGORITHM, 4248, 4376}},
};

// A record that was full of A5 before these fields were filled.
Record expected(const Context &cert, const std::string &fields) {
    Record record;
    record.fill(0xA5);
    for (const std::string &field : list_of(fields)) {
        if (field == "validity") {
            put_number(&record[1160], cert.number(CERT_VALIDFROM));
            put_number(&record[1164], cert.number(CERT_VALIDTO));
            continue;
        }
        const Place place = kPlaces.at(field);
        Octets value = field == "key" ? key_of(cert) : cert.get(place.id);
        if (place.length == 0) {
            value.push_back(0);
        } else {
            put_number(&record[place.length], value.size());
        }
        std::ranges::copy(value, &record[place.octets]);
    }
    return record;
}

ZA_CERTINFO untouched() {
    return std::bit_cast<ZA_CERTINFO>(expected(Context(), ""));
}

Octets edited(const std::string &name, const Row &row) {
    Parts parts(name);
    const Row words = split(row[1], ' ');
    if (words[0] == "field") {
        parts.tbs.at(number_of(words[1])) = from_hex(row[2]);
    } else if (words[0] == "first") {
        parts.tbs.resize(number_of(words[1]));
        parts.extensions.clear();
    }
    return words[0].empty() ? certificate(name) : parts.der();
}

uint32_t parse(uint32_t mode, const Octets &der, ZA_CERTINFO &info) {
    return UserCertParse(mode, der.data(), int32_t(der.size()), &info);
}

void expect_parsed(const Octets &der, const Row &row) {
    const NoLeak no_leak;
    const Context cert;
    cert.decode(der);  // as far as it goes
    ZA_CERTINFO info = untouched();
    const TraceRecord trace;
    EXPECT_EQ(parse(number_of(row[0]), join({der, {0x55}}), info), number_of(row[3]));
    EXPECT_EQ(octets_of(info), octets_of(expected(cert, row[4])));
    EXPECT_EQ(trace.failures(), row[3] == "0" ? Trail{}
                                              : (Trail{row[5], "------>ZI_Cert_DecodeTBS_ForSpead",
                                                       "------>ZACert_DecodeCert_ForSpead"}));
    const Octets tbs = children(der)[0];
    Anybuf element = borrowed(tbs, 16);
    ZA_CERTINFO again = untouched();
    EXPECT_EQ(ZI_Cert_DecodeTBS_ForSpead(number_of(row[0]), &again, cert, &element),
              number_of(row[3]));
    EXPECT_EQ(octets_of(again), octets_of(info));
}

TEST(CertificateFastParse, ModesFillTheirFieldsAlone) {
    const std::span names(kCertificates);
    for (const Row &row : rows_of("certs/rows/fast")) {
        for (const char *name : names.first(row[1].empty() ? names.size() : 1)) {
            SCOPED_TRACE(row[0] + "|" + row[1] + "|" + row[2] + " " + name);
            expect_parsed(edited(name, row), row);
        }
    }
}

TEST(CertificateFastParse, BadInputIsRefused) {
    const Octets der = certificate("ec_named");
    for (const uint32_t mode : {4u, 5u}) {
        const auto call = [&](const Octets &octets) {
            ZA_CERTINFO info;
            return parse(mode, octets, info);
        };
        expect_allocation_faults_survived([&] { return call(der); });
        expect_damage_survived(der, {101, 102, 104, 106, 108, 109, 113, 121, 0xFFFFFFFF}, call);
    }
    ZA_CERTINFO info = untouched();
    Anybuf none{};
    const TraceRecord trace;
    EXPECT_EQ(parse(6, {0x30, 0}, info), 0u);
    EXPECT_EQ(trace.lines().at(2), "======>ZACert_DecodeCert_ForSpead End");
    EXPECT_EQ(UserCertParse(6, nullptr, 1, &info), 108u);
    EXPECT_EQ(UserCertParse(6, der.data(), -1, &info), 108u);
    EXPECT_EQ(UserCertParse(6, der.data(), 9, nullptr), 108u);
    const char *const no_certificate = "------>iDerCertLen<=0 || pDerCert==NUL";
    EXPECT_EQ(trace.failures(),
              (Trail{no_certificate, no_certificate, "------>pStCertInfo==NULLL"}));
    EXPECT_EQ(ZI_Cert_DecodeTBS_ForSpead(6, nullptr, &none, &none), 108u);
    EXPECT_EQ(ZI_Cert_DecodeTBS_ForSpead(6, &info, nullptr, &none), 108u);
    EXPECT_EQ(ZI_Cert_DecodeTBS_ForSpead(6, &info, &none, nullptr), 108u);
    EXPECT_EQ(octets_of(info), octets_of(untouched()));
}

}  // namespace
}  // namespace za::test
