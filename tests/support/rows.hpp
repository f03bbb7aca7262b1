// Cases in files of tests/data: one per line.
#pragma once

#include "support/bytes.hpp"

#include <string>
#include <vector>

namespace za::test {

using Row = std::vector<std::string>;

// The cells of every line, which stand between bars; "#" begins a remark. A bar that stands twice
// is text. `name` is below tests/data.
std::vector<Row> rows_of(const std::string &name);

Row split(const std::string &text, char separator);  // pieces without blanks around them
Row list_of(const std::string &cell);                // "a; b"; none of an empty cell
uint32_t number_of(const std::string &cell);         // decimal or 0x..; -1 is 0xFFFFFFFF
Octets octets_of_cell(const std::string &cell);      // hex, or a data file's name

}  // namespace za::test
