// The CRL context: one record for both directions, filled by setters or by decoding.
#pragma once

#include "cert/za_cert_parts.hpp"
#include "cert/za_cert_signer.hpp"

namespace za::request {

struct Crl {
    cert::Kept kept;

    Field whole;
    Field tbs;
    Field outer_algorithm;
    Field signature;
    Field inner_algorithm;
    cert::Name issuer;

    cert::Signer signer;
};

}  // namespace za::request
