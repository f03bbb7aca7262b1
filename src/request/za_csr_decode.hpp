// From DER to the request context.
#pragma once

#include "request/za_csr_context.hpp"

namespace za::request {

// ZACert_DecodeCsr: the request at the start of `in`, which may hold more behind it.
Status decode_csr(Csr &csr, Bytes in);

}  // namespace za::request
