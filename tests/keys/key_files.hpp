// What the tests of keys share.
#pragma once

#include <zacert.h>

#include "support/heap.hpp"
#include "support/rows.hpp"
#include "support/trace.hpp"

#include <cstring>
#include <gtest/gtest.h>

namespace za::test {

// What decoders of keys refuse input with.
inline const std::set<uint32_t> kKeyCodes{101, 102, 108, 113, 122};

inline Octets key_file(const std::string &name) {
    return data_file("keys/" + name);
}

inline int32_t len_of(const Octets &octets) {
    return static_cast<int32_t>(octets.size());
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

// The decoder and the encoder of a record of fixed size.
template <class Key>
struct Codec {
    std::function<uint32_t(Key *, const uint8_t *, int32_t)> decode_key;
    std::function<uint32_t(const Key *, uint8_t *, uint32_t *)> encode_key;
    std::set<Trail> no_memory;  // the encoder's failures

    uint32_t decode(const Octets &der, Key *out = nullptr) const {
        auto key = marked<Key>();
        const uint32_t result = decode_key(&key, der.data(), len_of(der));
        EXPECT_TRUE(result == 0 || octets_of(key) == octets_of(marked<Key>()));
        if (out != nullptr) {
            *out = key;
        }
        return result;
    }
    Octets encode(const Key &key) const {
        return two_calls([&](uint8_t *out, uint32_t *len) { return encode_key(&key, out, len); });
    }
    void expect_refused(const std::string &file) const {
        expect_decoded(file, {}, [&](const Octets &der, std::string &) { return decode(der); });
    }
    void expect_faults_survived(const Octets &der, const Key &key) const {
        const Octets written = encode(key);
        const Octets untouched(written.size(), 0xA5);
        expect_allocation_faults_survived([&] { return decode(der); });
        expect_allocation_faults_survived([&] {
            Octets out = untouched;
            auto len = uint32_t(out.size());
            const TraceRecord record;
            const uint32_t result = encode_key(&key, out.data(), &len);
            EXPECT_EQ(out, result == 0 ? written : untouched);
            EXPECT_EQ(len, out.size());
            EXPECT_EQ(no_memory.contains(record.failures()), result != 0)
                << testing::PrintToString(record.failures());
            return result;
        });
        expect_damage_survived(der, kKeyCodes, [&](const Octets &x) { return decode(x); });
    }
};

}  // namespace za::test
