#include "base/wording.hpp"
#include "objects/name_forms.hpp"
#include "objects/oid_names.hpp"
#include "show/page.hpp"
#include "show/text.hpp"

namespace tool {

namespace {

void write_attribute(const RequestAttribute &attribute, Page &page) {
    page.line(2, attribute.title.empty() ? label(attribute.type) : attribute.title);
    if (!attribute.problem.empty()) {
        page.line(3, "not decoded: " + attribute.problem);
    }
    for (const Text &value : attribute.values) {
        page.line(3, shown(value));
    }
    write_extensions(3, attribute.extensions, page);
}

}  // namespace

std::string request_text(const Request &request) {
    Page page;
    page.line(0, "Request " + std::to_string(request.index) + " of " + file_label(request.file));
    page.field("Version", std::to_string(request.version));
    page.field("Signature algorithm", label(request.signature_algorithm));
    page.field("Subject", one_line(request.subject));
    write_key(request.key, page);
    page.field("Attributes", count_or_none(request.attributes.size()));
    for (const RequestAttribute &attribute : request.attributes) {
        write_attribute(attribute, page);
    }
    return page.take();
}

}  // namespace tool
