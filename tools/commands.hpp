// The commands. Each adds itself to the arguments, with its help and what it does.
#pragma once

#include "base/arguments.hpp"

namespace tool {

void add_show_command(Arguments &app);
void add_key_command(Arguments &app);
void add_request_command(Arguments &app);
void add_certificate_command(Arguments &app);
void add_crl_command(Arguments &app);
void add_verify_command(Arguments &app);
void add_p7_command(Arguments &app);
void add_pfx_command(Arguments &app);
void add_ocsp_command(Arguments &app);

}  // namespace tool
