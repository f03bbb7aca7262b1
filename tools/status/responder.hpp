// Which certificates are a CA's, and who may answer for them.
#pragma once

#include "check/path.hpp"
#include "objects/ocsp.hpp"

#include <memory>
#include <string>

namespace tool {

using SharedCertificate = std::shared_ptr<const LoadedCertificate>;

SharedCertificate load_shared(const std::string &path);

// Throws Failure unless the CA issued the certificate, under a serial number that is not negative.
LoadedCertificate load_issued(const std::string &path, const LoadedCertificate &ca);

// Whether the hashes are those of the CA's key and of this name, which is the CA's as certificates
// have it. Not for digests that are not known here or that others can forge.
bool is_of_issuer(const CertificateId &id, View name, const LoadedCertificate &ca);

// A line for each check: the CA itself may answer, and whoever has a certificate for that, issued
// by the CA itself (RFC 6960, 4.2.2.2).
void check_responder(const SharedCertificate &ca, const LoadedCertificate &responder,
                     const When &when, Report &report);

}  // namespace tool
