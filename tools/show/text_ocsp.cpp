#include "base/der.hpp"
#include "base/utf8.hpp"
#include "base/wording.hpp"
#include "objects/name_forms.hpp"
#include "objects/names.hpp"
#include "objects/oid_names.hpp"
#include "show/page.hpp"
#include "show/text.hpp"

namespace tool {

namespace {

void write_certificate(const CertificateId &id, Page &page) {
    page.line(2, "serial " + id.serial.hex(":"));
    page.line(3, "Issuer by " + label(id.hash_algorithm) + ", name " + hex(id.name_hash, ":"));
    page.line(3, "Issuer by " + label(id.hash_algorithm) + ", key " + hex(id.key_hash, ":"));
}

std::string status_text(const OcspAnswer &answer) {
    std::string text(status_name(answer.status));
    if (answer.revoked) {
        text += " at " + instant_text(*answer.revoked);
    }
    text += answer.reason.empty() ? "" : ", " + answer.reason;
    const std::string about = text_of(answer.about);
    return about.empty() ? text : text + ", \"" + printable(about, "\"") + "\"";
}

void write_answer(const OcspAnswer &answer, Page &page) {
    write_certificate(answer.certificate, page);
    page.line(3, "Status " + status_text(answer));
    page.line(3, "This update " + instant_text(answer.this_update));
    page.line(3, "Next update " + (answer.next_update ? instant_text(*answer.next_update)
                                                      : std::string("none")));
    write_extensions(3, answer.extensions, page);
}

void write_responder(const OcspBody &body, Page &page) {
    if (!body.responder_name.empty()) {
        page.field("Responder", one_line(read_name(record_of(body.responder_name))));
    }
    if (!body.responder_key.empty()) {
        page.field("Responder's key", hex(body.responder_key, ":"));
    }
}

void write_body(const OcspBody &body, Page &page) {
    page.field("Type", label(body.type));
    write_responder(body, page);
    page.field("Produced", instant_text(body.produced));
    page.field("Answers", count_or_none(body.answers.size()));
    for (const OcspAnswer &answer : body.answers) {
        write_answer(answer, page);
    }
    page.field("Extensions", count_or_none(body.extensions.size()));
    write_extensions(2, body.extensions, page);
    page.field("Certificates", count_or_none(body.certificates.size()));
    for (const Octets &certificate : body.certificates) {
        page.line(2, certificate_line(certificate));
    }
    page.field("Signature", label(named(body.signature_algorithm)));
    page.block(2, hex_lines(body.signature));
}

}  // namespace

std::string ocsp_request_text(const OcspRequest &request) {
    Page page;
    page.line(0,
              "OCSP request " + std::to_string(request.index) + " of " + file_label(request.file));
    page.field("Version", std::to_string(request.version));
    if (request.requestor) {
        page.field("Requestor", one_line(*request.requestor));
    }
    page.field("Certificates asked", count_or_none(request.certificates.size()));
    for (const CertificateId &id : request.certificates) {
        write_certificate(id, page);
    }
    page.field("Extensions", count_or_none(request.extensions.size()));
    write_extensions(2, request.extensions, page);
    page.field("Signed", request.is_signed ? "yes" : "no");
    return page.take();
}

std::string ocsp_response_text(const OcspResponse &response) {
    Page page;
    page.line(
        0, "OCSP response " + std::to_string(response.index) + " of " + file_label(response.file));
    page.field("Response status", response_status(response.status));
    if (response.body) {
        write_body(*response.body, page);
    }
    return page.take();
}

}  // namespace tool
