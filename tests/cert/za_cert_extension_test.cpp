#include "cert/za_cert_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

namespace za::test {
namespace {

using Decoder = uint32_t (*)(Anybuf *, void *);

struct KnownExtension {
    uint8_t last_arc;  // below 2.5.29
    const char *name;  // what its decoder is called behind ZI_Cert_DecodeExtension_
    Decoder decode;
};

const KnownExtension kKnown[] = {
    {19, "BasicConstraint", ZI_Cert_DecodeExtension_BasicConstraint},
    {35, "AuthorityKeyIdentifyer", ZI_Cert_DecodeExtension_AuthorityKeyIdentifyer},
    {14, "SubjectKeyIdentifier", ZI_Cert_DecodeExtension_SubjectKeyIdentifier},
    {15, "KeyUsage", ZI_Cert_DecodeExtension_KeyUsage},
    {37, "ExtKeyUsage", ZI_Cert_DecodeExtension_ExtKeyUsage},
    {31, "CrlDistributionPoint", ZI_Cert_DecodeExtension_CrlDistributionPoint},
    {17, "SubjectAltName", ZI_Cert_DecodeExtension_SubjectAltName},
    {18, "IssuerAltName", ZI_Cert_DecodeExtension_IssuerAltName},
    {200, "Private", ZI_Cert_DecodeExtension_Private},
};

Octets oid(uint8_t last_arc) {
    return last_arc < 128 ? Octets{0x06, 3, 0x55, 0x1D, last_arc} : from_hex("06 03 2A 03 04");
}

Octets extension(uint8_t last_arc, const Octets &critical, const Octets &value) {
    return tlv(0x30, join({oid(last_arc), critical, tlv(0x04, value)}));
}

// Takes an Extension as an application does: its elements first, then the decoder of one extension.
uint32_t decode_chain(Decoder decode, const Octets &sequence, const Context &cert) {
    const Anybuf record = borrowed(sequence, 16);
    Anybuf *chain = nullptr;
    EXPECT_EQ(ZAsn1_ReadSequence(&record, &chain), 0u);
    const uint32_t result = decode(chain, cert);
    ZI_FreeAnybuf(chain);
    return result;
}

TEST(CertificateExtension, ValuesReadAsTheyStand) {
    for (const Row &row : rows_of("extension_values")) {
        SCOPED_TRACE(row[0] + ": " + row[1]);
        const NoLeak no_leak;
        const auto last_arc = static_cast<uint8_t>(number(row[0]));
        const Octets der = extension(last_arc, from_hex("01 01 FF"), from_hex(row[1]));
        Parts parts("rsa_v1");
        parts.extensions = {der};
        const Context alone;
        const Context whole;
        const auto known = std::ranges::find(kKnown, last_arc, &KnownExtension::last_arc);
        EXPECT_EQ(decode_chain(known->decode, der, alone), number(row[2]));
        EXPECT_EQ(whole.decode(parts.der()), number(row[2]));
        for (size_t i = 3; i < row.size(); ++i) {
            const size_t equals = row[i].find('=');
            const int32_t id = std::stoi(row[i].substr(0, equals));
            EXPECT_EQ(alone.hex(id), row[i].substr(equals + 1)) << id;
            EXPECT_EQ(whole.hex(id), row[i].substr(equals + 1)) << id;
        }
    }
}

TEST(CertificateExtension, EndsEarlyAtEveryElement) {
    for (const KnownExtension &known : kKnown) {
        SCOPED_TRACE(known.name);
        const NoLeak no_leak;
        const Context cert;
        for (const Octets &elements :
             {Octets{}, oid(known.last_arc), join({oid(known.last_arc), from_hex("01 01 FF")})}) {
            const TraceRecord trace;
            EXPECT_EQ(decode_chain(known.decode, tlv(0x30, elements), cert), 109u);
            EXPECT_EQ(trace.failures(), Lines{"------>ZACERT_CertNotEndErr"});
        }
        EXPECT_EQ(known.decode(nullptr, cert), 109u);
        EXPECT_EQ(known.decode(nullptr, nullptr), 108u);
    }
}

// A private extension that fails is logged with the key usage's text.
TEST(CertificateExtension, FailureEndsTheWalkAndNamesTheDecoder) {
    for (const KnownExtension &known : kKnown) {
        SCOPED_TRACE(known.name);
        const bool is_private = std::string_view(known.name) == "Private";
        const NoLeak no_leak;
        Parts parts("rsa_v1");
        parts.extensions = {extension(200, {}, from_hex("05 00")), tlv(0x30, oid(known.last_arc)),
                            extension(200, {}, from_hex("05 00"))};
        const Context cert;
        const TraceRecord trace;
        EXPECT_EQ(cert.decode(parts.der()), 109u);
        EXPECT_EQ(trace.lines(),
                  (Lines{"======>ZACert_DecodeCert Begin", "------>ZACERT_CertNotEndErr",
                         std::string("------>ZI_Cert_DecodeExtension_") +
                             (is_private ? "KeyUsage" : known.name),
                         "------>ZI_Cert_DecodeExtensions", "------>ZI_Cert_DecodeTBS"}));
        EXPECT_EQ(cert.count_private(), 1u);
    }
}

TEST(CertificateExtension, FirstOfTwoCounts) {
    for (const KnownExtension &known : kKnown) {
        if (std::string_view(known.name) == "Private") {
            continue;
        }
        SCOPED_TRACE(known.name);
        Parts parts("rsa_all");
        // Octets that the decoder would refuse, so that skipping is the only way to succeed.
        parts.extensions.push_back(extension(known.last_arc, from_hex("01 01 55"), {}));
        const Context cert;
        const Context reference;
        EXPECT_EQ(cert.decode(parts.der()), 0u);
        ASSERT_EQ(reference.decode(certificate("rsa_all")), 0u);
        for (const int32_t id : {65, 85, 86, 87, 114, 119, 120, 121, 129, 131, 505}) {
            EXPECT_EQ(cert.hex(id), reference.hex(id)) << id;
        }
        EXPECT_EQ(cert.count_private(), 0u);

        // A context that was set before is decoded into all the same.
        const Context set;
        EXPECT_EQ(set.set(CERTEX_SUBJECTKEYIDENTIFIER, "x"), 0u);
        EXPECT_EQ(set.decode(certificate("rsa_all")), 0u);
        EXPECT_EQ(set.hex(CERTEX_SUBJECTKEYIDENTIFIER), reference.hex(CERTEX_SUBJECTKEYIDENTIFIER));
    }
}

TEST(CertificateExtension, OthersAreKeptInOrderWhateverTheirCriticality) {
    Parts parts("rsa_v1");
    parts.extensions = {
        tlv(0x30, from_hex("06 03 55 1D 20 01 01 FF 04 02 30 00")),
        tlv(0x30, from_hex("06 04 55 1D 0E 01 04 01 AA")),  // not the subject key identifier
        tlv(0x30, from_hex("06 03 55 1D 20 04 00")),        // again
        tlv(0x30, from_hex("06 00 01 01 00 04 01 BB")),
    };
    const NoLeak no_leak;
    const Context cert;
    ASSERT_EQ(cert.decode(parts.der()), 0u);
    ASSERT_EQ(cert.count_private(), 4u);
    EXPECT_EQ(cert.private_extension(1), "551D20 255 3000");
    EXPECT_EQ(cert.private_extension(2), "551D0E01 0 AA");
    EXPECT_EQ(cert.private_extension(3), "551D20 0 ");
    EXPECT_EQ(cert.private_extension(4), " 0 BB");
}

TEST(CertificatePrivate, IndexOutsideTheListCounts) {
    const Context cert;
    const uint8_t octets[] = {0x2A, 3};
    EXPECT_EQ(cert.count_private(), 0u);
    EXPECT_EQ(ZACert_SetCertAttributePrivate(cert, octets, 2, 0x1FF, octets, 1), 0u);
    EXPECT_EQ(ZACert_SetCertAttributePrivate(cert, octets, 2, 0x100, octets, 2), 0u);
    EXPECT_TRUE(cert->extensions_changed);
    uint32_t len = 7;
    for (const uint32_t outside : {0u, 3u, 0xFFFFFFFFu}) {
        uint32_t index = outside;
        EXPECT_EQ(
            ZACert_GetCertAttributePrivate(cert, &index, nullptr, &len, nullptr, nullptr, nullptr),
            0u);
        EXPECT_EQ(index, 2u);
        EXPECT_EQ(len, 7u);
    }
    EXPECT_EQ(cert.private_extension(1), "2A03 255 2A") << "the low octet of criticality counts";
    EXPECT_EQ(cert.private_extension(2), "2A03 0 2A03");
    uint32_t index = 1;
    EXPECT_EQ(ZACert_GetCertAttributePrivate(nullptr, &index, nullptr, &len, &len, nullptr, &len),
              108u);
    EXPECT_EQ(ZACert_GetCertAttributePrivate(cert, nullptr, nullptr, &len, &len, nullptr, &len),
              108u);
    EXPECT_EQ(ZACert_GetCertAttributePrivate(cert, &index, nullptr, nullptr, &len, nullptr, &len),
              108u);
}

uint32_t set_typed(void *cert, const Octets &value, uint32_t type) {
    const uint8_t oid[] = {0x2A, 3};
    return ZACert_SetCertAttributePrivate_ForValue(cert, oid, 2, 1, value.data(),
                                                   static_cast<int32_t>(value.size()), type);
}

TEST(CertificatePrivate, ValuesAreEncodedByType) {
    for (const Row &row : rows_of("typed_values")) {
        SCOPED_TRACE(row[1]);
        const auto call = [&] {
            cert::Certificate cert;
            const uint32_t result = set_typed(&cert, from_hex(row[1]), number(row[0]));
            const bool is_kept = !cert.private_extensions.empty();
            EXPECT_EQ(is_kept, result == 0);
            EXPECT_EQ(cert.extensions_changed, result == 0);
            EXPECT_EQ(is_kept ? to_hex(cert.private_extensions.front().value.bytes()) : row[3],
                      row[3]);
            return result;
        };
        EXPECT_EQ(call(), number(row[2]));
        expect_allocation_faults_survived(call);
    }
}

TEST(CertificatePrivate, OverlongUtf8SourceIsLeftOutSilently) {
    const Context cert;
    EXPECT_EQ(set_typed(cert, Octets(2048, 'a'), 12), 0u);
    EXPECT_EQ(cert.count_private(), 1u);
    const TraceRecord trace;
    EXPECT_EQ(set_typed(cert, Octets(2049, 'a'), 12), 0u);
    EXPECT_EQ(trace.failures(), Lines{"------>certAttributeValueLen>2048 "});
    EXPECT_EQ(cert.count_private(), 1u);
    EXPECT_EQ(set_typed(cert, Octets(2049, 'a'), 19), 0u);
    EXPECT_EQ(cert.count_private(), 2u);
}

TEST(CertificatePrivate, SettersLookAtTheirArguments) {
    const Context cert;
    const uint8_t one = 1;
    const auto refused = [&](void *ctx, const uint8_t *oid, int32_t oid_len, const uint8_t *value,
                             int32_t value_len, uint32_t result, const char *failure) {
        const TraceRecord trace;
        EXPECT_EQ(ZACert_SetCertAttributePrivate(ctx, oid, oid_len, 0, value, value_len), result);
        EXPECT_EQ(
            ZACert_SetCertAttributePrivate_ForValue(ctx, oid, oid_len, 0, value, value_len, 4),
            result);
        EXPECT_EQ(trace.failures(), (Lines{failure, failure}));
    };
    refused(nullptr, &one, 1, &one, 1, 108, "------>ZACERT_GeneralErr");
    refused(cert, nullptr, 1, &one, 1, 108, "------>ZACERT_GeneralErr");
    refused(cert, &one, 1, nullptr, 1, 108, "------>ZACERT_GeneralErr");
    refused(cert, &one, 0, &one, 1, 101, "------>ZACert_SetCertAttributePrivate  Err");
    refused(cert, &one, 1, &one, -1, 101, "------>ZACert_SetCertAttributePrivate  Err");
    EXPECT_FALSE(cert->extensions_changed);
}

// The prefixes that RFC 8017 prints for SHA-1 and SHA-256.
TEST(Thumbprint, IsADigestInfo) {
    const struct {
        const char *algorithm;
        uint32_t length;
        size_t digest;
        const char *prefix;
    } rows[] = {{"1.3.14.3.2.26", 13, 20, "30 21 30 09 06 05 2B 0E 03 02 1A 05 00 04 14"},
                {"2.16.840.1.101.3.4.2.1", 0xFFFFFFFF, 32,
                 "30 31 30 0D 06 09 60 86 48 01 65 03 04 02 01 05 00 04 20"}};
    for (const auto &row : rows) {
        const Octets digest(row.digest, 0xD5);
        const auto encode = [&](uint8_t *out, uint32_t *len) {
            return EnCodeThums(row.algorithm, row.length, digest.data(),
                               static_cast<uint32_t>(digest.size()), out, len);
        };
        EXPECT_EQ(two_calls(encode), join({from_hex(row.prefix), digest}));
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
