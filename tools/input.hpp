// Files and the certificates in them.
#pragma once

#include "octets.hpp"

#include <string>
#include <vector>

namespace tool {

// The whole file, or standard input for "-". Throws Failure.
Octets read_file(const std::string &path);

// One certificate to be decoded, or why there is none.
struct Candidate {
    Octets der;
    std::string problem;  // empty when `der` holds exactly one element
};

// A DER file is one certificate, a PEM file as many as it has blocks. Throws Failure when the file
// is neither.
std::vector<Candidate> certificates_in(Octets file);

}  // namespace tool
