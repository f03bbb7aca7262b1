#include "issue/serial_number.hpp"

#include <zacert.h>

#include "base/failure.hpp"

#include <algorithm>

namespace tool {

Octets random_serial() {
    const uint32_t size = 16;
    Octets octets(size);
    do {
        check(ZA_PKCS7_GenerateBytes(octets.data(), &size));
        octets.front() &= 0x7F;
    } while (octets.front() == 0);
    return octets;
}

Octets parse_serial(std::string_view text) {
    constexpr size_t kMaxOctets = 20;
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](char c) { return c != ':'; });
    digits.insert(0, digits.size() % 2, '0');
    std::optional<Octets> octets = octets_of_hex(digits);
    if (octets) {
        octets->erase(octets->begin(), std::find_if(octets->begin(), octets->end(),
                                                    [](uint8_t octet) { return octet != 0; }));
    }
    // RFC 5280, 4.1.2.2: positive, of no more than 20 octets.
    if (!octets || octets->empty() || octets->size() > kMaxOctets ||
        (octets->size() == kMaxOctets && octets->front() >= 0x80)) {
        throw Failure(
            "expected a serial number in hexadecimal, above 0 and of up to 20 octets, found " +
            std::string(text));
    }
    return std::move(*octets);
}

}  // namespace tool
