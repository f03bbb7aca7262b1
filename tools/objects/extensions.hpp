// Extensions out of the objects that have them.
#pragma once

#include <zacert.h>

#include "base/context.hpp"
#include "objects/certificate.hpp"

namespace tool {

// Of a decoded certificate: `wrapper` is the element [3] of its TBSCertificate.
std::vector<Extension> read_extensions(const Context &context, const Anybuf &wrapper);

// Of anything else: `list` is the SEQUENCE OF Extension. Throws LibraryError where it is none.
std::vector<Extension> read_extensions(View list);

}  // namespace tool
