// PKCS#12 files for people and for programs to read. Keys are told by kind and size alone.
#pragma once

#include "pfx/pfx_file.hpp"
#include "show/json.hpp"

#include <string>

namespace tool {

std::string pfx_text(const Pfx &pfx);
Json pfx_json(const Pfx &pfx);

}  // namespace tool
