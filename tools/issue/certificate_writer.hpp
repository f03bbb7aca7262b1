// The library's context for a certificate that is to be issued.
#pragma once

#include <zacert.h>

#include "issue/signer.hpp"

#include <memory>

namespace tool {

class CertificateWriter {
  public:
    CertificateWriter();                  // without an issuer
    explicit CertificateWriter(View ca);  // issued by a CA, whose certificate is given in DER

    void set(int32_t type, View value);
    void set_octet(int32_t type, uint8_t value) { set(type, View(&value, 1)); }
    void set_number(int32_t type, int32_t value);
    void add_extension(const std::string &oid, View value);
    void add_identity(ZA_GbType type, const void *value, size_t size);

    Octets encoded(Signer &signer);

  private:
    struct Destroy {
        void operator()(void *context) const { ZACert_DestroyCertEncodeCtx(context); }
    };
    std::unique_ptr<void, Destroy> context_;
};

}  // namespace tool
