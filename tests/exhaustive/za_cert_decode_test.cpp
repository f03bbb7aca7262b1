// Every cut and every changed octet of ten certificates of different makers, keys and extensions.
#include "cert/za_cert_decode.hpp"

#include "cert/za_cert_support.hpp"
#include "support/heap.hpp"

#include <set>

namespace za::test {
namespace {

// What readers, names, keys and dates are documented to return; the last two are failures of text.
const std::set<uint32_t> kDocumented{0,   101, 102, 104,        106,       108,
                                     109, 113, 121, 0xFFFFFFFE, 0xFFFFFFFF};

// A changed date may be one that the calendar cannot convert, which is found out when it is read.
void read_some(const Context &cert) {
    for (const int32_t id : {29, 30}) {
        uint32_t number = 0;
        const uint32_t result = ZACert_GetCertAttributeInt(cert, id, &number);
        EXPECT_TRUE(result == 0 || result == 100) << result;
    }
    for (const int32_t id : {8, 13, 31, 32, 54, 87, 120, 129, 131, 505, 3003}) {
        uint32_t status = 0;
        cert.get(id, &status);
        EXPECT_EQ(status, 0u) << id;
    }
}

template <class Decode>
uint32_t decode(const Decode &decoder, const Octets &octets, const char *what, size_t at) {
    SCOPED_TRACE(what + std::to_string(at));
    const NoLeak no_leak;
    const Context cert;
    const uint32_t result = decoder(cert, octets);
    EXPECT_TRUE(kDocumented.contains(result)) << result;
    if (result == 0) {
        read_some(cert);
    }
    return result;
}

template <class Decode>
void change_every_octet(const Decode &decoder, const Octets &octets, size_t size) {
    EXPECT_EQ(decode(decoder, octets, "whole ", size), 0u);
    for_each_change(octets, size, [&](const Octets &changed, size_t at) {
        decode(decoder, changed, "changed at ", at);
    });
}

class EveryOctet : public testing::TestWithParam<const char *> {};

TEST_P(EveryOctet, BoundedInBlocksOfTheExactSize) {
    const auto bounded = [](const Context &cert, const Octets &octets) {
        return static_cast<uint32_t>(cert::decode_certificate(*cert, octets));
    };
    const Octets der = certificate(GetParam());
    for (auto end = der.begin(); end != der.end(); ++end) {
        const Octets cut(der.begin(), end);
        EXPECT_NE(decode(bounded, cut, "cut at ", cut.size()), 0u);
    }
    change_every_octet(bounded, der, der.size());
}

// What is cut off is zero; the block is as long as a header may announce.
TEST_P(EveryOctet, ExportedInALongBlock) {
    const auto exported = [](const Context &cert, const Octets &octets) {
        return ZACert_DecodeCert(cert, octets.data(), 1);
    };
    const size_t der_size = certificate(GetParam()).size();
    Octets octets = join({certificate(GetParam()), Octets(65536 + 6)});
    change_every_octet(exported, octets, der_size);
    for (size_t size = der_size; size-- > 0;) {
        octets[size] = 0;
        decode(exported, octets, "cut at ", size);
    }
}

INSTANTIATE_TEST_SUITE_P(Certificates, EveryOctet, testing::ValuesIn(kCertificates),
                         [](const auto &parameter) { return std::string(parameter.param); });

}  // namespace
}  // namespace za::test
