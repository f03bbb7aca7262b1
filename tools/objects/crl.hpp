// What the tool knows of a CRL. Its entries may be millions: they are read one by one as they are
// shown.
#pragma once

#include "base/elements.hpp"
#include "objects/certificate.hpp"

namespace tool {

struct RevokedEntry {
    Integer serial;
    std::chrono::sys_seconds date;
    std::string reason;                 // empty when there is none
    std::vector<Extension> extensions;  // without the reason, unless it is critical or unreadable
};

// The entries of revokedCertificates, in their order.
class RevokedEntries {
  public:
    explicit RevokedEntries(View content) : elements_(content) {}

    bool at_end() const { return elements_.at_end(); }
    RevokedEntry next();

  private:
    Elements elements_;
};

struct Crl {
    std::string file;
    size_t index = 1;  // in the file, from 1
    uint32_t version = 1;
    NamedId signature_algorithm;
    Name issuer;
    std::chrono::sys_seconds this_update;
    std::optional<std::chrono::sys_seconds> next_update;
    std::vector<Extension> extensions;
    View revoked;  // for RevokedEntries, which do not throw any more; in the octets of the CRL
    size_t num_revoked = 0;
};

// Reads one DER CRL that fills `der` exactly; `der` has to live as long as the result. Throws
// LibraryError.
Crl read_crl(View der);

}  // namespace tool
