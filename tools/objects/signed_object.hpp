// The parts of certificates, CRLs and requests that signatures are about.
#pragma once

#include "base/octets.hpp"

#include <string>

namespace tool {

// What the three have in common: SEQUENCE { signed part, signatureAlgorithm, signature }.
struct SignedObject {
    View signed_part;  // the whole element
    View algorithm;    // the whole AlgorithmIdentifier
    std::string algorithm_id;
    View signature;
};

// The views are into `der`, which fills exactly one element. Throws LibraryError.
SignedObject signed_object(View der);

struct CertificateParts {
    View serial;     // content of the INTEGER
    View algorithm;  // inside the signed part
    View issuer;     // whole elements, as those below
    View subject;
    View key;
};

CertificateParts certificate_parts(View der);

struct CrlParts {
    View algorithm;
    View issuer;
};

CrlParts crl_parts(View der);

struct RequestParts {
    View subject;
    View key;
};

RequestParts request_parts(View der);

}  // namespace tool
