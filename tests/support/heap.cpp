// Stands in the place of the library's own heap functions.
#include "support/heap.hpp"

#include <zacert.h>

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>
#include <utility>

namespace za::test {
namespace {

size_t live = 0;
HeapCount count;
size_t until_failure = 0;
bool failed = false;
std::span<const uint8_t> sought;
bool sought_found = false;

bool fails_now() {
    if (until_failure == 0 || --until_failure > 0) {
        return false;
    }
    failed = true;
    return true;
}

void look_for_secret(const void *block) {
    if (block == nullptr || sought.empty()) {
        return;
    }
    const auto *first = static_cast<const uint8_t *>(block);
    const uint8_t *last = first + malloc_usable_size(const_cast<void *>(block));
    sought_found = sought_found || std::search(first, last, sought.begin(), sought.end()) != last;
}

// Far above any run here: a call that never ends its allocations must not hang the test.
constexpr size_t kMostAllocations = 100000;

}  // namespace

size_t live_blocks() {
    return live;
}

HeapCount heap_count() {
    return count;
}

void fail_allocation(size_t k) {
    until_failure = k;
    failed = false;
}

bool allocation_failed() {
    return failed;
}

void expect_allocation_faults_survived(const std::function<uint32_t()> &call, uint32_t documented) {
    fail_allocation(0);
    const uint32_t undisturbed = call();
    for (size_t k = 1; k < kMostAllocations; ++k) {
        const size_t before = live;
        fail_allocation(k);
        const uint32_t result = call();
        const bool reached = failed;
        fail_allocation(0);
        EXPECT_EQ(live, before) << "blocks left over when allocation " << k << " fails";
        if (!reached) {
            EXPECT_EQ(result, undisturbed);
            return;
        }
        EXPECT_TRUE(result == documented || result == undisturbed)
            << "result " << result << " when allocation " << k << " fails";
    }
    ADD_FAILURE() << "allocations without end";
}

SparedAllocation::SparedAllocation() : until_failure_(std::exchange(until_failure, 0)) {}

SparedAllocation::~SparedAllocation() {
    until_failure = until_failure_;
}

NoLeak::NoLeak() : before_(live) {}

NoLeak::~NoLeak() {
    EXPECT_EQ(live, before_) << "blocks left over";
}

FreedSecret::FreedSecret(std::span<const uint8_t> secret) {
    sought = secret;
    sought_found = false;
}

FreedSecret::~FreedSecret() {
    sought = {};
}

bool FreedSecret::found() const {
    return sought_found;
}

}  // namespace za::test

void *ZAPR_Malloc(const char *, uint32_t, uint32_t size) {
    using namespace za::test;
    ++count.allocations;
    count.octets += size;
    if (fails_now()) {
        return nullptr;
    }
    void *block = std::calloc(1, size == 0 ? 1 : size);
    live += block != nullptr ? 1 : 0;
    return block;
}

uint32_t ZAPR_Free(void *block) {
    za::test::look_for_secret(block);
    za::test::live -= block != nullptr ? 1 : 0;
    std::free(block);
    return 0;
}
