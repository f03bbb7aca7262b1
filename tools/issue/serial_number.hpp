// Serial numbers of certificates.
#pragma once

#include "base/octets.hpp"

#include <string_view>

namespace tool {

// 16 octets, the first of them 01 to 7F.
Octets random_serial();

// Of hexadecimal text, with or without colons, the leading zeros taken off: 1 to 20 octets. Throws
// Failure.
Octets parse_serial(std::string_view text);

}  // namespace tool
