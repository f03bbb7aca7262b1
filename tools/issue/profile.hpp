// What issued certificates are for.
#pragma once

#include "issue/certificate_writer.hpp"

#include <optional>
#include <string>
#include <vector>

namespace tool {

std::vector<std::string> profile_names();

bool is_ca_profile(const std::string &name);

// Key usage, purposes and, for a CA, basic constraints.
void set_profile(const std::string &name, KeyKind key, std::optional<uint8_t> path_length,
                 CertificateWriter &writer);

}  // namespace tool
