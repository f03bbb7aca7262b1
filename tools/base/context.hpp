// The library's contexts as values.
#pragma once

#include <zacert.h>

#include "base/failure.hpp"
#include "base/octets.hpp"

#include <memory>
#include <string>
#include <vector>

namespace tool {

// A context that has decoded one object and destroys itself. The octets must be the whole object that
// their header announces.
template <auto kCreate, auto kDecode, auto kDestroy>
class Decoded {
  public:
    explicit Decoded(View der) {
        void *context = nullptr;
        check(kCreate(&context));
        context_.reset(context);
        check(kDecode(context, der.data(), static_cast<uint32_t>(der.size())));
    }

    void *get() const { return context_.get(); }

  private:
    struct Destroy {
        void operator()(void *context) const { kDestroy(context); }
    };
    std::unique_ptr<void, Destroy> context_;
};

struct RawExtension {
    std::string oid;
    bool critical = false;
    Octets octets;  // content of the OCTET STRING
};

// Of a certificate.
class Context {
  public:
    explicit Context(View der) : context_(der) {}

    Octets octets(ZA_CertAttribute type) const;
    uint32_t number(ZA_CertAttribute type) const;

    // The extensions without an attribute of their own.
    std::vector<RawExtension> private_extensions() const;

  private:
    RawExtension private_extension(uint32_t index) const;

    Decoded<ZACert_CreateCertDecodeCtx, ZACert_DecodeCert, ZACert_DestroyCertDecodeCtx> context_;
};

}  // namespace tool
