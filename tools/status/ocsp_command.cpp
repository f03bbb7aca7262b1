#include "status/ocsp_command.hpp"

namespace tool {

void add_ocsp_command(Arguments &app) {
    Arguments group = app.add_commands(
        "ocsp", "Ask whether certificates are revoked, answer, and check answers (OCSP).");
    add_ocsp_ask(group);
    add_ocsp_answer(group);
    add_ocsp_check(group);
}

}  // namespace tool
