// The extensions that the tool has a name for.
#pragma once

#include "objects/certificate.hpp"

#include <string_view>

namespace tool {

struct ExtensionKind {
    std::string_view oid;
    std::string_view name;  // as the standards write it
    std::string_view title;
    std::string_view short_code;
    ExtensionValue (*read)(View octets);
};

// nullptr for others.
const ExtensionKind *find_extension_kind(std::string_view oid);

}  // namespace tool
