#include "p7/p7_command.hpp"

namespace tool {

void add_p7_command(Arguments &app) {
    Arguments group = app.add_commands("p7", "Show, verify and make PKCS#7 messages.");
    add_p7_show(group);
    add_p7_verify(group);
    add_p7_sign(group);
    add_p7_encrypt(group);
    add_p7_decrypt(group);
    add_p7_digest(group);
}

}  // namespace tool
