// Every cut and every changed octet of ten certificates of different makers, keys and extensions.
#include "cert/za_cert_decode.hpp"

#include "cert/za_cert_support.hpp"
#include "support/heap.hpp"

#include <memory>
#include <set>

namespace za::test {
namespace {

// What readers, names, keys and dates are documented to return; the last two are failures of text.
bool is_documented(uint32_t result) {
    static const std::set<uint32_t> kResults{0,   101, 102, 104,        106,       108,
                                             109, 113, 121, 0xFFFFFFFE, 0xFFFFFFFF};
    return kResults.contains(result);
}

// A changed date may be one that the calendar cannot convert, which is found out when it is read.
void read_some(void *cert) {
    for (const int32_t id : {29, 30}) {
        uint32_t number = 0;
        const uint32_t result = ZACert_GetCertAttributeInt(cert, id, &number);
        EXPECT_TRUE(result == 0 || result == 100) << result;
    }
    for (const int32_t id : {8, 13, 31, 32, 54, 87, 120, 129, 131, 505, 3003}) {
        uint32_t len = 0;
        EXPECT_EQ(ZACert_GetCertAttributeChar(cert, id, nullptr, &len), 0u) << id;
        const std::unique_ptr<uint8_t[]> out(new uint8_t[len]);
        EXPECT_EQ(ZACert_GetCertAttributeChar(cert, id, out.get(), &len), 0u) << id;
    }
}

class EveryOctet : public testing::TestWithParam<const char *> {
  protected:
    template <class Decode>
    static uint32_t decode(const Octets &octets, const std::string &what, const Decode &decoder) {
        const size_t before = live_blocks();
        uint32_t result = 0;
        {
            const Context cert;
            result = decoder(cert, octets);
            EXPECT_TRUE(is_documented(result)) << result << what;
            if (result == 0) {
                read_some(cert);
            }
        }
        EXPECT_EQ(live_blocks(), before) << what;
        return result;
    }

    template <class Decode>
    void change_every_octet(Octets octets, const Decode &decoder) const {
        for (size_t at = 0; at < der_.size(); ++at) {
            const std::string what = " changed at " + std::to_string(at);
            for (unsigned change = 1; change < 0x100; ++change) {
                octets[at] = static_cast<uint8_t>(der_[at] ^ change);
                decode(octets, what, decoder);
            }
            octets[at] = der_[at];
        }
    }

    const Octets der_ = certificate(GetParam());
};

TEST_P(EveryOctet, BoundedInBlocksOfTheExactSize) {
    const auto bounded = [](const Context &cert, const Octets &octets) {
        return static_cast<uint32_t>(cert::decode_certificate(*cert, octets));
    };
    for (auto end = der_.begin(); end != der_.end(); ++end) {
        const Octets cut(der_.begin(), end);
        EXPECT_NE(decode(cut, " cut at " + std::to_string(cut.size()), bounded), 0u);
    }
    change_every_octet(der_, bounded);
}

// What is cut off is zero; the block is as long as a header may announce.
TEST_P(EveryOctet, ExportedInALongBlock) {
    const auto exported = [](const Context &cert, const Octets &octets) {
        return ZACert_DecodeCert(cert, octets.data(), 1);
    };
    Octets octets = join({der_, Octets(65536 + 6)});
    change_every_octet(octets, exported);
    for (size_t size = der_.size(); size-- > 0;) {
        octets[size] = 0;
        decode(octets, " cut at " + std::to_string(size), exported);
    }
}

INSTANTIATE_TEST_SUITE_P(Certificates, EveryOctet, testing::ValuesIn(kCertificates),
                         [](const auto &parameter) { return std::string(parameter.param); });

}  // namespace
}  // namespace za::test
