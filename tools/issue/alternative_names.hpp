// Subject alternative names that users write.
#pragma once

#include "base/arguments.hpp"
#include "base/octets.hpp"

#include <string>
#include <vector>

namespace tool {

struct NameOptions {
    std::vector<std::string> dns;
    std::vector<std::string> email;
    std::vector<std::string> ip;
    std::vector<std::string> uri;
};

void add_name_options(Arguments &command, NameOptions &options);

// GeneralNames (RFC 5280, 4.2.1.6) in DER; empty where there are none. The library's own attributes
// hold one name of each form. Throws Failure.
Octets general_names(const NameOptions &options);

}  // namespace tool
