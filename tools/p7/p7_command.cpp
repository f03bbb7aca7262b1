#include "p7/p7_command.hpp"

namespace tool {

void add_p7_command(CLI::App &app, Command &chosen) {
    CLI::App *group = app.add_subcommand("p7", "Show, verify and make PKCS#7 messages.");
    group->require_subcommand(1);
    add_p7_show(*group, chosen);
    add_p7_verify(*group, chosen);
    add_p7_sign(*group, chosen);
    add_p7_encrypt(*group, chosen);
    add_p7_decrypt(*group, chosen);
    add_p7_digest(*group, chosen);
}

}  // namespace tool
