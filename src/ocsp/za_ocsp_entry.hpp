// What entries of requests and of responses have in common: the certificate they are about.
//
//   CertID ::= SEQUENCE { hashAlgorithm AlgorithmIdentifier, issuerNameHash OCTET STRING,
//       issuerKeyHash OCTET STRING, serialNumber INTEGER }
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "asn1/za_asn2_fields.hpp"
#include "ocsp/za_ocsp_frames.hpp"
#include "runtime/field.hpp"

namespace za::ocsp {

struct CertId {
    Octets kept;  // what was decoded
    Field issuer_name;
    Field issuer_key;
    Field algorithm;
    Field parameter;  // DER
    Field name_hash;
    Field key_hash;
    Field serial;
    Field whole;  // DER; nothing is hashed then
    CryptSlot hash;
};

// The lines of those who hash.
struct HashTexts {
    const char *missing;
    const char *failed;
};

Status write_cert_id(const TraceSource &trace, const HashTexts &texts, CertId &id,
                     asn1::Builder &out);

// Views of `in`.
Status read_cert_id(const TraceSource &trace, const asn1::Element &in, CertId &out);

constexpr const char *kInvalidAttribute = "------------>OCSPAttributeType is Invalid Item";

// The members of the certificate in a context, as rows have them.
template <class Context, auto member>
Status set_in_id(Context &context, const AttributeRow<Context> &, Bytes value) {
    return (context.id.*member).assign(value);
}

template <class Context, auto member>
Status get_in_id(Context &context, const AttributeRow<Context> &, Bytes &out) {
    out = (context.id.*member).bytes();
    return Status::ok;
}

template <class Context>
CryptSlot &hash_in_id(Context &context) {
    return context.id.hash;
}

}  // namespace za::ocsp
