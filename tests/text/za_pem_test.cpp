#include "text/za_pem.hpp"

#include "support/heap.hpp"
#include "support/rows.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <regex>
#include <tuple>

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
        octets.push_back(uint8_t(size * 167 >> 2));
        std::vector<uint8_t> expected((size + 2) / 3 * 4 + 1);
        std::vector<char> base64(expected.size(), 'x');
        EVP_EncodeBlock(expected.data(), octets.data(), int(size));
        EXPECT_EQ(base64_encode(octets.data(), size, base64.data()), 0);
        EXPECT_TRUE(std::ranges::equal(base64, expected)) << size;
        const auto lines = std::regex_replace(base64.data(), std::regex(".{1,64}"), "$&\r\n");
        for (const char *frame : {"", "-----A-----"}) {
            const std::string line = *frame == 0 ? "" : std::string(frame) + "\r\n";
            const std::string pem = line + lines + line;
            std::vector<char> out(pem.size() + 1, 'x');
            uint32_t len = 0;
            EXPECT_EQ(DER2PEM_data_format(octets.data(), size, out.data(), &len, frame, frame), 0);
            EXPECT_TRUE(len == pem.size() && out.data() == pem) << size;
            Octets again;
            EXPECT_TRUE(read(pem, again) == 0 && again == octets) << size;
        }
    }
    EXPECT_EQ(trace.lines(), Trail{});
}

TEST(Text, IsReadOrRefused) {
    for (const auto &row : rows_of("text/read.txt")) {
        SCOPED_TRACE(row.at(0));
        const auto result = int32_t(number_of(row.at(2)));
        const std::string text = std::regex_replace(row.at(1), std::regex("\\^"), "\n");
        Octets out;
        EXPECT_EQ(read(text, out), result);
        EXPECT_EQ(to_hex(out), result == 0 ? row.at(3) : to_hex(Octets(77)));
        if (text.find('-') == text.npos) {
            uint32_t len = 77;
            out.reserve(1);  // a pointer even to nothing
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
    const auto pem = [&](const uint8_t *der, uint32_t size, auto... lines) {
        return DER2PEM_data_format(der, size, size == 0 ? out : nullptr, &len, lines...);
    };
    for (const int32_t result :
         {base64_encode(nullptr, 1, out), base64_encode(&octet, 1, nullptr),
          base64_decode(nullptr, &octet, &len), base64_decode("QQ==", nullptr, &len),
          pem(nullptr, 1, "", ""), pem(&octet, 1, nullptr, ""), pem(&octet, 1, "", nullptr),
          pem(&octet, kLongest + 1, "", ""), PEM2DER_data_format(nullptr, 1, &octet, &len)}) {
        EXPECT_TRUE(result == -1 && len == 77);
    }
    EXPECT_TRUE(pem(&octet, kLongest, "", "") == 0 && len == 4294967292u);
    EXPECT_TRUE(pem(nullptr, 0, "", "") == 0 && len == 0 && out == std::string("untouched"));
    EXPECT_TRUE(base64_encode(nullptr, 0, out) == 0 && out[0] == 0);
}

TEST(Text, IsConvertedInMemoryOfItsOwn) {
    expect_allocation_faults_survived([] {
        za::Octets der;
        za::Octets pem;
        Status status = text::pem_to_der(bytes_of("-----A-----QUJDRA==-"), der);
        status = status == Status::ok ? text::der_to_pem(der.bytes(), {}, pem) : status;
        EXPECT_EQ(text_of(pem.bytes()), status == Status::ok ? "QUJDRA==\r\n" : "");
        return uint32_t(status);
    });
}

using Inputs = std::array<std::pair<const char *, int32_t>, 11>;
using Outputs = std::array<std::pair<char *, int32_t *>, 11>;

template <size_t... I, class Function, class Pairs, class... Rest>
int32_t spread(std::index_sequence<I...>, Function function, const Pairs &pairs, Rest... rest) {
    return std::apply(function, std::tuple_cat(pairs[I]..., std::make_tuple(rest...)));
}

int32_t generate(bool several, const auto &...arguments) {
    return several ? spread(std::make_index_sequence<11>(), ZA_GenerateDN_ForMultOu, arguments...)
                   : spread(std::make_index_sequence<10>(), ZA_GenerateDN, arguments...);
}

int32_t parse(bool several, const auto &...arguments) {
    return several ? spread(std::make_index_sequence<11>(), ZA_ParseDN_ForMultOu, arguments...)
                   : spread(std::make_index_sequence<10>(), ZA_ParseDN, arguments...);
}

TEST(DnText, IsWrittenAndTakenApart) {
    for (const auto &row : rows_of("text/dn.txt")) {
        SCOPED_TRACE(row.at(0));
        const bool several = row.at(1) == "several";
        const std::string &text = row.at(4);
        Row values = list_of(row.at(3));
        values.resize(11);
        Inputs in;
        Outputs out;
        std::array<std::pair<std::array<char, 80>, int32_t>, 11> found{};
        for (size_t i = 0; i < values.size(); ++i) {
            in[i] = {values[i].data(), int32_t(values[i].size())};
            out[i] = {found[i].first.data(), &found[i].second};
        }
        if (row.at(2).ends_with('>')) {
            std::string written(text.size(), 'x');
            EXPECT_EQ(generate(several, in, written.data(), out[0].second), 0);
            EXPECT_TRUE(*out[0].second == int32_t(text.size()) && written == text) << written;
        }
        if (row.at(2).starts_with('<')) {
            EXPECT_EQ(parse(several, out, text.data(), int32_t(text.size())), 0);
            for (size_t i = 0; i < values.size(); ++i) {
                EXPECT_EQ(std::string(out[i].first, size_t(found[i].second)), values[i]) << i;
            }
        }
    }
}

TEST(DnText, HasALimitBothWays) {
    const std::string text = "CN=" + std::string(1022, 'x');
    int32_t len = 0;
    const Outputs out{{{}, {}, {}, {nullptr, &len}}};
    for (const bool several : {false, true}) {
        Inputs in{{{"", 1000}, {nullptr, INT32_MAX}, {"", -INT32_MAX}, {"", 24}}};
        EXPECT_TRUE(generate(several, in, nullptr, &len) == 0 && len == 1030);
        in[3].second = 25;
        EXPECT_TRUE(generate(several, in, nullptr, &len) == -1 && len == 1030);
        in = {{{"", INT32_MAX}, {"", INT32_MAX}, {"", 2}}};
        EXPECT_EQ(generate(several, in, nullptr, &len), -1);
        EXPECT_TRUE(parse(several, out, text.data(), 1024) == 0 && len == 1021);
        EXPECT_TRUE(parse(several, out, text.data(), 1025) == -1 && len == 0);
        EXPECT_TRUE(parse(several, out, nullptr, 9) == 0 && len == 0);
    }
    Inputs card{};
    card[10] = {"", INT32_MAX - 7};
    EXPECT_TRUE(generate(true, card, nullptr, &len) == 0 && len == INT32_MAX);
    card[10].second++;
    EXPECT_TRUE(generate(true, card, nullptr, &len) == -1 && len == INT32_MAX);
}

}  // namespace
}  // namespace za::test
