#include "uri.hpp"

namespace zacert_pkcs11 {
namespace {

struct Attribute {
    std::string_view name;
    Text Uri::*value;
};

constexpr Attribute kPath[] = {
    {"token", &Uri::token},
    {"manufacturer", &Uri::manufacturer},
    {"serial", &Uri::serial},
    {"model", &Uri::model},
    {"library-manufacturer", &Uri::library_manufacturer},
    {"library-description", &Uri::library_description},
    {"library-version", &Uri::library_version},
    {"slot-manufacturer", &Uri::slot_manufacturer},
    {"slot-description", &Uri::slot_description},
    {"slot-id", &Uri::slot_id},
    {"object", &Uri::object},
    {"type", &Uri::type},
    {"id", &Uri::id},
};

constexpr Attribute kQuery[] = {
    {"module-path", &Uri::module_path},
    {"pin-source", &Uri::pin_source},
};

int digit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Each octet of percent-encoded text goes to `put`, which says whether it had room.
template <class Put>
uint32_t decode(std::string_view text, const Put &put) {
    for (size_t i = 0; i < text.size(); ++i) {
        uint8_t octet = static_cast<uint8_t>(text[i]);
        if (octet <= ' ' || octet >= 0x7F) {
            return ZACERT_GeneralErr;
        }
        if (octet == '%') {
            const int high = text.size() - i > 2 ? digit(text[i + 1]) : -1;
            const int low = high < 0 ? -1 : digit(text[i + 2]);
            if (low < 0) {
                return ZACERT_GeneralErr;
            }
            octet = static_cast<uint8_t>(high << 4 | low);
            i += 2;
        }
        if (!put(octet)) {
            return ZACERT_LengthErr;
        }
    }
    return 0;
}

uint32_t store(std::string_view value, Text &out) {
    if (out) {
        return ZACERT_GeneralErr;  // no attribute stands twice
    }
    out.emplace();
    return decode(value, [&](uint8_t octet) {
        out->push_back(static_cast<char>(octet));
        return true;
    });
}

uint32_t store(std::string_view value, std::optional<Secret> &out) {
    if (out) {
        return ZACERT_GeneralErr;
    }
    out.emplace();
    return decode(value, [&](uint8_t octet) { return out->push_back(octet); });
}

const Attribute *find(std::span<const Attribute> rows, std::string_view name) {
    const auto found = std::ranges::find(rows, name, &Attribute::name);
    return found == rows.end() ? nullptr : &*found;
}

uint32_t path_attribute(std::string_view name, std::string_view value, Uri &uri) {
    const Attribute *const row = find(kPath, name);
    return row != nullptr ? store(value, uri.*row->value) : uint32_t{ZACERT_AttributeNotSupportErr};
}

uint32_t query_attribute(std::string_view name, std::string_view value, Uri &uri) {
    if (name == "pin-value") {
        return store(value, uri.pin_value);
    }
    if (name == "module-name") {
        return ZACERT_AttributeNotSupportErr;  // passing it over would ask another module
    }
    const Attribute *const row = find(kQuery, name);
    return row != nullptr ? store(value, uri.*row->value) : 0;
}

// name "=" value, separated; an empty list has none.
template <class Each>
uint32_t each_attribute(std::string_view list, char separator, const Each &each) {
    while (!list.empty()) {
        const size_t end = list.find(separator);
        const std::string_view pair = list.substr(0, end);
        const size_t equals = pair.find('=');
        if (equals == 0 || equals == pair.npos || end + 1 == list.size()) {
            return ZACERT_GeneralErr;
        }
        if (const uint32_t code = each(pair.substr(0, equals), pair.substr(equals + 1))) {
            return code;
        }
        list = end == list.npos ? std::string_view() : list.substr(end + 1);
    }
    return 0;
}

bool has_scheme(std::string_view text) {
    constexpr std::string_view kScheme = "pkcs11:";
    return text.size() >= kScheme.size() &&
           std::ranges::equal(text.substr(0, kScheme.size()), kScheme, [](char a, char b) {
               return (a >= 'A' && a <= 'Z' ? a | 0x20 : a) == b;
           });
}

}  // namespace

uint32_t parse(std::string_view text, Uri &out) {
    if (!has_scheme(text)) {
        return ZACERT_GeneralErr;
    }
    text.remove_prefix(text.find(':') + 1);
    const size_t mark = text.find('?');
    const std::string_view path = text.substr(0, mark);
    const std::string_view query = mark == text.npos ? std::string_view() : text.substr(mark + 1);
    const auto of_path = [&](std::string_view name, std::string_view value) {
        return path_attribute(name, value, out);
    };
    const auto of_query = [&](std::string_view name, std::string_view value) {
        return query_attribute(name, value, out);
    };
    if (const uint32_t code = each_attribute(path, ';', of_path)) {
        return code;
    }
    if (const uint32_t code = each_attribute(query, '&', of_query)) {
        return code;
    }
    // RFC 7512, 2.4: a URI gives the PIN in one way.
    if (out.pin_value && out.pin_source) {
        return ZACERT_GeneralErr;
    }
    return out.type && *out.type != "private" ? uint32_t{ZACERT_TypeErr} : 0;
}

}  // namespace zacert_pkcs11
