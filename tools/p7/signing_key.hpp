// Whoever signs a message, behind the callbacks of a SignerInfo.
#pragma once

#include <zacert.h>

#include "base/secret.hpp"
#include "issue/signer.hpp"
#include "objects/subject_key.hpp"
#include "p7/digests.hpp"

#include <memory>

namespace tool {

struct SigningKey {
    SubjectKey key;
    Octets digest_algorithm;     // content octets of the object identifiers
    Octets signature_algorithm;  // digestEncryptionAlgorithm
    ZA_CryptFunc digest = nullptr;
    Secret digest_context;
    ZA_CryptFunc sign = nullptr;
    Secret sign_context;
    std::shared_ptr<void> owner;  // of what the context points to, if anything

    Octets digest_of(View content) const;

    // Algorithms and callbacks.
    void install_in(void *signer_info) const;
};

// `digest` is nullptr where none was asked for. Throws Failure, also for keys that PKCS#7 has no
// place for here.
SigningKey open_signing_key(const KeyOptions &options, const MessageDigest *digest);

}  // namespace tool
