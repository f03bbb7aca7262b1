#include "base/wording.hpp"

#include "base/utf8.hpp"

#include <algorithm>

namespace tool {

namespace {

std::string padded(int64_t value, size_t width) {
    const std::string digits = std::to_string(value);
    return std::string(width - std::min(width, digits.size()), '0') + digits;
}

}  // namespace

std::string file_label(const std::string &path) {
    return path == "-" ? "standard input" : printable(path);
}

std::string date(std::chrono::sys_seconds time) {
    const std::chrono::year_month_day day{std::chrono::floor<std::chrono::days>(time)};
    return padded(static_cast<int>(day.year()), 4) + "-" +
           padded(static_cast<unsigned>(day.month()), 2) + "-" +
           padded(static_cast<unsigned>(day.day()), 2);
}

std::string time_of_day(std::chrono::sys_seconds time) {
    const std::chrono::hh_mm_ss clock{time - std::chrono::floor<std::chrono::days>(time)};
    return padded(clock.hours().count(), 2) + ":" + padded(clock.minutes().count(), 2) + ":" +
           padded(clock.seconds().count(), 2);
}

}  // namespace tool
