#include "support/survival.hpp"

#include "support/heap.hpp"

#include <gtest/gtest.h>

namespace za::test {

void expect_survives_cuts_and_changes(const Octets &octets, const std::set<uint32_t> &refused,
                                      const std::function<uint32_t(const Octets &)> &call) {
    const NoLeak no_leak;
    for (size_t size = 0; size < octets.size(); ++size) {
        const uint32_t result = call(Octets(octets.begin(), octets.begin() + long(size)));
        EXPECT_TRUE(refused.contains(result)) << result << " when cut to " << size;
    }
    Octets changed = octets;
    for (size_t at = 0; at < octets.size(); ++at) {
        for (unsigned change = 1; change < 0x100; ++change) {
            changed[at] = uint8_t(octets[at] ^ change);
            const uint32_t result = call(changed);
            EXPECT_TRUE(result == 0 || refused.contains(result))
                << result << " with " << unsigned{changed[at]} << " at " << at;
        }
        changed[at] = octets[at];
    }
}

}  // namespace za::test
