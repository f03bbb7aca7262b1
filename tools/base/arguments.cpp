#include "base/arguments.hpp"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <utility>

namespace tool {

const Option &Option::required() const {
    option_->required();
    return *this;
}

const Option &Option::excludes(const Option &other) const {
    option_->excludes(other.option_);
    return *this;
}

const Option &Option::needs(const Option &other) const {
    option_->needs(other.option_);
    return *this;
}

const Option &Option::one_of(const std::vector<std::string> &values) const {
    option_->check(CLI::IsMember(values));
    return *this;
}

const Option &Option::in_range(int first, int last) const {
    option_->check(CLI::Range(first, last));
    return *this;
}

const Option &Option::type_name(const std::string &name) const {
    option_->type_name(name);
    return *this;
}

const Option &Option::shows_default() const {
    option_->capture_default_str();
    return *this;
}

const Option &Option::description(const std::string &text) const {
    option_->description(text);
    return *this;
}

const Option &Option::heading(const std::string &text) const {
    option_->group(text);
    return *this;
}

Arguments Arguments::add_command(const std::string &name, const std::string &text) {
    return {app_->add_subcommand(name, text), chosen_};
}

Arguments Arguments::add_commands(const std::string &name, const std::string &text) {
    CLI::App *commands = app_->add_subcommand(name, text);
    commands->require_subcommand(1);
    return {commands, chosen_};
}

Arguments Arguments::add_group(const std::string &name, const std::string &text, size_t least,
                               size_t most) {
    CLI::Option_group *group = app_->add_option_group(name, text);
    group->require_option(least, most);
    return {group, chosen_};
}

template <class Value>
Option Arguments::add_option(const std::string &name, Value &value, const std::string &text) {
    return Option(app_->add_option(name, value, text));
}

template Option Arguments::add_option(const std::string &, std::string &, const std::string &);
template Option Arguments::add_option(const std::string &, std::vector<std::string> &,
                                      const std::string &);
template Option Arguments::add_option(const std::string &, uint32_t &, const std::string &);
template Option Arguments::add_option(const std::string &, std::optional<uint8_t> &,
                                      const std::string &);
template Option Arguments::add_option(const std::string &, std::optional<uint32_t> &,
                                      const std::string &);
template Option Arguments::add_option(const std::string &, std::optional<uint64_t> &,
                                      const std::string &);

Option Arguments::add_repeatable(const std::string &name, std::vector<std::string> &values,
                                 const std::string &text) {
    return Option(app_->add_option(name, values, text)->allow_extra_args(false)->take_all());
}

Option Arguments::add_flag(const std::string &name, bool &value, const std::string &text) {
    // Without a default the help tells none of those that are on unless "--no-" is given.
    return Option(app_->add_flag(name, value, text)->default_str(""));
}

Option Arguments::option(const std::string &name) {
    return Option(app_->get_option(name));
}

void Arguments::footer(const std::string &text) {
    app_->footer(text);
}

void Arguments::runs(Command command) {
    app_->callback([chosen = chosen_, command = std::move(command)] { *chosen = command; });
}

int run_program(const Program &program, const std::function<void(Arguments &)> &add_all, int argc,
                char **argv) {
    CLI::App app{program.text};
    app.name(program.name);
    app.set_version_flag("--version", program.version);
    app.require_subcommand(1);
    app.footer(program.examples);
    Command chosen;
    Arguments arguments(&app, &chosen);
    add_all(arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? EXIT_SUCCESS : kUsageStatus;
    }
    return chosen() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace tool
