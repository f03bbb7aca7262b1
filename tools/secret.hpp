// Octets that must not be found in memory later: passwords, and records of private keys.
#pragma once

#include "octets.hpp"

#include <openssl/crypto.h>
#include <utility>

namespace tool {

// Of a size that never changes, since a vector that grows leaves its old octets behind.
class Secret {
  public:
    Secret() = default;
    explicit Secret(size_t size) : octets_(size) {}
    explicit Secret(View octets) : octets_(octets.begin(), octets.end()) {}
    Secret(Secret &&other) noexcept { octets_.swap(other.octets_); }
    Secret &operator=(Secret &&other) noexcept {
        octets_.swap(other.octets_);
        return *this;
    }
    ~Secret() { OPENSSL_cleanse(octets_.data(), octets_.size()); }

    uint8_t *data() { return octets_.data(); }
    size_t size() const { return octets_.size(); }
    View view() const { return octets_; }
    const char *text() const { return reinterpret_cast<const char *>(octets_.data()); }

  private:
    Octets octets_;
};

}  // namespace tool
