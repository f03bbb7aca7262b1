#include "base/der_writer.hpp"

#include <zacert.h>

#include "base/der.hpp"
#include "base/failure.hpp"

namespace tool {

Octets der(uint8_t identifier, std::initializer_list<View> contents) {
    size_t size = 0;
    for (const View part : contents) {
        size += part.size();
    }
    Octets octets = {identifier};
    if (size < 0x80) {
        octets.push_back(static_cast<uint8_t>(size));
    } else {
        Octets reversed;
        for (size_t rest = size; rest > 0; rest >>= 8) {
            reversed.push_back(static_cast<uint8_t>(rest));
        }
        octets.push_back(static_cast<uint8_t>(0x80 | reversed.size()));
        octets.insert(octets.end(), reversed.rbegin(), reversed.rend());
    }
    octets.reserve(octets.size() + size);
    for (const View part : contents) {
        octets.insert(octets.end(), part.begin(), part.end());
    }
    return octets;
}

Octets object_id_octets(const std::string &dotted) {
    try {
        Octets octets = fetched([&](uint8_t *out, uint32_t *length) {
            return ZACert_GetOIDValue(dotted.c_str(), static_cast<uint32_t>(dotted.size()), out,
                                      length);
        });
        // Arcs above 32 bits wrap in the library.
        if (object_id_text(octets) == dotted) {
            return octets;
        }
    } catch (const LibraryError &) {
        // Said below.
    }
    throw Failure("expected an object identifier such as 1.2.3.4, found " + dotted);
}

}  // namespace tool
