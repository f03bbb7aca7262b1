// What the tests of keys share.
#pragma once

#include <zacert.h>

#include "support/der.hpp"
#include "support/heap.hpp"
#include "support/rows.hpp"
#include "support/survival.hpp"
#include "support/trace.hpp"

#include <cstring>
#include <gtest/gtest.h>

namespace za::test {

inline Octets key_file(const std::string &name) {
    return data_file("keys/" + name);
}

inline int32_t len_of(const Octets &octets) {
    return static_cast<int32_t>(octets.size());
}

inline void expect_damage_survived(const Octets &der,
                                   const std::function<uint32_t(const Octets &)> &decode) {
    expect_survives_cuts_and_changes(der, {101, 102, 108, 113, 122}, decode);
}

// `whole` with one of its elements replaced, or cut off with all behind it.
inline Octets with(std::vector<Octets> whole, size_t place, const Octets &element) {
    whole.at(place) = element;
    return sequence(whole);
}
inline Octets first(const std::vector<Octets> &whole, size_t count) {
    return sequence({whole.begin(), whole.begin() + long(count)});
}

// A structure all of whose octets are 0xA5, to be found again untouched.
template <class Record>
Record marked() {
    Record record;
    memset(&record, 0xA5, sizeof record);
    return record;
}

// The refused inputs of a file, with their results and failures; the file is UTF-8, the log
// GB18030.
inline void expect_refused(const std::string &file,
                           const std::function<uint32_t(const Octets &)> &decode) {
    for (const auto &row : rows_of("keys/" + file)) {
        SCOPED_TRACE(row.at(0));
        const Octets text(row.at(3).begin(), row.at(3).end());
        const Octets trail = two_calls([&](uint8_t *out, uint32_t *len) {
            return ZI_UTF8String2Chinese(text.data(), len_of(text), out, len);
        });
        const TraceRecord record;
        EXPECT_EQ(decode(octets_of_cell(row.at(1))), number_of(row.at(2)));
        EXPECT_EQ(record.failures(), list_of({trail.begin(), trail.end()}));
    }
}

}  // namespace za::test
