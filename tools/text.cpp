#include "text.hpp"

#include "oid_names.hpp"
#include "utf8.hpp"
#include "wording.hpp"

#include <algorithm>

namespace tool {

namespace {

constexpr std::string_view kIndent = "    ";

// Lines at four depths of indentation.
class Page {
public:
    void line(size_t depth, std::string_view text) {
        for (size_t i = 0; i < depth; ++i) {
            text_ += kIndent;
        }
        text_.append(text).append("\n");
    }

    void field(std::string_view name, std::string_view value) {
        constexpr size_t kValueColumn = 22;
        line(1, fitted(std::string(name) + ":", kValueColumn) + std::string(value));
    }

    void block(size_t depth, const std::vector<std::string> &lines) {
        for (const std::string &text : lines) {
            line(depth, text);
        }
    }

    std::string take() { return std::move(text_); }

private:
    std::string text_;
};

std::string instant(std::chrono::sys_seconds time) {
    return date(time) + " " + time_of_day(time) + " UTC";
}

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

std::string decimal_or_hex(const Integer &integer) {
    const std::optional<uint64_t> value = integer.small();
    return value ? std::to_string(*value) : integer.hex(":");
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

void write_extensions(const std::vector<Extension> &extensions, Page &page) {
    page.field("Extensions", extensions.empty() ? "none" : std::to_string(extensions.size()));
    for (const Extension &extension : extensions) {
        std::string title = extension.title.empty() ? extension.id.oid : extension.title;
        title += extension.critical ? " (critical)" : "";
        page.line(2, title);
        page.block(3, extension_lines(extension));
    }
}

void write_signature(const Certificate &certificate, Page &page) {
    page.field("Signature", label(certificate.outer_signature_algorithm));
    page.block(2, hex_lines(certificate.signature));
}

}  // namespace

std::string certificate_text(const Certificate &certificate) {
    Page page;
    page.line(0, "Certificate " + std::to_string(certificate.index) + " of " +
                     file_label(certificate.file));
    page.field("Version", std::to_string(certificate.version));
    page.field("Serial number", certificate.serial.hex(":"));
    page.field("Signature algorithm", label(certificate.signature_algorithm));
    page.field("Issuer", one_line(certificate.issuer));
    page.field("Subject", one_line(certificate.subject));
    page.field("Not before", instant(certificate.not_before));
    page.field("Not after", instant(certificate.not_after));
    write_key(certificate.key, page);
    write_extensions(certificate.extensions, page);
    write_signature(certificate, page);
    return page.take();
}

std::vector<std::string> hex_lines(View octets) {
    constexpr size_t kPerLine = 24;
    std::vector<std::string> lines;
    while (!octets.empty()) {
        const View part = octets.first(std::min(octets.size(), kPerLine));
        octets = octets.subspan(part.size());
        lines.push_back(hex(part, ":") + (octets.empty() ? "" : ":"));
    }
    return lines;
}

}  // namespace tool
