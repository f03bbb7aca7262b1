// The command line as the commands describe it. CLI11 reads it, and arguments.cpp alone includes
// that: no other header takes so long to compile.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tool {

// What a command does once all arguments are read. It tells whether everything was good;
// failures are thrown.
using Command = std::function<bool()>;

// A handle of an option. Each function returns the option itself.
class Option {
  public:
    explicit Option(CLI::Option *option) : option_(option) {}

    const Option &required() const;
    const Option &excludes(const Option &other) const;
    const Option &needs(const Option &other) const;
    const Option &one_of(const std::vector<std::string> &values) const;
    const Option &in_range(int first, int last) const;

    // For the help: the kind of the value, the value without this option, the text anew, and the
    // heading it stands under.
    const Option &type_name(const std::string &name) const;
    const Option &shows_default() const;
    const Option &description(const std::string &text) const;
    const Option &heading(const std::string &text) const;

  private:
    CLI::Option *option_;
};

// A handle of the arguments of one command, of a group of its options, or of all commands.
class Arguments {
  public:
    Arguments(CLI::App *app, Command *chosen) : app_(app), chosen_(chosen) {}

    Arguments add_command(const std::string &name, const std::string &text);
    // A word before several commands, one of which has to follow.
    Arguments add_commands(const std::string &name, const std::string &text);
    // Options of which at least and at most so many have to be given.
    Arguments add_group(const std::string &name, const std::string &text, size_t least,
                        size_t most);

    // Value: std::string, std::vector<std::string>, uint32_t, std::optional of uint8_t, uint32_t
    // or uint64_t. It must live until the command has run.
    template <class Value>
    Option add_option(const std::string &name, Value &value, const std::string &text);
    // May be given several times, with one value each time: what stands behind belongs to others.
    Option add_repeatable(const std::string &name, std::vector<std::string> &values,
                          const std::string &text);
    Option add_flag(const std::string &name, bool &value, const std::string &text);
    Option option(const std::string &name);

    // Text behind the help.
    void footer(const std::string &text);
    // What is done where this command is the one that was chosen.
    void runs(Command command);

  private:
    CLI::App *app_;
    Command *chosen_;
};

// What the whole program says of itself.
struct Program {
    std::string name;
    std::string version;
    std::string text;
    std::string examples;
};

// The exit status for arguments that cannot be taken.
constexpr int kUsageStatus = 2;

// Reads the arguments and runs the command they choose; the program's exit status. What the command
// throws passes through.
int run_program(const Program &program, const std::function<void(Arguments &)> &add_all, int argc,
                char **argv);

}  // namespace tool
