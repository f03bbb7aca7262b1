#include "cert/za_cert_decode.hpp"

#include "cert/za_cert_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <memory>
#include <openssl/pem.h>
#include <set>
#include <sstream>

namespace za::test {
namespace {

// "NAME", or "NAME EDIT [PLACE]" for a certificate of which the octets become a part.
Octets changed(const std::string &what, const Octets &octets) {
    std::istringstream words(what);
    std::string name;
    std::string edit;
    size_t place = 0;
    words >> name >> edit >> place;
    Parts parts(name);
    if (edit == "field") {
        parts.tbs.resize(std::max(parts.tbs.size(), place + 1));
        parts.tbs[place] = octets;
    } else if (edit == "first") {
        parts.tbs.resize(place);
        parts.extensions.clear();
    } else if (edit == "behind") {
        parts.behind = {octets};
    } else if (edit == "extensions") {
        parts.extensions = {octets};
    } else if (edit == "value") {
        const Octets head{0x06, 3, 0x55, 0x1D, static_cast<uint8_t>(place), 1, 1, 0xFF};
        parts.extensions = {tlv(0x30, join({head, tlv(0x04, octets)}))};
    } else if (edit == "parameters") {
        std::vector<Octets> key = children(parts.tbs[Parts::kKey]);
        key[0] = tlv(0x30, join({children(key[0])[0], octets}));
        parts.tbs[Parts::kKey] = tlv(0x30, join(key));
    }
    return edit.empty() ? certificate(name) : parts.der();
}

uint32_t take_step(const Context &cert, const Row &row) {
    const Octets octets = row[0] == "int" ? Octets{} : value_of(row[2]);
    if (row[0] == "decode" || row[0] == "again") {
        return cert.decode(row[1] == "octets" ? octets : changed(row[1], octets));
    }
    const int32_t id = std::stoi(row[1]);
    return row[0] == "int" ? ZACert_SetCertAttributeInt(cert, id, std::stoi(row[2]))
                           : cert.set(id, octets);
}

// Steps: "decode" or "again | what | octets", "new" or "set | identifier | octets", "int |
// identifier | number"; then the result, lines of failures and checks. "decode" and "new" take a
// new context.
class CertificateSteps : public testing::TestWithParam<const char *> {};

TEST_P(CertificateSteps, EndAsWritten) {
    const NoLeak no_leak;
    std::unique_ptr<Context> cert;
    for (const Row &row : rows_of(std::string("certs/rows/") + GetParam())) {
        SCOPED_TRACE(row[0] + "|" + row[1] + "|" + row[2]);
        if (row[0] == "decode" || row[0] == "new") {
            cert = std::make_unique<Context>();
        }
        const auto is_line = [](const std::string &field) { return field.starts_with('-'); };
        const auto checks = std::find_if_not(row.begin() + 4, row.end(), is_line);
        const TraceRecord trace;
        EXPECT_EQ(take_step(*cert, row), number_of(row[3]));
        EXPECT_EQ(trace.failures(), Lines(row.begin() + 4, checks));
        std::for_each(checks, row.end(), [&](const auto &check) { expect_seen(*cert, check); });
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, CertificateSteps,
                         testing::Values("decoding", "extensions", "setting", "critical", "names"),
                         [](const auto &parameter) { return std::string(parameter.param); });

// expect.py wrote what is there; the rest is empty.
TEST(CertificateDecoding, AttributesAreWhatOpensslFinds) {
    for (const char *name : kCertificates) {
        SCOPED_TRACE(name);
        const NoLeak no_leak;
        const Context cert;
        ASSERT_EQ(cert.decode(certificate(name)), 0u);
        std::set<int32_t> there{CERT_SUBJECTPUBLICKEYINFO};
        for (const Row &row : rows_of("certs/" + std::string(name) + ".expect")) {
            expect_seen(cert, row[0]);
            there.insert(std::atoi(row[0].c_str()));
        }
        for (int32_t id = 1; id <= 3003; ++id) {
            EXPECT_TRUE(there.contains(id) || cert.get(id).empty()) << id;
        }
    }
}

TEST(CertificateDecoding, LinesOfASuccessAreCounted) {
    const TraceRecord trace;
    for (const char *name : {"rsa_all", "rsa_v1"}) {
        const Octets der = certificate(name);
        void *cert = nullptr;
        uint32_t len = 0;
        uint8_t octet = 1;
        EXPECT_EQ(ZACert_CreateCertDecodeCtx(&cert), 0u);
        EXPECT_EQ(ZACert_DecodeCert(cert, der.data(), static_cast<uint32_t>(der.size())), 0u);
        for (const int32_t id : {CERT_SERIALNUMBER, CERT_ECC_PUBLICKEY_OID}) {
            EXPECT_EQ(ZACert_SetCertAttributeChar(cert, id, &octet, 1), 0u);
            EXPECT_EQ(ZACert_GetCertAttributeChar(cert, id, nullptr, &len), 0u);
            EXPECT_EQ(ZACert_GetCertAttributeChar(cert, id, &octet, &len), 0u);
        }
        EXPECT_EQ(ZACert_DestroyCertDecodeCtx(cert), 0u);
    }
    Lines expected;
    for (const Row &row : rows_of("certs/rows/success_trace")) {
        expected.push_back(row[0]);
    }
    EXPECT_EQ(trace.lines(), expected);
    EXPECT_EQ(ZACert_DestroyCertDecodeCtx(nullptr), 0u);
    EXPECT_EQ(ZACert_CreateCertDecodeCtx(nullptr), 108u);
}

TEST(CertificateDecoding, HeaderDecidesHowFarACertificateGoes) {
    const auto size = static_cast<uint32_t>(certificate("rsa_all").size());
    const Octets der = join({certificate("rsa_all"), Octets(10)});
    for (const uint32_t len : {0u, 1u, size - 1, size + 10}) {
        const Context cert;
        EXPECT_EQ(ZACert_DecodeCert(cert, der.data(), len), 0u);
        EXPECT_EQ(cert->whole.bytes().size(), size);
    }
    const Context cert;
    for (const Row &row : rows_of("certs/rows/lengths")) {
        SCOPED_TRACE(row[0]);
        const Octets padded = join({from_hex(row[0]), Octets(65536)});
        const Context big;
        const uint32_t result = ZACert_DecodeCert(big, padded.data(), number_of(row[1]));
        EXPECT_TRUE(result == 101 || row[2] == "read") << result;
        EXPECT_EQ(big->whole.empty(), row[2] == "refused");
    }
    EXPECT_EQ(ZACert_DecodeCert(cert, nullptr, 10), 108u);
    EXPECT_EQ(ZACert_DecodeCert(nullptr, der.data(), 10), 108u);
}

TEST(CertificateDecoding, PiecesDecodeAloneFromCopies) {
    const Parts parts("rsa_all");
    const NoLeak no_leak;
    const Context tbs;
    const Context extensions;
    {
        const Octets tbs_der = parts.tbs_der();
        const Octets extensions_der = tlv(0xA3, tlv(0x30, join(parts.extensions)));
        Anybuf tbs_record = borrowed(tbs_der, 16);
        Anybuf extensions_record = borrowed(extensions_der, 0xA3);
        EXPECT_EQ(ZI_Cert_DecodeTBS(tbs, &tbs_record), 0u);
        EXPECT_EQ(ZI_Cert_DecodeExtensions(&extensions_record, extensions), 0u);
    }
    EXPECT_EQ(tbs.hex(CERT_SERIALNUMBER) + "; " + tbs.hex(CERTEX_KEYUSAGE), "C0 FF EE 01; 86");
    EXPECT_EQ(tbs.hex(CERT_CA_SIGNATURE) + extensions.hex(CERT_SERIALNUMBER), "");
    expect_seen(extensions, "505=\"one.example\"");

    Anybuf none{};
    EXPECT_EQ(ZI_Cert_DecodeTBS(nullptr, &none), 108u);
    EXPECT_EQ(ZI_Cert_DecodeExtensions(&none, nullptr), 108u);
    for (Anybuf *element : {&none, static_cast<Anybuf *>(nullptr)}) {
        EXPECT_EQ(ZI_Cert_DecodeTBS(tbs, element), 108u);
        EXPECT_EQ(ZI_Cert_DecodeExtensions(element, tbs), 108u);
    }
}

TEST(CertificateDecoding, AllocationFaultsAreReported) {
    expect_allocation_faults_survived([] {
        void *cert = nullptr;
        const uint32_t result = ZACert_CreateCertDecodeCtx(&cert);
        EXPECT_EQ(cert == nullptr, result != 0);
        ZACert_DestroyCertDecodeCtx(cert);
        return result;
    });
    for (const char *name : {"rsa_all", "rsa_bmp", "ec_explicit", "rsa_t61"}) {
        SCOPED_TRACE(name);
        const Octets der = certificate(name);
        expect_allocation_faults_survived([&] {
            cert::Certificate cert;
            return ZACert_DecodeCert(&cert, der.data(), static_cast<uint32_t>(der.size()));
        });
    }
}

std::vector<Octets> certificates_of_pem(const char *path) {
    std::vector<Octets> found;
    const std::unique_ptr<BIO, decltype(&BIO_free)> file(BIO_new_file(path, "r"), BIO_free);
    char *name = nullptr;
    char *header = nullptr;
    uint8_t *der = nullptr;
    long size = 0;
    while (file != nullptr && PEM_read_bio(file.get(), &name, &header, &der, &size) == 1) {
        found.emplace_back(der, der + size);
        OPENSSL_free(name);
        OPENSSL_free(header);
        OPENSSL_free(der);
    }
    return found;
}

TEST(CertificateDecoding, MemoryIsCountedOverTheBundleOfTheMachine) {
    std::vector<Octets> all = certificates_of_pem("/etc/ssl/certs/ca-certificates.crt");
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
