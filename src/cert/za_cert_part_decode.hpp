// Reading what certificates, CRLs and requests have in common. What is kept are views: the elements
// handed in must be octets that the context keeps.
#pragma once

#include "asn1/za_asn2_reader.hpp"
#include "cert/za_cert_parts.hpp"
#include "runtime/trace.hpp"

namespace za::cert {

// Whose lines a failure writes, and the code of an object that ends before a field it must have.
struct Walk {
    const TraceSource &trace;
    Status missing;
};

// The next field of a structure that must have one.
Status take_field(const Walk &walk, asn1::Children &fields, asn1::Element &out);

Status decode_algorithm(const Walk &walk, asn1::Children fields, Field &out);
Status decode_name(const Walk &walk, const asn1::Element &name, Name &out);
Status decode_time(const Walk &walk, const asn1::Element &time, Time &out);
Status decode_public_key(const Walk &walk, const asn1::Element &info, PublicKey &out);

// ---- Extensions

struct Extension {
    Bytes oid;
    uint8_t critical = 0;
    Bytes value;
};

// The elements of one extension's SEQUENCE.
Status open_extension(const Walk &walk, asn1::Children elements, Extension &out);

// The first child with a context tag, opened; nothing is found where there is none.
Status find_implicit(const Walk &walk, asn1::Children children, uint32_t type, bool &found,
                     asn1::Implicit &out);

// The first URI of a structure that begins with a DistributionPointName.
Status find_uri(const Walk &walk, const asn1::Element &point, bool &found, Bytes &out);

}  // namespace za::cert
