// A private key of a token: what kind it is, how it signs, how its public half is known.
#pragma once

#include "module.hpp"

#include <memory>
#include <mutex>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <optional>

namespace zacert_pkcs11 {

template <auto Free>
struct Release {
    template <class Object>
    void operator()(Object *object) const {
        Free(object);
    }
};
using PublicKey = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;

struct TokenKey {
    CK_OBJECT_HANDLE object = CK_INVALID_HANDLE;
    bool rsa = false;
    size_t most = 0;        // octets of the longest signature
    size_t coordinate = 0;  // octets of r and of s
    std::vector<CK_MECHANISM_TYPE> mechanisms;
};

// Kind, sizes and the token's mechanisms. 118: neither RSA nor a curve that libcrypto knows.
uint32_t describe(const Session &session, CK_OBJECT_HANDLE object, TokenKey &out);

// How a key signs what it is given with a digest selector.
struct Method {
    const EVP_MD *md = nullptr;  // made outside the token; NULL: nothing is
    Bytes prefix;                // what a DigestInfo has before the digest
    CK_MECHANISM_TYPE mechanism = 0;
};

// 118: unknown selector, or the token has no mechanism for it.
uint32_t choose_method(const TokenKey &key, int32_t digest, Method &out);

// What the token is given to sign. 101: longer than the key takes; 125.
uint32_t prepare(const TokenKey &key, const Method &method, Bytes in, std::vector<uint8_t> &out);

// SEQUENCE { r INTEGER, s INTEGER } of the two halves, one behind the other.
uint32_t to_der(Bytes halves, std::vector<uint8_t> &out);

// 113: none is there.
uint32_t read_public_key(const Session &session, const TokenKey &key, std::vector<uint8_t> &out);

// A key of these domain parameters alone, or NULL.
PublicKey curve_of(const std::vector<uint8_t> &parameters);

}  // namespace zacert_pkcs11

struct zacert_pkcs11_session {
    zacert_pkcs11::Session token;
    zacert_pkcs11::TokenKey key;
    // Kept for keys that ask for the PIN at each signature.
    bool asks_each_time = false;
    std::optional<zacert_pkcs11::Secret> pin;
    // A session of PKCS#11 has one operation at a time.
    std::mutex turn;
};
