// Extensions that must be understood.
#pragma once

#include "certificate.hpp"
#include "report.hpp"

#include <vector>

namespace tool {

// Fails for critical ones that `verify` does not evaluate, and for known ones that cannot be read.
void check_critical_extensions(const std::vector<Extension> &extensions, Report &report);

}  // namespace tool
