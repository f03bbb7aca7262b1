// Characters, and the two Unicode forms that DER knows. They are read and written here and not by
// iconv, because iconv does not tell "invalid" from "cannot be represented".
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

#include <cstddef>
#include <span>

namespace za::names {

constexpr bool is_surrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

// The characters of a text up to the first octets that are invalid in its form. That there are such
// octets is only noted here: a character before them may fail to be written, and decides then.
class Characters {
  public:
    Status allocate(size_t most) { return block_.allocate(most * sizeof(char32_t)); }

    void add(char32_t c) { data()[size_++] = c; }
    void stop_at_invalid() { invalid_ = true; }

    // For a converter that fills the area itself.
    std::span<uint8_t> area() { return block_.span(); }
    void set_size(size_t size) { size_ = size; }

    std::span<const char32_t> view() const {
        return {reinterpret_cast<const char32_t *>(block_.bytes().data()), size_};
    }
    bool invalid() const { return invalid_; }

  private:
    char32_t *data() { return reinterpret_cast<char32_t *>(block_.data()); }

    Octets block_;
    size_t size_ = 0;
    bool invalid_ = false;
};

// Big-endian; U+FEFF is skipped and U+FFFE switches the byte order for the rest.
Status read_ucs2(Bytes in, Characters &out);
Status write_ucs2(const Characters &in, Octets &out);

// One to six octets per character (RFC 2279), each only in its shortest form.
Status read_utf8(Bytes in, Characters &out);
Status write_utf8(const Characters &in, Octets &out);

}  // namespace za::names
