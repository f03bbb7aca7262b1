#include "cert/za_cert_decode.hpp"

#include "../names/za_low_name_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"
#include "za_cert_support.hpp"

#include <fstream>
#include <map>

namespace za::test {
namespace {

using Lines = std::vector<std::string>;

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

std::string plain_hex(std::span<const uint8_t> octets) {
    std::string hex = to_hex(octets);
    std::erase(hex, ' ');
    return hex;
}

// "OID CRITICAL VALUE"
std::string describe_private(const Context &cert, uint32_t index) {
    uint32_t oid_len = 0;
    uint32_t critical = 0;
    uint32_t value_len = 0;
    EXPECT_EQ(ZACert_GetCertAttributePrivate(cert, &index, nullptr, &oid_len, &critical, nullptr,
                                             &value_len),
              0u);
    Octets oid(oid_len);
    Octets value(value_len);
    EXPECT_EQ(ZACert_GetCertAttributePrivate(cert, &index, oid.data(), &oid_len, &critical,
                                             value.data(), &value_len),
              0u);
    return plain_hex(oid) + " " + std::to_string(critical) + " " + plain_hex(value);
}

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
            EXPECT_EQ(describe_private(cert, index), expected.privates[index - 1]);
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
    Parts parts("rsa_all");
    const struct {
        const char *name;
        Octets der;
        size_t sizes[3];  // of attributes 1, 2 and 3
    } rows[] = {
        {"no signature",
         tlv(0x30, join({parts.tbs_der(), parts.behind[0]})),
         {parts.tbs_der().size(), 9, 0}},
        {"TBSCertificate alone", tlv(0x30, parts.tbs_der()), {parts.tbs_der().size(), 0, 0}},
        {"empty TBSCertificate", from_hex("30 02 30 00"), {2, 0, 0}},
        {"nothing", from_hex("30 00"), {0, 0, 0}},
        {"more than there should be",
         tlv(0x30, join({parts.tbs_der(), join(parts.behind), from_hex("05 00")})),
         {parts.tbs_der().size(), 9, 128}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const Context cert;
        EXPECT_EQ(cert.decode(row.der), 0u);
        for (const int32_t id : {1, 2, 3}) {
            EXPECT_EQ(cert.get(id).size(), row.sizes[id - 1]) << id;
        }
    }
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
    const std::pair<int, const char *> empty[] = {{Parts::kAlgorithm, "30 00"},
                                                  {Parts::kValidity, "30 00"},
                                                  {Parts::kValidity,
                                                   "30 0F 17 0D 3234303130"
                                                   "313030303030305A"}};
    for (const auto &[place, field] : empty) {
        Parts parts("rsa_all");
        parts.tbs[static_cast<size_t>(place)] = from_hex(field);
        const Context cert;
        const TraceRecord trace;
        EXPECT_EQ(cert.decode(parts.der()), 109u) << place;
        EXPECT_EQ(trace.failures(), trail);
    }
}

// One field of a certificate replaced.
struct FieldRow {
    const char *name;
    int place;
    const char *field;
    uint32_t result;
    Lines failures;
};

const FieldRow kBadFields[] = {
    {"version has another length",
     Parts::kVersion,
     "A0 03 02 02 02",
     102,
     {"------>Length not Equal", "------>ZAsn1_Low_ReadTagAndLength", "------>ZAsn1_ReadInteger",
      "------>ZI_Cert_DecodeTBS"}},
    {"algorithm is no SEQUENCE",
     Parts::kAlgorithm,
     "31 00",
     108,
     {"------>pMidData[0]!=0x30", "------>ZAsn1_ReadSequence", "------>ZI_Cert_DecodeTBS"}},
    {"issuer holds no SET",
     Parts::kIssuer,
     "30 02 30 00",
     106,
     {"------>TAG != ZA_DER_ID_SET", "------>ZAsn1_ReadSet", "------>ZI_DecodeIssuerSubject",
      "------>ZI_Cert_DecodeTBS"}},
    {"time of another type",
     Parts::kValidity,
     "30 04 04 00 04 00",
     106,
     {"------>ZACERT_TagErr", "------>ZAsn1_ReadUtcTime", "------>ZI_Cert_DecodeTBS"}},
    {"UTCTime without Z",
     Parts::kValidity,
     "30 0F 17 0D 32343031303130303030303030",
     104,
     {"------>ZACERT_InvalidTimeEndErr", "------>ZAsn1_Low_CtoITime",
      "------>ZAsn1_Low_ReadLongTime", "------>ZAsn1_ReadUtcTime", "------>ZI_Cert_DecodeTBS"}},
    {"key without bits",
     Parts::kKey,
     "30 02 30 00",
     113,
     {"------>ZACERT_ItemMissingErr", "------>ZI_DecodePubKey", "------>ZI_Cert_DecodeTBS"}},
};

TEST(CertificateDecoding, LeavesOneLinePerLevelOfAFailure) {
    for (const FieldRow &row : kBadFields) {
        SCOPED_TRACE(row.name);
        const NoLeak no_leak;
        Parts parts("rsa_all");
        parts.tbs[static_cast<size_t>(row.place)] = from_hex(row.field);
        const Context cert;
        const TraceRecord trace;
        EXPECT_EQ(cert.decode(parts.der()), row.result);
        EXPECT_EQ(trace.failures(), row.failures);
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
    const struct {
        const char *name;
        const char *field;
        uint32_t result;
        const char *subject_key_identifier;
    } rows[] = {
        {"another context tag", "A7 0F 30 0D 30 0B 06 03 55 1D 0E 04 04 04 02 01 02", 0, "01 02"},
        {"empty wrapper", "A3 00", 0, ""},
        {"empty list", "A3 02 30 00", 0, ""},
        {"issuerUniqueID", "81 05 00 01 02 03 04", 108, ""},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        Parts parts("rsa_v1");
        parts.tbs.push_back(from_hex(row.field));
        parts.tbs.push_back(from_hex("05 00"));  // ignored
        const Context cert;
        EXPECT_EQ(cert.decode(parts.der()), row.result);
        EXPECT_EQ(cert.hex(CERTEX_SUBJECTKEYIDENTIFIER), row.subject_key_identifier);
        EXPECT_TRUE(cert->extensions_present);
    }
}

// The key kind follows from how long the parameters are, but for thirty octets and less than six.
TEST(CertificateDecoding, KeyKindHasItsBoundaries) {
    const auto sized = [](uint8_t identifier, size_t size) {
        return tlv(identifier, tlv(0x04, Octets(size - 4, 0x55)));
    };
    const Octets p384 = from_hex("06 05 2B 81 04 00 22");
    const struct {
        const char *name;
        Octets parameters;
        uint32_t kind;
        size_t size;
    } rows[] = {
        {"NULL", from_hex("05 00"), 0, 0},
        {"none", {}, 0, 0},
        {"INTEGER", from_hex("02 01 05"), 5, 3},
        {"INTEGER above 7", from_hex("02 01 08"), 0, 3},
        {"OID of 5", p384, 12, 5},
        {"OID of 30", tlv(0x06, Octets(30, 0x2A)), 12, 30},
        {"OID of 31", tlv(0x06, Octets(31, 0x2A)), 11, 31},
        {"empty OID", from_hex("06 00"), 12, 0},
        {"other of 5", sized(0xA0, 5), 0, 5},
        {"other of 6", sized(0xA0, 6), 12, 6},
        {"SEQUENCE of 29", sized(0x30, 29), 12, 29},
        {"SEQUENCE of 30", sized(0x30, 30), 11, 30},
        {"other of 30", sized(0xA0, 30), 0, 30},
        {"other of 31", sized(0xA0, 31), 11, 31},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        Parts parts("rsa_all");
        std::vector<Octets> key = children(parts.tbs[Parts::kKey]);
        key[0] = tlv(0x30, join({children(key[0])[0], row.parameters}));
        parts.tbs[Parts::kKey] = tlv(0x30, join(key));
        const Context cert;
        EXPECT_EQ(cert.decode(parts.der()), 0u);
        EXPECT_EQ(cert->key.kind, row.kind);
        EXPECT_EQ(cert.get(CERT_ECC_PUBLICKEY_OID).size(), row.size);
        EXPECT_EQ(cert.set(CERT_ECC_PUBLICKEY_OID, "curve"), 0u)
            << "nothing is kept as empty storage";
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

    Octets padded(65537 + 6);
    const struct {
        const char *header;
        uint32_t argument;
        bool refused;
    } rows[] = {
        {"30 82 FF FC", 4, false},       {"30 82 FF FD", 4, true},
        {"30 82 FF FD", 65536, true},    {"30 82 FF FD", 65537, false},
        {"30 83 01 00 00", 65540, true}, {"30 84 FF FF FF FF", 65536, true},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.header);
        const Octets header = from_hex(row.header);
        std::copy(header.begin(), header.end(), padded.begin());
        const Context big;
        const TraceRecord trace;
        const uint32_t result = ZACert_DecodeCert(big, padded.data(), row.argument);
        EXPECT_TRUE(result == 101 || !row.refused) << result;
        EXPECT_EQ(big->whole.empty(), row.refused);
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
