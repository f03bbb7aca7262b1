// Object identifiers: the catalogue, and conversion between dotted text and content octets.
#pragma once

#include "names/za_low_oid_catalogue.hpp"
#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

namespace za::names {

constexpr size_t kMostOidOctets = 1024;

// ZACert_GetOIDValue. Status::general: no text; Status::invalid_algorithm: not an object
// identifier.
Status oid_from_text(Bytes text, Octets &out);

// A caller's text: a length of all ones measures it up to its zero octet, and any other that is
// negative as a signed number stands for no text.
Bytes dotted_text(const char *text, uint32_t length);

// Dotted text of content octets. Octets that no dotted text stands for (cut off, not minimal, or an
// arc above 64 bits) come out as hex digits, which no dotted text equals.
Status oid_to_text(Bytes content, Octets &out);

}  // namespace za::names
