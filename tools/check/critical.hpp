// Extensions that must be understood.
#pragma once

#include "check/report.hpp"
#include "objects/certificate.hpp"

#include <vector>

namespace tool {

// Fails for critical ones that `verify` does not evaluate, and for known ones that cannot be read.
void check_critical_extensions(const std::vector<Extension> &extensions, Report &report);

}  // namespace tool
