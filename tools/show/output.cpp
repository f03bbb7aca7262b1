#include "show/output.hpp"

#include "show/text.hpp"

namespace tool {

std::ostream &Output::next_page() {
    return out_ << (num_pages_++ == 0 ? "" : "\n");
}

void Output::add(const Certificate &certificate) {
    switch (format_) {
        case Format::text:
            next_page() << certificate_text(certificate);
            break;
        case Format::json:
            json_.add(certificate_json(certificate));
            break;
        case Format::table:
            table_.add(certificate);
            break;
    }
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
    switch (format_) {
        case Format::text:
            next_page() << request_text(request);
            break;
        case Format::json:
            json_.add(request_json(request));
            break;
        case Format::table:
            table_.add(request);
            break;
    }
}

void Output::add(const Message &message) {
    switch (format_) {
        case Format::text:
            next_page() << message_text(message);
            break;
        case Format::json:
            json_.add(message_json(message));
            break;
        case Format::table:
            table_.add(message);
            break;
    }
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
