// The tables of attributes in docs/attributes.md, one below the heading of each kind of object.
#pragma once

#include "runtime/attribute_table.hpp"
#include "support/bytes.hpp"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace za::test {

// ZACERT_WRITE_PAGES=1 in the environment writes the table instead of comparing it.
template <class Context>
void expect_table_in_page(const std::string &heading, const AttributeTable<Context> &table) {
    const std::string path = ZACERT_TEST_DATA "/../../docs/attributes.md";
    constexpr std::string_view kTable = "|---|---|---|---|---|\n";
    const Octets page = read_file(path);
    const std::string written(page.begin(), page.end());
    const size_t section = written.find(heading + "\n");
    ASSERT_NE(section, written.npos);
    const size_t start = written.find(kTable, section) + kTable.size();
    std::string made = written.substr(0, start);
    for (const auto &row : table.rows()) {
        const bool is_int = row.set_int != nullptr;
        made += "| " + std::to_string(row.id) + " | `" + row.texts.name + "` | ";
        made += is_int ? "Int | " : "Char | ";
        made += is_int || row.set != nullptr ? "yes | " : " | ";
        made += row.get_int != nullptr || row.get != nullptr ? "yes |\n" : " |\n";
    }
    const size_t behind = written.find("\n\n", start);
    made += behind == written.npos ? "" : written.substr(behind + 1);
    if (std::getenv("ZACERT_WRITE_PAGES") != nullptr) {
        std::ofstream(path) << made;
    }
    EXPECT_EQ(written, made);
}

}  // namespace za::test
