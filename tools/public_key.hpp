// The public key of a decoded certificate.
#pragma once

#include "certificate.hpp"
#include "context.hpp"

namespace tool {

PublicKey read_public_key(const Context &context);

}  // namespace tool
