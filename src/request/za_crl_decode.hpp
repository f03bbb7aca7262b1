// From DER to the CRL context. What is kept are views of octets that the context keeps, so the
// elements handed in must be octets of Crl::kept.
#pragma once

#include "asn1/za_asn2_reader.hpp"
#include "request/za_crl_context.hpp"

namespace za::request {

// ZACert_DecodeCrl: the CRL at the start of `in`, which may hold more behind it.
Status decode_crl(Crl &crl, Bytes in);

// setCRL2Context: keeps that CRL without reading it.
Status keep_crl(Crl &crl, Bytes in);

Status decode_crl_tbs(Crl &crl, const asn1::Element &tbs);  // ZI_CRL_DecodeTBS

// ZI_Crl_DecodeExtensions: the extensions inside their context tag.
Status decode_crl_extensions(Crl &crl, const asn1::Element &wrapper);

}  // namespace za::request
