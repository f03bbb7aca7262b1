// Extensions out of a decoded certificate.
#pragma once

#include "certificate.hpp"
#include "context.hpp"

namespace tool {

// `wrapper` is the element [3] of the TBSCertificate.
std::vector<Extension> read_extensions(const Context &context, const Anybuf &wrapper);

}  // namespace tool
