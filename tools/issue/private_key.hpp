// Private keys in files: PKCS#8 in PEM.
#pragma once

#include "base/evp.hpp"
#include "base/password.hpp"
#include "base/secret.hpp"

#include <string>

namespace tool {

// "rsa-2048", "p256", "sm2" ... Throws Failure.
EvpKey generate_key(const std::string &type);

// The file's octets; encrypted with AES-256-CBC (PBES2, RFC 8018) under a password.
Secret pem_of_key(EVP_PKEY &key, const Secret *password);

// PEM in any of OpenSSL's forms, or DER. An encrypted one takes the password of the source, or asks.
EvpKey read_private_key(const std::string &path, const PasswordSource &source);

// PrivateKeyInfo (RFC 5208), not encrypted.
Secret der_of_key(EVP_PKEY &key);

// A key on SM2 or P-256 as a zacert_gm_key.
Secret gm_key_of(EVP_PKEY &key);

// SubjectPublicKeyInfo.
Octets public_key_of(EVP_PKEY &key);

}  // namespace tool
