// A certificate's selected fields without a context.
#pragma once

#include <zacert.h>

#include "asn1/za_asn2_reader.hpp"

namespace za::cert {

// UserCertParse: the certificate at the start of `in`, which may hold more behind it.
Status parse_fast(uint32_t mode, Bytes in, ZA_CERTINFO &info);

// ZI_Cert_DecodeTBS_ForSpead
Status parse_tbs_fast(uint32_t mode, const asn1::Element &tbs, ZA_CERTINFO &info);

}  // namespace za::cert
