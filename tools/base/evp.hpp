// Owners of libcrypto's objects.
#pragma once

#include <memory>
#include <openssl/evp.h>

namespace tool {

template <auto kFree>
struct Free {
    template <class T>
    void operator()(T *object) const {
        kFree(object);
    }
};

using EvpKey = std::unique_ptr<EVP_PKEY, Free<EVP_PKEY_free>>;
using EvpKeyContext = std::unique_ptr<EVP_PKEY_CTX, Free<EVP_PKEY_CTX_free>>;
using EvpCipher = std::unique_ptr<EVP_CIPHER_CTX, Free<EVP_CIPHER_CTX_free>>;
using EvpDigest = std::unique_ptr<EVP_MD_CTX, Free<EVP_MD_CTX_free>>;

}  // namespace tool
