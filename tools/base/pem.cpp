#include "base/pem.hpp"

#include <array>

namespace tool {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr uint8_t kNoDigit = 0xFF;

// The value of every character as a digit.
constexpr auto kValues = [] {
    std::array<uint8_t, 256> values{};
    values.fill(kNoDigit);
    for (size_t i = 0; i < kAlphabet.size(); ++i) {
        values[static_cast<uint8_t>(kAlphabet[i])] = static_cast<uint8_t>(i);
    }
    return values;
}();

std::string_view take_line(std::string_view &text) {
    const size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

// The label of "-----BEGIN label-----", for one; blanks may follow.
std::optional<std::string_view> label_of(std::string_view line, std::string_view keyword) {
    constexpr std::string_view kDashes = "-----";
    const size_t last = line.find_last_not_of(kBlanks);
    line = line.substr(0, last == std::string_view::npos ? 0 : last + 1);
    const size_t head = kDashes.size() + keyword.size() + 1;
    if (line.size() < head + kDashes.size() || !line.starts_with(kDashes) ||
        !line.substr(kDashes.size()).starts_with(keyword) || line[head - 1] != ' ' ||
        !line.ends_with(kDashes)) {
        return std::nullopt;
    }
    return line.substr(head, line.size() - head - kDashes.size());
}

// The rest of a block whose first line has been read. Stops before the beginning of another one.
PemBlock take_block(std::string_view label, std::string_view &text) {
    PemBlock block{std::string(label), {}, {}};
    const std::string_view body = text;
    while (!text.empty()) {
        std::string_view rest = text;
        const std::string_view line = take_line(rest);
        if (label_of(line, "BEGIN")) {
            break;
        }
        text = rest;
        if (const auto end = label_of(line, "END")) {
            std::optional<Octets> octets =
                base64_octets(body.substr(0, static_cast<size_t>(line.data() - body.data())));
            if (*end != label) {
                block.problem = "the last line of the PEM block has another label";
            } else if (!octets) {
                block.problem = "the PEM block is not Base64";
            } else {
                block.octets = std::move(*octets);
            }
            return block;
        }
    }
    block.problem = "the PEM block has no last line";
    return block;
}

}  // namespace

std::vector<PemBlock> pem_blocks(std::string_view text) {
    std::vector<PemBlock> blocks;
    while (!text.empty()) {
        if (const auto label = label_of(take_line(text), "BEGIN")) {
            blocks.push_back(take_block(*label, text));
        }
    }
    return blocks;
}

std::optional<Octets> base64_octets(std::string_view text) {
    Octets octets;
    octets.reserve(text.size() / 4 * 3);
    uint32_t bits = 0;
    size_t digits = 0;
    size_t padding = 0;
    for (const char c : text) {
        if (kBlanks.find(c) != std::string_view::npos) {
            continue;
        }
        const uint8_t value = kValues[static_cast<uint8_t>(c)];
        const bool pad = c == '=';
        if ((!pad && (value == kNoDigit || padding > 0)) || padding == 2) {
            return std::nullopt;
        }
        bits = bits << 6 | (pad ? 0 : uint32_t{value});
        padding += pad ? 1 : 0;
        if (++digits % 4 == 0) {
            for (const int shift : {16, 8, 0}) {
                octets.push_back(static_cast<uint8_t>(bits >> shift));
            }
        }
    }
    if (digits % 4 != 0) {
        return std::nullopt;
    }
    // What the padding stands for: octets that are not there, which came out as zero.
    for (; padding > 0; --padding) {
        if (octets.back() != 0) {
            return std::nullopt;
        }
        octets.pop_back();
    }
    return octets;
}

}  // namespace tool
