// Appending to a log: the only file access of the runtime.
#pragma once

#include <string_view>

namespace za {

// In the folder fixed when the library was built.
inline constexpr const char *kTraceLog = ZACERT_LOG_DIR "/zacert.log";
inline constexpr const char *kValueLog = ZACERT_LOG_DIR "/cert.log";

// Opens, appends with one write, closes. A file that cannot be opened is tried once more, as the
// second way of opening a log, and then left alone; the caller's errno survives.
void append_to_file(const char *path, std::string_view octets) noexcept;

}  // namespace za
