// DER of what the library has no setter for.
#pragma once

#include "base/octets.hpp"

#include <initializer_list>
#include <string>

namespace tool {

Octets der(uint8_t identifier, std::initializer_list<View> contents);

// Content octets of an object identifier in dotted decimal. Throws Failure.
Octets object_id_octets(const std::string &dotted);

}  // namespace tool
