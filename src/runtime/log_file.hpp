// Appending to a log: the only file access of the runtime.
#pragma once

#include <string_view>

namespace za {

// Opens, appends with one write, closes. A file that cannot be opened is tried once more, as the
// second way of opening a log, and then left alone; the caller's errno survives.
void append_to_file(const char *path, std::string_view octets) noexcept;

}  // namespace za
