#include "pfx/pfx_command.hpp"

namespace tool {

void add_pfx_command(Arguments &app) {
    Arguments group = app.add_commands(
        "pfx", "Make, open and show PKCS#12 files: a key and its certificates under a password.");
    add_pfx_make(group);
    add_pfx_open(group);
    add_pfx_show(group);
}

}  // namespace tool
