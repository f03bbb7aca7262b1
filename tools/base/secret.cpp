#include "base/secret.hpp"

#include "base/failure.hpp"
#include "base/wording.hpp"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace tool {

namespace {

class Input {
  public:
    explicit Input(const std::string &path)
        : value_(path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    Input(const Input &) = delete;
    Input &operator=(const Input &) = delete;
    ~Input() {
        if (value_ >= 0) {
            close(value_);
        }
    }

    int get() const { return value_; }

  private:
    int value_;
};

}  // namespace

Secret read_secret(const std::string &path, size_t limit, std::string_view wanted) {
    const std::string expected = file_label(path) + ": expected " + std::string(wanted) + ": ";
    const Input file(path);
    Secret buffer(limit + 1);
    size_t used = 0;
    while (used < buffer.size()) {
        const ssize_t count = read(file.get(), buffer.data() + used, buffer.size() - used);
        if (count < 0) {
            throw Failure(expected + std::strerror(errno));
        }
        if (count == 0) {
            return Secret(buffer.view().first(used));
        }
        used += static_cast<size_t>(count);
    }
    throw Failure(expected + "the file is too long");
}

}  // namespace tool
