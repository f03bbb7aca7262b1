// Octets that must not stay in memory.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <openssl/crypto.h>
#include <span>

namespace zacert_pkcs11 {

using Bytes = std::span<const uint8_t>;

// A PIN: a field of its own, since a growing text would leave copies behind.
class Secret {
  public:
    static constexpr size_t kMost = 255;

    Secret() = default;
    Secret(const Secret &) = delete;
    Secret &operator=(const Secret &) = delete;
    ~Secret() { clear(); }

    void clear() {
        OPENSSL_cleanse(octets_.data(), octets_.size());
        len_ = 0;
    }
    bool push_back(uint8_t octet) {
        if (len_ == kMost) {
            return false;
        }
        octets_[len_++] = octet;
        return true;
    }
    bool assign(Bytes octets) {
        clear();
        return std::ranges::all_of(octets, [&](uint8_t octet) { return push_back(octet); });
    }
    void cut_line_end() {
        while (len_ > 0 && (octets_[len_ - 1] == '\n' || octets_[len_ - 1] == '\r')) {
            octets_[--len_] = 0;
        }
    }
    uint8_t *data() { return octets_.data(); }
    size_t size() const { return len_; }
    Bytes bytes() const { return {octets_.data(), len_}; }

  private:
    std::array<uint8_t, kMost> octets_{};
    size_t len_ = 0;
};

}  // namespace zacert_pkcs11
