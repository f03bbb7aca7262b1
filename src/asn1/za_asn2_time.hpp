// Times: seconds since 1970 and their texts, by the local zone of the process.
#pragma once

#include <array>

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

namespace za::asn1 {

constexpr size_t kTimeText = 13;      // YYMMDDHHMMSSZ
constexpr size_t kLongTimeText = 15;  // YYYYMMDDHHMMSSZ

using TimeText = std::array<char, kTimeText>;

Status time_to_text(int32_t time, TimeText &out);          // ZAsn1_Low_ItoCTime
Status time_from_text(const TimeText &text, int32_t &out);  // ZAsn1_Low_CtoITime

// The content of a UTCTime, or of a GeneralizedTime of 13 characters; a missing "Z" is let pass.
Status time_from_content(Bytes content, int32_t &out);  // ZAsn1_Low_ReadLongTime

// Whether the content is the standard form of a GeneralizedTime, 14 digits and "Z".
bool is_long_time(Bytes content);
Status time_from_long_text(Bytes content, int32_t &out);

}  // namespace za::asn1
