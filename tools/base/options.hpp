// Options that several commands add.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace tool {

// An option that may be given several times, with one value each time: what stands behind the value
// belongs to others.
inline CLI::Option *add_repeatable(CLI::App &command, const std::string &name,
                                   std::vector<std::string> &values, const std::string &text) {
    return command.add_option(name, values, text)->allow_extra_args(false)->take_all();
}

}  // namespace tool
