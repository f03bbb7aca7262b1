#include "commands.hpp"
#include "show/show.hpp"

#include <memory>

namespace tool {

namespace {

struct Options {
    std::vector<std::string> files;
    std::string format = "text";
};

}  // namespace

void add_format_option(Arguments &command, std::string &format) {
    std::vector<std::string> names;
    for (const auto &[name, value] : formats()) {
        names.push_back(name);
    }
    command.add_option("--format", format, "text, json or table").one_of(names).shows_default();
}

void add_show_command(Arguments &app) {
    Arguments command = app.add_command(
        "show", "Show certificates, CRLs, requests, PKCS#7 and OCSP messages in DER or PEM.");
    const auto options = std::make_shared<Options>();
    add_format_option(command, options->format);
    command
        .add_option("FILE", options->files,
                    "DER, or PEM with any number of blocks; - is standard input")
        .required();
    command.footer(kShowExamples);
    command.runs([options] { return show(options->files, formats().at(options->format)); });
}

}  // namespace tool
