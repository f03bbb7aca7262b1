#include "show/json_array.hpp"

namespace tool {

namespace {

// As an element of the array. Strings of JSON hold no line ends.
std::string indented(const Json &object) {
    const std::string text = "  " + json_text(object, Layout::lines);
    std::string result;
    for (const char c : text) {
        result += c;
        if (c == '\n') {
            result += "  ";
        }
    }
    return result;
}

}  // namespace

void JsonArray::begin_element() {
    out_ << (empty_ ? "[\n" : ",\n");
    empty_ = false;
}

void JsonArray::add(const Json &object) {
    begin_element();
    out_ << indented(object);
}

void JsonArray::add(const Crl &crl) {
    constexpr std::string_view kEnd = "\n  }";
    begin_element();
    std::string head = indented(crl_json(crl));
    head.resize(head.size() - kEnd.size());
    out_ << head << ",\n    \"revoked\": [";
    bool first = true;
    for (RevokedEntries entries(crl.revoked); !entries.at_end() && out_; first = false) {
        out_ << (first ? "\n      " : ",\n      ")
             << json_text(entry_json(entries.next()), Layout::one_line);
    }
    out_ << (first ? "]" : "\n    ]") << kEnd;
}

void JsonArray::finish() {
    out_ << (empty_ ? "[]\n" : "\n]\n");
}

}  // namespace tool
