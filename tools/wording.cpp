#include "wording.hpp"

#include "oid_names.hpp"
#include "utf8.hpp"

#include <algorithm>

namespace tool {

namespace {

std::string with_separator(std::string text, std::string_view separator) {
    return text.empty() ? std::move(text) : std::move(text.append(separator));
}

// RFC 4514, 2.4: also a blank at either end and a number sign in front.
std::string escaped(const Text &value) {
    if (!value.is_text) {
        return value.value;
    }
    std::string text = printable(value.value, "\"+,;<>");
    if (text.ends_with(' ')) {
        text.insert(text.size() - 1, "\\");
    }
    if (text.starts_with('#') || (text.starts_with(' ') && text.size() > 1)) {
        text.insert(0, "\\");
    }
    return text;
}

std::string padded(int64_t value, size_t width) {
    const std::string digits = std::to_string(value);
    return std::string(width - std::min(width, digits.size()), '0') + digits;
}

}  // namespace

std::string file_label(const std::string &path) {
    return path == "-" ? "standard input" : printable(path);
}

std::string date(std::chrono::sys_seconds time) {
    const std::chrono::year_month_day day{std::chrono::floor<std::chrono::days>(time)};
    return padded(static_cast<int>(day.year()), 4) + "-" +
           padded(static_cast<unsigned>(day.month()), 2) + "-" +
           padded(static_cast<unsigned>(day.day()), 2);
}

std::string time_of_day(std::chrono::sys_seconds time) {
    const std::chrono::hh_mm_ss clock{time - std::chrono::floor<std::chrono::days>(time)};
    return padded(clock.hours().count(), 2) + ":" + padded(clock.minutes().count(), 2) + ":" +
           padded(clock.seconds().count(), 2);
}

std::string one_line(const Rdn &rdn) {
    std::string text;
    for (const Attribute &attribute : rdn) {
        text = with_separator(std::move(text), " + ");
        text += label(attribute.type) + "=" + escaped(attribute.value);
    }
    return text;
}

std::string one_line(const Name &name) {
    std::string text;
    for (const Rdn &rdn : name) {
        text = with_separator(std::move(text), ", ") + one_line(rdn);
    }
    return text;
}

std::string short_form(const Name &name) {
    for (const std::string_view type : {"CN", "O", "OU"}) {
        for (const Rdn &rdn : name) {
            for (const Attribute &attribute : rdn) {
                if (attribute.type.name == type) {
                    return printable(attribute.value.value);
                }
            }
        }
    }
    return one_line(name);
}

std::string short_form(const PublicKey &key) {
    if (!key.curve.oid.empty() || !key.curve.name.empty()) {
        return key.algorithm.name + " " + label(key.curve);
    }
    const bool size_in_name =
        key.algorithm.name.starts_with("Ed") || key.algorithm.name.starts_with("X");
    if (key.bits == 0 || size_in_name) {
        return label(key.algorithm);
    }
    return label(key.algorithm) + " " + std::to_string(key.bits);
}

}  // namespace tool
