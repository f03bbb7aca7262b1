#include "cert/za_cert_issuing.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <openssl/evp.h>

namespace za::test {
namespace {

using Create = uint32_t (*)(void **, const uint8_t *, uint32_t);
constexpr Create kCreations[] = {ZACert_CreateCertEncodeCtx_Ex,
                                 ZACert_CreateCertEncodeCtx_Ex_ForAKid};

// A context made for a CA; none, and the place for it untouched, after a failure.
std::unique_ptr<Context> made_for(Create create, const Octets &ca, uint32_t expected = 0) {
    int place = 0;
    void *handle = &place;
    EXPECT_EQ(create(&handle, ca.data(), static_cast<uint32_t>(ca.size())), expected);
    EXPECT_EQ(handle == &place, expected != 0);
    return expected == 0 ? std::make_unique<Context>(handle) : nullptr;
}

std::string sha1_in_base64(const Octets &octets) {
    uint8_t digest[20];
    EXPECT_EQ(EVP_Digest(octets.data(), octets.size(), digest, nullptr, EVP_sha1(), nullptr), 1);
    std::string text(29, '\0');
    text.resize(size_t(EVP_EncodeBlock(reinterpret_cast<uint8_t *>(text.data()), digest, 20)));
    return text;
}

TEST(CertificateIssuer, ContextsKnowTheirCa) {
    for (const char *name : {"rsa_all", "rsa_v1", "rsa_bmp", "ec_named"}) {
        SCOPED_TRACE(name);
        const NoLeak no_leak;
        const Context ca;
        ASSERT_EQ(ca.decode(certificate(name)), 0u);
        const auto plain = made_for(kCreations[0], certificate(name));
        EXPECT_EQ(plain->get(CERT_ISSUER_DERDN), ca.get(CERT_SUBJECT_DERDN));
        EXPECT_EQ(seen(*plain, "AKI") + seen(*plain, "changed"), "00");

        const auto full = made_for(kCreations[1], certificate(name));
        EXPECT_EQ(full->get(CERT_ISSUER_DERDN), ca.get(CERT_SUBJECT_DERDN));
        EXPECT_EQ(full->get(CERTEX_AUTHORITYKEYIDENTIFIER), ca.get(CERTEX_SUBJECTKEYIDENTIFIER));
        EXPECT_EQ(seen(*full, "AKI") + seen(*full, "changed"), "0 set1");
        EXPECT_EQ(seen(*full, "AKI serial"), plain_hex(ca.get(CERT_SERIALNUMBER)));
        const std::string digest = sha1_in_base64(ca.get(CERT_SUBJECTPUBLICKEYINFO));
        EXPECT_TRUE(
            seen(*full, "AKI names").ends_with("53 55042E 0 " + plain_hex(bytes_of(digest)) + ";"));
    }
}

// State and locality before the organisation, all units in one entry, UTF-8 in GB18030.
TEST(CertificateIssuer, EntriesComeInAnOrderOfTheirOwn) {
    const auto cert = made_for(kCreations[1], certificate("rsa_all"));
    EXPECT_TRUE(seen(*cert, "AKI names")
                    .starts_with("25 550406 0 434E;27 550408 0 B1B1BEA9;26 550407 0 4861696469616E;"
                                 "29 55040A 0 4578616D706C65;"
                                 "30 55040B 0 53616C65732C4F553D456173742C4F553D5465616D;"
                                 "22 550403 0 616C6C2E6578616D706C65;13 2A864886F70D010901 0 "))
        << seen(*cert, "AKI names");
}

TEST(CertificateIssuer, CaIsLookedAt) {
    const Octets ca = certificate("rsa_all");
    const auto with_subject = [](size_t size) {
        Parts parts("rsa_v1");
        parts.tbs[4] = from_hex("30(31(30(06(550403) 0C(61*" + std::to_string(size - 21) + "))))");
        EXPECT_EQ(parts.tbs[4].size(), size);
        return parts.der();
    };
    for (const Create create : kCreations) {
        const TraceRecord trace;
        made_for(create, Octets(ca.begin(), ca.end() - 1), 102);
        EXPECT_EQ(trace.failures().back(), "------>ZACert_DecodeCert");
        made_for(create, {}, 108);
        EXPECT_EQ(trace.failures().back(), "------>pDerIssuCert is NULL");
        void *handle = nullptr;
        EXPECT_EQ(create(&handle, ca.data(), 0), 108u);
        EXPECT_EQ(trace.failures().back(), "------>pDerIssuCertLen<=0");
        EXPECT_EQ(create(nullptr, ca.data(), uint32_t(ca.size())), 108u);
        made_for(create, from_hex("3000"), 101);
        EXPECT_EQ(trace.failures().back(), "------>ZACert_SetCertAttributeChar");
        made_for(create, with_subject(2049), 101);
        expect_allocation_faults_survived([&] {
            void *made = nullptr;
            const uint32_t result = create(&made, ca.data(), uint32_t(ca.size()));
            EXPECT_EQ(made == nullptr, result != 0);
            EXPECT_EQ(ZACert_DestroyCertEncodeCtx(made), 0u);
            return result;
        });
    }
    made_for(kCreations[0], with_subject(2048));
}

}  // namespace
}  // namespace za::test
