#include "base/times.hpp"

#include <zacert.h>

#include "base/failure.hpp"

namespace tool {

namespace {

constexpr size_t kShortForm = 13;  // YYMMDDHHMMSSZ
constexpr size_t kLongForm = 15;   // YYYYMMDDHHMMSSZ

// The digits of a time, taken in front.
class Digits {
  public:
    explicit Digits(View text) : text_(text) {}

    unsigned two() {
        const unsigned value = digit(0) * 10 + digit(1);
        text_ = text_.subspan(2);
        return value;
    }

  private:
    unsigned digit(size_t at) const {
        if (text_[at] < '0' || text_[at] > '9') {
            throw LibraryError(ZACERT_InvalidTimeEndErr);
        }
        return static_cast<unsigned>(text_[at] - '0');
    }

    View text_;
};

// Years without a century: X.509 begins at 1950, the library's GeneralizedTime at 1970.
unsigned full_year(unsigned two_digits, uint8_t identifier) {
    const unsigned first = identifier == ZA_DER_ID_UTCTIME ? 50 : 70;
    return two_digits + (two_digits < first ? 2000 : 1900);
}

}  // namespace

bool is_time(uint8_t identifier) {
    return identifier == ZA_DER_ID_UTCTIME || identifier == ZA_DER_ID_GENERALIZEDTIME;
}

std::chrono::sys_seconds read_time(const Element &element) {
    const View text = element.content;
    const bool long_form = text.size() == kLongForm;
    if (!is_time(element.identifier)) {
        throw LibraryError(ZACERT_TagErr);
    }
    if ((text.size() != kShortForm && !long_form) || text.back() != 'Z' ||
        (long_form && element.identifier == ZA_DER_ID_UTCTIME)) {
        throw LibraryError(ZACERT_InvalidTimeEndErr);
    }
    Digits digits(text);
    unsigned year = digits.two();
    year = long_form ? year * 100 + digits.two() : full_year(year, element.identifier);
    const std::chrono::month month(digits.two());
    const std::chrono::day day(digits.two());
    const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(year)), month, day);
    const unsigned hours = digits.two();
    const unsigned minutes = digits.two();
    const unsigned seconds = digits.two();
    if (!date.ok() || hours > 23 || minutes > 59 || seconds > 59) {
        throw LibraryError(ZACERT_InvalidTimeEndErr);
    }
    return std::chrono::sys_days(date) + std::chrono::hours(hours) + std::chrono::minutes(minutes) +
           std::chrono::seconds(seconds);
}

}  // namespace tool
