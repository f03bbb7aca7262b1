// Revocation by CRLs (RFC 5280, 6.3).
#pragma once

#include "check/path.hpp"

#include <deque>
#include <optional>

namespace tool {

struct LoadedCrl {
    Octets der;
    CrlParts parts;  // into `der`, as the facts
    Crl facts;

    explicit LoadedCrl(Octets octets);
    LoadedCrl(const LoadedCrl &) = delete;
    LoadedCrl &operator=(const LoadedCrl &) = delete;
};

// Of a CRL: signature, dates, extensions, and whether its issuer may sign it.
void check_crl(const LoadedCrl &crl, const LoadedCertificate &issuer, const When &when,
               Report &report);

// What one CRL says of a serial number; nothing where it is silent. Fails for entries that this
// program does not understand.
std::optional<RevokedEntry> entry_of(const LoadedCrl &crl, const Integer &serial, Report &report);

// Looks each certificate of the path, except the trusted one, up in the CRLs of its issuer. The
// first must be covered; of others a note says when they are not.
void check_revocation(const Path &path, const std::deque<LoadedCrl> &crls, const When &when,
                      Report &report);

}  // namespace tool
