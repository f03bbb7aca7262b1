// What the parts of a message and the messages themselves have in common.
#pragma once

#include "runtime/context.hpp"
#include "runtime/field.hpp"
#include "runtime/list.hpp"

namespace za::pkcs7 {

// The arrow of this family's lines that name a code.
constexpr std::string_view kArrow = "------";

// Lengths that are negative for callers who count in signed numbers stand for no octets.
inline bool has_octets(const uint8_t *octets, uint32_t len) {
    return octets != nullptr && len >= 1 && len <= INT32_MAX;
}

inline Bytes octets_or_none(const uint8_t *octets, uint32_t len) {
    return has_octets(octets, len) ? Bytes(octets, len) : Bytes{};
}

// Parts that a message owns: attached by their handle, destroyed with the message. T has a member
// `attached`.
template <class T>
class Attached {
  public:
    Attached() = default;
    Attached(Attached &&) noexcept = default;
    Attached &operator=(Attached &&) noexcept = default;
    ~Attached() {
        for (T *part : parts_) {
            destroy_in_heap(part);
        }
    }

    // 121: the part belongs to a message already.
    Status attach(const TraceSource &trace, T *part) {
        if (part->attached) {
            return trace.fail(Status::invalid_item);
        }
        ZA_PASS(parts_.append(trace, std::move(part)));
        part->attached = true;
        return Status::ok;
    }

    // A new part, attached.
    Status add(const TraceSource &trace, T *&out) {
        T *part = make_in_heap<T>();
        if (part == nullptr) {
            return trace.fail(Status::memory);
        }
        const Status status = attach(trace, part);
        if (status != Status::ok) {
            destroy_in_heap(part);
            return status;
        }
        out = part;
        return Status::ok;
    }

    // Counted from 1; NULL where there is none.
    T *item(int32_t number) const {
        T *const *part = number < 1 ? nullptr : parts_.item(static_cast<size_t>(number));
        return part == nullptr ? nullptr : *part;
    }

    auto begin() const { return parts_.begin(); }
    auto end() const { return parts_.end(); }
    bool empty() const { return parts_.empty(); }
    size_t size() const { return parts_.size(); }

  private:
    List<T *> parts_;
};

// A part that belongs to a message goes with it and not before.
template <class T>
Status destroy_part(void *handle) {
    auto *part = static_cast<T *>(handle);
    if (part != nullptr && !part->attached) {
        destroy_in_heap(part);
    }
    return Status::ok;
}

// The encoding of a part, kept so that asking for its length and then for its octets signs or
// encrypts once. What was decoded is kept as it came, until something in it is set.
class KeptEncoding {
  public:
    bool empty() const { return octets_.empty(); }
    Bytes bytes() const { return octets_.bytes(); }
    bool was_decoded() const { return was_decoded_; }

    void made(Octets &&octets) {
        octets_.take(std::move(octets));
        was_decoded_ = false;
    }
    void decoded(Bytes kept) {
        octets_.refer(kept);
        was_decoded_ = true;
    }
    void forget() {
        octets_ = Field();
        was_decoded_ = false;
    }
    // For what matters to new encodings alone.
    void forget_made() {
        if (!was_decoded_) {
            forget();
        }
    }

  private:
    Field octets_;
    bool was_decoded_ = false;
};

}  // namespace za::pkcs7
