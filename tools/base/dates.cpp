#include "base/dates.hpp"

#include "base/failure.hpp"
#include "base/wording.hpp"

namespace tool {

namespace {

std::optional<unsigned> digits(std::string_view text) {
    unsigned value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        value = value * 10 + static_cast<unsigned>(c - '0');
    }
    return value;
}

// Digits where the pattern has "0", its own characters elsewhere.
bool matches(std::string_view text, std::string_view pattern) {
    if (text.size() != pattern.size()) {
        return false;
    }
    for (size_t i = 0; i < text.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (pattern[i] == '0' ? !digit : text[i] != pattern[i]) {
            return false;
        }
    }
    return true;
}

std::optional<std::chrono::sys_seconds> time_of(std::string_view text) {
    const bool date_only = matches(text, "0000-00-00");
    if (!date_only && !matches(text, "0000-00-00T00:00:00Z")) {
        return std::nullopt;
    }
    const auto field = [&](size_t at, size_t size) { return *digits(text.substr(at, size)); };
    const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(field(0, 4))),
                                           std::chrono::month(field(5, 2)),
                                           std::chrono::day(field(8, 2)));
    const unsigned hours = date_only ? 0 : field(11, 2);
    const unsigned minutes = date_only ? 0 : field(14, 2);
    const unsigned seconds = date_only ? 0 : field(17, 2);
    if (!date.ok() || hours > 23 || minutes > 59 || seconds > 59) {
        return std::nullopt;
    }
    return std::chrono::sys_days(date) + std::chrono::hours(hours) + std::chrono::minutes(minutes) +
           std::chrono::seconds(seconds);
}

}  // namespace

std::chrono::sys_seconds now() {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}

std::chrono::sys_seconds parse_time(std::string_view text) {
    const std::optional<std::chrono::sys_seconds> time = time_of(text);
    if (!time || time->time_since_epoch().count() < 0) {
        throw Failure("expected a date such as 2030-01-31 or 2030-01-31T23:59:59Z, found " +
                      std::string(text));
    }
    return *time;
}

int32_t library_time(std::chrono::sys_seconds time) {
    if (time > kLastTime || time.time_since_epoch().count() < 0) {
        throw Failure("expected a time from 1970 to " + shown_time(kLastTime) + ", found " +
                      shown_time(time));
    }
    return static_cast<int32_t>(time.time_since_epoch().count());
}

std::string shown_time(std::chrono::sys_seconds time) {
    return date(time) + " " + time_of_day(time) + " UTC";
}

}  // namespace tool
