// What a certificate request asks for.
#pragma once

#include "base/octets.hpp"

namespace tool {

// The subjectAltName's octets among the extensions asked for; empty where there is none. Throws
// Failure where it cannot be read.
Octets requested_names(View request);

}  // namespace tool
