// Why the library takes a message for none of PKCS#7 that other programs read: CMS (RFC 5652) has
// forms of its own.
#pragma once

#include "base/failure.hpp"
#include "base/octets.hpp"

#include <string>

namespace tool {

Failure not_pkcs7(const std::string &reason);

// For a message that could not be decoded: throws the Failure where it has such a form, and returns
// otherwise.
void refuse_what_is_not_pkcs7(View der);

}  // namespace tool
