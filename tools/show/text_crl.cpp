#include "base/wording.hpp"
#include "objects/name_forms.hpp"
#include "objects/oid_names.hpp"
#include "show/page.hpp"
#include "show/text.hpp"

namespace tool {

namespace {

std::string entry_text(const RevokedEntry &entry) {
    Page page;
    std::string line = entry.serial.hex(":") + ", " + instant_text(entry.date);
    line += entry.reason.empty() ? "" : ", " + entry.reason;
    page.line(2, line);
    write_extensions(3, entry.extensions, page);
    return page.take();
}

}  // namespace

void write_crl_text(const Crl &crl, std::ostream &out) {
    Page page;
    page.line(0, "CRL " + std::to_string(crl.index) + " of " + file_label(crl.file));
    page.field("Version", std::to_string(crl.version));
    page.field("Signature algorithm", label(crl.signature_algorithm));
    page.field("Issuer", one_line(crl.issuer));
    page.field("This update", instant_text(crl.this_update));
    page.field("Next update", crl.next_update ? instant_text(*crl.next_update) : "none");
    page.field("Extensions", count_or_none(crl.extensions.size()));
    write_extensions(2, crl.extensions, page);
    page.field("Revoked", count_or_none(crl.num_revoked));
    out << page.take();
    for (RevokedEntries entries(crl.revoked); !entries.at_end() && out;) {
        out << entry_text(entries.next());
    }
}

}  // namespace tool
