#include "support/rows.hpp"

#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <tuple>

namespace za::test {
namespace {

using Inputs = std::array<std::pair<const char *, int32_t>, 11>;
using Outputs = std::array<std::pair<char *, int32_t *>, 11>;

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

TEST(DnText, IsWrittenAndTakenApart) {
    for (const auto &row : rows_of("text/dn.txt")) {
        SCOPED_TRACE(row.at(0));
        const bool several = row.at(1) == "several";
        const std::string &text = row.at(4);
        Row values = list_of(row.at(3));
        values.resize(11);
        Inputs in;
        Outputs out;
        std::array<std::array<char, 80>, 11> texts;
        std::array<int32_t, 11> lengths{};
        for (size_t i = 0; i < values.size(); ++i) {
            in[i] = {values[i].data(), int32_t(values[i].size())};
            out[i] = {texts[i].data(), &lengths[i]};
        }
        if (row.at(2).ends_with('>')) {
            int32_t len = 77;
            EXPECT_EQ(generate(several, in, nullptr, &len), 0);
            std::string written(size_t(len), 'x');
            EXPECT_EQ(generate(several, in, written.data(), &len), 0);
            EXPECT_EQ(written, text);
        }
        if (row.at(2).starts_with('<')) {
            EXPECT_EQ(parse(several, out, text.data(), text.size()), 0);
            for (size_t i = 0; i < values.size(); ++i) {
                EXPECT_EQ(std::string(texts[i].data(), size_t(lengths[i])), values[i]) << i;
            }
        }
    }
}

TEST(DnText, HasALimitBothWays) {
    constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
    const std::string text = "CN=" + std::string(1022, 'x');
    int32_t len = 0;
    Outputs out{};
    out[3].second = &len;
    for (const bool several : {false, true}) {
        Inputs in{{{"", 1000}, {nullptr, kMost}, {"", -kMost}, {"", 24}}};
        EXPECT_TRUE(generate(several, in, nullptr, &len) == 0 && len == 1030);
        in[3].second = 25;
        EXPECT_TRUE(generate(several, in, nullptr, &len) == -1 && len == 1030);
        EXPECT_TRUE(parse(several, out, text.data(), 1024) == 0 && len == 1021);
        EXPECT_TRUE(parse(several, out, text.data(), 1025) == -1 && len == 0);
        EXPECT_TRUE(parse(several, out, nullptr, 9) == 0 && len == 0);
    }
    Inputs card{};
    card[10] = {"", kMost - 7};
    EXPECT_TRUE(generate(true, card, nullptr, &len) == 0 && len == kMost);
    card[10].second++;
    EXPECT_TRUE(generate(true, card, nullptr, &len) == -1 && len == kMost);
}

}  // namespace
}  // namespace za::test
