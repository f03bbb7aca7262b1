// What commands that verify certificates have in common: their options, and one certificate's checks.
#pragma once

#include "base/arguments.hpp"
#include "check/path.hpp"
#include "check/revocation.hpp"

#include <deque>
#include <string>
#include <vector>

namespace tool {

struct PathOptions {
    std::vector<std::string> roots;
    std::vector<std::string> intermediates;
    std::vector<std::string> crls;
    std::string at;
    std::string purpose;
};

void add_path_options(Arguments &command, PathOptions &options);

// The files that the options name, read.
struct PathInputs {
    TrustStore store;
    std::deque<LoadedCrl> crls;
    When when;
    std::string purpose;

    explicit PathInputs(const PathOptions &options);
};

// Path, purpose where one is asked for, and revocation where CRLs are given. `others` may stand
// between, besides those of the options.
void check_certificate(const LoadedCertificate &certificate, const Certificates &others,
                       const PathInputs &inputs, Report &report);

}  // namespace tool
