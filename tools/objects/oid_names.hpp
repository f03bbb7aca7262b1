// Names of object identifiers.
#pragma once

#include "objects/certificate.hpp"

#include <string>
#include <string_view>

namespace tool {

// Empty when there is none.
std::string_view oid_name(std::string_view oid);

NamedId named(std::string oid);

// The name, or the number where there is none.
const std::string &label(const NamedId &id);

// The size of the curve's field; 0 for unknown curves.
size_t curve_bits(std::string_view oid);

}  // namespace tool
