// A 32-bit number handed out in a block of its own, as some exported functions do.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

namespace za::asn1 {

class Cell {
  public:
    Status set(uint32_t value) {
        const auto *octets = reinterpret_cast<const uint8_t *>(&value);
        return block_.assign(Bytes(octets, sizeof value));
    }
    uint32_t *release() { return reinterpret_cast<uint32_t *>(block_.release()); }

  private:
    Octets block_;
};

}  // namespace za::asn1
