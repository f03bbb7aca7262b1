#include "asn1/za_asn2_time.hpp"

#include "asn1/za_asn2_cell.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <ctime>

namespace {

constexpr za::TraceSource trace{".\\src\\za_asn2"};

}  // namespace

namespace za::asn1 {
namespace {

constexpr int kPivotYear = 70;

int two_digits(const char *text) {
    return (text[0] - '0') * 10 + (text[1] - '0');
}

void put_two_digits(int value, char *text) {
    text[0] = static_cast<char>('0' + value / 10);
    text[1] = static_cast<char>('0' + value % 10);
}

// The ten digits from month to second.
TimeFields fields_of(int year, const char *text) {
    return {year,
            two_digits(text),
            two_digits(text + 2),
            two_digits(text + 4),
            two_digits(text + 6),
            two_digits(text + 8)};
}

bool all_digits(Bytes text) {
    return std::all_of(text.begin(), text.end(), [](uint8_t c) { return c >= '0' && c <= '9'; });
}

}  // namespace

Status to_seconds(const TimeFields &fields, int32_t &out) {
    std::tm local{};
    local.tm_year = fields.year - 1900;
    local.tm_mon = fields.month - 1;
    local.tm_mday = fields.day;
    local.tm_hour = fields.hour;
    local.tm_min = fields.minute;
    local.tm_sec = fields.second;
    // Whether daylight saving time holds is for the zone to say.
    local.tm_isdst = -1;
    // A result of -1 is also a time; a week day that stays untouched is not.
    local.tm_wday = -1;
    const time_t seconds = std::mktime(&local);
    if (local.tm_wday == -1) {
        return trace.fail(Status::memory, "------>mktime");
    }
    out = static_cast<int32_t>(static_cast<uint32_t>(seconds));
    return Status::ok;
}

Status time_to_text(int32_t time, TimeText &out) {
    if (time < 0) {
        return trace.fail(Status::invalid_time, "------>invalid Time");
    }
    const time_t seconds = time;
    std::tm local{};
    tzset();
    if (localtime_r(&seconds, &local) == nullptr) {
        return trace.fail(Status::memory, "------>localtime");
    }
    // Zones west of Greenwich put the first hours of 1970 into 1969.
    put_two_digits(local.tm_year % 100, &out[0]);
    put_two_digits(local.tm_mon + 1, &out[2]);
    put_two_digits(local.tm_mday, &out[4]);
    put_two_digits(local.tm_hour, &out[6]);
    put_two_digits(local.tm_min, &out[8]);
    put_two_digits(local.tm_sec, &out[10]);
    out[12] = 'Z';
    return Status::ok;
}

Status time_from_text(const TimeText &text, TimeFields &out) {
    const int two_digit_year = two_digits(&text[0]);
    if (text[12] != 'Z' && text[12] != '\0') {
        return trace.fail(Status::invalid_time_end);
    }
    const int year = two_digit_year + (two_digit_year < kPivotYear ? 2000 : 1900);
    out = fields_of(year, &text[2]);
    return Status::ok;
}

Status time_from_content(Bytes content, TimeFields &out) {
    if (content.size() < kTimeText - 1) {
        return trace.fail(Status::invalid_time_end);
    }
    TimeText text{};
    std::copy_n(content.begin(), std::min(content.size(), text.size()), text.begin());
    ZA_TRY(ZAsn1_Low_CtoITime, time_from_text(text, out));
    return Status::ok;
}

bool is_long_time(Bytes content) {
    return content.size() == kLongTimeText && content.back() == 'Z' &&
           all_digits(content.first(kLongTimeText - 1));
}

Status time_from_long_text(Bytes content, TimeFields &out) {
    constexpr int kFirstYear = 1970;
    constexpr int kLastYear = 2106;
    const char *text = text_of(content).data();
    const int year = two_digits(text) * 100 + two_digits(text + 2);
    if (year < kFirstYear || year > kLastYear) {
        return trace.fail(Status::invalid_time_end);
    }
    out = fields_of(year, text + 4);
    return Status::ok;
}

}  // namespace za::asn1

using za::Octets;
using za::Status;
using namespace za::asn1;

uint32_t ZAsn1_Low_TimeIntToChar(uint32_t value, char *twoChars) {
    return trace.exported([&] {
        ZA_PASS(trace.need(twoChars));
        constexpr uint32_t kLargest = 99;
        if (value > kLargest) {
            return trace.fail(Status::time_format);
        }
        put_two_digits(static_cast<int>(value), twoChars);
        return Status::ok;
    });
}

uint32_t ZAsn1_Low_TimeCharToInt(const char *twoChars, uint32_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(twoChars, value));
        *value = static_cast<uint32_t>(two_digits(twoChars));
        return Status::ok;
    });
}

uint32_t ZAsn1_Low_ItoCTime(int32_t time, char **text13, uint32_t **lengthCell) {
    return trace.exported([&] {
        ZA_PASS(trace.need(text13, lengthCell));
        TimeText text;
        ZA_PASS(time_to_text(time, text));
        Octets octets;
        Cell cell;
        ZA_PASS(octets.assign(za::bytes_of(std::string_view(text.data(), text.size()))));
        ZA_PASS(cell.set(kTimeText));
        *text13 = reinterpret_cast<char *>(octets.release());
        *lengthCell = cell.release();
        return Status::ok;
    });
}

uint32_t ZAsn1_Low_CtoITime(const char *text, uint32_t, int32_t *time) {
    return trace.exported([&] {
        ZA_PASS(trace.need(text, time));
        TimeText copy;
        std::copy_n(text, copy.size(), copy.begin());
        TimeFields fields;
        ZA_PASS(time_from_text(copy, fields));
        return to_seconds(fields, *time);
    });
}
