// Times out of their DER, whatever the year.
#pragma once

#include "base/elements.hpp"

#include <chrono>

namespace tool {

bool is_time(uint8_t identifier);

// UTCTime, or GeneralizedTime of 15 characters or of the 13 that the library writes; all end in Z.
// Throws LibraryError.
std::chrono::sys_seconds read_time(const Element &element);

}  // namespace tool
