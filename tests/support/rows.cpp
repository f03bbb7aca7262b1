#include "support/rows.hpp"

#include <fstream>
#include <stdexcept>

namespace za::test {
namespace {

std::string trimmed(const std::string &text) {
    const size_t first = text.find_first_not_of(' ');
    return first == text.npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// "||" is text, so the pieces around it belong together.
Row cells_of(const std::string &line) {
    Row cells{""};
    for (size_t at = 0; at < line.size(); ++at) {
        if (line.compare(at, 2, "||") == 0) {
            cells.back() += line[++at];
            cells.back() += '|';
        } else if (line[at] == '|') {
            cells.emplace_back();
        } else {
            cells.back() += line[at];
        }
    }
    for (std::string &cell : cells) {
        cell = trimmed(cell);
    }
    return cells;
}

}  // namespace

std::vector<Row> rows_of(const std::string &name) {
    std::ifstream file(std::string(ZACERT_TEST_DATA) + "/" + name);
    std::vector<Row> rows;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#') {
            rows.push_back(cells_of(line));
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

}  // namespace za::test
