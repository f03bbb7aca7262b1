// What the tests of keys share: files of keys, and DER taken apart and put together again.
#pragma once

#include <zacert.h>

#include "support/bytes.hpp"

#include <functional>
#include <gtest/gtest.h>
#include <set>

namespace za::test {

inline Octets key_file(const std::string &name) {
    return read_file(std::string(ZACERT_TEST_DATA) + "/keys/" + name);
}

inline Octets join(const std::vector<Octets> &parts) {
    Octets whole;
    for (const Octets &part : parts) {
        whole.insert(whole.end(), part.begin(), part.end());
    }
    return whole;
}

inline Octets element(uint8_t identifier, const Octets &content) {
    const size_t size = content.size();
    Octets header{identifier};
    if (size >= 0x100) {
        header.insert(header.end(), {0x82, uint8_t(size >> 8), uint8_t(size)});
    } else if (size >= 0x80) {
        header.insert(header.end(), {0x81, uint8_t(size)});
    } else {
        header.push_back(uint8_t(size));
    }
    return join({header, content});
}

inline Octets sequence(const std::vector<Octets> &children) {
    return element(0x30, join(children));
}

// Well-formed elements of less than 64 KiB, one behind the other.
inline std::vector<Octets> elements_of(const Octets &octets) {
    std::vector<Octets> elements;
    for (size_t at = 0; at < octets.size();) {
        const uint8_t first = octets[at + 1];
        const size_t size = first < 0x80    ? 2u + first
                            : first == 0x81 ? 3u + octets[at + 2]
                                            : 4u + octets[at + 2] * 256u + octets[at + 3];
        elements.emplace_back(octets.begin() + long(at), octets.begin() + long(at + size));
        at += size;
    }
    return elements;
}

inline Octets content_of(const Octets &element) {
    const size_t header = element[1] < 0x80 ? 2 : 2u + (element[1] & 0x7Fu);
    return Octets(element.begin() + long(header), element.end());
}

inline std::vector<Octets> children_of(const Octets &element) {
    return elements_of(content_of(element));
}

// Every truncation is refused, and every octet changed in every bit gives 0 or a code that decoders
// of keys are said to give. Blocks have exactly the size of what stands in them.
inline void expect_damage_survived(const Octets &der,
                                   const std::function<uint32_t(const Octets &)> &decode) {
    const std::set<uint32_t> refused{101, 102, 108, 113, 122};
    for (size_t size = 1; size < der.size(); ++size) {
        const uint32_t result = decode(Octets(der.begin(), der.begin() + long(size)));
        EXPECT_TRUE(refused.contains(result)) << result << " when cut to " << size;
    }
    for (size_t at = 0; at < der.size(); ++at) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            Octets damaged = der;
            damaged[at] = uint8_t(damaged[at] ^ 1u << bit);
            const uint32_t result = decode(damaged);
            EXPECT_TRUE(result == 0 || refused.contains(result))
                << result << " when bit " << bit << " of octet " << at << " is changed";
        }
    }
}

inline int32_t len_of(const Octets &octets) {
    return static_cast<int32_t>(octets.size());
}

}  // namespace za::test
