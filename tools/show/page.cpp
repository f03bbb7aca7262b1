#include "show/page.hpp"

#include "base/utf8.hpp"
#include "objects/oid_names.hpp"
#include "show/text.hpp"

namespace tool {

namespace {

std::string key_summary(const PublicKey &key) {
    std::string text = label(key.algorithm);
    if (!key.curve.name.empty() || !key.curve.oid.empty()) {
        text += ", curve " + label(key.curve);
    }
    if (key.bits != 0) {
        text += ", " + std::to_string(key.bits) + " bits";
    }
    return text;
}

}  // namespace

void Page::line(size_t depth, std::string_view text) {
    constexpr std::string_view kIndent = "    ";
    for (size_t i = 0; i < depth; ++i) {
        text_ += kIndent;
    }
    text_.append(text).append("\n");
}

void Page::field(std::string_view name, std::string_view value) {
    constexpr size_t kValueColumn = 22;
    line(1, fitted(std::string(name) + ":", kValueColumn) + std::string(value));
}

void Page::block(size_t depth, const std::vector<std::string> &lines) {
    for (const std::string &text : lines) {
        line(depth, text);
    }
}

void write_key(const PublicKey &key, Page &page) {
    page.field("Public key", key_summary(key));
    if (key.modulus && key.exponent) {
        page.line(2, "Modulus");
        page.block(3, hex_lines(key.modulus->magnitude));
        page.line(2, "Exponent " + decimal_or_hex(*key.exponent));
        return;
    }
    page.block(2, hex_lines(key.octets));
}

void write_extensions(size_t depth, const std::vector<Extension> &extensions, Page &page) {
    for (const Extension &extension : extensions) {
        std::string title = extension.title.empty() ? extension.id.oid : extension.title;
        title += extension.critical ? " (critical)" : "";
        page.line(depth, title);
        page.block(depth + 1, extension_lines(extension));
    }
}

std::string count_or_none(size_t count) {
    return count == 0 ? "none" : std::to_string(count);
}

}  // namespace tool
