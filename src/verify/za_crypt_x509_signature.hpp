// Signatures of certificates, CRLs and requests: what is signed, and the two ways to check it.
#pragma once

#include <zacert.h>

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

namespace za::verify {

// Views of a decoded object.
struct Signed {
    Bytes tbs;
    Bytes algorithm;  // the one outside the signed part
    Bytes signature;
};

template <class Context>
Signed signed_part(const Context &context) {
    return {context.tbs.bytes(), context.outer_algorithm.bytes(), context.signature.bytes()};
}

// Both schemes take the issuer's key as attributes 54 and 2027 hold it.

// RSA inside the library.
struct Rsa {
    Status check(const Signed &object, Bytes key) const;
};

// What a key that cannot be decoded comes to: the decoder's code, or 1 and a line on standard
// output, by which callers know it where the object is a certificate.
enum class KeyFailure { code, line };

// An elliptic curve, by the caller's function.
struct Ecc {
    ZA_EccVerifyFunc function;
    KeyFailure key_failure;

    Status check(const Signed &object, Bytes key) const;
};

}  // namespace za::verify
