// Private keys on tokens.
#pragma once

#include <zacert/pkcs11.h>

#include "base/octets.hpp"
#include "base/password.hpp"

#include <memory>
#include <string>

namespace tool {

// The key that the URI names, open until the last copy of the pointer goes. `digest` is the library's
// number, or 0 where what is signed was digested before. The PIN is that of the source, or asked for.
// Throws Failure.
std::shared_ptr<zacert_pkcs11_key> open_token_key(const std::string &uri,
                                                  const PasswordSource &password, int32_t digest);

// SubjectPublicKeyInfo.
Octets public_key_of(const zacert_pkcs11_key &key);

}  // namespace tool
