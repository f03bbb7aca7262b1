#include "cert/za_cert_support.hpp"
#include "ocsp/za_ocsp_support.hpp"

namespace za::test {
namespace {

namespace in = test::ocsp;

TEST(OcspEntries, StepsEndAsWritten) {
    in::expect_steps(in::kAsked, "ocsp/asked");
    in::expect_steps(in::kAnswered, "ocsp/answered");
}

TEST(OcspEntries, RowsDecodeAsWritten) {
    in::expect_contexts_decoded(in::kAsked, "ocsp/decode/asked");
    in::expect_contexts_decoded(in::kAnswered, "ocsp/decode/answered");
}

// What openssl asked of a certificate with SHA-1 and with SHA-256, as if it were its own issuer.
TEST(OcspEntries, AreThoseOfOpenssl) {
    const in::Context request(in::kRequest);
    ASSERT_EQ(request.decode(data_file("ocsp/openssl.der")), 0u);
    const Parts certificate("rsa_all");
    const Octets key = content_of(children_of(certificate.tbs[Parts::kKey])[1]);
    uint32_t number = 0;
    for (const auto &[digest, oid] : {std::pair(7, "2B0E03021A"), {9, "608648016503040201"}}) {
        const in::Context entry(in::kAsked);
        const Octets block = octets_of(digest);
        ASSERT_EQ(in::kAsked.hash(entry, ZA_DigestFunc_Ref, block.data(), 4), 0u);
        for (const auto &[id, value] :
             {std::pair(OCSP_REQUESTLIST_HASHALGO, from_hex(oid)),
              {OCSP_REQUESTLIST_PARAM, from_hex("0500")},
              {OCSP_REQUESTLIST_SERIALNUMBER, from_hex("C0FFEE01")},
              {OCSP_REQUESTLIST_ISSUERNAME, certificate.tbs[3]},
              {OCSP_REQUESTLIST_ISSUERKEY, Octets(key.begin() + 1, key.end())}}) {
            ASSERT_EQ(in::kAsked.set(entry, id, value.data(), in::size_of(value)), 0u);
        }
        const Handed made =
            handed([&](Anybuf **to) { return ZA_OCSP_EncodeRequestList(entry, to); });
        EXPECT_EQ(to_hex(made.record.get()), to_hex(in::item(in::kRequest, request, ++number)));
    }
    EXPECT_EQ(get(in::kRequest, request, OCSP_EXT_NONCE).size(), 18u);
}

}  // namespace
}  // namespace za::test
