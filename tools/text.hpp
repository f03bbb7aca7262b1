// A certificate for people to read.
#pragma once

#include "certificate.hpp"

#include <string>
#include <vector>

namespace tool {

std::string certificate_text(const Certificate &certificate);

// The lines below an extension's title.
std::vector<std::string> extension_lines(const Extension &extension);

// Octets in hexadecimal, with colons, several lines where they are many.
std::vector<std::string> hex_lines(View octets);

}  // namespace tool
