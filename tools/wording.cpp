#include "wording.hpp"

#include "oid_names.hpp"
#include "utf8.hpp"

#include <array>
#include <cstdio>

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

}  // namespace

std::string file_label(const std::string &path) {
    return path == "-" ? "standard input" : printable(path);
}

std::string date(std::chrono::sys_seconds time) {
    const std::chrono::year_month_day day{std::chrono::floor<std::chrono::days>(time)};
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(day.year()),
                  static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
    return text.data();
}

std::string time_of_day(std::chrono::sys_seconds time) {
    const std::chrono::hh_mm_ss clock{time - std::chrono::floor<std::chrono::days>(time)};
    std::array<char, 32> text{};
    std::snprintf(
        text.data(), text.size(), "%02d:%02d:%02d", static_cast<int>(clock.hours().count()),
        static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()));
    return text.data();
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
