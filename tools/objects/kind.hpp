// What an object of the input is.
#pragma once

#include "base/octets.hpp"

#include <string>
#include <string_view>

namespace tool {

enum class ObjectKind {
    unknown,
    certificate,
    crl,
    request,
    message,
    ocsp_request,
    ocsp_response,
    pkcs12  // known so that its users can be told where to go
};

// With its article; for the unknown one, whatever the tool can show.
std::string_view noun(ObjectKind kind);

// The sentence for a PKCS#12 file where something else is expected: which command opens it.
std::string pkcs12_instead_of(std::string_view expected);

// By the label of a PEM block.
ObjectKind kind_of_label(std::string_view label);

// By the elements at the beginning, of which the end may be missing. Messages may have indefinite
// lengths.
ObjectKind kind_of_der(View der);

}  // namespace tool
