// PKCS#12 files as "open" and "show" get them: from a path, under a password.
#pragma once

#include "base/arguments.hpp"
#include "base/password.hpp"
#include "pfx/pfx_file.hpp"

namespace tool {

struct PfxInput {
    std::string path;
    PasswordSource password;
    bool no_mac = false;
};

void add_pfx_input(Arguments &command, PfxInput &input);

// As much as can be read without a password. Throws Failure.
Pfx look_into_pfx(const PfxInput &input);

// What stands in the file once its MAC was found right; before, no more than without a password, and
// `problem` says why.
struct OpenedPfx {
    Pfx pfx;
    std::string problem;
};

// Throws Failure for what is no such file, or where there is no password.
OpenedPfx open_pfx(const PfxInput &input);

// Tells where the password has octets that others read in some character set.
void warn_of_octets(const Secret &password);

}  // namespace tool
