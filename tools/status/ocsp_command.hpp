// The commands below "ocsp", each in a file of its own.
#pragma once

#include "commands.hpp"

namespace tool {

void add_ocsp_ask(CLI::App &ocsp, Command &chosen);
void add_ocsp_answer(CLI::App &ocsp, Command &chosen);
void add_ocsp_check(CLI::App &ocsp, Command &chosen);

}  // namespace tool
