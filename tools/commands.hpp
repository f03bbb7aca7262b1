// The commands besides "show". Each adds itself to the arguments, with its help, and puts into
// `chosen` what is to run once all are read: it tells whether everything was good. Failures are
// thrown.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace tool {

using Command = std::function<bool()>;

void add_key_command(CLI::App &app, Command &chosen);
void add_request_command(CLI::App &app, Command &chosen);
void add_certificate_command(CLI::App &app, Command &chosen);
void add_crl_command(CLI::App &app, Command &chosen);
void add_verify_command(CLI::App &app, Command &chosen);
void add_p7_command(CLI::App &app, Command &chosen);
void add_pfx_command(CLI::App &app, Command &chosen);
void add_ocsp_command(CLI::App &app, Command &chosen);

}  // namespace tool
