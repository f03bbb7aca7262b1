#include "objects/name_forms.hpp"

#include "base/utf8.hpp"
#include "objects/oid_names.hpp"

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
