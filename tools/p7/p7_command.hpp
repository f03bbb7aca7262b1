// The commands below "p7", each in a file of its own.
#pragma once

#include "commands.hpp"

namespace tool {

void add_p7_show(Arguments &p7);
void add_p7_verify(Arguments &p7);
void add_p7_sign(Arguments &p7);
void add_p7_encrypt(Arguments &p7);
void add_p7_decrypt(Arguments &p7);
void add_p7_digest(Arguments &p7);

}  // namespace tool
