// Texts of very many times. The local zone is asked once per day and not once per time, because
// that costs more than to write an entry.
#pragma once

#include "asn1/za_asn2_time.hpp"

#include <array>

namespace za::request {

class TimeTexts {
  public:
    // As asn1::time_to_text, in the zone that holds when the object is made.
    TimeTexts();
    Status text(int32_t time, asn1::TimeText &out);

  private:
    struct Day {
        int32_t number = -1;
        int32_t offset = 0;
        bool has_one_offset = false;
    };

    static Day look_up(int32_t number);

    // Revocations of about three years have a place each, in whatever order they come.
    std::array<Day, 1024> days_;
};

}  // namespace za::request
