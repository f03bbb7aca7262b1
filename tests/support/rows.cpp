#include "support/rows.hpp"

#include <sstream>
#include <stdexcept>

namespace za::test {
namespace {

std::string trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(' ');
    return std::string(
        first == text.npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1));
}

// A separator that stands twice is text.
Row split(std::string_view text, char separator) {
    Row parts;
    size_t begin = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text.substr(at, 2) == std::string(2, separator)) {
            ++at;
        } else if (text[at] == separator) {
            parts.push_back(trimmed(text.substr(begin, at - begin)));
            begin = at + 1;
        }
    }
    parts.push_back(trimmed(text.substr(begin)));
    return parts;
}

}  // namespace

std::vector<Row> rows_of(const std::string &name) {
    const Octets octets = data_file(name);
    std::istringstream lines(std::string(octets.begin(), octets.end()));
    std::vector<Row> rows;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.front() != '#') {
            rows.push_back(split(line, '|'));
        }
    }
    return rows.empty() ? throw std::runtime_error("no cases in " + name) : rows;
}

uint32_t number_of(const std::string &cell) {
    return static_cast<uint32_t>(std::stoll(cell, nullptr, 0));
}

Octets octets_of_cell(const std::string &cell) {
    return cell.ends_with(".der") ? data_file(cell) : from_hex(cell);
}

Row list_of(const std::string &cell) {
    return cell.empty() ? Row{} : split(cell, ';');
}

}  // namespace za::test
