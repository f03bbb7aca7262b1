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

std::string write(const Octets &der, const char *header, const char *footer) {
    const auto size = uint32_t(der.size());
    uint32_t len = 0;
    EXPECT_EQ(DER2PEM_data_format(der.data(), size, nullptr, &len, header, footer), 0);
    std::vector<char> out(len + 1, 'x');
    EXPECT_EQ(DER2PEM_data_format(der.data(), size, out.data(), &len, header, footer), 0);
    EXPECT_EQ(strlen(out.data()), len);
    return out.data();
}

TEST(Text, IsWhatOpensslWritesInLines) {
    const TraceRecord trace;
    const std::regex line(".{1,64}");
    Octets octets;
    for (uint32_t size = 1; size <= 300; ++size) {
        SCOPED_TRACE(size);
        octets.push_back(uint8_t(size * 167 >> 2));
        std::vector<uint8_t> expected((size + 2) / 3 * 4 + 1);
        std::vector<char> base64(expected.size(), 'x');
        EVP_EncodeBlock(expected.data(), octets.data(), int(size));
        EXPECT_EQ(base64_encode(octets.data(), size, base64.data()), 0);
        EXPECT_TRUE(std::equal(base64.begin(), base64.end(), expected.begin()));
        const std::string lines = std::regex_replace(base64.data(), line, "$&\r\n");
        EXPECT_EQ(write(octets, "", ""), lines);
        EXPECT_EQ(write(octets, "-----A-----", "-----B"), "-----A-----\r\n" + lines + "-----B\r\n");
        Octets out;
        EXPECT_TRUE(read("-----A-----" + lines + "-", out) == 0 && out == octets);
    }
    EXPECT_EQ(trace.lines(), Trail{});
}

TEST(Text, IsReadOrRefused) {
    for (const auto &row : rows_of("text/read.txt")) {
        SCOPED_TRACE(row.at(0));
        const auto result = int32_t(number_of(row.at(2)));
        std::string text = row.at(1);
        std::replace(text.begin(), text.end(), '^', '\n');
        std::replace(text.begin(), text.end(), '$', '\r');
        std::replace(text.begin(), text.end(), '~', '\0');
        Octets out;
        EXPECT_EQ(read(text, out), result);
        EXPECT_EQ(to_hex(out), result == 0 ? row.at(3) : to_hex(Octets(77)));
        if (text.find('-') == text.npos) {
            uint32_t len = 77;
            out.reserve(1);
            EXPECT_EQ(base64_decode(text.c_str(), out.data(), &len), 0);
            EXPECT_EQ(len, out.size());
            EXPECT_EQ(to_hex(out), row.at(3));
        }
    }
}

TEST(Text, RefusesWhatIsMissingOrTooLong) {
    constexpr uint32_t kLongest = 65075262U * 48;  // in lines of 66 characters just below 4 GiB
    uint8_t octet = 0x41;
    uint32_t len = 77;
    char out[] = "untouched";
    for (const int32_t result :
         {base64_encode(nullptr, 1, out), base64_encode(&octet, 1, nullptr),
          base64_decode(nullptr, &octet, &len), base64_decode("QQ==", nullptr, &len),
          base64_decode("QQ==", &octet, nullptr),
          DER2PEM_data_format(nullptr, 1, out, &len, "", ""),
          DER2PEM_data_format(&octet, 1, out, &len, nullptr, ""),
          DER2PEM_data_format(&octet, 1, out, &len, "", nullptr),
          DER2PEM_data_format(&octet, 1, out, nullptr, "", ""),
          DER2PEM_data_format(&octet, kLongest + 1, nullptr, &len, "", ""),
          PEM2DER_data_format(nullptr, 1, &octet, &len),
          PEM2DER_data_format("QQ==", 4, &octet, nullptr)}) {
        EXPECT_EQ(result, -1);
    }
    EXPECT_EQ(len, 77u);
    EXPECT_EQ(DER2PEM_data_format(&octet, kLongest, nullptr, &len, "", ""), 0);
    EXPECT_EQ(len, 4294967292u);
    EXPECT_TRUE(DER2PEM_data_format(nullptr, 0, out, &len, "", "") == 0 && len == 0);
    EXPECT_STREQ(out, "untouched");
    EXPECT_TRUE(base64_encode(nullptr, 0, out) == 0 && out[0] == 0);
}

TEST(Text, IsConvertedInMemoryOfItsOwn) {
    const std::string pem = "-\r\nQUJD\r\n--\r\n";
    for (const bool writing : {false, true}) {
        expect_allocation_faults_survived([&] {
            za::Octets out;
            const text::PemFrame frame{bytes_of(pem).first(1), bytes_of(pem).subspan(9, 2)};
            const Status status =
                writing ? text::der_to_pem(bytes_of("ABC"), frame, out)
                        : text::pem_to_der(bytes_of("-----A-----QUJDRA==" + pem), out);
            EXPECT_EQ(text_of(out.bytes()), status != Status::ok ? "" : writing ? pem : "ABCD");
            return uint32_t(status);
        });
    }
    za::Octets out;
    EXPECT_EQ(text::pem_to_der(bytes_of("-----A-----QUJD"), out), Status::text_invalid);
}

}  // namespace
}  // namespace za::test
