// Dates that users write, and the last one the library can write.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace tool {

// The library takes times as signed 32-bit seconds, which end on 2038-01-19: the end of the day before
// is the same date in every program's eyes.
constexpr std::chrono::sys_seconds kLastTime =
    std::chrono::sys_days(std::chrono::year(2038) / 1 / 19) - std::chrono::seconds(1);

std::chrono::sys_seconds now();

// "2030-01-31" or "2030-01-31T23:59:59Z", from 1970 on. Throws Failure.
std::chrono::sys_seconds parse_time(std::string_view text);

int32_t library_time(std::chrono::sys_seconds time);

// "2030-01-31 23:59:59 UTC"
std::string shown_time(std::chrono::sys_seconds time);

}  // namespace tool
