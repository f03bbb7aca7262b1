// Identity numbers of persons and organisations that users write: "passport=E1234567".
#pragma once

#include "issue/certificate_writer.hpp"

#include <string>
#include <vector>

namespace tool {

// The kinds there are, for the help text.
std::string identity_kinds();

// Throws Failure.
void set_identities(const std::vector<std::string> &identities, CertificateWriter &writer);

}  // namespace tool
