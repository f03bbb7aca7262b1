// What an object of the input is.
#pragma once

#include "base/octets.hpp"

#include <string_view>

namespace tool {

enum class ObjectKind { unknown, certificate, crl, request, message, ocsp_request, ocsp_response };

// With its article; for the unknown one, whatever the tool can show.
std::string_view noun(ObjectKind kind);

// By the label of a PEM block.
ObjectKind kind_of_label(std::string_view label);

// By the elements at the beginning, of which the end may be missing. Messages may have indefinite
// lengths.
ObjectKind kind_of_der(View der);

}  // namespace tool
