// The certificate of the CA that issues what a context stands for.
#pragma once

#include "cert/za_cert_context.hpp"
#include "runtime/trace.hpp"

namespace za::cert {

// Refuses a subject that the buffers of callers would not hold.
Status decode_ca(const TraceSource &trace, const uint8_t *der, uint32_t der_len, Certificate &out);

}  // namespace za::cert
