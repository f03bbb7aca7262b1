#include "base/arguments.hpp"
#include "base/failure.hpp"
#include "base/utf8.hpp"
#include "commands.hpp"
#include "show/show.hpp"

#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>

namespace {

constexpr const char *kMoreExamples = R"(
  zacert key new --out root.key
  zacert cert issue --self --subject "C=CN,CN=Root" --key root.key --profile ca --out root.pem
  zacert verify --ca root.pem server.pem
Each command has examples of its own: zacert cert issue --help)";

// The library reads times in the zone of the process, while those of certificates are in UTC.
void use_utc() {
    setenv("TZ", "UTC", 1);
    tzset();
}

void add_commands(tool::Arguments &app) {
    tool::add_show_command(app);
    tool::add_key_command(app);
    tool::add_request_command(app);
    tool::add_certificate_command(app);
    tool::add_crl_command(app);
    tool::add_verify_command(app);
    tool::add_p7_command(app);
    tool::add_pfx_command(app);
    tool::add_ocsp_command(app);
}

}  // namespace

int main(int argc, char **argv) {
    use_utc();
    try {
        return tool::run_program(
            {"zacert", "zacert " ZACERT_VERSION,
             "Makes, shows and verifies keys, certificates, requests and revocation lists.",
             std::string(tool::kShowExamples) + kMoreExamples},
            add_commands, argc, argv);
    } catch (const std::exception &error) {
        std::cerr << "zacert: " << tool::printable(error.what()) << '\n';
        return dynamic_cast<const tool::UsageError *>(&error) != nullptr ? tool::kUsageStatus
                                                                         : EXIT_FAILURE;
    }
}
