// The CA that signs: its certificate and whether it may.
#pragma once

#include "issue/signer.hpp"
#include "objects/loading.hpp"

#include <string>

namespace tool {

// Throws Failure unless the certificate is valid now, a CA's, may be used as `usage` says
// (keyCertSign, cRLSign), and has the signer's key.
void require_issuer(const std::string &path, const LoadedCertificate &ca, const Signer &signer,
                    std::string_view usage);

// How certificates and CRLs name the CA's key: by its own subject key identifier where it has one.
Octets authority_key_identifier(const LoadedCertificate &ca);

}  // namespace tool
