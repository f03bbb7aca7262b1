// The CRL context: one record for both directions, filled by setters or by decoding.
#pragma once

#include "cert/za_cert_parts.hpp"
#include "cert/za_cert_signer.hpp"
#include "request/za_crl_entries.hpp"

namespace za::request {

struct CrlExtension {
    cert::ExtensionState state;
    Field value;
};

struct Crl {
    cert::Kept kept;

    Field whole;
    Field tbs;
    Field outer_algorithm;
    Field signature;
    uint32_t version = 0;
    Field inner_algorithm;
    cert::Name issuer;
    cert::Time this_update;
    bool has_next_update = false;
    cert::Time next_update;
    RevokedList revoked;

    CrlExtension crl_number;
    CrlExtension delta_indicator;
    CrlExtension authority_key_identifier;
    CrlExtension distribution_point;

    cert::Signer signer;
};

}  // namespace za::request
