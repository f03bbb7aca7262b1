// The commands below "ocsp", each in a file of its own.
#pragma once

#include "commands.hpp"

namespace tool {

void add_ocsp_ask(Arguments &ocsp);
void add_ocsp_answer(Arguments &ocsp);
void add_ocsp_check(Arguments &ocsp);

}  // namespace tool
