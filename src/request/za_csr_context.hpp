// The request context: one record for both directions, filled by setters or by decoding.
#pragma once

#include "cert/za_cert_parts.hpp"
#include "cert/za_cert_signer.hpp"
#include "runtime/list.hpp"

namespace za::request {

struct RequestAttribute {
    Field oid;
    Field value;  // content of an OCTET STRING, or the whole element of any other type
};

struct Csr {
    cert::Kept kept;

    Field whole;
    Field tbs;
    Field outer_algorithm;
    Field signature;
    uint32_t version = 0;
    cert::Name subject;
    cert::PublicKey key;
    List<RequestAttribute> attributes;

    cert::Signer signer;
};

}  // namespace za::request
