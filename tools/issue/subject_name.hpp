// Distinguished names that users write: "C=CN,O=Example,CN=Root".
#pragma once

#include "base/octets.hpp"

#include <string>
#include <vector>

namespace tool {

struct NameEntry {
    int32_t offset = 0;  // from CERT_SUBJECT_COUNTRYNAME and its like
    Octets value;        // GB18030
    uint8_t string_type = 0;
};

// UTF-8, entries in the order of the certificate, parted by commas; a backslash before a comma, a
// plus sign or another special character takes its meaning away. Throws Failure.
std::vector<NameEntry> parse_subject(const std::string &text);

// The types it takes, for the help text.
std::string subject_types();

// The table of string types that goes with the entries.
Octets string_types(const std::vector<NameEntry> &entries);

}  // namespace tool
