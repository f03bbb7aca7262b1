// Passwords of key files and PINs of tokens. They never stand in the arguments, which other users of
// the machine can see.
#pragma once

#include "base/arguments.hpp"
#include "base/secret.hpp"

#include <optional>
#include <string>

namespace tool {

struct PasswordSource {
    std::string file;
    std::string variable;

    bool given() const { return !file.empty() || !variable.empty(); }
};

// Whose password it is, where a command takes several: "key-" makes --key-password-file of it.
struct PasswordRole {
    std::string prefix;
    std::string text = "the password (of a token: the PIN)";
};

// `otherwise` ends the help text: what happens without either option.
void add_password_options(Arguments &command, PasswordSource &source, const std::string &otherwise,
                          const PasswordRole &role = {});

// From the file's first line or the variable; nothing where neither is named.
enum class Empty { refused, allowed };
std::optional<Secret> given_password(const PasswordSource &source, Empty empty = Empty::refused);

// Asked for at the terminal, a new one twice.
enum class Ask { once, twice };
Secret asked_password(const std::string &prompt, Ask ask);

}  // namespace tool
