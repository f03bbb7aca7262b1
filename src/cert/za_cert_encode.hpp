// From the certificate context to DER. Names keep the string types that were chosen for them, which
// is why writing takes a context that it may change.
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "cert/za_cert_context.hpp"

namespace za::cert {

// ZACert_EncodeCert: Certificate::whole is there afterwards; one that was there before stays.
Status encode_certificate(Certificate &cert);

Status write_validity(const Certificate &cert, asn1::Builder &out);  // ZI_Cert_EncodeValidity

// ZI_Cert_EncodeExtensions: the extensions inside their context tag, or nothing at all.
Status write_extensions(Certificate &cert, asn1::Builder &out);

// One extension of ZI_Cert_EncodeExtension_Private.
Status write_private(const PrivateExtension &extension, asn1::Builder &out);

// ZI_CERT_EncodeDiscriptList
Status write_access_descriptions(const List<AccessDescription> &list, asn1::Builder &out);

}  // namespace za::cert
