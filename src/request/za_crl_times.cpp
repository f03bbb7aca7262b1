#include "request/za_crl_times.hpp"

#include "runtime/trace.hpp"

#include <chrono>
#include <ctime>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crl"};

}  // namespace

namespace za::request {
namespace {

constexpr int64_t kDay = 86400;

// The wall clock's reading as seconds, by the calendar alone.
int64_t wall_seconds(const std::tm &local) {
    using namespace std::chrono;
    const year_month_day date(year(local.tm_year + 1900),
                              month(static_cast<unsigned>(local.tm_mon + 1)),
                              day(static_cast<unsigned>(local.tm_mday)));
    const auto days = sys_days(date).time_since_epoch().count();
    return days * kDay + local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
}

// False where the zone cannot tell, and in a leap second, which zones with such seconds have.
bool offset_at(int64_t time, int64_t &out) {
    constexpr int kLastSecond = 59;
    const time_t seconds = time;
    std::tm local{};
    if (localtime_r(&seconds, &local) == nullptr || local.tm_sec > kLastSecond) {
        return false;
    }
    out = wall_seconds(local) - time;
    return true;
}

void put_two_digits(unsigned value, char *text) {
    text[0] = static_cast<char>('0' + value / 10);
    text[1] = static_cast<char>('0' + value % 10);
}

asn1::TimeText text_of_wall(int64_t wall) {
    using namespace std::chrono;
    const sys_seconds time{seconds(wall)};
    const sys_days midnight = floor<days>(time);
    const year_month_day date(midnight);
    const auto second = static_cast<unsigned>((time - midnight).count());
    asn1::TimeText text;
    put_two_digits(static_cast<unsigned>(static_cast<int>(date.year()) % 100), &text[0]);
    put_two_digits(static_cast<unsigned>(date.month()), &text[2]);
    put_two_digits(static_cast<unsigned>(date.day()), &text[4]);
    put_two_digits(second / 3600, &text[6]);
    put_two_digits(second / 60 % 60, &text[8]);
    put_two_digits(second % 60, &text[10]);
    text[12] = 'Z';
    return text;
}

Status text_from_zone(int32_t time, asn1::TimeText &out) {
    ZA_TRY(ZAsn1_Low_ItoCTime, asn1::time_to_text(time, out));
    return Status::ok;
}

}  // namespace

TimeTexts::TimeTexts() {
    tzset();
    days_.fill({});
}

// A zone that keeps its offset from the first second of a day to the last keeps it in between.
TimeTexts::Day TimeTexts::look_up(int32_t number) {
    const int64_t first = number * kDay;
    int64_t offset = 0;
    int64_t last_offset = 0;
    const bool known = offset_at(first, offset) && offset_at(first + kDay - 1, last_offset);
    return {number, static_cast<int32_t>(offset), known && offset == last_offset};
}

Status TimeTexts::text(int32_t time, asn1::TimeText &out) {
    if (time < 0) {
        return text_from_zone(time, out);
    }
    const auto number = static_cast<int32_t>(time / kDay);
    Day &day = days_[static_cast<size_t>(number) % days_.size()];
    if (day.number != number) {
        day = look_up(number);
    }
    if (!day.has_one_offset) {
        return text_from_zone(time, out);
    }
    out = text_of_wall(int64_t{time} + day.offset);
    return Status::ok;
}

}  // namespace za::request
