// Octets that must not be found in memory later: passwords, and records of private keys.
#pragma once

#include "base/octets.hpp"

#include <openssl/crypto.h>
#include <string>
#include <string_view>
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

// A file, or standard input for "-", past the buffers that others keep. Throws Failure: `wanted` says
// what was to be found.
Secret read_secret(const std::string &path, size_t limit, std::string_view wanted);

}  // namespace tool
