// What callbacks of the library get as their context: a copy of some octets, at any address.
#pragma once

#include "base/secret.hpp"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace tool {

// A record as octets: also a pointer, where the callback is to find what it points to.
template <class Record>
Secret octets_of_record(const Record &record) {
    static_assert(std::is_trivially_copyable_v<Record>);
    return Secret(View(reinterpret_cast<const uint8_t *>(&record), sizeof record));
}

// The record in a callback's context; an empty one where there is no context.
template <class Record>
Record record_in(const void *context) {
    static_assert(std::is_trivially_copyable_v<Record>);
    Record record{};
    if (context != nullptr) {
        std::copy_n(static_cast<const uint8_t *>(context), sizeof record,
                    reinterpret_cast<uint8_t *>(&record));
    }
    return record;
}

}  // namespace tool
