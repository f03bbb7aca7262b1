#include "cert/za_cert_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

namespace za::test {
namespace {

using Decoder = uint32_t (*)(Anybuf *, void *);

// The last arc below 2.5.29 and the decoder.
const std::pair<uint8_t, Decoder> kKnown[] = {
    {19, ZI_Cert_DecodeExtension_BasicConstraint},
    {35, ZI_Cert_DecodeExtension_AuthorityKeyIdentifyer},
    {14, ZI_Cert_DecodeExtension_SubjectKeyIdentifier},
    {15, ZI_Cert_DecodeExtension_KeyUsage},
    {37, ZI_Cert_DecodeExtension_ExtKeyUsage},
    {31, ZI_Cert_DecodeExtension_CrlDistributionPoint},
    {17, ZI_Cert_DecodeExtension_SubjectAltName},
    {18, ZI_Cert_DecodeExtension_IssuerAltName},
    {32, ZI_Cert_DecodeExtension_Private},
};

// Takes an Extension as an application does: its elements first, then the decoder of one extension.
uint32_t decode_chain(Decoder decode, const Octets &sequence, const Context &cert) {
    const Anybuf record = borrowed(sequence, 16);
    Anybuf *chain = nullptr;
    EXPECT_EQ(ZAsn1_ReadSequence(&record, &chain), 0u);
    const uint32_t result = decode(chain, cert);
    ZI_FreeAnybuf(chain);
    return result;
}

TEST(CertificateExtension, DecodersOfOneReadWhatTheWholeReads) {
    const NoLeak no_leak;
    for (const auto &[last_arc, decode] : kKnown) {
        SCOPED_TRACE(last_arc);
        Parts parts(last_arc == 32 ? "rsa_t61" : "rsa_all");
        std::erase_if(parts.extensions, [arc = last_arc](const Octets &extension) {
            return children(extension)[0] != Octets{0x06, 3, 0x55, 0x1D, arc};
        });
        ASSERT_EQ(parts.extensions.size(), 1u);
        const Context alone;
        const Context whole;
        EXPECT_EQ(decode_chain(decode, parts.extensions[0], alone), 0u);
        EXPECT_EQ(whole.decode(parts.der()), 0u);
        for (int32_t id = CERTEX_AUTHORITYKEYIDENTIFIER; id <= 510; ++id) {
            EXPECT_EQ(alone.hex(id), whole.hex(id)) << id;
        }
        EXPECT_EQ(seen(alone, "private"), seen(whole, "private"));

        // The identifier alone, then with criticality, then nothing at all.
        const Octets oid{0x06, 3, 0x55, 0x1D, last_arc};
        for (const Octets &elements : {oid, join({oid, from_hex("01 01 FF")}), Octets{}}) {
            const TraceRecord trace;
            EXPECT_EQ(decode_chain(decode, tlv(0x30, elements), alone), 109u);
            EXPECT_EQ(trace.failures(), Lines{"------>ZACERT_CertNotEndErr"});
        }
        EXPECT_EQ(decode(nullptr, alone), 109u);
        EXPECT_EQ(decode(nullptr, nullptr), 108u);
    }
}

// The second ones hold octets that a decoder would refuse.
TEST(CertificateExtension, FirstOfTwoCounts) {
    Parts parts("rsa_all");
    const Context reference;
    ASSERT_EQ(reference.decode(parts.der()), 0u);
    for (const auto &[last_arc, decode] : kKnown) {
        parts.extensions.push_back(tlv(0x30, {0x06, 3, 0x55, 0x1D, last_arc, 1, 1, 0x55, 4, 0}));
    }
    const Context cert;
    EXPECT_EQ(cert.decode(parts.der()), 0u);
    for (int32_t id = 2; id <= 3003; ++id) {
        EXPECT_EQ(cert.hex(id), reference.hex(id)) << id;
    }
    EXPECT_EQ(seen(cert, "private"), "551D20 85 ;");
}

TEST(CertificatePrivate, IndexOutsideTheListCounts) {
    const Context cert;
    const uint8_t in[] = {0x2A, 3};
    uint8_t oid[2];
    uint8_t value[2];
    uint32_t len = 7;
    uint32_t critical = 7;
    const auto get = [&](void *ctx, uint32_t *index, uint32_t *oid_len, uint32_t *value_len) {
        return ZACert_GetCertAttributePrivate(ctx, index, oid, oid_len, &critical, value,
                                              value_len);
    };
    EXPECT_EQ(ZACert_SetCertAttributePrivate(cert, in, 2, 0x1FF, in, 1), 0u);
    EXPECT_EQ(ZACert_SetCertAttributePrivate(cert, in, 2, 0x100, in, 2), 0u);
    EXPECT_EQ(seen(cert, "private"), "2A03 255 2A;2A03 0 2A03;") << "criticality: low octet";
    for (const uint32_t outside : {0u, 3u, 0xFFFFFFFFu}) {
        uint32_t index = outside;
        EXPECT_EQ(get(cert, &index, nullptr, &len), 0u);
        EXPECT_EQ(std::tuple(index, len, critical), std::tuple(2u, 7u, 7u));
    }
    uint32_t index = 2;
    EXPECT_EQ(get(nullptr, &index, &len, &len), 108u);
    EXPECT_EQ(get(cert, nullptr, &len, &len), 108u);
    EXPECT_EQ(get(cert, &index, nullptr, &len), 108u);
    EXPECT_EQ(get(cert, &index, &len, nullptr), 108u);
    EXPECT_EQ(get(cert, &index, &len, &len), 0u);
    EXPECT_EQ(to_hex(oid) + "; " + to_hex(value), "2A 03; 2A 03");
    EXPECT_EQ(std::pair(len, critical), std::pair(2u, 0u));
}

uint32_t set_typed(void *cert, const Octets &value, uint32_t type) {
    const uint8_t oid[] = {0x2A, 3};
    return ZACert_SetCertAttributePrivate_ForValue(cert, oid, 2, 1, value.data(),
                                                   static_cast<int32_t>(value.size()), type);
}

TEST(CertificatePrivate, ValuesAreEncodedByType) {
    for (const Row &row : rows_of("certs/rows/typed_values")) {
        SCOPED_TRACE(row[1]);
        const auto call = [&] {
            cert::Certificate cert;
            const uint32_t result = set_typed(&cert, from_hex(row[1]), number_of(row[0]));
            EXPECT_EQ(cert.extensions_changed, result == 0);
            EXPECT_EQ(cert.private_extensions.empty(), result != 0);
            for (const cert::PrivateExtension &extension : cert.private_extensions) {
                EXPECT_EQ(to_hex(extension.oid.bytes()), "2A 03");
                EXPECT_EQ(to_hex(extension.value.bytes()), row[3]);
            }
            return result;
        };
        EXPECT_EQ(call(), number_of(row[2]));
        expect_allocation_faults_survived(call);
    }
}

TEST(CertificatePrivate, OverlongUtf8SourceIsLeftOutSilently) {
    const Context cert;
    EXPECT_EQ(set_typed(cert, Octets(2048, 'a'), 12), 0u);
    EXPECT_EQ(set_typed(cert, Octets(2049, 'a'), 19), 0u);
    EXPECT_EQ(cert->private_extensions.size(), 2u);
    const TraceRecord trace;
    EXPECT_EQ(set_typed(cert, Octets(2049, 'a'), 12), 0u);
    EXPECT_EQ(trace.failures(), Lines{"------>certAttributeValueLen>2048 "});
    EXPECT_EQ(cert->private_extensions.size(), 2u);
}

TEST(CertificatePrivate, SettersLookAtTheirArguments) {
    const Context cert;
    const uint8_t one = 1;
    const auto refused = [](void *ctx, const uint8_t *oid, int32_t oid_len, const uint8_t *value,
                            int32_t len) {
        const TraceRecord trace;
        const uint32_t result = ZACert_SetCertAttributePrivate(ctx, oid, oid_len, 0, value, len);
        EXPECT_EQ(ZACert_SetCertAttributePrivate_ForValue(ctx, oid, oid_len, 0, value, len, 4),
                  result);
        const char *const line = result == 108 ? "------>ZACERT_GeneralErr"
                                               : "------>ZACert_SetCertAttributePrivate  Err";
        EXPECT_EQ(trace.failures(), (Lines{line, line}));
        return result;
    };
    EXPECT_EQ(refused(nullptr, &one, 1, &one, 1), 108u);
    EXPECT_EQ(refused(cert, nullptr, 1, &one, 1), 108u);
    EXPECT_EQ(refused(cert, &one, 1, nullptr, 1), 108u);
    EXPECT_EQ(refused(cert, &one, 0, nullptr, 1), 101u);
    EXPECT_EQ(refused(cert, &one, -1, &one, 1), 101u);
    EXPECT_EQ(refused(cert, &one, 1, &one, 0), 101u);
    EXPECT_FALSE(cert->extensions_changed);
}

TEST(Thumbprint, IsADigestInfo) {
    for (const Row &row : rows_of("certs/rows/thumbprints")) {
        const Octets digest = from_hex(row[2]);
        const auto encode = [&](uint8_t *out, uint32_t *len) {
            return EnCodeThums(row[0].c_str(), number_of(row[1]), digest.data(),
                               static_cast<uint32_t>(digest.size()), out, len);
        };
        EXPECT_EQ(to_hex(two_calls(encode)), row[3] + " " + row[2]);
        expect_allocation_faults_survived([&] {
            uint32_t len = 7;
            const uint32_t result = encode(nullptr, &len);
            EXPECT_TRUE(result == 0 || len == 7);
            return result;
        });
    }
    const uint8_t octet = 1;
    uint32_t len = 7;
    EXPECT_EQ(EnCodeThums("1.2", 3, &octet, 0, nullptr, &len), 101u);
    EXPECT_EQ(EnCodeThums("1.x", 3, &octet, 1, nullptr, &len), 139u);
    EXPECT_EQ(EnCodeThums("1.2", 0, &octet, 1, nullptr, &len), 108u);
    EXPECT_EQ(EnCodeThums(nullptr, 3, &octet, 1, nullptr, &len), 108u);
    EXPECT_EQ(EnCodeThums("1.2", 3, nullptr, 1, nullptr, &len), 108u);
    EXPECT_EQ(EnCodeThums("1.2", 3, &octet, 1, nullptr, nullptr), 108u);
    EXPECT_EQ(len, 7u);
}

}  // namespace
}  // namespace za::test
