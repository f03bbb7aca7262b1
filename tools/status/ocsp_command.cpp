#include "status/ocsp_command.hpp"

namespace tool {

void add_ocsp_command(CLI::App &app, Command &chosen) {
    CLI::App *group = app.add_subcommand(
        "ocsp", "Ask whether certificates are revoked, answer, and check answers (OCSP).");
    group->require_subcommand(1);
    add_ocsp_ask(*group, chosen);
    add_ocsp_answer(*group, chosen);
    add_ocsp_check(*group, chosen);
}

}  // namespace tool
