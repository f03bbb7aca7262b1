// Content keys that RSA carries to recipients (PKCS#1 v1.5), behind the callbacks of a
// RecipientInfo.
#pragma once

#include "base/evp.hpp"
#include "base/secret.hpp"

#include <string_view>

namespace tool {

constexpr std::string_view kRsaEncryption = "1.2.840.113549.1.1.1";

// Installs the encrypting callback. The key must live as long as the context is used.
void encrypt_key_in(void *recipient_info, EVP_PKEY &key);

// What came out of the encrypted key of one recipient.
struct OpenedKey {
    Secret key;         // of the wanted size, whatever it was
    bool good = false;  // else it is one made up
};

// `exact` is false where the encrypted key may well be another recipient's.
OpenedKey open_key(void *recipient_info, EVP_PKEY &key, Secret made_up, bool exact);

}  // namespace tool
