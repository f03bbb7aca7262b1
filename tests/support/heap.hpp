// The heap under test, and what a call must survive: no memory, and damaged input.
#pragma once

#include "support/bytes.hpp"

#include <functional>
#include <set>

namespace za::test {

struct HeapCount {
    size_t allocations = 0;
    size_t octets = 0;  // asked for
};

HeapCount heap_count();  // since the process began

// The most octets that blocks held at one time while `work` ran, beside those held before.
size_t heap_peak(const std::function<void()> &work);

// The k-th allocation from now on fails, once; 0 lets all succeed.
void fail_allocation(size_t k);

// Runs `call` again and again, its first allocation failing, then its second, and so on until one
// run meets no failure. Expects of each run the undisturbed result, or 100, and that no block is
// left over. `call` releases what it is handed; where it fails it must find its outputs untouched
// and say so with an expectation of its own.
void expect_allocation_faults_survived(const std::function<uint32_t()> &call);

// Calls with every octet, up to `size`, changed to every other value. Under the sanitizers, where a
// call takes twenty times as long, to every third, beginning with another one at each place.
void for_each_change(const Octets &octets, size_t size,
                     const std::function<void(const Octets &, size_t at)> &call);

// Calls with every cut of `octets`, which must be refused, and with every octet changed, which may
// be: with a code of `refused`, and with nothing left over on the heap. What
// is passed stands in a block of exactly its size.
void expect_damage_survived(const Octets &octets, const std::set<uint32_t> &refused,
                            const std::function<uint32_t(const Octets &)> &call);

// Fails the test when blocks are left over at the end of a scope.
class NoLeak {
  public:
    NoLeak();
    ~NoLeak();
    NoLeak(const NoLeak &) = delete;
    NoLeak &operator=(const NoLeak &) = delete;

  private:
    size_t before_;
};

// Fails the test when a block that is freed in its scope still holds a secret.
class NoSecret {
  public:
    explicit NoSecret(std::span<const uint8_t> secret);
    ~NoSecret();
    NoSecret(const NoSecret &) = delete;
    NoSecret &operator=(const NoSecret &) = delete;
};

}  // namespace za::test
