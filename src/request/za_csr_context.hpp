// The request context: one record for both directions, filled by setters or by decoding.
#pragma once

#include "cert/za_cert_parts.hpp"
#include "cert/za_cert_signer.hpp"

namespace za::request {

struct Csr {
    cert::Kept kept;

    Field whole;
    Field tbs;
    Field outer_algorithm;
    Field signature;
    cert::Name subject;
    cert::PublicKey key;

    cert::Signer signer;
};

}  // namespace za::request
