// Whether one signer of a message signed its content, and who that is.
#pragma once

#include "check/path_options.hpp"
#include "objects/pkcs7.hpp"

#include <optional>

namespace tool {

struct SignedContent {
    NamedId type;
    View octets;  // of data what is inside its OCTET STRING, of other types the whole element
    bool inside = true;
};

// Where certificates of signers may come from.
struct SignerCertificates {
    Certificates given;
    Certificates in_message;
};

struct SignerOutcome {
    std::shared_ptr<const LoadedCertificate> certificate;  // of whom the signature is; may be none
    View covered;                                          // of the content, where it is signed
};

// One line for each check but those of the certificate's path. `context` is the library's signer, and
// `signer` what it says. `number` counts from 1.
SignerOutcome check_signer(size_t number, const MessageSigner &signer, void *context,
                           const SignedContent &content, const SignerCertificates &certificates,
                           Report &report);

}  // namespace tool
