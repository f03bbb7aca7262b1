// The commands below "pfx", each in a file of its own.
#pragma once

#include "commands.hpp"

namespace tool {

void add_pfx_make(Arguments &pfx);
void add_pfx_open(Arguments &pfx);
void add_pfx_show(Arguments &pfx);

}  // namespace tool
