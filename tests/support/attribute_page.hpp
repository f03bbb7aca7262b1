// The page of attributes against the tables it is made from.
#pragma once

#include "support/bytes.hpp"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

namespace za::test {

// The rows below a title of docs/attributes.md, up to the next title. ZACERT_WRITE_PAGES=1 in the
// environment writes them instead of comparing them.
template <class Table>
void expect_page_tells(const std::string &title, const Table &table) {
    const std::string path = ZACERT_TEST_DATA "/../../docs/attributes.md";
    const Octets page = read_file(path);
    const std::string written(page.begin(), page.end());
    constexpr std::string_view kHead = "|---|---|---|---|---|\n";
    const size_t rows = written.find(kHead, written.find("# " + title + "\n")) + kHead.size();
    const size_t end = std::min(written.find("\n#", rows), written.size());
    std::string made;
    for (const auto &row : table.rows()) {
        const bool is_int = row.set_int != nullptr || row.get_int != nullptr;
        made += "| " + std::to_string(row.id) + " | `" + row.texts.name + "` | ";
        made += is_int ? "Int | " : "Char | ";
        made += row.set_int != nullptr || row.set != nullptr ? "yes | " : " | ";
        made += row.get_int != nullptr || row.get != nullptr ? "yes |\n" : " |\n";
    }
    EXPECT_EQ(written.substr(rows, end - rows), made);
    if (std::getenv("ZACERT_WRITE_PAGES") != nullptr) {
        std::ofstream(path) << written.substr(0, rows) + made + written.substr(end);
    }
}

}  // namespace za::test
