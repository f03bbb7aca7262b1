// Octets in tests: written as hex, compared as hex, taken apart as DER.
#pragma once

#include <zacert.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace za::test {

using Octets = std::vector<uint8_t>;

// "30 03 02 01 05"; blanks are optional. "30(02(01) 04(5A*32))" is DER whose lengths are worked out
// here, with an octet 32 times.
Octets from_hex(std::string_view hex);
std::string to_hex(std::span<const uint8_t> octets);
std::string to_hex(const Anybuf *record);  // "(none)" for NULL

Octets read_file(const std::string &path);
Octets data_file(const std::string &name);  // below tests/data

// DER taken apart, of less than 64 KiB, and put together again.
Octets join(const std::vector<Octets> &parts);
Octets element(uint8_t identifier, const Octets &content);
Octets sequence(const std::vector<Octets> &children);
Octets content_of(const Octets &element);
std::vector<Octets> children_of(const Octets &element);

// A record as it stands in memory.
template <class Type>
Octets octets_of(const Type &record) {
    const auto *first = reinterpret_cast<const uint8_t *>(&record);
    return Octets(first, first + sizeof record);
}

// A record that borrows octets: `data` is not freed.
Anybuf borrowed(const Octets &octets, uint32_t data_type = 0);

// Runs a function of the two-call contract and returns its octets; `status` gets its result.
template <class Function>
Octets two_calls(Function &&function, uint32_t *status = nullptr) {
    uint32_t len = 0;
    uint32_t result = function(nullptr, &len);
    Octets out(len);
    if (result == 0) {
        result = function(out.data(), &len);
        out.resize(len);
    }
    if (status != nullptr) {
        *status = result;
    }
    return out;
}

}  // namespace za::test
