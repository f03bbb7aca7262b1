// Digests of messages.
#pragma once

#include "base/arguments.hpp"
#include "base/octets.hpp"

#include <cstdint>
#include <openssl/evp.h>
#include <string>
#include <string_view>

namespace tool {

enum class Trust {
    full,
    doubtful,  // who may choose the content can find two with one digest
    none,      // others can forge
};

struct MessageDigest {
    std::string_view name;  // of the option
    std::string_view id;
    std::string_view with_rsa;  // what may stand for RSA in the slot of the signature algorithm
    int32_t number;             // the library's; 0 where it has none
    const EVP_MD *(*function)();
    Trust trust;
};

// By the object identifier, among those that can be read; nullptr for others.
const MessageDigest *digest_of_id(std::string_view id);

// By the name, among those that are offered for new messages.
const MessageDigest &digest_named(std::string_view name);

Option add_digest_option(Arguments &command, std::string &name);

}  // namespace tool
