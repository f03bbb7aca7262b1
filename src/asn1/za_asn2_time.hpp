// Times: seconds since 1970 and their texts, by the local zone of the process.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

#include <array>

namespace za::asn1 {

constexpr size_t kTimeText = 13;      // YYMMDDHHMMSSZ
constexpr size_t kLongTimeText = 15;  // YYYYMMDDHHMMSSZ

using TimeText = std::array<char, kTimeText>;

// A time as a text gives it, in the local zone. To convert one costs more than to decode a whole
// certificate, so it is done when the seconds are asked for.
struct TimeFields {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// Of the seconds the low 32 bits are kept: times from 2038-01-19 on are read as unsigned.
Status to_seconds(const TimeFields &fields, int32_t &out);

Status time_to_text(int32_t time, TimeText &out);              // ZAsn1_Low_ItoCTime
Status time_from_text(const TimeText &text, TimeFields &out);  // ZAsn1_Low_CtoITime

// The content of a UTCTime, or of a GeneralizedTime of 13 characters; a missing "Z" is let pass.
Status time_from_content(Bytes content, TimeFields &out);

// The standard form of a GeneralizedTime, 14 digits and "Z".
bool is_long_time(Bytes content);
Status time_from_long_text(Bytes content, TimeFields &out);

}  // namespace za::asn1
