// The trace log of the library under test, and the system's own calls on it.
#pragma once

#include <zacert.h>

#include "paired.hpp"

#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace bench {

constexpr const char *kLog = ZACERT_LOG_DIR "/zacert.log";
constexpr size_t kLines = 100;  // in one repetition

// As the library opens it.
inline int open_log() {
    return open(kLog, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
}

inline bool log_opens() {
    const int file = open_log();
    return file >= 0 && close(file) == 0;
}

inline void trace_line() {
    check(ZAPR_DebugMessage(nullptr, ".\\src\\za_cert", 77, "======>ZACert_DecodeCert Begin") == 0,
          "ZAPR_DebugMessage");
}

inline double traced_lines() {
    return nanoseconds([] {
        for (size_t i = 0; i < kLines; ++i) {
            trace_line();
        }
    });
}

}  // namespace bench
