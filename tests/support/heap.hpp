// The heap under test: counts what the library asks for and fails where a test wants it to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace za::test {

struct HeapCount {
    size_t allocations = 0;
    size_t octets = 0;  // asked for
};

size_t live_blocks();
HeapCount heap_count();  // since the process began

// The k-th allocation from now on fails, once; 0 lets all succeed.
void fail_allocation(size_t k);
bool allocation_failed();

// Allocations of the test itself: in its scope none fails and none is counted for fail_allocation.
class SparedAllocation {
  public:
    SparedAllocation();
    ~SparedAllocation();
    SparedAllocation(const SparedAllocation &) = delete;
    SparedAllocation &operator=(const SparedAllocation &) = delete;

  private:
    size_t until_failure_;
};

// Runs `call` again and again, its first allocation failing, then its second, and so on until one
// run meets no failure. Expects of each run the undisturbed result, or 100 (or `documented`), and
// that no block is left over. `call` releases what it is handed; where it fails it must find its
// outputs untouched and say so with an expectation of its own.
void expect_allocation_faults_survived(const std::function<uint32_t()> &call,
                                       uint32_t documented = 100);

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

// Looks into every block that is freed in its scope for a secret that should have been wiped.
class FreedSecret {
  public:
    explicit FreedSecret(std::span<const uint8_t> secret);
    ~FreedSecret();
    FreedSecret(const FreedSecret &) = delete;
    FreedSecret &operator=(const FreedSecret &) = delete;

    bool found() const;
};

}  // namespace za::test
