#include "issue/subject_name.hpp"

#include <zacert.h>

#include "base/der.hpp"
#include "base/failure.hpp"
#include "base/utf8.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace tool {

namespace {

enum class Form { text, ascii, country };

struct Type {
    std::string_view key;
    int32_t offset;
    Form form;
};

constexpr auto kTypes = std::to_array<Type>({
    {"C", 0, Form::country},
    {"ST", 1, Form::text},
    {"L", 2, Form::text},
    {"O", 3, Form::text},
    {"OU", 4, Form::text},
    {"CN", 5, Form::text},
    {"emailAddress", 6, Form::ascii},
    {"E", 6, Form::ascii},
    {"postalAddress", 7, Form::text},
    {"postalCode", 8, Form::text},
    {"telephoneNumber", 9, Form::ascii},
});

bool equal_without_case(std::string_view left, std::string_view right) {
    const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

const Type &type_of(std::string_view key) {
    const auto row = std::find_if(kTypes.begin(), kTypes.end(), [key](const Type &entry) {
        return equal_without_case(entry.key, key);
    });
    if (row == kTypes.end()) {
        throw Failure("expected a type of the subject's entries, " + subject_types() + "; found " +
                      std::string(key));
    }
    return *row;
}

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(' ');
    const size_t last = text.find_last_not_of(' ');
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, last + 1 - first);
}

// Up to the comma that ends the entry; `text` becomes what stands behind it.
std::string_view take_entry(std::string_view &text) {
    size_t end = 0;
    while (end < text.size() && text[end] != ',') {
        if (text[end] == '+') {
            throw Failure(
                "expected one entry between commas; write a plus sign behind a backslash");
        }
        end += text[end] == '\\' ? 2 : 1;
    }
    end = std::min(end, text.size());
    const std::string_view entry = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return entry;
}

// RFC 4514, 2.4: a backslash stands before a character, or before two digits of an octet.
std::string unescaped(std::string_view text) {
    std::string value;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            value += text[i];
            continue;
        }
        const std::optional<Octets> octet = octets_of_hex(text.substr(i + 1, 2));
        if (octet && octet->size() == 1) {
            value += static_cast<char>(octet->front());
            i += 2;
        } else if (++i < text.size()) {
            value += text[i];
        } else {
            throw Failure("expected a character behind the subject's last backslash");
        }
    }
    return value;
}

bool is_ascii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

bool is_printable_string(std::string_view text) {
    constexpr std::string_view kMarks = " '()+,-./:=?";
    return std::all_of(text.begin(), text.end(), [&](char c) {
        return c > 0 && (std::isalnum(static_cast<unsigned char>(c)) != 0 ||
                         kMarks.find(c) != std::string_view::npos);
    });
}

void require_form(const Type &type, const std::string &value) {
    const bool fits = type.form == Form::text    ? is_utf8(value)
                      : type.form == Form::ascii ? is_ascii(value)
                                                 : is_ascii(value) && value.size() == 2;
    if (value.empty() || !fits) {
        constexpr auto kForms =
            std::to_array<std::string_view>({"text in UTF-8", "ASCII text", "two letters"});
        throw Failure("expected " + std::string(kForms[static_cast<size_t>(type.form)]) +
                      " as the subject's " + std::string(type.key));
    }
}

Octets gb18030(const std::string &text) {
    try {
        return fetched([&](uint8_t *out, uint32_t *length) {
            return ZI_UTF8String2Chinese(reinterpret_cast<const uint8_t *>(text.data()),
                                         static_cast<int32_t>(text.size()), out, length);
        });
    } catch (const LibraryError &error) {
        throw Failure(std::string("expected text that a name can hold: ") + error.what());
    }
}

NameEntry parse_entry(std::string_view text) {
    constexpr uint8_t kByRule = 0;
    constexpr uint8_t kUtf8 = 3;
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos) {
        throw Failure("expected TYPE=VALUE in the subject, found " + std::string(text));
    }
    const Type &type = type_of(trimmed(text.substr(0, equals)));
    const std::string value = unescaped(trimmed(text.substr(equals + 1)));
    require_form(type, value);
    // The library's rule turns what is no PrintableString into a BMPString, which few can show.
    const bool by_rule = type.form != Form::text || is_printable_string(value);
    return {type.offset, gb18030(value), by_rule ? kByRule : kUtf8};
}

}  // namespace

std::vector<NameEntry> parse_subject(const std::string &text) {
    constexpr size_t kMaxEntries = 64;
    std::vector<NameEntry> entries;
    for (std::string_view rest = text; !rest.empty();) {
        entries.push_back(parse_entry(take_entry(rest)));
    }
    if (entries.empty() || entries.size() > kMaxEntries) {
        throw Failure("expected 1 to 64 entries in the subject");
    }
    return entries;
}

std::string subject_types() {
    std::string text;
    for (const Type &type : kTypes) {
        text += (text.empty() ? "" : ", ") + std::string(type.key);
    }
    return text;
}

Octets string_types(const std::vector<NameEntry> &entries) {
    Octets table;
    for (const NameEntry &entry : entries) {
        table.push_back(entry.string_type);
    }
    return table;
}

}  // namespace tool
