// Cases in a file of tests/data: one per line, "field | field"; lines that begin with "#" are
// remarks.
#pragma once

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace za::test {

using Fields = std::vector<std::string>;

inline std::string trimmed(const std::string &text) {
    const size_t first = text.find_first_not_of(' ');
    return first == text.npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

inline Fields split(const std::string &text, char separator) {
    Fields fields;
    for (size_t at = 0, end = 0; end != text.npos; at = end + 1) {
        end = text.find(separator, at);
        fields.push_back(trimmed(text.substr(at, end - at)));
    }
    return fields;
}

inline std::vector<Fields> table(const std::string &name) {
    std::ifstream file(ZACERT_TEST_DATA "/" + name);
    std::vector<Fields> rows;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#') {
            rows.push_back(split(line, '|'));
        }
    }
    return rows.empty() ? throw std::runtime_error("no cases in " + name) : rows;
}

inline uint32_t number(const std::string &field) {
    return static_cast<uint32_t>(std::stoll(field, nullptr, 0));
}

}  // namespace za::test
