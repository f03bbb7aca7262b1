// Inputs cut short and changed.
#pragma once

#include "support/bytes.hpp"

#include <functional>
#include <set>

namespace za::test {

// Calls with every cut of `octets`, which must be refused, and with every octet changed to every
// other value, which may be: with a code of `refused`, and with nothing left over on the heap. What
// is passed stands in a block of exactly its size.
void expect_survives_cuts_and_changes(const Octets &octets, const std::set<uint32_t> &refused,
                                      const std::function<uint32_t(const Octets &)> &call);

}  // namespace za::test
