// Words that several renderings share.
#pragma once

#include "certificate.hpp"

#include <chrono>
#include <string>

namespace tool {

// The path, or what "-" stands for.
std::string file_label(const std::string &path);

// "2030-01-31"; the standard's separator and zone are left to the renderings.
std::string date(std::chrono::sys_seconds time);
std::string time_of_day(std::chrono::sys_seconds time);

// In one line, in the order of the certificate, with the escapes of RFC 4514.
std::string one_line(const Name &name);
std::string one_line(const Rdn &rdn);

// Of the first attribute with one of the short names, the earlier ones first; the whole name else.
std::string short_form(const Name &name);

// "RSA 4096", "EC P-384", "Ed25519"
std::string short_form(const PublicKey &key);

}  // namespace tool
