// Functions of the caller's: each has a slot with its parameter block, and one way to be called.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/trace.hpp"

namespace za {

template <class Function>
class Slot {
  public:
    // Replaces function and block, so that the block of one function never reaches the next one.
    // Octets that are NULL, or a length of 0, leave no block.
    Status install(const TraceSource &trace, Function function, const uint8_t *block,
                   uint32_t block_len) {
        if (block != nullptr && block_len > INT32_MAX) {
            return trace.fail(Status::length);
        }
        Secret fresh;
        ZA_PASS(fresh.assign(block == nullptr ? Bytes{} : Bytes(block, block_len)));
        function_ = function;
        block_ = std::move(fresh);
        return Status::ok;
    }

    // The same function with a copy of its block.
    Status copy(const Slot &other) {
        ZA_PASS(block_.assign(other.block_.bytes()));
        function_ = other.function_;
        return Status::ok;
    }

    bool installed() const { return function_ != nullptr; }

    // `run` gets the function and a copy of the block that the function may change; NULL where
    // there is no block.
    template <class Run>
    Status call(const Run &run) const {
        Secret copy;
        ZA_PASS(copy.assign(block_.bytes()));
        return static_cast<Status>(run(function_, static_cast<void *>(copy.value.data())));
    }

  private:
    Function function_ = nullptr;
    Secret block_;
};

using CryptSlot = Slot<ZA_CryptFunc>;

// Runs an installed function over `in`, with room for `room` octets; the code of one that claims
// more is `too_long`. What the function returns is passed on without a line: each caller has its
// own.
Status call(const TraceSource &trace, const CryptSlot &slot, Bytes in, size_t room, Status too_long,
            Secret &out);

}  // namespace za
