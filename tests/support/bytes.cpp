#include "support/bytes.hpp"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace za::test {
namespace {

int digit(char c) {
    return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10;
}

}  // namespace

Octets from_hex(std::string_view hex) {
    Octets octets;
    int high = -1;
    for (const char c : hex) {
        if (c == ' ' || c == '\n') {
            continue;
        }
        if (high < 0) {
            high = digit(c);
        } else {
            octets.push_back(static_cast<uint8_t>(high << 4 | digit(c)));
            high = -1;
        }
    }
    return octets;
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

Anybuf borrowed(const Octets &octets, uint32_t data_type) {
    Anybuf record{};
    record.data = const_cast<uint8_t *>(octets.data());
    record.dataLen = static_cast<uint32_t>(octets.size());
    record.dataType = data_type;
    return record;
}

}  // namespace za::test
