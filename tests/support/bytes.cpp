#include "support/bytes.hpp"

#include <charconv>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace za::test {
namespace {

int digit(char c) {
    return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10;
}

// Up to the closing parenthesis or the end; `rest` is moved behind it.
Octets parse(std::string_view &rest) {
    Octets octets;
    while (!rest.empty()) {
        const char c = rest.front();
        if (c == ' ' || c == '\n') {
            rest.remove_prefix(1);
        } else if (c == ')') {
            rest.remove_prefix(1);
            return octets;
        } else if (c == '(') {
            rest.remove_prefix(1);
            const Octets whole = element(octets.back(), parse(rest));
            octets.pop_back();
            octets.insert(octets.end(), whole.begin(), whole.end());
        } else if (c == '*') {
            size_t count = 0;
            const char *end =
                std::from_chars(rest.data() + 1, rest.data() + rest.size(), count).ptr;
            rest.remove_prefix(size_t(end - rest.data()));
            octets.insert(octets.end(), count - 1, octets.back());
        } else {
            octets.push_back(uint8_t(digit(c) << 4 | digit(rest.at(1))));
            rest.remove_prefix(2);
        }
    }
    return octets;
}

}  // namespace

Octets from_hex(std::string_view hex) {
    return parse(hex);
}

std::string to_hex(std::span<const uint8_t> octets) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string hex;
    for (const uint8_t octet : octets) {
        hex += hex.empty() ? "" : " ";
        hex += kDigits[octet >> 4];
        hex += kDigits[octet & 0x0F];
    }
    return hex;
}

std::string to_hex(const Anybuf *record) {
    return record == nullptr ? "(none)" : to_hex(std::span(record->data, record->dataLen));
}

Octets read_file(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    return Octets(std::istreambuf_iterator<char>(file), {});
}

Octets data_file(const std::string &name) {
    return read_file(std::string(ZACERT_TEST_DATA) + "/" + name);
}

Anybuf borrowed(const Octets &octets, uint32_t data_type) {
    Anybuf record{};
    record.data = const_cast<uint8_t *>(octets.data());
    record.dataLen = static_cast<uint32_t>(octets.size());
    record.dataType = data_type;
    return record;
}

Octets join(const std::vector<Octets> &parts) {
    Octets whole;
    for (const Octets &part : parts) {
        whole.insert(whole.end(), part.begin(), part.end());
    }
    return whole;
}

Octets element(uint8_t identifier, const Octets &content) {
    const size_t size = content.size();
    Octets header{identifier};
    if (size >= 0x100) {
        header.insert(header.end(), {0x82, uint8_t(size >> 8), uint8_t(size)});
    } else if (size >= 0x80) {
        header.insert(header.end(), {0x81, uint8_t(size)});
    } else {
        header.push_back(uint8_t(size));
    }
    return join({header, content});
}

Octets sequence(const std::vector<Octets> &children) {
    return element(0x30, join(children));
}

Octets content_of(const Octets &element) {
    const size_t header = element[1] < 0x80 ? 2 : 2u + (element[1] & 0x7Fu);
    return Octets(element.begin() + long(header), element.end());
}

std::vector<Octets> children_of(const Octets &element) {
    const Octets octets = content_of(element);
    std::vector<Octets> children;
    for (size_t at = 0; at < octets.size(); at += children.back().size()) {
        const uint8_t first = octets[at + 1];
        const size_t size = first < 0x80    ? 2u + first
                            : first == 0x81 ? 3u + octets[at + 2]
                                            : 4u + octets[at + 2] * 256u + octets[at + 3];
        children.emplace_back(octets.begin() + long(at), octets.begin() + long(at + size));
    }
    return children;
}

}  // namespace za::test
