#include "support/der.hpp"

namespace za::test {

Octets join(const std::vector<Octets> &parts) {
    Octets whole;
    for (const Octets &part : parts) {
        whole.insert(whole.end(), part.begin(), part.end());
    }
    return whole;
}

Octets element(uint8_t identifier, const Octets &content) {
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

Octets sequence(const std::vector<Octets> &children) {
    return element(0x30, join(children));
}

Octets content_of(const Octets &element) {
    const size_t header = element[1] < 0x80 ? 2 : 2u + (element[1] & 0x7Fu);
    return Octets(element.begin() + long(header), element.end());
}

std::vector<Octets> children_of(const Octets &element) {
    const Octets octets = content_of(element);
    std::vector<Octets> children;
    for (size_t at = 0; at < octets.size(); at += children.back().size()) {
        const uint8_t first = octets[at + 1];
        const size_t size = first < 0x80    ? 2u + first
                            : first == 0x81 ? 3u + octets[at + 2]
                                            : 4u + octets[at + 2] * 256u + octets[at + 3];
        children.emplace_back(octets.begin() + long(at), octets.begin() + long(at + size));
    }
    return children;
}

}  // namespace za::test
