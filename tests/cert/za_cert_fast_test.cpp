#include "cert/za_cert_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <cstring>

namespace za::test {
namespace {

ZA_CERTINFO untouched() {
    ZA_CERTINFO info;
    std::memset(&info, 0xA5, sizeof info);
    return info;
}

Octets key_of(const Context &cert) {
    const Bytes bits = cert->key.raw_bits.bytes();
    const Bytes parameters = cert->key.parameters.bytes();
    if (cert.hex(CERT_PUBLICKEY_ALGORITHM) != "2A 86 48 CE 3D 02 01" || bits.size() >= 140) {
        return Octets(bits.begin(), bits.end());
    }
    ZA_ECCKEYBLOCK block{
        parameters.size() < 30 ? 12u : 11u, to_u32(bits.size()), {}, to_u32(parameters.size()), {}};
    std::ranges::copy(bits, block.bits);
    std::ranges::copy(parameters, block.param);
    return octets_of(block);
}

// An untouched record after these fields were filled.
ZA_CERTINFO expected(const Context &cert, const std::string &fields) {
    ZA_CERTINFO info = untouched();
    uint32_t unused = 0;
    const auto has = [&](const char *name) { return fields.find(name) != std::string::npos; };
    const auto fill = [&](const char *name, const Octets &value, uint8_t *field, uint32_t &len) {
        std::copy_n(value.begin(), has(name) ? value.size() : 0, field);
        len = has(name) ? to_u32(value.size()) : len;
    };
    const auto text = [&](int32_t id) { return join({cert.get(id), {0}}); };
    fill("serial", cert.get(CERT_SERIALNUMBER), info.serial, info.serialLen);
    fill("der", cert.get(CERT_ISSUER_DERDN), info.issuerDer, info.issuerDerLen);
    fill("issuer", text(CERT_ISSUER_COMMONNAME), info.issuerCN, unused);
    fill("subject", text(CERT_SUBJECT_COMMONNAME), info.subjectCN, unused);
    fill("key", has("key") ? key_of(cert) : Octets{}, info.publicKey, info.publicKeyLen);
    fill("algorithm", cert.get(CERT_PUBLICKEY_ALGORITHM), info.keyAlgOid, info.keyAlgOidLen);
    info.notBefore = has("validity") ? int32_t(cert.number(CERT_VALIDFROM)) : info.notBefore;
    info.notAfter = has("validity") ? int32_t(cert.number(CERT_VALIDTO)) : info.notAfter;
    return info;
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
        ZA_CERTINFO info;
        const auto call = [&](const Octets &octets) { return parse(mode, octets, info); };
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
    EXPECT_EQ(trace.failures().at(1), "------>iDerCertLen<=0 || pDerCert==NUL");
    EXPECT_EQ(trace.failures().at(2), "------>pStCertInfo==NULLL");
    EXPECT_EQ(ZI_Cert_DecodeTBS_ForSpead(6, nullptr, &none, &none), 108u);
    EXPECT_EQ(ZI_Cert_DecodeTBS_ForSpead(6, &info, &none, nullptr), 108u);
    EXPECT_EQ(octets_of(info), octets_of(untouched()));
}

}  // namespace
}  // namespace za::test
