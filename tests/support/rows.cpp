#include "support/rows.hpp"

#include "support/heap.hpp"
#include "support/trace.hpp"

#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>

namespace za::test {
namespace {

std::string trimmed(const std::string &text) {
    const size_t first = text.find_first_not_of(' ');
    return first == text.npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

std::vector<Row> rows_of(const std::string &name) {
    std::ifstream file(std::string(ZACERT_TEST_DATA) + "/" + name);
    std::vector<Row> rows;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#') {
            for (size_t at = 0; at < line.size(); ++at) {
                const bool alone = line[at + 1] != '|' && (at == 0 || line[at - 1] != '|');
                line[at] = line[at] == '|' && alone ? '\n' : line[at];
            }
            rows.push_back(split(line, '\n'));
        }
    }
    return rows.empty() ? throw std::runtime_error("no cases in " + name) : rows;
}

Row split(const std::string &text, char separator) {
    Row pieces;
    for (size_t at = 0, end = 0; end != text.npos; at = end + 1) {
        end = text.find(separator, at);
        pieces.push_back(trimmed(text.substr(at, end - at)));
    }
    return pieces;
}

Row list_of(const std::string &cell) {
    return cell.empty() ? Row{} : split(cell, ';');
}

uint32_t number_of(const std::string &cell) {
    return static_cast<uint32_t>(std::stoll(cell, nullptr, 0));
}

Octets octets_of_cell(const std::string &cell) {
    return cell.ends_with(".der") ? data_file(cell) : from_hex(cell);
}

void expect_decoded(const std::string &file, const std::set<uint32_t> &refused,
                    const std::function<uint32_t(const Octets &, std::string &)> &decode) {
    for (const Row &row : rows_of(file)) {
        SCOPED_TRACE(row.at(0));
        const Octets der = octets_of_cell(row.at(1));
        const uint32_t expected = number_of(row.at(2));
        const Octets trail = two_calls([&](uint8_t *out, uint32_t *len) {
            const auto *text = reinterpret_cast<const uint8_t *>(row.at(4).data());
            return ZI_UTF8String2Chinese(text, int32_t(row.at(4).size()), out, len);
        });
        std::string out;
        {
            const TraceRecord trace;
            fail_allocation(expected == 100 ? 1 : 0);
            EXPECT_EQ(decode(der, out), expected);
            EXPECT_EQ(out, row.at(3));
            EXPECT_EQ(trace.failures(), list_of({trail.begin(), trail.end()}));
        }
        if (expected == 0) {
            const auto again = [&](const Octets &octets) { return decode(octets, out); };
            expect_allocation_faults_survived([&] { return again(der); });
            expect_damage_survived(der, refused, again);
        }
    }
}

}  // namespace za::test
