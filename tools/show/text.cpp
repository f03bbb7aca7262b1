#include "show/text.hpp"

#include "base/utf8.hpp"
#include "base/wording.hpp"
#include "objects/name_forms.hpp"
#include "objects/oid_names.hpp"
#include "show/page.hpp"

#include <algorithm>

namespace tool {

namespace {

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
    page.field("Not before", instant_text(certificate.not_before));
    page.field("Not after", instant_text(certificate.not_after));
    write_key(certificate.key, page);
    page.field("Extensions", count_or_none(certificate.extensions.size()));
    write_extensions(2, certificate.extensions, page);
    write_signature(certificate, page);
    return page.take();
}

std::string instant_text(std::chrono::sys_seconds time) {
    return date(time) + " " + time_of_day(time) + " UTC";
}

std::string decimal_or_hex(const Integer &integer) {
    const std::optional<uint64_t> value = integer.small();
    return value ? std::to_string(*value) : integer.hex(":");
}

std::string shown(const Text &text) {
    return text.is_text ? printable(text.value) : text.value;
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
