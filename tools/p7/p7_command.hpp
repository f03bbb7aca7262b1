// The commands below "p7", each in a file of its own.
#pragma once

#include "commands.hpp"

namespace tool {

void add_p7_show(CLI::App &p7, Command &chosen);
void add_p7_verify(CLI::App &p7, Command &chosen);
void add_p7_sign(CLI::App &p7, Command &chosen);
void add_p7_encrypt(CLI::App &p7, Command &chosen);
void add_p7_decrypt(CLI::App &p7, Command &chosen);
void add_p7_digest(CLI::App &p7, Command &chosen);

}  // namespace tool
