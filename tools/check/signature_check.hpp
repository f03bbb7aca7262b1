// Signatures of certificates, CRLs and requests. The library's verifiers check them where they take
// the key; beyond that the block an RSA signature opens to is compared whole, and other keys and
// algorithms are left to libcrypto.
#pragma once

#include "objects/signed_object.hpp"

#include <string>

namespace tool {

struct SignatureVerdict {
    bool good = false;
    std::string text;  // the algorithm and who verified it, or what is wrong
};

// What the library's verifier for certificates says of times holds for the present alone.
enum class Moment { present, other };

// Whole DER objects that are known to decode.
SignatureVerdict check_certificate_signature(View issuer, View certificate, Moment moment);
SignatureVerdict check_crl_signature(View issuer, View crl);
SignatureVerdict check_request_signature(View request);

// Of octets that are none of the three, by libcrypto; `key_info` is the signer's
// SubjectPublicKeyInfo.
SignatureVerdict check_octets_signature(View key_info, const SignedObject &object);

}  // namespace tool
