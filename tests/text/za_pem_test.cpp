#include "text/za_pem.hpp"

#include "support/heap.hpp"
#include "support/rows.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <regex>

namespace za::test {
namespace {

// All blocks have exactly the size promised, so that the sanitizer sees an octet too many.
int32_t read(const std::string &text, Octets &out) {
    const std::vector<char> in(text.begin(), text.end());
    uint32_t len = 77;
    const int32_t result = PEM2DER_data_format(in.data(), uint32_t(in.size()), nullptr, &len);
    out.assign(len, 0);
    EXPECT_EQ(PEM2DER_data_format(in.data(), uint32_t(in.size()), out.data(), &len), result);
    EXPECT_EQ(len, out.size());
    return result;
}

TEST(Text, IsWhatOpensslWritesInLines) {
    const TraceRecord trace;
    Octets octets;
    for (uint32_t size = 1; size <= 300; ++size) {
        SCOPED_TRACE(size);
        octets.push_back(uint8_t(size * 167 >> 2));
        std::vector<uint8_t> expected((size + 2) / 3 * 4 + 1);
        std::vector<char> base64(expected.size(), 'x');
        EVP_EncodeBlock(expected.data(), octets.data(), int(size));
        EXPECT_EQ(base64_encode(octets.data(), size, base64.data()), 0);
        EXPECT_TRUE(std::ranges::equal(base64, expected));
        const auto lines = std::regex_replace(base64.data(), std::regex(".{1,64}"), "$&\r\n");
        for (const char *frame : {"", "-----A-----"}) {
            const std::string line = *frame == 0 ? "" : std::string(frame) + "\r\n";
            const std::string pem = line + lines + line;
            std::vector<char> out(pem.size() + 1, 'x');
            uint32_t len = 0;
            EXPECT_EQ(DER2PEM_data_format(octets.data(), size, out.data(), &len, frame, frame), 0);
            EXPECT_TRUE(len == pem.size() && out.data() == pem);
            Octets again;
            EXPECT_TRUE(read(pem, again) == 0 && again == octets);
        }
    }
    EXPECT_EQ(trace.lines(), Trail{});
}

TEST(Text, IsReadOrRefused) {
    for (const auto &row : rows_of("text/read.txt")) {
        SCOPED_TRACE(row.at(0));
        const auto result = int32_t(number_of(row.at(2)));
        std::string text = row.at(1);
        std::ranges::replace(text, '^', '\n');
        std::ranges::replace(text, '$', '\r');
        std::ranges::replace(text, '~', '\0');
        Octets out;
        EXPECT_EQ(read(text, out), result);
        EXPECT_EQ(to_hex(out), result == 0 ? row.at(3) : to_hex(Octets(77)));
        if (text.find('-') == text.npos) {
            uint32_t len = 77;
            out.reserve(1);
            EXPECT_EQ(base64_decode(text.c_str(), out.data(), &len), 0);
            EXPECT_TRUE(len == out.size() && to_hex(out) == row.at(3));
        }
    }
}

TEST(Text, NeedsItsArgumentsAndHasALimit) {
    constexpr uint32_t kLongest = 65075262U * 48;  // in lines of 66 characters just below 4 GiB
    uint8_t octet = 0x41;
    uint32_t len = 77;
    char out[] = "untouched";
    const auto pem = [&](const uint8_t *der, uint32_t size, const char *header,
                         const char *footer) {
        return DER2PEM_data_format(der, size, size == 0 ? out : nullptr, &len, header, footer);
    };
    for (const int32_t result :
         {base64_encode(nullptr, 1, out), base64_encode(&octet, 1, nullptr),
          base64_decode(nullptr, &octet, &len), base64_decode("QQ==", nullptr, &len),
          pem(nullptr, 1, "", ""), pem(&octet, 1, nullptr, ""), pem(&octet, 1, "", nullptr),
          pem(&octet, kLongest + 1, "", ""), PEM2DER_data_format(nullptr, 1, &octet, &len)}) {
        EXPECT_TRUE(result == -1 && len == 77);
    }
    EXPECT_TRUE(pem(&octet, kLongest, "", "") == 0 && len == 4294967292u);
    EXPECT_TRUE(pem(nullptr, 0, "", "") == 0 && len == 0);
    EXPECT_STREQ(out, "untouched");
    EXPECT_TRUE(base64_encode(nullptr, 0, out) == 0 && out[0] == 0);
}

TEST(Text, IsConvertedInMemoryOfItsOwn) {
    const std::string pem = "-----A-----\r\nQUJDRA==\r\n-\r\n";
    const text::PemFrame frame{bytes_of(pem).first(11), bytes_of("-")};
    for (const bool writing : {false, true}) {
        expect_allocation_faults_survived([&] {
            za::Octets out;
            const Status status = writing ? text::der_to_pem(bytes_of("ABCD"), frame, out)
                                          : text::pem_to_der(bytes_of(pem), out);
            EXPECT_EQ(text_of(out.bytes()), status != Status::ok ? "" : writing ? pem : "ABCD");
            return uint32_t(status);
        });
    }
    za::Octets out;
    EXPECT_EQ(text::pem_to_der(bytes_of(pem).first(20), out), Status::text_invalid);
}

}  // namespace
}  // namespace za::test
