// What the tool knows of a certificate request.
#pragma once

#include "objects/certificate.hpp"

namespace tool {

struct RequestAttribute {
    NamedId type;
    std::string title;                  // for people
    std::vector<Text> values;           // unless they are extensions
    std::vector<Extension> extensions;  // asked for
    bool has_extensions = false;
    std::string problem;  // why an attribute that should hold extensions has values
};

struct Request {
    std::string file;
    size_t index = 1;  // in the file, from 1
    uint64_t version = 1;
    NamedId signature_algorithm;
    Name subject;
    PublicKey key;
    std::vector<RequestAttribute> attributes;
};

// Reads one DER request that fills `der` exactly. Throws LibraryError.
Request read_request(View der);

}  // namespace tool
