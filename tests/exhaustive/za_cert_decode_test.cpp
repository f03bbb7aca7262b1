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
    void decode(const std::string &what, size_t at, const Decode &decode) const {
        const size_t before = live_blocks();
        {
            const Context cert;
            const uint32_t result = decode(cert);
            EXPECT_TRUE(is_documented(result)) << result << what << at;
            if (result == 0) {
                read_some(cert);
            }
        }
        EXPECT_EQ(live_blocks(), before) << what << at;
    }

    const Octets der_ = certificate(GetParam());
};

TEST_P(EveryOctet, BoundedInBlocksOfTheExactSize) {
    const auto bounded = [](Bytes octets) {
        return [octets](const Context &cert) {
            return static_cast<uint32_t>(cert::decode_certificate(*cert, octets));
        };
    };
    for (size_t size = 0; size < der_.size(); ++size) {
        const std::unique_ptr<uint8_t[]> block(new uint8_t[size]);
        std::copy_n(der_.begin(), size, block.get());
        decode(" cut at ", size, [&](const Context &cert) {
            const uint32_t result = bounded({block.get(), size})(cert);
            EXPECT_NE(result, 0u) << "cut at " << size;
            return result;
        });
    }
    const std::unique_ptr<uint8_t[]> block(new uint8_t[der_.size()]);
    std::copy(der_.begin(), der_.end(), block.get());
    for (size_t at = 0; at < der_.size(); ++at) {
        for (unsigned change = 1; change < 0x100; ++change) {
            block[at] = static_cast<uint8_t>(der_[at] ^ change);
            decode(" changed at ", at, bounded({block.get(), der_.size()}));
        }
        block[at] = der_[at];
    }
}

TEST_P(EveryOctet, ExportedInABlockAsLongAsAHeaderMayAnnounce) {
    Octets block(65536 + 6);
    std::copy(der_.begin(), der_.end(), block.begin());
    const auto exported = [&](size_t size) {
        return [&block, size](const Context &cert) {
            return ZACert_DecodeCert(cert, block.data(), static_cast<uint32_t>(size));
        };
    };
    for (size_t at = 0; at < der_.size(); ++at) {
        for (unsigned change = 1; change < 0x100; ++change) {
            block[at] = static_cast<uint8_t>(der_[at] ^ change);
            decode(" changed at ", at, exported(der_.size()));
        }
        block[at] = der_[at];
    }
    for (size_t size = der_.size(); size-- > 0;) {
        block[size] = 0;
        decode(" cut at ", size, exported(size));
    }
}

INSTANTIATE_TEST_SUITE_P(Certificates, EveryOctet, testing::ValuesIn(kCertificates),
                         [](const auto &parameter) { return std::string(parameter.param); });

}  // namespace
}  // namespace za::test
