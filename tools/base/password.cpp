#include "base/password.hpp"

#include "base/failure.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <openssl/evp.h>
#include <unistd.h>

namespace tool {

namespace {

constexpr size_t kMaxPassword = 1024;

Secret first_line(View text, Empty empty) {
    const auto end = std::find_if(text.begin(), text.end(),
                                  [](uint8_t octet) { return octet == '\n' || octet == '\r'; });
    const auto size = static_cast<size_t>(end - text.begin());
    if ((size == 0 && empty == Empty::refused) || size > kMaxPassword) {
        throw Failure("expected a password of 1 to " + std::to_string(kMaxPassword) + " octets");
    }
    return Secret(text.first(size));
}

bool has_terminal() {
    const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC);
    if (terminal >= 0) {
        close(terminal);
    }
    return terminal >= 0 || isatty(STDIN_FILENO) != 0;
}

Secret password_in_file(const std::string &path, Empty empty) {
    constexpr size_t kMaxFile = 64 * 1024;
    return first_line(read_secret(path, kMaxFile, "a password").view(), empty);
}

Secret password_in_variable(const std::string &name, Empty empty) {
    const char *value = std::getenv(name.c_str());
    if (value == nullptr) {
        throw Failure("expected a password in the environment variable " + name);
    }
    return first_line({reinterpret_cast<const uint8_t *>(value), std::strlen(value)}, empty);
}

}  // namespace

void add_password_options(Arguments &command, PasswordSource &source, const std::string &otherwise,
                          const PasswordRole &role) {
    const std::string option = "--" + role.prefix + "password-";
    Option file =
        command.add_option(option + "file", source.file, role.text + ": a file's first line");
    file.type_name("FILE");
    command
        .add_option(option + "env", source.variable,
                    "the same from an environment variable; " + otherwise)
        .type_name("NAME")
        .excludes(file);
}

std::optional<Secret> given_password(const PasswordSource &source, Empty empty) {
    if (!source.file.empty()) {
        return password_in_file(source.file, empty);
    }
    if (!source.variable.empty()) {
        return password_in_variable(source.variable, empty);
    }
    return std::nullopt;
}

Secret asked_password(const std::string &prompt, Ask ask) {
    if (!has_terminal()) {
        throw Failure("there is no terminal to ask for the password; see --password-file");
    }
    Secret buffer(kMaxPassword + 1);
    auto *text = reinterpret_cast<char *>(buffer.data());
    if (EVP_read_pw_string_min(text, 1, static_cast<int>(buffer.size()), prompt.c_str(),
                               ask == Ask::twice ? 1 : 0) != 0) {
        throw Failure("expected a password at the terminal");
    }
    return first_line({buffer.data(), std::strlen(text)}, Empty::refused);
}

}  // namespace tool
