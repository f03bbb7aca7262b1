// Files and the objects in them.
#pragma once

#include "base/octets.hpp"
#include "objects/kind.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace tool {

// The whole file, or standard input for "-". `wanted` says in the Failure what was to be found.
Octets read_file(const std::string &path, std::string_view wanted = noun(ObjectKind::unknown));

// One object to be decoded, or why there is none.
struct Candidate {
    ObjectKind kind = ObjectKind::unknown;
    Octets der;
    std::string problem;  // empty when `der` holds exactly one element
};

// A DER file is one object, a PEM file as many as it has blocks of kinds the tool shows. Throws
// Failure when the file is neither.
std::vector<Candidate> objects_in(Octets file);

}  // namespace tool
