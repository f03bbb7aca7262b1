// From DER to the certificate context. What is kept are views of octets that the context keeps, so
// the elements handed in must be octets of Certificate::keep.
#pragma once

#include "asn1/za_asn2_reader.hpp"
#include "cert/za_cert_context.hpp"
#include "cert/za_cert_part_decode.hpp"

namespace za::cert {

// ZACert_DecodeCert: the certificate at the start of `in`, which may hold more behind it.
Status decode_certificate(Certificate &cert, Bytes in);

Status decode_tbs(Certificate &cert, const asn1::Element &tbs);  // ZI_Cert_DecodeTBS

// ZI_Cert_DecodeExtensions: the extensions inside their context tag.
Status decode_extensions(Certificate &cert, const asn1::Element &wrapper);

// The next field of a structure that must have one.
Status take_field(asn1::Children &fields, asn1::Element &out);

// One extension: the elements of its SEQUENCE.
using ExtensionDecoder = Status (*)(Certificate &cert, asn1::Children elements);

Status decode_basic_constraints(Certificate &cert, asn1::Children elements);
Status decode_authority_key_identifier(Certificate &cert, asn1::Children elements);
Status decode_subject_key_identifier(Certificate &cert, asn1::Children elements);
Status decode_key_usage(Certificate &cert, asn1::Children elements);
Status decode_extended_key_usage(Certificate &cert, asn1::Children elements);
Status decode_distribution_points(Certificate &cert, asn1::Children elements);
Status decode_subject_alternative_name(Certificate &cert, asn1::Children elements);
Status decode_issuer_alternative_name(Certificate &cert, asn1::Children elements);
Status decode_private(Certificate &cert, asn1::Children elements);

}  // namespace za::cert
