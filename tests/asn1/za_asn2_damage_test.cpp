// Real messages, cut and changed, in blocks that end where their octets end.
#include "support/bytes.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"

#include <bit>
#include <gtest/gtest.h>
#include <string>

namespace za::test {
namespace {

// Of larger files only single bits change.
constexpr size_t kSmall = 512;

const char *const kFiles[] = {"certificate.der", "request.der", "key.der", "signed.der",
                              "signed.ber"};

uint32_t explicit_content(const Anybuf *in, Anybuf **out) {
    uint32_t tag = 0;
    return ZAsn1_ReadExplicit(in, out, &tag);
}

uint32_t implicit_content(const Anybuf *in, Anybuf **out) {
    uint32_t number = 0;
    return ZAsn1_ReadImplicit(in, out, &number);
}

void expect_documented(uint32_t result) {
    for (const uint32_t code : {0u, 101u, 102u, 104u, 106u, 108u, 123u}) {
        if (result == code) {
            return;
        }
    }
    ADD_FAILURE() << "result " << result;
}

// Whether any reader takes the octets as a whole.
bool is_readable(const Octets &octets) {
    const Anybuf in = borrowed(octets);
    bool readable = false;
    for (const auto read :
         {ZAsn1_ReadSequence, ZAsn1_ReadSet, explicit_content, implicit_content}) {
        const Handed out = handed([&](Anybuf **children) { return read(&in, children); });
        expect_documented(out.result);
        readable = readable || out.result == 0;
    }
    Octets definite(octets.size());
    uint32_t length = 0;
    const uint32_t result =
        ZAsn1_IndefiniteToDefinite(octets.data(), in.dataLen, definite.data(), &length);
    expect_documented(result);
    EXPECT_LE(length, octets.size());
    return readable || result == 0;
}

// Every element below, each by every reader of a primitive type.
size_t walk(const Anybuf &element) {
    uint32_t number = 0;
    uint8_t octet = 0;
    int32_t time = 0;
    ZA_ObjectIdentifier *oid = nullptr;
    expect_documented(ZAsn1_ReadInteger(&element, &number));
    expect_documented(ZAsn1_ReadBoolean(&element, &octet));
    expect_documented(ZAsn1_ReadUtcTime(&element, &time));
    expect_documented(ZAsn1_ReadGeneralizedTime(&element, &time));
    if (ZAsn1_ReadObjectId(&element, &oid) == 0) {
        ZI_ClearAnybuf(&oid->parameters);
        ZAPR_Free(oid);
    }
    handed([&](Anybuf **out) { return ZAsn1_ReadBitString(&element, out); });
    const Handed children = handed([&](Anybuf **out) { return implicit_content(&element, out); });
    size_t elements = 1;
    if (children.result == 0 && element.dataLen > 0 && (element.data[0] & 0x20) != 0) {
        for (const Anybuf *child = children.record.get(); child != nullptr; child = child->next) {
            elements += walk(*child);
        }
    }
    return elements;
}

TEST(Damage, CutMessagesAreRefused) {
    const NoLeak no_leak;
    for (const char *file : kFiles) {
        const Octets whole = read_file(std::string(ZACERT_TEST_DATA "/der/") + file);
        EXPECT_TRUE(is_readable(whole)) << file;
        for (size_t size = 0; size < whole.size(); ++size) {
            const Octets cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
            // The indefinite length alone reads as a length of 0.
            const bool reads_as_empty = size == 2 && whole[1] == 0x80;
            EXPECT_EQ(is_readable(cut), reads_as_empty) << file << " " << size;
        }
    }
}

TEST(Damage, ChangedOctetsGiveDocumentedCodes) {
    const NoLeak no_leak;
    for (const char *file : kFiles) {
        Octets octets = read_file(std::string(ZACERT_TEST_DATA "/der/") + file);
        octets.shrink_to_fit();
        size_t elements = 0;
        for (uint8_t &octet : octets) {
            const uint8_t original = octet;
            for (unsigned change = 1; change < 0x100; ++change) {
                const bool one_bit = std::has_single_bit(change);
                if (one_bit || octets.size() < kSmall) {
                    octet = static_cast<uint8_t>(original ^ change);
                    is_readable(octets);
                    elements += one_bit ? walk(borrowed(octets)) : 0;
                }
            }
            octet = original;
        }
        EXPECT_GE(elements, 8 * octets.size()) << file;
    }
}

}  // namespace
}  // namespace za::test
