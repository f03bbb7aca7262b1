// Secret keys that sender and recipient share.
#pragma once

#include "base/arguments.hpp"
#include "base/secret.hpp"

#include <string>

namespace tool {

struct SecretKeyOptions {
    std::string digits;
    std::string file;

    bool given() const { return !digits.empty() || !file.empty(); }
};

void add_secret_key_options(Arguments &command, SecretKeyOptions &options);

// Throws Failure.
Secret secret_key(const SecretKeyOptions &options);

}  // namespace tool
