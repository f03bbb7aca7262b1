#include "cert/za_cert_support.hpp"
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

// Of a name, state and locality come before the organisation, all units are one entry, and UTF-8
// has become GB18030.
TEST(CertificateIssuer, ContextsKnowTheirCa) {
    const std::string entries = rows_of("certs/rows/authority_issuer")[0][0];
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

TEST(CertificateIssuer, CaIsLookedAt) {
    const Octets ca = certificate("rsa_all");
    const auto with_subject = [](size_t size) {
        Parts parts("rsa_v1");
        parts.tbs[4] = from_hex("30(31(30(06(550403) 0C(61*" + std::to_string(size - 21) + "))))");
        EXPECT_EQ(parts.tbs[4].size(), size);
        return parts.der();
    };
    const std::tuple<Octets, uint32_t, std::string> refused[] = {
        {Octets(ca.begin(), ca.end() - 1), 102, "------>ZACert_DecodeCert"},
        {{}, 108, "------>pDerIssuCert is NULL"},
        {from_hex("3000"), 101, "------>ZACert_SetCertAttributeChar"},
        {with_subject(2049), 101, "------>ZACERT_LengthErr"}};
    for (const Create create : kCreations) {
        const TraceRecord trace;
        for (const auto &[der, result, line] : refused) {
            made_for(create, der, result);
            EXPECT_EQ(trace.failures().back(), line);
        }
        void *handle = nullptr;
        EXPECT_EQ(create(&handle, ca.data(), 0), 108u);
        EXPECT_EQ(trace.failures().back(), "------>pDerIssuCertLen<=0");
        EXPECT_EQ(create(nullptr, ca.data(), uint32_t(ca.size())), 108u);
        made_for(create, with_subject(2048));
        expect_allocation_faults_survived([&] {
            void *made = nullptr;
            const uint32_t result = create(&made, ca.data(), uint32_t(ca.size()));
            EXPECT_EQ(made == nullptr, result != 0);
            EXPECT_EQ(ZACert_DestroyCertEncodeCtx(made), 0u);
            return result;
        });
    }
}

}  // namespace
}  // namespace za::test
