#include "base/utf8.hpp"

#include "base/octets.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

template <size_t kCount>
constexpr bool contains(const std::array<Range, kCount> &ranges, char32_t value) {
    return std::any_of(ranges.begin(), ranges.end(), [value](const Range &range) {
        return range.first <= value && value <= range.last;
    });
}

constexpr std::array<Range, 7> kUnsafe = {{{0x00, 0x1F},
                                           {0x7F, 0x9F},
                                           {0x061C, 0x061C},
                                           {0x200E, 0x200F},
                                           {0x2028, 0x202E},
                                           {0x2066, 0x2069},
                                           {0xFEFF, 0xFEFF}}};

// Two columns: Hangul, CJK, full-width forms and the planes behind them.
constexpr std::array<Range, 8> kWide = {{{0x1100, 0x115F},
                                         {0x2E80, 0xA4CF},
                                         {0xAC00, 0xD7A3},
                                         {0xF900, 0xFAFF},
                                         {0xFE30, 0xFE6F},
                                         {0xFF00, 0xFF60},
                                         {0xFFE0, 0xFFE6},
                                         {0x1F300, 0x3FFFD}}};

// No column of their own: combining marks and joiners.
constexpr std::array<Range, 4> kCombining = {
    {{0x0300, 0x036F}, {0x200B, 0x200D}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}}};

size_t columns_of(char32_t value) {
    if (contains(kCombining, value)) {
        return 0;
    }
    return contains(kWide, value) ? 2 : 1;
}

constexpr CodePoint kInvalid = {0, 0};

}  // namespace

CodePoint first_code_point(std::string_view text) {
    if (text.empty()) {
        return kInvalid;
    }
    const auto octet = [&](size_t at) { return static_cast<uint8_t>(text[at]); };
    if (octet(0) < 0x80) {
        return {octet(0), 1};
    }
    const size_t length = octet(0) >= 0xF0 ? 4 : octet(0) >= 0xE0 ? 3 : 2;
    if (octet(0) < 0xC2 || octet(0) > 0xF4 || text.size() < length) {
        return kInvalid;
    }
    char32_t value = octet(0) & (0x7Fu >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((octet(i) & 0xC0) != 0x80) {
            return kInvalid;
        }
        value = value << 6 | (octet(i) & 0x3Fu);
    }
    constexpr std::array<char32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value < kLeast[length] || value > 0x10FFFF || surrogate) {
        return kInvalid;
    }
    return {value, length};
}

void append_code_point(std::string &text, char32_t value) {
    const auto append = [&](char32_t octet) { text += static_cast<char>(octet); };
    if (value < 0x80) {
        append(value);
        return;
    }
    if (value < 0x800) {
        append(0xC0 | value >> 6);
    } else if (value < 0x10000) {
        append(0xE0 | value >> 12);
        append(0x80 | (value >> 6 & 0x3F));
    } else {
        append(0xF0 | value >> 18);
        append(0x80 | (value >> 12 & 0x3F));
        append(0x80 | (value >> 6 & 0x3F));
    }
    append(0x80 | (value & 0x3F));
}

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const CodePoint point = first_code_point(text);
        if (point.length == 0) {
            return false;
        }
        text.remove_prefix(point.length);
    }
    return true;
}

bool is_unsafe(char32_t value) {
    return contains(kUnsafe, value);
}

bool is_plain(std::string_view text) {
    while (!text.empty()) {
        const CodePoint point = first_code_point(text);
        if (point.length == 0 || is_unsafe(point.value)) {
            return false;
        }
        text.remove_prefix(point.length);
    }
    return true;
}

std::string printable(std::string_view text, std::string_view specials) {
    std::string shown;
    while (!text.empty()) {
        const CodePoint point = first_code_point(text);
        const std::string_view piece = text.substr(0, std::max<size_t>(point.length, 1));
        if (point.length == 0 || is_unsafe(point.value)) {
            for (const char octet : piece) {
                const auto value = static_cast<uint8_t>(octet);
                shown += "\\" + hex({&value, 1});
            }
        } else {
            if (piece == "\\" || specials.find(piece) != std::string_view::npos) {
                shown += '\\';
            }
            shown += piece;
        }
        text.remove_prefix(piece.size());
    }
    return shown;
}

size_t columns(std::string_view text) {
    size_t sum = 0;
    while (!text.empty()) {
        const CodePoint point = first_code_point(text);
        sum += columns_of(point.value);
        text.remove_prefix(std::max<size_t>(point.length, 1));
    }
    return sum;
}

std::string fitted(std::string_view text, size_t width) {
    const size_t needed = columns(text);
    if (needed <= width) {
        return std::string(text) + std::string(width - needed, ' ');
    }
    std::string shown;
    size_t used = 1;  // the ellipsis
    while (!text.empty()) {
        const CodePoint point = first_code_point(text);
        if (used + columns_of(point.value) > width) {
            break;
        }
        used += columns_of(point.value);
        const size_t length = std::max<size_t>(point.length, 1);
        shown += text.substr(0, length);
        text.remove_prefix(length);
    }
    return shown + "\u2026" + std::string(width - used, ' ');
}

}  // namespace tool
