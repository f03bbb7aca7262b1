// AlgorithmIdentifier ::= SEQUENCE { algorithm OBJECT IDENTIFIER, parameters ANY OPTIONAL }
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "asn1/za_asn2_reader.hpp"
#include "runtime/status.hpp"

namespace za::names {

// With NULL for parameters, which is what every algorithm gets that has none, those of elliptic
// curves too.
void write_algorithm(Bytes oid, asn1::Builder &out);

// With parameters that are a whole element.
void write_algorithm(Bytes oid, Bytes parameters, asn1::Builder &out);

// With these parameters, or with NULL where there are none.
void write_algorithm_or_null(Bytes oid, Bytes parameters, asn1::Builder &out);

// Content octets of the identifier, and the parameters as they stand: empty where there are none.
Status read_algorithm(const asn1::Element &in, Bytes &oid, Bytes &parameters);

}  // namespace za::names
