#include "base/failure.hpp"
#include "base/wording.hpp"
#include "pfx/pfx_command.hpp"
#include "pfx/pfx_input.hpp"
#include "pfx/pfx_page.hpp"
#include "show/json_array.hpp"

#include <iostream>

namespace tool {

namespace {

struct Options {
    PfxInput input;
    std::string format = "text";
    bool no_password = false;
};

void print(const Options &options, const Pfx &pfx) {
    if (options.format == "json") {
        JsonArray array(std::cout);
        array.add(pfx_json(pfx));
        array.finish();
    } else {
        std::cout << pfx_text(pfx);
    }
    std::cout.flush();
    if (!std::cout) {
        throw Failure("standard output: expected to write all of it");
    }
}

bool run(const Options &options) {
    if (options.no_password) {
        print(options, look_into_pfx(options.input));
        return true;
    }
    const OpenedPfx opened = open_pfx(options.input);
    print(options, opened.pfx);
    if (!opened.problem.empty()) {
        throw Failure(file_label(options.input.path) + ": " + opened.problem);
    }
    return true;
}

}  // namespace

void add_pfx_show(Arguments &pfx) {
    Arguments command = pfx.add_command(
        "show", "Show MAC, containers and bags of a PKCS#12 file; keys by kind and size alone.");
    const auto options = std::make_shared<Options>();
    command.add_option("--format", options->format, "text or json")
        .one_of({"text", "json"})
        .shows_default();
    Option without = command.add_flag(
        "--no-password", options->no_password,
        "show what can be seen without one: algorithms, and what is not encrypted");
    add_pfx_input(command, options->input);
    for (const char *other : {"--password-file", "--password-env", "--no-mac"}) {
        without.excludes(command.option(other));
    }
    command.footer(
        "Examples:\n  zacert pfx show server.p12\n"
        "  zacert pfx show --no-password --format json server.p12");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
