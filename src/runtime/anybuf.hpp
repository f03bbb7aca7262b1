// The buffer record: bodies of its functions, and the owner of a chain of records.
#pragma once

#include <zacert.h>

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

#include <utility>

namespace za {

void clear(Anybuf &record);
void copy(Anybuf &dst, const Anybuf &src);
Status set_value(Anybuf &record, Bytes bytes);

// Owns a chain of records of the library's heap and knows its tail.
class Chain {
  public:
    Chain() = default;
    Chain(Chain &&other) noexcept { swap(other); }
    Chain &operator=(Chain &&other) noexcept {
        swap(other);
        return *this;
    }
    Chain(const Chain &) = delete;
    Chain &operator=(const Chain &) = delete;
    ~Chain();

    // Takes over one record without neighbours.
    void append(Anybuf *record);
    void append(Chain &&rest);

    bool empty() const { return head_ == nullptr; }
    const Anybuf *head() const { return head_; }
    Anybuf *head() { return head_; }

    // Only in the last statement before success.
    Anybuf *release() {
        tail_ = nullptr;
        return std::exchange(head_, nullptr);
    }

    void swap(Chain &other) noexcept {
        std::swap(head_, other.head_);
        std::swap(tail_, other.tail_);
    }

  private:
    Anybuf *head_ = nullptr;
    Anybuf *tail_ = nullptr;
};

}  // namespace za
