// Stands in the place of the library's own heap functions.
#include "support/heap.hpp"

#include <zacert.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <malloc.h>

namespace za::test {
namespace {

size_t live = 0;
size_t held = 0;  // octets
size_t most_held = 0;
HeapCount count;
size_t until_failure = 0;
bool failed = false;
std::span<const uint8_t> sought;

void look_for_secret(const uint8_t *block) {
    if (block != nullptr && !sought.empty()) {
        const size_t size = malloc_usable_size(const_cast<uint8_t *>(block));
        EXPECT_EQ(memmem(block, size, sought.data(), sought.size()), nullptr) << "not wiped";
    }
}

#ifdef ZACERT_SANITIZED
constexpr size_t kChangeStep = 3;
#else
constexpr size_t kChangeStep = 1;
#endif

}  // namespace

HeapCount heap_count() {
    return count;
}

size_t heap_peak(const std::function<void()> &work) {
    const size_t before = held;
    most_held = held;
    work();
    return most_held - before;
}

void fail_allocation(size_t k) {
    until_failure = k;
    failed = false;
}

void expect_allocation_faults_survived(const std::function<uint32_t()> &call) {
    fail_allocation(0);
    const uint32_t undisturbed = call();
    failed = true;
    for (size_t k = 1; failed && k < 100000; ++k) {  // a call may never end its allocations
        const size_t before = live;
        fail_allocation(k);
        const uint32_t result = call();
        until_failure = 0;
        EXPECT_EQ(live, before) << "blocks left over when allocation " << k << " fails";
        EXPECT_TRUE(result == undisturbed || (failed && result == 100))
            << "result " << result << " when allocation " << k << " fails";
    }
    EXPECT_FALSE(failed) << "allocations without end";
}

void expect_damage_survived(const Octets &octets, const std::set<uint32_t> &refused,
                            const std::function<uint32_t(const Octets &)> &call) {
    const NoLeak no_leak;
    for (size_t size = 0; size < octets.size(); ++size) {
        const uint32_t result = call(Octets(octets.begin(), octets.begin() + long(size)));
        EXPECT_TRUE(refused.contains(result)) << result << " when cut to " << size;
    }
    for_each_change(octets, octets.size(), [&](const Octets &changed, size_t at) {
        const uint32_t result = call(changed);
        EXPECT_TRUE(result == 0 || refused.contains(result))
            << result << " with " << unsigned{changed[at]} << " at " << at;
    });
}

void for_each_change(const Octets &octets, size_t size,
                     const std::function<void(const Octets &, size_t)> &call) {
    Octets changed = octets;
    for (size_t at = 0; at < size; ++at) {
        for (size_t change = 1 + at % kChangeStep; change <= UINT8_MAX; change += kChangeStep) {
            changed[at] = static_cast<uint8_t>(octets[at] + change);
            call(changed, at);
        }
        changed[at] = octets[at];
    }
}

NoLeak::NoLeak() : before_(live) {}

NoLeak::~NoLeak() {
    EXPECT_EQ(live, before_) << "blocks left over";
}

NoSecret::NoSecret(std::span<const uint8_t> secret) {
    sought = secret;
}

NoSecret::~NoSecret() {
    sought = {};
}

}  // namespace za::test

void *ZAPR_Malloc(const char *, uint32_t, uint32_t size) {
    using namespace za::test;
    ++count.allocations;
    count.octets += size;
    if (until_failure > 0 && --until_failure == 0) {
        failed = true;
        return nullptr;
    }
    void *block = std::calloc(1, size == 0 ? 1 : size);
    live += block != nullptr ? 1 : 0;
    held += malloc_usable_size(block);
    most_held = std::max(most_held, held);
    return block;
}

uint32_t ZAPR_Free(void *block) {
    za::test::look_for_secret(static_cast<const uint8_t *>(block));
    za::test::live -= block != nullptr ? 1 : 0;
    za::test::held -= malloc_usable_size(block);
    std::free(block);
    return 0;
}
