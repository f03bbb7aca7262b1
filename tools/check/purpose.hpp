// What a certificate may be used for.
#pragma once

#include "check/path.hpp"

#include <string>
#include <vector>

namespace tool {

std::vector<std::string> purpose_names();

// Key usage and purposes of the first certificate; the purposes of its issuers limit those below.
void check_purpose(const Path &path, const std::string &purpose, Report &report);

}  // namespace tool
