// DER elements where they stand. The library's readers copy every element and trace every call, which
// a list of a million entries cannot afford.
#pragma once

#include "base/octets.hpp"

#include <cstddef>
#include <optional>

namespace tool {

struct Element {
    uint8_t identifier = 0;
    View whole;
    View content;
};

// What the first octets of an element announce, whether or not the rest is there.
struct Header {
    uint8_t identifier = 0;
    size_t length = 0;  // of the header itself
    size_t content_length = 0;
};

// Nothing for tags of more than one octet, indefinite lengths and lengths above 32 bits.
std::optional<Header> header_of(View octets);

// A SEQUENCE that ends where its content says so, as BER has it (X.690, 8.1.3.6).
bool has_indefinite_length(View sequence);

// Elements one after the other. Throws LibraryError for what is no element and at the end.
class Elements {
  public:
    explicit Elements(View octets) : rest_(octets) {}

    bool at_end() const { return rest_.empty(); }
    uint8_t identifier() const { return rest_.empty() ? uint8_t{0} : rest_.front(); }
    Element next();
    Element required(uint8_t identifier);
    std::optional<Element> optional(uint8_t identifier);

  private:
    View rest_;
};

// The one element that fills the octets.
Element only_element(View octets, uint8_t identifier);

}  // namespace tool
