#include "request/za_crl_support.hpp"
#include "support/heap.hpp"
#include "support/rows.hpp"

namespace za::test {
namespace {

std::string state(const request::CrlExtension &extension) {
    return ", " + (extension.state.decoded ? to_hex(extension.value.bytes()) : "-") +
           (extension.state.critical != 0 ? "!" : "");
}

std::string describe(const CrlHandle &crl) {
    const Octets issuer = crl.get(CRL_ISSUER_DN);
    return crl.number(CRL_VERSION) + ", " + crl.hex(CRL_INNER_SIGNATUREALGORITHM) + ", " +
           crl.hex(CRL_OUTER_SIGNATUREALGORITHM) + ", " +
           std::to_string(crl.get(CRL_CA_SIGNATURE).size()) + ", " +
           std::string(issuer.begin(), issuer.end()) + ", " + crl.number(CRL_THISUPDATE) + ", " +
           crl.number(CRL_NEXTUPDATE) + state(crl.crl.crl_number) + state(crl.crl.delta_indicator) +
           state(crl.crl.authority_key_identifier) + state(crl.crl.distribution_point) +
           crl.entries();
}

TEST(CrlDecoding, ReadsOrLeavesOneLinePerLevelOfAFailure) {
    const std::set<uint32_t> refused{101, 102, 104, 106, 108, 111, 121, 0xFFFFFFFF};
    expect_decoded("crls/decode.txt", refused, [](const Octets &der, std::string &out) {
        const CrlHandle crl;
        const uint32_t result = crl.decode(der);
        out = result == 0 ? describe(crl) : "";
        return result;
    });
}

// What stands behind a CRL is not its part.
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
    EXPECT_EQ(ZACert_DecodeCrl(nullptr, der.data(), 1), 108u);
    EXPECT_EQ(setCRL2Context(kept, nullptr, 1), 108u);
}

TEST(CrlDecoding, PiecesDecodeAloneFromCopies) {
    const NoLeak no_leak;
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
        EXPECT_EQ(ZI_CRL_DecodeTBS(tbs, nullptr), 108u);
    }
    EXPECT_EQ(tbs.get(CRL_ISSUER_DN), whole.get(CRL_ISSUER_DN));
    EXPECT_EQ(pieces.hex(CRLEX_CRLNUMBER), "01 02");
    const std::string entries = whole.entries();
    EXPECT_EQ(tbs.entries(), entries);
    EXPECT_EQ(pieces.entries(), entries);
}

}  // namespace
}  // namespace za::test
