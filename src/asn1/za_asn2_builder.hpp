// Whole structures written front to back into one block. An allocation that fails is remembered and
// told by finish(): nothing in between has to ask.
#pragma once

#include "asn1/za_asn2_header.hpp"
#include "runtime/anybuf.hpp"
#include "runtime/bytes.hpp"
#include "runtime/trace.hpp"

#include <type_traits>

namespace za::asn1 {

class Builder {
  public:
    // With secret contents no octet stays in a block that is given back to the heap.
    enum class Contents : uint8_t { open, secret };

    explicit Builder(Contents contents = Contents::open) : contents_(contents) {}
    ~Builder() { clear(0); }
    Builder(const Builder &) = delete;
    Builder &operator=(const Builder &) = delete;

    // Makes room for so many octets in all, where the size is known ahead.
    void reserve(size_t size);

    // A whole element, or several, as they stand.
    void raw(Bytes octets);

    void element(uint8_t identifier, Bytes content);
    void integer(uint32_t value);
    void integer(Bytes magnitude);
    void boolean(bool value);
    void null();
    void object_id(Bytes content) { element(ZA_DER_ID_OBJECTID, content); }
    void octet_string(Bytes octets) { element(ZA_DER_ID_OCTETSTRING, octets); }
    void bit_string(Bytes bits, uint32_t unused_bits = 0);

    // Fails where the calendar cannot write the time.
    Status utc_time(int32_t time);          // ZAsn1_WriteUtcTime
    Status generalized_time(int32_t time);  // ZAsn1_WriteGeneralizedTime

    // `content` writes what stands inside; a Status it returns is passed on. Where the size of the
    // content is known about, telling it as `expected` spares moving the content.
    template <class Content>
    auto wrapped(uint8_t identifier, const Content &content, size_t expected = 0) {
        const Open open = begin(identifier, expected);
        if constexpr (std::is_void_v<decltype(content())>) {
            content();
            end(open);
        } else {
            const Status status = content();
            end(open);
            return status;
        }
    }

    template <class Content>
    auto sequence(const Content &content, size_t expected = 0) {
        return wrapped(ZA_DER_ID_SEQUENCE, content, expected);
    }

    size_t size() const { return size_; }

    // What was written so far; it moves with the next octet.
    Bytes bytes() const { return block_.bytes().first(size_); }

    // What finish() would tell, for those who use bytes() before or say which part failed.
    Status status() const { return status_; }

    Status finish(Octets &out);

    // The same as a record of the interface; nothing written appends none.
    Status finish(Chain &out);

  private:
    struct Open {
        size_t start;
        uint32_t header;
    };

    Open begin(uint8_t identifier, size_t expected);
    void end(const Open &open);

    // Wipes the block from here on where the contents are secret.
    void clear(size_t from) {
        if (contents_ == Contents::secret && block_.size() > from) {
            wipe(block_.data() + from, block_.size() - from);
        }
    }

    // A place for `size` more octets, or NULL.
    uint8_t *grow(size_t size);

    Octets block_;
    size_t size_ = 0;
    Contents contents_;
    Status status_ = Status::ok;
};

// Hands out what `write` writes as a record of the caller's; NULL where it writes nothing.
template <class Write>
Status hand_out_built(Anybuf **out, const Write &write) {
    Builder built;
    Chain record;
    ZA_PASS(write(built));
    ZA_PASS(built.finish(record));
    *out = record.release();
    return Status::ok;
}

}  // namespace za::asn1
