// From DER to the request context. What is kept are views of octets that the context keeps, so the
// elements handed in must be octets of Csr::kept.
#pragma once

#include "asn1/za_asn2_reader.hpp"
#include "request/za_csr_context.hpp"

namespace za::request {

// ZACert_DecodeCsr: the request at the start of `in`, which may hold more behind it.
Status decode_csr(Csr &csr, Bytes in);

Status decode_info(Csr &csr, const asn1::Element &info);              // ZI_CSR_DecodeTBS
Status decode_attributes(Csr &csr, const asn1::Element &attributes);  // ZI_CSR_DecodeAttributes

}  // namespace za::request
