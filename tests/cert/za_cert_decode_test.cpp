#include "cert/za_cert_decode.hpp"

#include "cert/za_cert_support.hpp"
#include "names/za_low_name_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <fstream>
#include <map>

namespace za::test {
namespace {

// What expect.py wrote beside a certificate.
struct Expected {
    std::map<int32_t, std::string> chars;
    std::map<int32_t, uint32_t> ints;
    std::vector<std::string> privates;
    std::string point;

    explicit Expected(const std::string &name) {
        std::ifstream file(ZACERT_TEST_DATA "/certs/" + name + ".expect");
        int32_t id = 0;
        for (std::string kind; file >> kind;) {
            if (kind == "point") {
                file >> point;
            } else if (file >> id; kind == "char") {
                file >> chars[id];
            } else if (kind == "int") {
                file >> ints[id];
            } else {
                std::getline(file >> std::ws, privates.emplace_back());
            }
        }
    }
};

// The form that other functions of the library take keys of 256 bits in.
void expect_point(const Octets &der, const std::string &point) {
    ZACERT_EccPubKey key{};
    uint32_t len = 0;
    EXPECT_EQ(der.size(), 287u);
    EXPECT_EQ(ZACERT_DecodeEccPubKey(der.data(), static_cast<int32_t>(der.size()), &key, &len), 0u);
    EXPECT_EQ(plain_hex(key.x) + plain_hex(key.y), point);
}

TEST(CertificateDecoding, AttributesAreWhatOpensslFinds) {
    for (const char *name : kCertificates) {
        SCOPED_TRACE(name);
        const NoLeak no_leak;
        const Expected expected(name);
        const Context cert;
        ASSERT_EQ(cert.decode(certificate(name)), 0u);
        EXPECT_GE(expected.chars.size(), 14u);
        for (int32_t id = 1; id <= 3003; ++id) {
            uint32_t status = 0;
            const Octets value = cert.get(id, &status);
            const auto row = expected.chars.find(id);
            EXPECT_TRUE(status == 0 || (status == 110 && row == expected.chars.end())) << id;
            if (id == CERT_SUBJECTPUBLICKEYINFO && !expected.point.empty()) {
                expect_point(value, expected.point);
            } else {
                EXPECT_EQ(plain_hex(value), row == expected.chars.end() ? "" : row->second) << id;
            }
        }
        for (const auto &[id, value] : expected.ints) {
            uint32_t number = 7;
            EXPECT_EQ(ZACert_GetCertAttributeInt(cert, id, &number), 0u);
            EXPECT_EQ(number, value) << id;
        }
        EXPECT_EQ(cert.count_private(), expected.privates.size());
        for (uint32_t index = 1; index <= expected.privates.size(); ++index) {
            EXPECT_EQ(cert.private_extension(index), expected.privates[index - 1]);
        }
    }
}

TEST(CertificateDecoding, WhatHasNoGetterIsKept) {
    const Context all;
    ASSERT_EQ(all.decode(certificate("rsa_all")), 0u);
    EXPECT_EQ(describe_entries(all->authority_key_identifier.issuer.first()),
              "25 19 44 45; 29 12 52 6F 6F 74; 30 12 52 6F 6F 74 73; 30 12 54 65 73 74 73; "
              "22 12 54 65 73 74 20 52 6F 6F 74");
    EXPECT_EQ(to_hex(all->authority_key_identifier.serial.bytes()), "01");
    EXPECT_EQ(all->distribution_points.uris.size(), 2u);
    EXPECT_EQ(plain_hex(all->whole.bytes()), plain_hex(certificate("rsa_all")));

    const Context purposes;
    ASSERT_EQ(purposes.decode(certificate("rsa_purposes")), 0u);
    ASSERT_EQ(purposes->extended_key_usage.purposes.size(), 2u);
    EXPECT_EQ(to_hex(purposes->extended_key_usage.purposes.front().bytes()),
              "2B 06 01 05 05 07 03 09");
    EXPECT_EQ(purposes->extended_key_usage.state.critical, 0xFF);
    EXPECT_EQ(to_hex(purposes->authority_key_identifier.serial.bytes()), "01");

    const Context p256;
    ASSERT_EQ(p256.decode(certificate("ec_named")), 0u);
    EXPECT_EQ(p256->key.raw_bits.bytes().size(), 65u);
}

TEST(CertificateDecoding, MissingPartsStayEmpty) {
    const Parts parts("rsa_all");
    const Octets tbs = parts.tbs_der();
    const auto expect_sizes = [](const Octets &der, const std::vector<size_t> &sizes) {
        const Context cert;
        EXPECT_EQ(cert.decode(der), 0u);
        EXPECT_EQ((std::vector{cert.get(1).size(), cert.get(2).size(), cert.get(3).size()}), sizes);
    };
    expect_sizes(tlv(0x30, join({tbs, parts.behind[0]})), {tbs.size(), 9, 0});
    expect_sizes(tlv(0x30, tbs), {tbs.size(), 0, 0});
    expect_sizes(from_hex("30 02 30 00"), {2, 0, 0});
    expect_sizes(from_hex("30 00"), {0, 0, 0});
    expect_sizes(tlv(0x30, join({tbs, join(parts.behind), from_hex("05 00")})),
                 {tbs.size(), 9, 128});
}

TEST(CertificateDecoding, EndsEarlyAtEveryField) {
    const Lines trail{"------>ZACERT_CertNotEndErr", "------>ZI_Cert_DecodeTBS"};
    for (const char *name : {"rsa_all", "rsa_v1"}) {
        const size_t num_required = std::string_view(name) == "rsa_v1" ? 6 : 7;
        for (size_t size = 1; size <= num_required; ++size) {
            SCOPED_TRACE(size);
            Parts parts(name);
            parts.tbs.resize(size);
            parts.extensions.clear();
            const Context cert;
            const TraceRecord trace;
            EXPECT_EQ(cert.decode(parts.der()), size == num_required ? 0u : 109u);
            EXPECT_EQ(trace.failures(), size == num_required ? Lines{} : trail);
        }
    }
}

TEST(CertificateDecoding, LeavesOneLinePerLevelOfAFailure) {
    for (const Row &row : rows_of("failing_fields")) {
        SCOPED_TRACE(row[0] + ": " + row[1]);
        const NoLeak no_leak;
        Parts parts("rsa_all");
        parts.tbs[number(row[0])] = from_hex(row[1]);
        const Context cert;
        const TraceRecord trace;
        EXPECT_EQ(cert.decode(parts.der()), number(row[2]));
        Lines failures(row.begin() + 3, row.end());
        failures.push_back("------>ZI_Cert_DecodeTBS");
        EXPECT_EQ(trace.failures(), failures);
    }
    // A time that is no GeneralizedTime is tried as UTCTime, whose code is the result.
    Parts parts("rsa_all");
    parts.tbs[Parts::kValidity] = from_hex("30 04 18 00 18 00");
    const Context times;
    EXPECT_EQ(times.decode(parts.der()), 106u);

    Parts signature("rsa_all");
    signature.behind[0] = from_hex("31 00");
    const Context cert;
    const TraceRecord trace;
    EXPECT_EQ(cert.decode(signature.der()), 108u);
    EXPECT_EQ(trace.lines(), (Lines{"======>ZACert_DecodeCert Begin",
                                    "======>ZI_Cert_DecodeExtensions", "======>ZI_Cert_DecodeTBS",
                                    "------>pMidData[0]!=0x30", "------>ZI_Cert_DecodeTBS"}));
}

TEST(CertificateDecoding, LinesOfASuccessAreCounted) {
    for (const bool has_extensions : {true, false}) {
        const Octets der = certificate(has_extensions ? "rsa_all" : "rsa_v1");
        const TraceRecord trace;
        void *cert = nullptr;
        EXPECT_EQ(ZACert_CreateCertDecodeCtx(&cert), 0u);
        EXPECT_EQ(ZACert_DecodeCert(cert, der.data(), static_cast<uint32_t>(der.size())), 0u);
        EXPECT_EQ(ZACert_DestroyCertDecodeCtx(cert), 0u);
        Lines lines{"======>ZACert_CreateCertDecodeCtx Begin",
                    "======>ZACert_CreateCertEncodeCtx Begin",
                    "======>ZACert_CreateCertEncodeCtx End",
                    "======>ZACert_CreateCertDecodeCtx End",
                    "======>ZACert_DecodeCert Begin",
                    "======>ZI_Cert_DecodeExtensions",
                    "======>ZI_Cert_DecodeTBS",
                    "======>ZACert_DecodeCert End",
                    "======>ZACert_DestroyCertDecodeCtx Begin",
                    "======>ZACert_DestroyCertEncodeCtx Begin",
                    "======>ZACert_DestroyCertEncodeCtx End",
                    "======>ZACert_DestroyCertDecodeCtx End"};
        if (!has_extensions) {
            lines.erase(lines.begin() + 5);
        }
        EXPECT_EQ(trace.lines(), lines);
    }
    EXPECT_EQ(ZACert_DestroyCertDecodeCtx(nullptr), 0u);
    EXPECT_EQ(ZACert_CreateCertDecodeCtx(nullptr), 108u);
}

TEST(CertificateDecoding, WhatFollowsTheKeyIsTheExtensions) {
    for (const Row &row : rows_of("behind_key")) {
        SCOPED_TRACE(row[0]);
        Parts parts("rsa_v1");
        parts.tbs.push_back(from_hex(row[0]));
        parts.tbs.push_back(from_hex("05 00"));  // ignored
        const Context cert;
        EXPECT_EQ(cert.decode(parts.der()), number(row[1]));
        EXPECT_EQ(cert.hex(CERTEX_SUBJECTKEYIDENTIFIER), row[2]);
        EXPECT_TRUE(cert->extensions_present);
    }
}

// The key kind follows from how long the parameters are, but for thirty octets and less than six.
TEST(CertificateDecoding, KeyKindHasItsBoundaries) {
    for (const Row &row : rows_of("key_parameters")) {
        SCOPED_TRACE(row[0]);
        Parts parts("rsa_all");
        std::vector<Octets> key = children(parts.tbs[Parts::kKey]);
        key[0] = tlv(0x30, join({children(key[0])[0], from_hex(row[0])}));
        parts.tbs[Parts::kKey] = tlv(0x30, join(key));
        const Context cert;
        EXPECT_EQ(cert.decode(parts.der()), 0u);
        EXPECT_EQ(cert->key.kind, number(row[1]));
        EXPECT_EQ(cert.get(CERT_ECC_PUBLICKEY_OID).size(), number(row[2]));
        EXPECT_EQ(cert.set(CERT_ECC_PUBLICKEY_OID, "x"), 0u) << "no storage without octets is kept";
    }
}

TEST(CertificateDecoding, EmptyUnitsAreJoinedLikeOthers) {
    Parts parts("rsa_all");
    parts.tbs[Parts::kSubject] = from_hex(
        "30 24 31 09 30 07 06 03 55 04 0B 0C 00 31 0C 30 0A 06 03 55 04 0B 0C 03 41 42 43 "
        "31 09 30 07 06 03 55 04 0B 0C 00");
    const Context cert;
    ASSERT_EQ(cert.decode(parts.der()), 0u);
    EXPECT_EQ(cert.text(CERT_SUBJECT_ORGANIZATIONALUNITNAME), ",OU=ABC,OU=");
    EXPECT_EQ(cert.text(CERT_SUBJECT_DN), "OU=,OU=ABC,OU=");
}

TEST(CertificateDecoding, HeaderDecidesHowFarACertificateGoes) {
    const Octets der = certificate("rsa_all");
    for (const uint32_t len : {0u, 1u, static_cast<uint32_t>(der.size() - 1)}) {
        const Context cert;
        EXPECT_EQ(ZACert_DecodeCert(cert, der.data(), len), 0u);
        EXPECT_EQ(cert->whole.bytes().size(), der.size());
    }
    const Octets longer = join({der, Octets(10)});
    const Context cert;
    EXPECT_EQ(cert.decode(longer), 0u);
    EXPECT_EQ(cert->whole.bytes().size(), der.size());

    for (const Row &row : rows_of("lengths")) {
        SCOPED_TRACE(row[0]);
        const Octets padded = join({from_hex(row[0]), Octets(65536)});
        const Context big;
        const uint32_t result = ZACert_DecodeCert(big, padded.data(), number(row[1]));
        EXPECT_TRUE(result == 101 || row[2] == "read") << result;
        EXPECT_EQ(big->whole.empty(), row[2] == "refused");
    }
    EXPECT_EQ(ZACert_DecodeCert(cert, nullptr, 10), 108u);
    EXPECT_EQ(ZACert_DecodeCert(nullptr, der.data(), 10), 108u);

    // Inside the library the octets at hand are the bound.
    cert::Certificate bounded;
    EXPECT_EQ(cert::decode_certificate(bounded, Bytes(der).first(der.size() - 1)),
              Status::length_not_equal);
    EXPECT_TRUE(bounded.whole.empty());
}

TEST(CertificateDecoding, ADecodedContextStillTakesValues) {
    const NoLeak no_leak;
    const Context cert;
    ASSERT_EQ(cert.decode(certificate("rsa_all")), 0u);
    EXPECT_EQ(cert.set(CERTEX_SUBJECTKEYIDENTIFIER, "x"), 114u);
    EXPECT_EQ(cert.set(CERT_SERIALNUMBER, "x"), 0u);
    EXPECT_EQ(cert.text(CERT_SERIALNUMBER), "x");
    EXPECT_EQ(cert.set(CERT_ISSUER_DERDN, "x"), 0u);
    EXPECT_EQ(ZACert_SetCertAttributeInt(cert, CERT_VALIDTO, 77), 0u);
    uint32_t time = 0;
    EXPECT_EQ(ZACert_GetCertAttributeInt(cert, CERT_VALIDTO, &time), 0u);
    EXPECT_EQ(time, 77u);

    // One context is for one certificate, but a second one must do no harm.
    EXPECT_EQ(cert.decode(certificate("ec_named")), 0u);
    EXPECT_EQ(cert.hex(CERT_ECC_PUBLICKEY_OID), "2A 86 48 CE 3D 03 01 07");
    EXPECT_EQ(cert.text(CERT_SUBJECT_ORGANIZATIONNAME), "Example");
}

TEST(CertificateDecoding, PiecesDecodeAlone) {
    const Parts parts("rsa_all");
    const NoLeak no_leak;
    const Context tbs;
    {
        const Octets der = parts.tbs_der();
        Anybuf record = borrowed(der, 16);
        EXPECT_EQ(ZI_Cert_DecodeTBS(tbs, &record), 0u);
    }
    EXPECT_EQ(tbs.hex(CERT_SERIALNUMBER), "C0 FF EE 01") << "read from a copy";
    EXPECT_EQ(tbs.hex(CERTEX_KEYUSAGE), "86");
    EXPECT_EQ(tbs.get(CERT_CA_SIGNATURE).size(), 0u);

    const Context extensions;
    {
        const Octets der = tlv(0xA3, tlv(0x30, join(parts.extensions)));
        Anybuf record = borrowed(der, 0xA3);
        EXPECT_EQ(ZI_Cert_DecodeExtensions(&record, extensions), 0u);
    }
    EXPECT_EQ(extensions.text(CERT_SUBJECT_ALT_DNSNAME), "one.example");
    EXPECT_EQ(extensions.hex(CERT_SERIALNUMBER), "");

    Anybuf none{};
    EXPECT_EQ(ZI_Cert_DecodeTBS(nullptr, &none), 108u);
    EXPECT_EQ(ZI_Cert_DecodeTBS(tbs, nullptr), 108u);
    EXPECT_EQ(ZI_Cert_DecodeTBS(tbs, &none), 108u);
    EXPECT_EQ(ZI_Cert_DecodeExtensions(nullptr, tbs), 108u);
    EXPECT_EQ(ZI_Cert_DecodeExtensions(&none, nullptr), 108u);
    EXPECT_EQ(ZI_Cert_DecodeExtensions(&none, tbs), 108u);
}

TEST(CertificateDecoding, AllocationFaultsAreReported) {
    for (const char *name : {"rsa_all", "rsa_bmp", "ec_explicit", "rsa_t61"}) {
        SCOPED_TRACE(name);
        const Octets der = certificate(name);
        expect_allocation_faults_survived([&] {
            void *cert = nullptr;
            const uint32_t created = ZACert_CreateCertDecodeCtx(&cert);
            if (created != 0) {
                EXPECT_EQ(cert, nullptr);
                return created;
            }
            const uint32_t result =
                ZACert_DecodeCert(cert, der.data(), static_cast<uint32_t>(der.size()));
            EXPECT_EQ(ZACert_DestroyCertDecodeCtx(cert), 0u);
            return result;
        });
    }
}

// Base64 of PEM blocks; line ends and padding end nothing but themselves.
std::vector<Octets> certificates_of_pem(const std::string &path) {
    constexpr std::string_view kAlphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::vector<Octets> found;
    std::ifstream file(path);
    uint32_t bits = 0;
    int num_bits = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("-----BEGIN")) {
            found.emplace_back();
            num_bits = 0;
        }
        for (size_t i = 0; i < line.size() && line[0] != '-' && line[i] != '='; ++i) {
            bits = bits << 6 | static_cast<uint32_t>(kAlphabet.find(line[i]));
            num_bits += 6;
            if (num_bits >= 8) {
                num_bits -= 8;
                found.back().push_back(static_cast<uint8_t>(bits >> num_bits));
            }
        }
    }
    return found;
}

TEST(CertificateDecoding, MemoryIsCountedOverTheBundleOfTheMachine) {
    std::vector<Octets> all = certificates_of_pem("/etc/ssl/certs/ca-certificates.crt");
    if (all.empty()) {
        GTEST_LOG_(INFO) << "no bundle here, own certificates alone";
    }
    for (const char *name : kCertificates) {
        all.push_back(certificate(name));
    }
    for (const Octets &der : all) {
        const NoLeak no_leak;
        const Context cert;
        const HeapCount before = heap_count();
        ASSERT_EQ(cert.decode(der), 0u) << to_hex(der);
        EXPECT_LE(heap_count().allocations - before.allocations, 64u) << to_hex(der);
        EXPECT_LE(heap_count().octets - before.octets, 10 * der.size()) << to_hex(der);
        EXPECT_EQ(cert->whole.bytes().size(), der.size());
    }
}

}  // namespace
}  // namespace za::test
