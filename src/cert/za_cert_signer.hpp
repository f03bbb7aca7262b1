// The signing callback of a context, and how its two calls go.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/trace.hpp"

namespace za::cert {

class Signer {
  public:
    // Takes any function, NULL too. Key octets are copied where there are some; else those of an
    // earlier call stay.
    Status install(const TraceSource &trace, ZACertSignFunc function, const uint8_t *key,
                   int32_t key_len);

    // Certificates: the first call gets no key and its answer is not used; the second gets room for
    // 512 octets, though what it reports is believed up to 10240.
    Status sign_certificate(const TraceSource &trace, Bytes tbs, Octets &out) const;

    // CRLs and requests: the first call tells how much room the second gets.
    Status sign_list(const TraceSource &trace, Bytes tbs, Octets &out) const;

  private:
    Status call(const TraceSource &trace, Bytes tbs, uint8_t *out, uint32_t &len,
                const uint8_t *key) const;

    ZACertSignFunc function_ = nullptr;
    Wiped<Octets> key_;
};

}  // namespace za::cert
