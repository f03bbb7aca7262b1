// Cases in files of tests/data: one per line.
#pragma once

#include "support/bytes.hpp"

#include <functional>
#include <set>

namespace za::test {

using Row = std::vector<std::string>;

// The cells of every line, which stand between bars; "#" begins a remark. A bar that stands twice
// is text. `name` is below tests/data.
std::vector<Row> rows_of(const std::string &name);

Row split(const std::string &text, char separator);  // pieces without blanks around them
Row list_of(const std::string &cell);                // "a; b"; none of an empty cell
uint32_t number_of(const std::string &cell);         // decimal or 0x..; -1 is 0xFFFFFFFF
Octets octets_of_cell(const std::string &cell);      // hex, or a data file's name

// Cases of a decoder, "name | input | result | what is decoded | failures" (in UTF-8, the log has
// GB18030): what is decoded without a failure is then decoded without memory and from damaged
// input, with codes of `refused`. Where the result is 100 the first allocation fails.
void expect_decoded(const std::string &file, const std::set<uint32_t> &refused,
                    const std::function<uint32_t(const Octets &, std::string &)> &decode);

}  // namespace za::test
