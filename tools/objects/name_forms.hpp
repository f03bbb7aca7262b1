// Names and keys as short text, which several renderings share.
#pragma once

#include "objects/certificate.hpp"

#include <string>

namespace tool {

// In one line, in the order of the certificate, with the escapes of RFC 4514.
std::string one_line(const Name &name);
std::string one_line(const Rdn &rdn);

// Of the first attribute with one of the short names, the earlier ones first; the whole name else.
std::string short_form(const Name &name);

// "RSA 4096", "EC P-384", "Ed25519"
std::string short_form(const PublicKey &key);

}  // namespace tool
