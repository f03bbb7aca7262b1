#include "base/write_file.hpp"

#include <zacert.h>

#include "base/der.hpp"
#include "base/failure.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tool {

namespace {

Failure write_failure(const std::string &path) {
    return Failure("expected to write " + path + ": " + std::strerror(errno));
}

class Descriptor {
  public:
    Descriptor(int value, std::string path) : value_(value), path_(std::move(path)) {
        if (value_ < 0) {
            throw write_failure(path_);
        }
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor() {
        if (value_ >= 0) {
            ::close(value_);
        }
    }

    void write_all(View octets) const {
        while (!octets.empty()) {
            const ssize_t count = ::write(value_, octets.data(), octets.size());
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count < 0) {
                throw write_failure(path_);
            }
            octets = octets.subspan(static_cast<size_t>(count));
        }
    }

    void set_mode(mode_t mode) const {
        if (fchmod(value_, mode) != 0) {
            throw write_failure(path_);
        }
    }

    void keep_safe() const {
        if (fsync(value_) != 0) {
            throw write_failure(path_);
        }
    }

    void close() {
        const int value = value_;
        value_ = -1;
        if (::close(value) != 0) {
            throw write_failure(path_);
        }
    }

  private:
    int value_;
    std::string path_;
};

// Removed again unless it was renamed.
class Temporary {
  public:
    explicit Temporary(const std::string &target)
        : path_(target + ".XXXXXX"), file_(mkostemp(path_.data(), O_CLOEXEC), target) {}
    Temporary(const Temporary &) = delete;
    Temporary &operator=(const Temporary &) = delete;
    ~Temporary() {
        if (!renamed_) {
            unlink(path_.c_str());
        }
    }

    Descriptor &file() { return file_; }

    void rename_to(const std::string &target, Existing existing) {
        const unsigned flags = existing == Existing::kept ? RENAME_NOREPLACE : 0;
        if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target.c_str(), flags) != 0) {
            throw write_failure(target);
        }
        renamed_ = true;
    }

  private:
    std::string path_;
    Descriptor file_;
    bool renamed_ = false;
};

mode_t without_umask(mode_t mode) {
    const mode_t mask = umask(0);
    umask(mask);
    return mode & ~mask;
}

// Through links, so that these stay.
std::string resolved(const std::string &path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr),
                                                           std::free);
    return real == nullptr ? path : std::string(real.get());
}

void replace(const std::string &target, View octets, mode_t mode, Existing existing) {
    Temporary temporary(target);
    temporary.file().set_mode(without_umask(mode));
    temporary.file().write_all(octets);
    temporary.file().keep_safe();
    temporary.file().close();
    temporary.rename_to(target, existing);
}

bool is_device(const std::string &path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

}  // namespace

// Lines of PEM end in LF here as everywhere on Linux; the library ends them in CR LF.
Octets pem(View der, const std::string &label) {
    const std::string header = "-----BEGIN " + label + "-----";
    const std::string footer = "-----END " + label + "-----";
    Octets text = fetched([&](uint8_t *out, uint32_t *length) {
        // The text ends in a zero octet beyond its length.
        std::unique_ptr<char[]> room(out == nullptr ? nullptr : new char[*length + 1]);
        const int32_t result =
            DER2PEM_data_format(der.data(), static_cast<uint32_t>(der.size()), room.get(), length,
                                header.c_str(), footer.c_str());
        if (room != nullptr && result == 0) {
            std::copy_n(room.get(), *length, out);
        }
        return static_cast<uint32_t>(result);
    });
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

void write_file(const std::string &path, View octets, mode_t mode, Existing existing) {
    if (path == "-") {
        Descriptor(dup(STDOUT_FILENO), "standard output").write_all(octets);
        return;
    }
    if (is_device(path)) {
        Descriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC), path);
        file.write_all(octets);
        file.close();
        return;
    }
    replace(resolved(path), octets, mode, existing);
}

void add_output_options(Arguments &command, OutputOptions &output) {
    command.add_option("--out", output.path, "where to write it; - is standard output")
        .type_name("FILE")
        .shows_default();
    command.add_flag("--der", output.der, "write DER instead of PEM");
}

void write_object(const OutputOptions &output, View der, const std::string &label) {
    constexpr mode_t kMode = 0666;
    if (output.der) {
        write_file(output.path, der, kMode, Existing::replaced);
        return;
    }
    write_file(output.path, pem(der, label), kMode, Existing::replaced);
}

}  // namespace tool
