// What functions hand out through an `Anybuf **`.
#pragma once

#include <zacert.h>

#include "support/bytes.hpp"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace za::test {

struct FreeAnybuf {
    void operator()(Anybuf *record) const { ZI_FreeAnybuf(record); }
};
using Record = std::unique_ptr<Anybuf, FreeAnybuf>;

struct Handed {
    uint32_t result;
    Record record;
};

// Runs a function and takes over what it hands out; expects the output untouched where it fails.
template <class Function>
Handed handed(Function &&function) {
    static Anybuf untouched;
    Anybuf *out = &untouched;
    const uint32_t result = function(&out);
    EXPECT_EQ(result != 0, out == &untouched) << "result " << result;
    return {result, Record(out == &untouched ? nullptr : out)};
}

// "type octets; type/unused octets", and expects what holds for every chain the codec makes.
inline std::string describe(const Anybuf *chain) {
    std::string text;
    const Anybuf *before = nullptr;
    for (const Anybuf *record = chain; record != nullptr; record = record->next) {
        EXPECT_EQ(record->prev, before);
        EXPECT_EQ(record->bufFlag, 2u);
        text += (before == nullptr ? "" : "; ") + std::to_string(record->dataType);
        text += record->unusedBits == 0 ? "" : "/" + std::to_string(record->unusedBits);
        text += " " + to_hex(record);
        before = record;
    }
    return chain == nullptr ? "(none)" : text;
}

}  // namespace za::test
