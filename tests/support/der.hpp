// DER taken apart and put together again.
#pragma once

#include "support/bytes.hpp"

namespace za::test {

Octets join(const std::vector<Octets> &parts);
Octets element(uint8_t identifier, const Octets &content);
Octets sequence(const std::vector<Octets> &children);

// Of a well-formed element of less than 64 KiB.
Octets content_of(const Octets &element);
std::vector<Octets> children_of(const Octets &element);

}  // namespace za::test
