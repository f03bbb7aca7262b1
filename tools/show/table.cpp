#include "show/table.hpp"

#include "base/utf8.hpp"
#include "base/wording.hpp"
#include "objects/name_forms.hpp"
#include "objects/oid_names.hpp"

#include <algorithm>
#include <array>
#include <numeric>

namespace tool {

namespace {

struct Column {
    std::string_view title;
    size_t width;  // what it gets at most while others need theirs
};

enum : size_t { kSubject, kIssuer, kSerial, kNotBefore, kNotAfter, kKey, kExtensions, kDecoded };

constexpr auto kColumns = std::to_array<Column>({{"SUBJECT", 28},
                                                 {"ISSUER", 18},
                                                 {"SERIAL", 40},
                                                 {"NOT BEFORE", 10},
                                                 {"NOT AFTER", 10},
                                                 {"KEY", 10},
                                                 {"EXTENSIONS", 23},
                                                 {"DECODED", 7}});
constexpr size_t kPageWidth = 160;
constexpr std::string_view kGap = "  ";

using Row = std::vector<std::string>;
using Widths = std::array<size_t, kColumns.size()>;

constexpr size_t line_width(const Widths &widths) {
    return std::accumulate(widths.begin(), widths.end(), (widths.size() - 1) * kGap.size());
}

// What columns with short cells leave goes to those that have more to say.
Widths column_widths(const std::vector<Row> &rows) {
    Widths needed{};
    Widths widths{};
    for (size_t i = 0; i < kColumns.size(); ++i) {
        needed[i] = columns(kColumns[i].title);
        for (const Row &row : rows) {
            needed[i] = std::max(needed[i], columns(row[i]));
        }
        widths[i] = std::min(needed[i], kColumns[i].width);
    }
    for (const size_t i : {kExtensions, kSubject, kIssuer, kKey}) {
        widths[i] += std::min(needed[i] - widths[i], kPageWidth - line_width(widths));
    }
    return widths;
}

size_t num_decoded(const std::vector<Extension> &extensions) {
    return static_cast<size_t>(
        std::count_if(extensions.begin(), extensions.end(),
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

std::string number_of(const Crl &crl) {
    for (const Extension &extension : crl.extensions) {
        if (extension.id.name == "cRLNumber" && extension.decoded()) {
            return std::get<CrlNumber>(extension.value).number.hex();
        }
    }
    return "-";
}

void print_row(std::ostream &out, const Row &cells, const Widths &widths) {
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i) {
        line += fitted(cells[i], widths[i]).append(kGap);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
}

}  // namespace

void Table::add(Row row, const std::vector<Extension> &extensions) {
    const size_t decoded = num_decoded(extensions);
    num_extensions_ += extensions.size();
    num_decoded_extensions_ += decoded;
    row.push_back(codes(extensions));
    row.push_back(std::to_string(decoded) + "/" + std::to_string(extensions.size()));
    rows_.push_back(std::move(row));
}

void Table::add(const Certificate &certificate) {
    add({short_form(certificate.subject), short_form(certificate.issuer), certificate.serial.hex(),
         date(certificate.not_before), date(certificate.not_after), short_form(certificate.key)},
        certificate.extensions);
}

void Table::add(const Crl &crl) {
    most_ = std::max(most_, ObjectKind::request);
    add({"(CRL, " + std::to_string(crl.num_revoked) + " revoked)", short_form(crl.issuer),
         number_of(crl), date(crl.this_update), crl.next_update ? date(*crl.next_update) : "-",
         "-"},
        crl.extensions);
}

void Table::add(const Request &request) {
    most_ = std::max(most_, ObjectKind::request);
    std::vector<Extension> extensions;
    for (const RequestAttribute &attribute : request.attributes) {
        extensions.insert(extensions.end(), attribute.extensions.begin(),
                          attribute.extensions.end());
    }
    add({short_form(request.subject), "(request)", "-", "-", "-", short_form(request.key)},
        extensions);
}

void Table::add(const Message &message) {
    most_ = std::max(most_, ObjectKind::message);
    std::string what = "(" + label(message.type);
    const IssuerSerial *first = nullptr;
    if (message.has_recipients()) {
        what += ", recipients: " + std::to_string(message.recipients.size());
        first = message.recipients.empty() ? nullptr : &message.recipients.front().certificate;
    }
    if (message.has_signers()) {
        what += ", signers: " + std::to_string(message.signers.size());
        first = message.signers.empty() ? first : &message.signers.front().certificate;
    }
    add({what + ")", first == nullptr ? "-" : short_form(first->name),
         first == nullptr ? "-" : first->serial.hex(), "-", "-",
         message.encryption ? label(message.encryption->id) : "-"},
        {});
}

void Table::add(const OcspRequest &request) {
    most_ = ObjectKind::ocsp_response;
    const std::vector<CertificateId> &asked = request.certificates;
    add({"(OCSP request, certificates: " + std::to_string(asked.size()) + ")", "-",
         asked.empty() ? "-" : asked.front().serial.hex(), "-", "-", "-"},
        request.extensions);
}

void Table::add(const OcspResponse &response) {
    most_ = ObjectKind::ocsp_response;
    if (!response.body || response.body->answers.empty()) {
        add({"(OCSP response, " + response_status(response.status) + ")", "-", "-", "-", "-", "-"},
            {});
        return;
    }
    const OcspAnswer &first = response.body->answers.front();
    add({"(OCSP response, certificates: " + std::to_string(response.body->answers.size()) + ")",
         "-", first.certificate.serial.hex(), date(first.this_update),
         first.next_update ? date(*first.next_update) : "-", "-"},
        response.body->extensions);
}

void Table::print(std::ostream &out, size_t num_failed) const {
    const std::string_view counted =
        most_ == ObjectKind::certificate ? " certificates, "
        : most_ == ObjectKind::request   ? " certificates, CRLs and requests, "
        : most_ == ObjectKind::message   ? " certificates, CRLs, requests and messages, "
                                         : " certificates, CRLs, requests, messages and OCSP, ";
    const Widths widths = column_widths(rows_);
    Row titles;
    for (const Column &column : kColumns) {
        titles.emplace_back(column.title);
    }
    print_row(out, titles, widths);
    for (const Row &row : rows_) {
        print_row(out, row, widths);
    }
    out << rows_.size() + num_failed << counted << rows_.size() << " decoded; " << num_extensions_
        << " extensions, " << num_decoded_extensions_ << " decoded\n";
}

}  // namespace tool
