#include "table.hpp"

#include "utf8.hpp"
#include "wording.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

struct Column {
    std::string_view title;
    size_t widest;
};

// With two blanks between columns at most 160.
constexpr auto kColumns = std::to_array<Column>({{"SUBJECT", 28},
                                                 {"ISSUER", 18},
                                                 {"SERIAL", 40},
                                                 {"NOT BEFORE", 10},
                                                 {"NOT AFTER", 10},
                                                 {"KEY", 10},
                                                 {"EXTENSIONS", 23},
                                                 {"DECODED", 7}});
constexpr std::string_view kGap = "  ";

static_assert([] {
    size_t width = (kColumns.size() - 1) * kGap.size();
    for (const Column &column : kColumns) {
        width += column.widest;
    }
    return width;
}() <= 160);

size_t num_decoded(const Certificate &certificate) {
    return static_cast<size_t>(
        std::count_if(certificate.extensions.begin(), certificate.extensions.end(),
                      [](const Extension &extension) { return extension.decoded(); }));
}

std::string codes(const std::vector<Extension> &extensions) {
    std::string text;
    for (const Extension &extension : extensions) {
        text += text.empty() ? "" : " ";
        text += extension.short_code.empty() ? "?" : extension.short_code;
    }
    return text.empty() ? "-" : text;
}

void print_row(std::ostream &out, const std::vector<std::string> &cells,
               const std::vector<size_t> &widths) {
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i) {
        line += fitted(cells[i], widths[i]).append(kGap);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
}

}  // namespace

void Table::add(const Certificate &certificate) {
    const size_t decoded = num_decoded(certificate);
    const size_t present = certificate.extensions.size();
    num_extensions_ += present;
    num_decoded_extensions_ += decoded;
    rows_.push_back(
        {short_form(certificate.subject), short_form(certificate.issuer), certificate.serial.hex(),
         date(certificate.not_before), date(certificate.not_after), short_form(certificate.key),
         codes(certificate.extensions), std::to_string(decoded) + "/" + std::to_string(present)});
}

void Table::print(std::ostream &out, size_t num_failed) const {
    std::vector<std::string> titles;
    std::vector<size_t> widths;
    for (size_t i = 0; i < kColumns.size(); ++i) {
        titles.emplace_back(kColumns[i].title);
        size_t width = columns(kColumns[i].title);
        for (const auto &row : rows_) {
            width = std::max(width, std::min(columns(row[i]), kColumns[i].widest));
        }
        widths.push_back(width);
    }
    print_row(out, titles, widths);
    for (const auto &row : rows_) {
        print_row(out, row, widths);
    }
    out << rows_.size() + num_failed << " certificates, " << rows_.size() << " decoded; "
        << num_extensions_ << " extensions, " << num_decoded_extensions_ << " decoded\n";
}

}  // namespace tool
