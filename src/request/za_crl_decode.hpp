// From DER to the CRL context.
#pragma once

#include "request/za_crl_context.hpp"

namespace za::request {

// ZACert_DecodeCrl: the CRL at the start of `in`, which may hold more behind it.
Status decode_crl(Crl &crl, Bytes in);

}  // namespace za::request
