// The library's certificate context as a value.
#pragma once

#include <zacert.h>

#include "octets.hpp"

#include <memory>
#include <string>
#include <vector>

namespace tool {

struct RawExtension {
    std::string oid;
    bool critical = false;
    Octets octets;  // content of the OCTET STRING
};

class Context {
public:
    // The octets must be the whole certificate that their header announces.
    explicit Context(View der);

    Octets octets(ZA_CertAttribute type) const;
    uint32_t number(ZA_CertAttribute type) const;

    // The extensions without an attribute of their own.
    std::vector<RawExtension> private_extensions() const;

private:
    RawExtension private_extension(uint32_t index) const;

    struct Destroy {
        void operator()(void *context) const { ZACert_DestroyCertDecodeCtx(context); }
    };
    std::unique_ptr<void, Destroy> context_;
};

}  // namespace tool
