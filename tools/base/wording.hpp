// Words that several renderings share.
#pragma once

#include <chrono>
#include <string>

namespace tool {

// The path, or what "-" stands for.
std::string file_label(const std::string &path);

// "2030-01-31"; the standard's separator and zone are left to the renderings.
std::string date(std::chrono::sys_seconds time);
std::string time_of_day(std::chrono::sys_seconds time);

}  // namespace tool
