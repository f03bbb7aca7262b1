// The commands below "pfx", each in a file of its own.
#pragma once

#include "commands.hpp"

namespace tool {

void add_pfx_make(CLI::App &pfx, Command &chosen);
void add_pfx_open(CLI::App &pfx, Command &chosen);
void add_pfx_show(CLI::App &pfx, Command &chosen);

}  // namespace tool
