// What can go wrong: input that is not what it should be, and results of the library.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tool {

// The meaning of a result code of the library.
std::string_view meaning(uint32_t code);

// A whole sentence for the user: "expected a certificate: no Base64".
class Failure : public std::runtime_error {
  public:
    using runtime_error::runtime_error;
};

// Arguments that make no sense together with what they name.
class UsageError : public Failure {
  public:
    using Failure::Failure;
};

// A function of the library failed; what() is the meaning with the code.
class LibraryError : public std::runtime_error {
  public:
    explicit LibraryError(uint32_t code);

    uint32_t code() const { return code_; }

  private:
    uint32_t code_;
};

inline void check(uint32_t status) {
    if (status != 0) {
        throw LibraryError(status);
    }
}

}  // namespace tool
