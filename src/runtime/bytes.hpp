// Octets: views of them, blocks that own them, and the one place where a length is narrowed.
#pragma once

#include <zacert.h>

#include "runtime/status.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

namespace za {

using Bytes = std::span<const uint8_t>;

inline Bytes bytes_of(const Anybuf &record) {
    return record.data == nullptr ? Bytes{} : Bytes{record.data, record.dataLen};
}

inline Bytes bytes_of(std::string_view text) {
    return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

inline std::string_view text_of(Bytes bytes) {
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

inline bool equal(Bytes a, Bytes b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

// Copies `from` to the start of `to`, which is at least as long, and returns the place behind it.
inline uint8_t *put(uint8_t *to, Bytes from) {
    if (!from.empty()) {
        std::memcpy(to, from.data(), from.size());
    }
    return to + from.size();
}

constexpr bool fits_u32(uint64_t value) {
    return value <= std::numeric_limits<uint32_t>::max();
}

// For lengths whose bound was tested where they came from.
constexpr uint32_t to_u32(uint64_t value) {
    return fits_u32(value) ? static_cast<uint32_t>(value) : (__builtin_trap(), 0u);
}

// A block of the library's heap. Allocation failures leave it as it was.
class Octets {
  public:
    Octets() = default;
    Octets(Octets &&other) noexcept { swap(other); }
    Octets &operator=(Octets &&other) noexcept {
        swap(other);
        return *this;
    }
    Octets(const Octets &) = delete;
    Octets &operator=(const Octets &) = delete;
    ~Octets() {
        // Most fields of a context are empty when it goes: the call itself would be what costs.
        if (data_ != nullptr) {
            ZAPR_Free(data_);
        }
    }

    // Zero-filled; a size of 0 allocates nothing.
    Status allocate(size_t size);
    Status assign(Bytes bytes);

    uint8_t *data() { return data_; }
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    Bytes bytes() const { return {data_, size_}; }
    std::span<uint8_t> span() { return {data_, size_}; }
    void truncate(size_t size) { size_ = std::min(size_, size); }
    uint8_t *release() { return std::exchange(data_, nullptr); }

    void swap(Octets &other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
    }

  private:
    uint8_t *data_ = nullptr;
    size_t size_ = 0;
};

// The buffer contract of the interface: the length always, the octets when a buffer is given.
void hand_out(Bytes bytes, uint8_t *out, uint32_t *out_len);

// Overwrites a secret in a way the compiler cannot leave out.
void wipe(void *secret, size_t size) noexcept;

// A record on the stack that holds a secret and wipes it on every path.
template <class Record>
struct Wiped {
    static_assert(std::is_trivially_copyable_v<Record>);
    Record value{};
    Wiped() = default;
    Wiped(const Wiped &) = delete;
    Wiped &operator=(const Wiped &) = delete;
    ~Wiped() { wipe(&value, sizeof value); }
};

// A block that holds a secret: its octets are wiped before it is freed.
template <>
struct Wiped<Octets> {
    Octets value;
    Wiped() = default;
    Wiped(Wiped &&other) noexcept { value.swap(other.value); }
    Wiped &operator=(Wiped &&other) noexcept {
        value.swap(other.value);
        return *this;
    }
    Wiped(const Wiped &) = delete;
    Wiped &operator=(const Wiped &) = delete;
    ~Wiped() { wipe(value.data(), value.size()); }

    // A copy; on failure the old secret stays.
    Status assign(Bytes bytes) {
        Wiped fresh;
        const Status status = fresh.value.assign(bytes);
        if (status == Status::ok) {
            value.swap(fresh.value);
        }
        return status;
    }
    Bytes bytes() const { return value.bytes(); }
};

using Secret = Wiped<Octets>;

}  // namespace za
