// Whoever signs: a key file or a key of a token, behind the library's signing callback.
#pragma once

#include <zacert.h>

#include "base/arguments.hpp"
#include "base/password.hpp"
#include "base/secret.hpp"
#include "objects/subject_key.hpp"

#include <memory>
#include <string>

namespace tool {

struct KeyOptions {
    std::string file;
    std::string uri;
    PasswordSource password;
};

// `option` names the file, such as "--ca-key"; "--pkcs11" stands beside it.
void add_key_options(Arguments &command, const std::string &option, KeyOptions &options);

// The URI where the key is on a token; empty where it is in a file.
std::string token_uri(const KeyOptions &options);

struct Signer {
    ZACertSignFunc function = nullptr;
    Secret context;               // handed to the function
    std::shared_ptr<void> owner;  // of what the context points to, if anything
    SubjectKey key;
    Octets algorithm;  // of the signatures: content octets of its object identifier

    int32_t context_length() const { return static_cast<int32_t>(context.size()); }
};

// Throws Failure.
Signer open_signer(const KeyOptions &options);

// The signature of octets, outside of the library's contexts.
Octets signature_of(Signer &signer, View octets);

}  // namespace tool
