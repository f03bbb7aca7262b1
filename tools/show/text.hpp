// Objects for people to read.
#pragma once

#include "objects/certificate.hpp"
#include "objects/crl.hpp"
#include "objects/ocsp.hpp"
#include "objects/pkcs7.hpp"
#include "objects/request.hpp"

#include <ostream>
#include <string>
#include <vector>

namespace tool {

std::string certificate_text(const Certificate &certificate);
std::string request_text(const Request &request);
std::string message_text(const Message &message);
std::string ocsp_request_text(const OcspRequest &request);
std::string ocsp_response_text(const OcspResponse &response);

// What stands in messages and files, each in one line.
std::string certificate_line(View der);
std::string crl_line(View der);
std::string octets_text(size_t count);  // "1 octet", "20 octets"

// Entry by entry, since there may be millions of them.
void write_crl_text(const Crl &crl, std::ostream &out);

// The lines below an extension's title.
std::vector<std::string> extension_lines(const Extension &extension);

// Octets in hexadecimal, with colons, several lines where they are many.
std::vector<std::string> hex_lines(View octets);

std::string instant_text(std::chrono::sys_seconds time);
std::string decimal_or_hex(const Integer &integer);
std::string shown(const Text &text);

}  // namespace tool
