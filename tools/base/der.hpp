// The library's DER readers with exceptions for failures and records that release themselves.
#pragma once

#include <zacert.h>

#include "base/failure.hpp"
#include "base/octets.hpp"

#include <cstddef>
#include <iterator>
#include <memory>
#include <string>

namespace tool {

// Identifier octets.
constexpr uint8_t primitive(unsigned n) {
    return static_cast<uint8_t>(0x80 | n);
}
constexpr uint8_t constructed(unsigned n) {
    return static_cast<uint8_t>(0xA0 | n);
}

// Elements handed out by the library, in their order.
class Chain {
  public:
    class Iterator {
      public:
        explicit Iterator(const Anybuf *at) : at_(at) {}
        const Anybuf &operator*() const { return *at_; }
        Iterator &operator++() {
            at_ = at_->next;
            return *this;
        }
        bool operator==(const Iterator &) const = default;

      private:
        const Anybuf *at_;
    };

    explicit Chain(Anybuf *first) : first_(first) {}

    Iterator begin() const { return Iterator(first_.get()); }
    Iterator end() const { return Iterator(nullptr); }

  private:
    struct Release {
        void operator()(Anybuf *first) const { ZI_FreeAnybuf(first); }
    };
    std::unique_ptr<Anybuf, Release> first_;
};

// The elements of a SEQUENCE, taken one after the other.
class Fields {
  public:
    explicit Fields(Chain chain) : chain_(std::move(chain)), at_(chain_.begin()) {}

    bool at_end() const { return at_ == chain_.end(); }
    const Anybuf &next();                        // throws at the end
    const Anybuf &required(uint8_t identifier);  // throws when the next one is another
    const Anybuf *optional(uint8_t identifier);  // nullptr when the next one is another

  private:
    Chain chain_;
    Chain::Iterator at_;
};

// A record that borrows the octets of one whole element.
Anybuf record_of(View element);

View octets_of(const Anybuf &element);
uint8_t identifier_of(const Anybuf &element);  // 0 for no octets

// A record that is one whole element of the identifier given.
const Anybuf &expect(const Anybuf &element, uint8_t identifier);

Chain sequence(const Anybuf &element);
Chain set_of(const Anybuf &element);
Chain tagged(const Anybuf &element);    // children of a constructed context tag
Octets content(const Anybuf &element);  // whatever the tag

std::string object_id(const Anybuf &element);  // dotted
std::string object_id_text(View content);
bool boolean(const Anybuf &element);
uint64_t number(View integer_content);  // throws when negative or above 64 bits
Octets bits(View bit_string_content);   // without the octet of unused bits

// Asks a getter for the length and then for the octets.
template <class Getter>
Octets fetched(const Getter &getter) {
    uint32_t length = 0;
    check(getter(nullptr, &length));
    Octets octets(length);
    if (length > 0) {
        check(getter(octets.data(), &length));
        octets.resize(length);
    }
    return octets;
}

}  // namespace tool
