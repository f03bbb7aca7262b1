#include "password.hpp"

#include "failure.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <openssl/evp.h>
#include <unistd.h>

namespace tool {

namespace {

constexpr size_t kMaxPassword = 1024;

class Descriptor {
  public:
    explicit Descriptor(const std::string &path)
        : value_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor() {
        if (value_ >= 0) {
            close(value_);
        }
    }
    int get() const { return value_; }

  private:
    int value_;
};

Secret first_line(View text) {
    const auto end = std::find_if(text.begin(), text.end(),
                                  [](uint8_t octet) { return octet == '\n' || octet == '\r'; });
    const auto size = static_cast<size_t>(end - text.begin());
    if (size == 0 || size > kMaxPassword) {
        throw Failure("expected a password of 1 to " + std::to_string(kMaxPassword) + " octets");
    }
    return Secret(text.first(size));
}

Secret password_in_file(const std::string &path) {
    const Descriptor file(path);
    Secret buffer(kMaxPassword + 2);
    size_t used = 0;
    while (used < buffer.size()) {
        const ssize_t count = read(file.get(), buffer.data() + used, buffer.size() - used);
        if (count < 0) {
            throw Failure("expected a password in " + path + ": " + std::strerror(errno));
        }
        if (count == 0) {
            break;
        }
        used += static_cast<size_t>(count);
    }
    return first_line(buffer.view().first(used));
}

Secret password_in_variable(const std::string &name) {
    const char *value = std::getenv(name.c_str());
    if (value == nullptr) {
        throw Failure("expected a password in the environment variable " + name);
    }
    return first_line({reinterpret_cast<const uint8_t *>(value), std::strlen(value)});
}

}  // namespace

void add_password_options(CLI::App &command, PasswordSource &source) {
    CLI::Option *file =
        command.add_option("--password-file", source.file,
                           "password of the key (PIN of the token): a file's first line");
    command
        .add_option("--password-env", source.variable,
                    "the same from an environment variable; without either it is asked for")
        ->excludes(file);
}

std::optional<Secret> given_password(const PasswordSource &source) {
    if (!source.file.empty()) {
        return password_in_file(source.file);
    }
    if (!source.variable.empty()) {
        return password_in_variable(source.variable);
    }
    return std::nullopt;
}

Secret asked_password(const std::string &prompt, Ask ask) {
    Secret buffer(kMaxPassword + 1);
    auto *text = reinterpret_cast<char *>(buffer.data());
    if (EVP_read_pw_string_min(text, 1, static_cast<int>(buffer.size()), prompt.c_str(),
                               ask == Ask::twice ? 1 : 0) != 0) {
        throw Failure("expected a password at the terminal");
    }
    return first_line({buffer.data(), std::strlen(text)});
}

}  // namespace tool
