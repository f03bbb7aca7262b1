// Rewriting what BER may write and DER does not: indefinite lengths, and OCTET STRINGs in pieces.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

namespace za::asn1 {

// The size of the definite form of one element that is the whole input.
Status definite_size(Bytes in, size_t &out);

// Writes that form to `out`, which has room for definite_size() octets.
Status write_definite(Bytes in, uint8_t *out);

// The octets of an OCTET STRING that comes in pieces, whatever the tag of the whole. Status::type: a
// piece is something else.
Status join_octet_string(Bytes element, Octets &out);

}  // namespace za::asn1
