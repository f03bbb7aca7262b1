// Writing what certificates, CRLs and requests have in common.
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "cert/za_cert_parts.hpp"
#include "runtime/trace.hpp"

namespace za::cert {

// Exactly one form must be there, else 108: DER, which is inserted as it stands, or entries.
// `string_types` is a table of 256 octets, or NULL.
Status write_name(const TraceSource &trace, Name &name, const uint8_t *string_types,
                  asn1::Builder &out);

// The entries, whether there are any or not.
Status write_entries(const TraceSource &trace, Name &name, const uint8_t *string_types,
                     asn1::Builder &out);

Status write_time(const TraceSource &trace, const Time &time, asn1::Builder &out);
Status write_public_key(const TraceSource &trace, const PublicKey &key, asn1::Builder &out);

// The whole object: what was signed, the algorithm and the signature.
Status write_signed(Bytes tbs, Bytes algorithm, Bytes signature, Octets &out);

}  // namespace za::cert
