#include "pfx/pfx_command.hpp"

namespace tool {

void add_pfx_command(CLI::App &app, Command &chosen) {
    CLI::App *group = app.add_subcommand(
        "pfx", "Make, open and show PKCS#12 files: a key and its certificates under a password.");
    group->require_subcommand(1);
    add_pfx_make(*group, chosen);
    add_pfx_open(*group, chosen);
    add_pfx_show(*group, chosen);
}

}  // namespace tool
