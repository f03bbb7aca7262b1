// UTF-8 on its way to a terminal.
#pragma once

#include <string>
#include <string_view>

namespace tool {

struct CodePoint {
    char32_t value;
    size_t length;  // octets; 0 when the text does not begin with valid UTF-8
};

CodePoint first_code_point(std::string_view text);
void append_code_point(std::string &text, char32_t value);
bool is_utf8(std::string_view text);

// Characters that steer a terminal or turn the reading direction.
bool is_unsafe(char32_t value);

// Valid UTF-8 without such characters.
bool is_plain(std::string_view text);

// The text with every unsafe character and every invalid octet as a backslash and two digits per
// octet, and with each backslash and each character of `specials` behind a backslash.
std::string printable(std::string_view text, std::string_view specials = {});

size_t columns(std::string_view text);

// The text in exactly `width` columns: padded, or cut and ended with an ellipsis.
std::string fitted(std::string_view text, size_t width);

}  // namespace tool
