#include "support/heap.hpp"
#include "support/trace.hpp"
#include "za_cert_support.hpp"

namespace za::test {
namespace {

using Lines = std::vector<std::string>;
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

Decoder decoder_of(uint8_t last_arc) {
    for (const KnownExtension &known : kKnown) {
        if (known.last_arc == last_arc) {
            return known.decode;
        }
    }
    return nullptr;
}

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

struct ValueRow {
    uint8_t last_arc;
    const char *value;
    uint32_t result;
    std::vector<std::pair<int32_t, const char *>> attributes;
};

const ValueRow kValues[] = {
    {19, "30 00", 0, {{119, "FF"}, {120, "00"}, {121, ""}}},
    {19, "30 03 01 01 00", 0, {{120, "00"}, {121, ""}}},
    {19, "30 06 01 01 FF 02 01 00", 0, {{120, "FF"}, {121, "00"}}},
    {19, "30 04 02 02 00 80", 0, {{120, "00"}, {121, "80"}}},
    {19, "30 07 01 01 01 02 02 01 00", 0, {{120, "01"}, {121, "01 00"}}},
    {19, "30 02 01 00", 101, {{119, ""}, {120, ""}}},
    {19, "02 01 05", 108, {{119, ""}, {120, ""}}},
    {35, "30 00", 0, {{65, ""}}},
    {35, "30 0A 82 01 05 80 02 01 02 80 01 03", 0, {{65, "01 02"}}},
    {35, "30 02 80 00", 0, {{65, ""}}},
    {35, "30 06 A1 04 A4 02 31 00", 108, {{65, ""}}},
    {35, "30 03 80 02 01", 101, {{65, ""}}},
    {14, "04 00", 0, {{85, ""}}},
    {14, "04 02 00 01", 0, {{85, "00 01"}}},
    {14, "04 02 01", 102, {{85, ""}}},
    {15, "03 02 01 86", 0, {{86, "FF"}, {87, "86"}}},
    {15, "03 01 00", 0, {{86, "FF"}, {87, ""}}},
    {15, "03 04 00 01 02 03", 0, {{87, "01 02 03"}}},
    {15, "03 00", 101, {{86, ""}, {87, ""}}},
    {37, "30 00", 0, {{129, "00 00 00 00"}}},
    {37, "30 0A 06 08 2B 06 01 05 05 07 03 01", 0, {{129, "40 00 00 00"}}},
    {37, "30 0A 06 08 2B 06 01 05 05 07 03 02", 0, {{129, "80 00 00 00"}}},
    {37, "30 0A 06 08 2B 06 01 05 05 07 03 03", 0, {{129, "00 01 00 00"}}},
    {37, "30 0A 06 08 2B 06 01 05 05 07 03 04", 0, {{129, "00 02 00 00"}}},
    {37, "30 0A 06 08 2B 06 01 05 05 07 03 05", 0, {{129, "00 04 00 00"}}},
    {37, "30 0A 06 08 2B 06 01 05 05 07 03 06", 0, {{129, "00 08 00 00"}}},
    {37, "30 0A 06 08 2B 06 01 05 05 07 03 07", 0, {{129, "00 10 00 00"}}},
    {37,
     "30 14 06 08 2B 06 01 05 05 07 03 08 06 08 2B 06 01 05 05 07 03 01",
     0,
     {{129, "40 20 00 00"}}},
    {37, "30 0D 06 00 06 09 2B 06 01 05 05 07 03 01 01", 0, {{129, "00 00 00 00"}}},
    {31, "30 00", 0, {{131, ""}}},
    // Reasons alone, a name relative to the issuer, a directory name; then "x" and, too late, "y".
    {31,
     "30 2A 30 04 81 02 01 02 30 06 A0 04 A1 02 31 00 30 08 A0 06 A0 04 A4 02 30 00 "
     "30 07 A0 05 A0 03 86 01 78 30 07 A0 05 A0 03 86 01 79",
     0,
     {{131, "78"}}},
    {31, "30 02 05 00", 108, {{131, ""}}},
    {17, "30 00", 0, {{504, ""}, {505, ""}, {509, ""}, {510, ""}, {106, ""}, {107, ""}}},
    {17,
     "30 0F 82 01 61 82 01 62 81 01 63 86 01 64 87 01 7F",
     0,
     {{504, "63"}, {505, "61"}, {509, "64"}, {510, "7F"}}},
    {17, "30 02 82 01", 101, {{505, ""}}},
    {18,
     "30 15 82 01 61 A4 10 30 0E 31 0C 30 0A 06 03 55 04 03 0C 03 41 42 43",
     0,
     {{114, "41 42 43"}, {115, ""}, {505, ""}, {106, ""}}},
};

TEST(CertificateExtension, ValuesReadAsTheyStand) {
    for (const ValueRow &row : kValues) {
        SCOPED_TRACE(std::to_string(row.last_arc) + ": " + row.value);
        const NoLeak no_leak;
        const Octets der = extension(row.last_arc, from_hex("01 01 FF"), from_hex(row.value));
        const Context cert;
        EXPECT_EQ(decode_chain(decoder_of(row.last_arc), der, cert), row.result);
        for (const auto &[id, value] : row.attributes) {
            EXPECT_EQ(cert.hex(id), value) << id;
        }

        // The same through the list of a certificate.
        Parts parts("rsa_v1");
        parts.extensions = {der};
        const Context whole;
        EXPECT_EQ(whole.decode(parts.der()), row.result);
        for (const auto &[id, value] : row.attributes) {
            EXPECT_EQ(whole.hex(id), value) << id;
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
    const struct {
        const char *oid;
        uint32_t critical;
        const char *value;
    } rows[] = {
        {"55 1D 20", 255, "30 00"}, {"55 1D 0E 01", 0, "AA"}, {"55 1D 20", 0, ""}, {"", 0, "BB"}};
    ASSERT_EQ(cert.count_private(), std::size(rows));
    for (uint32_t i = 0; i < std::size(rows); ++i) {
        uint8_t oid[8];
        uint8_t value[8];
        uint32_t index = i + 1;
        uint32_t oid_len = 0;
        uint32_t value_len = 0;
        uint32_t critical = 7;
        EXPECT_EQ(ZACert_GetCertAttributePrivate(cert, &index, oid, &oid_len, &critical, value,
                                                 &value_len),
                  0u);
        EXPECT_EQ(to_hex({oid, oid_len}), rows[i].oid);
        EXPECT_EQ(to_hex({value, value_len}), rows[i].value);
        EXPECT_EQ(critical, rows[i].critical);
        EXPECT_EQ(index, i + 1);
    }
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
    const std::pair<uint32_t, uint32_t> rows[] = {{1, 255}, {2, 0}};  // the low octet counts
    for (const auto &[index, critical] : rows) {
        uint32_t position = index;
        uint32_t found = 7;
        uint32_t value_len = 0;
        EXPECT_EQ(ZACert_GetCertAttributePrivate(cert, &position, nullptr, &len, &found, nullptr,
                                                 &value_len),
                  0u);
        EXPECT_EQ(found, critical);
        EXPECT_EQ(value_len, index);
    }
    uint32_t index = 1;
    EXPECT_EQ(ZACert_GetCertAttributePrivate(nullptr, &index, nullptr, &len, &len, nullptr, &len),
              108u);
    EXPECT_EQ(ZACert_GetCertAttributePrivate(cert, nullptr, nullptr, &len, &len, nullptr, &len),
              108u);
    EXPECT_EQ(ZACert_GetCertAttributePrivate(cert, &index, nullptr, nullptr, &len, nullptr, &len),
              108u);
}

struct TypedRow {
    uint32_t type;
    const char *value;
    uint32_t result;
    const char *stored;
};

const TypedRow kTyped[] = {
    {19, "41 42", 0, "13 02 41 42"},      {12, "41 D6 D0", 0, "0C 04 41 E4 B8 AD"},
    {4, "41 D6 D0", 0, "04 03 41 D6 D0"}, {22, "41", 0, "04 01 41"},
    {0xFFFFFFFF, "41", 0, "04 01 41"},    {12, "D6", 0xFFFFFFFF, nullptr},
};

uint32_t set_typed(void *cert, const Octets &value, uint32_t type) {
    const uint8_t oid[] = {0x2A, 3};
    return ZACert_SetCertAttributePrivate_ForValue(cert, oid, 2, 1, value.data(),
                                                   static_cast<int32_t>(value.size()), type);
}

TEST(CertificatePrivate, ValuesAreEncodedByType) {
    for (const TypedRow &row : kTyped) {
        SCOPED_TRACE(row.value);
        const NoLeak no_leak;
        const Octets value = from_hex(row.value);
        const Context cert;
        EXPECT_EQ(set_typed(cert, value, row.type), row.result);
        ASSERT_EQ(cert.count_private(), row.stored == nullptr ? 0u : 1u);
        EXPECT_EQ(cert->extensions_changed, row.stored != nullptr);
        if (row.stored != nullptr) {
            EXPECT_EQ(to_hex(cert->private_extensions.front().value.bytes()), row.stored);
            expect_allocation_faults_survived([&] {
                cert::Certificate fresh;
                const uint32_t result = set_typed(&fresh, value, row.type);
                EXPECT_EQ(fresh.private_extensions.size(), result == 0 ? 1u : 0u);
                EXPECT_EQ(fresh.extensions_changed, result == 0);
                return result;
            });
        }
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
    const uint8_t octet = 1;
    const struct {
        void *cert;
        const uint8_t *oid;
        int32_t oid_len;
        const uint8_t *value;
        int32_t value_len;
        uint32_t result;
        const char *failure;
    } rows[] = {
        {nullptr, &octet, 1, &octet, 1, 108, "------>ZACERT_GeneralErr"},
        {cert, nullptr, 1, &octet, 1, 108, "------>ZACERT_GeneralErr"},
        {cert, &octet, 1, nullptr, 1, 108, "------>ZACERT_GeneralErr"},
        {cert, &octet, 0, &octet, 1, 101, "------>ZACert_SetCertAttributePrivate  Err"},
        {cert, &octet, 1, &octet, -1, 101, "------>ZACert_SetCertAttributePrivate  Err"},
    };
    for (const auto &row : rows) {
        const TraceRecord trace;
        EXPECT_EQ(ZACert_SetCertAttributePrivate(row.cert, row.oid, row.oid_len, 0, row.value,
                                                 row.value_len),
                  row.result);
        EXPECT_EQ(ZACert_SetCertAttributePrivate_ForValue(row.cert, row.oid, row.oid_len, 0,
                                                          row.value, row.value_len, 4),
                  row.result);
        EXPECT_EQ(trace.failures(), (Lines{row.failure, row.failure}));
    }
    EXPECT_EQ(cert.count_private(), 0u);
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
