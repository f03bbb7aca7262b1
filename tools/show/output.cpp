#include "show/output.hpp"

#include "show/text.hpp"

namespace tool {

std::ostream &Output::next_page() {
    return out_ << (num_pages_++ == 0 ? "" : "\n");
}

template <class Object, class Text, class ToJson>
void Output::add_whole(const Object &object, const Text &text, const ToJson &json) {
    switch (format_) {
        case Format::text:
            next_page() << text(object);
            break;
        case Format::json:
            json_.add(json(object));
            break;
        case Format::table:
            table_.add(object);
            break;
    }
}

void Output::add(const Certificate &certificate) {
    add_whole(certificate, certificate_text, certificate_json);
}

void Output::add(const Crl &crl) {
    switch (format_) {
        case Format::text:
            write_crl_text(crl, next_page());
            break;
        case Format::json:
            json_.add(crl);
            break;
        case Format::table:
            table_.add(crl);
            break;
    }
}

void Output::add(const Request &request) {
    add_whole(request, request_text, request_json);
}

void Output::add(const Message &message) {
    add_whole(message, message_text, message_json);
}

void Output::add(const OcspRequest &request) {
    add_whole(request, ocsp_request_text, ocsp_request_json);
}

void Output::add(const OcspResponse &response) {
    add_whole(response, ocsp_response_text, ocsp_response_json);
}

void Output::finish(size_t num_failed) {
    if (format_ == Format::json) {
        json_.finish();
    } else if (format_ == Format::table) {
        table_.print(out_, num_failed);
    }
    out_.flush();
}

}  // namespace tool
