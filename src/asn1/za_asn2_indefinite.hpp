// Rewriting indefinite lengths to definite ones.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

namespace za::asn1 {

// The size of the definite form of one element that is the whole input.
Status definite_size(Bytes in, size_t &out);

// Writes that form to `out`, which has room for definite_size() octets.
Status write_definite(Bytes in, uint8_t *out);

}  // namespace za::asn1
