#include "base/failure.hpp"
#include "base/utf8.hpp"
#include "commands.hpp"
#include "show/show.hpp"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>

namespace {

constexpr int kUsageError = 2;

constexpr const char *kExamples = R"(Examples:
  zacert show server.pem
  zacert show --format table /etc/ssl/certs/ca-certificates.crt
  openssl s_client -connect example.org:443 </dev/null | zacert show --format json -)";

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

int run(int argc, char **argv) {
    CLI::App app{"Makes, shows and verifies keys, certificates, requests and revocation lists."};
    app.name("zacert");
    app.set_version_flag("--version", "zacert " ZACERT_VERSION);
    app.require_subcommand(1);
    app.footer(std::string(kExamples) + kMoreExamples);

    std::vector<std::string> files;
    std::string format = "text";
    CLI::App *show =
        app.add_subcommand("show",
                           "Show certificates, CRLs, requests, PKCS#7 and OCSP messages in DER or "
                           "PEM.");
    show->footer(kExamples);
    show->add_option("--format", format, "text, json or table")
        ->check(CLI::IsMember(tool::formats()))
        ->capture_default_str();
    show->add_option("FILE", files, "DER, or PEM with any number of blocks; - is standard input")
        ->required();
    tool::Command chosen = [&] { return tool::show(files, tool::formats().at(format)); };
    tool::add_key_command(app, chosen);
    tool::add_request_command(app, chosen);
    tool::add_certificate_command(app, chosen);
    tool::add_crl_command(app, chosen);
    tool::add_verify_command(app, chosen);
    tool::add_p7_command(app, chosen);
    tool::add_pfx_command(app, chosen);
    tool::add_ocsp_command(app, chosen);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? EXIT_SUCCESS : kUsageError;
    }
    return chosen() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char **argv) {
    use_utc();
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << "zacert: " << tool::printable(error.what()) << '\n';
        return dynamic_cast<const tool::UsageError *>(&error) != nullptr ? kUsageError
                                                                         : EXIT_FAILURE;
    }
}
