#include "support/rows.hpp"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <tuple>

namespace za::test {
namespace {

constexpr std::array kNames{"C", "O", "OU", "CN", "E", "S", "L", "PA", "PC", "Phone", "IDCard"};

using Inputs = std::array<std::pair<const char *, int32_t>, kNames.size()>;
using Outputs = std::array<std::pair<char *, int32_t *>, kNames.size()>;

template <size_t... I, class Function, class Pairs, class... Rest>
int32_t spread(std::index_sequence<I...>, Function function, const Pairs &pairs, Rest... rest) {
    return std::apply(function, std::tuple_cat(pairs[I]..., std::make_tuple(rest...)));
}

template <class One, class Several, class... Arguments>
int32_t call(bool several, One one, Several other, const Arguments &...arguments) {
    return several ? spread(std::make_index_sequence<11>(), other, arguments...)
                   : spread(std::make_index_sequence<10>(), one, arguments...);
}

int32_t generate(bool several, const Inputs &in, char *out, int32_t *len) {
    return call(several, ZA_GenerateDN, ZA_GenerateDN_ForMultOu, in, out, len);
}

int32_t parse(bool several, const Outputs &out, const char *text, size_t len) {
    return call(several, ZA_ParseDN, ZA_ParseDN_ForMultOu, out, text, int32_t(len));
}

TEST(DnText, IsWritten) {
    for (const auto &row : rows_of("text/dn_written.txt")) {
        SCOPED_TRACE(row.at(0));
        const Row components = list_of(row.at(2));
        Inputs in{};
        for (const std::string &component : components) {
            const size_t at = component.find('=');
            const auto name = std::find(kNames.begin(), kNames.end(), component.substr(0, at));
            in.at(size_t(name - kNames.begin())) = {&component[at + 1],
                                                    int32_t(component.size() - at - 1)};
        }
        int32_t len = 77;
        EXPECT_EQ(generate(row.at(1) == "several", in, nullptr, &len), 0);
        std::vector<char> out(size_t(len), 'x');
        EXPECT_EQ(generate(row.at(1) == "several", in, out.data(), &len), 0);
        EXPECT_EQ(std::string(out.begin(), out.end()), row.at(3));
    }
}

TEST(DnText, IsTakenApart) {
    for (const auto &row : rows_of("text/dn_read.txt")) {
        SCOPED_TRACE(row.at(0));
        std::array<std::array<char, 80>, kNames.size()> texts;
        std::array<int32_t, kNames.size()> lengths{};
        Outputs out;
        for (size_t i = 0; i < out.size(); ++i) {
            out[i] = {texts[i].data(), &lengths[i]};
        }
        const std::vector<char> text(row.at(2).begin(), row.at(2).end());
        EXPECT_EQ(parse(row.at(1) == "several", out, text.data(), text.size()), 0);
        Row found;
        for (size_t i = 0; i < out.size(); ++i) {
            if (lengths[i] > 0) {
                found.push_back(kNames[i] + ("=" + std::string(out[i].first, size_t(lengths[i]))));
            }
        }
        EXPECT_EQ(found, list_of(row.at(3)));
    }
}

TEST(DnText, HasALimitBothWays) {
    constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
    const std::string text = "CN=" + std::string(1022, 'x');
    int32_t len = 0;
    Inputs in{};
    Outputs out{};
    out[3].second = &len;
    for (const bool several : {false, true}) {
        in = {{{"", 1000}, {nullptr, kMost}, {"", -kMost}, {"", 24}}};
        EXPECT_EQ(generate(several, in, nullptr, nullptr), 0);
        EXPECT_TRUE(generate(several, in, nullptr, &len) == 0 && len == 1000 + 24 + 6);
        in[3].second = 25;
        EXPECT_TRUE(generate(several, in, nullptr, &len) == -1 && len == 1030);
        EXPECT_TRUE(parse(several, out, text.data(), 1024) == 0 && len == 1021);
        EXPECT_TRUE(parse(several, out, text.data(), 1025) == -1 && len == 0);
        EXPECT_TRUE(parse(several, out, text.data(), size_t(-1)) == 0 && len == 0);
        EXPECT_TRUE(parse(several, out, nullptr, 9) == 0 && len == 0);
    }
    in = {};
    in[10] = {"", kMost - 7};
    EXPECT_TRUE(generate(true, in, nullptr, &len) == 0 && len == kMost);
    in[10].second++;
    EXPECT_TRUE(generate(true, in, nullptr, &len) == -1 && len == kMost);
}

}  // namespace
}  // namespace za::test
