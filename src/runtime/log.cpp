// The exported log functions. They trace nothing themselves.
#include <zacert.h>

#include "runtime/bytes.hpp"
#include "runtime/log_file.hpp"
#include "runtime/trace.hpp"

#include <array>
#include <charconv>

namespace {

constexpr size_t kDigits = 11;
constexpr size_t kBytesPerLine = 16;

const char *log_or_default(const char *path) {
    return path == nullptr ? za::kValueLog : path;
}

std::string_view text_or_empty(const char *text) {
    return text == nullptr ? std::string_view{} : std::string_view{text};
}

// Text for the log in a block whose size was reckoned before.
class Builder {
  public:
    bool reserve(uint64_t size) {
        return za::fits_u32(size) && block_.allocate(size) == za::Status::ok;
    }
    void add(std::string_view text) {
        za::put(block_.data() + used_, za::bytes_of(text));
        used_ += text.size();
    }
    void add(char c) { add(std::string_view(&c, 1)); }
    template <class Number>
    void add_number(Number value) {
        std::array<char, kDigits> digits;
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
        add(std::string_view(digits.data(), end));
    }
    void add_break(uint32_t indent) {
        add('\n');
        for (uint32_t i = 0; i < indent; ++i) {
            add(' ');
        }
    }
    std::string_view text() const { return za::text_of(block_.bytes().first(used_)); }

  private:
    za::Octets block_;
    size_t used_ = 0;
};

}  // namespace

uint32_t ZAPR_Display_memory(void) {
    return 0;
}

uint32_t ZAPR_DebugMessage(const char *, const char *file, uint32_t line, const char *text) {
    za::write_trace(file == nullptr ? "" : file, line, text == nullptr ? "" : text);
    return 0;
}

uint32_t ZAPR_DebugValMessage(const char *logFile, const char *file, uint32_t line,
                              const char *text, int32_t v1, int32_t v2, int32_t v3, int32_t v4) {
    const std::string_view file_text = text_or_empty(file);
    const std::string_view message = text_or_empty(text);
    Builder out;
    if (!out.reserve(file_text.size() + message.size() + 5 * (kDigits + 1) + 32)) {
        return 0;
    }
    out.add("File ");
    out.add(file_text);
    out.add("; Line ");
    out.add_number(line);
    out.add(" # ");
    // The text is a format without arguments and may be anyone's: only "%%" has a meaning in it.
    for (size_t i = 0; i < message.size(); ++i) {
        if (message.substr(i, 2) == "%%") {
            ++i;
        }
        out.add(message[i]);
    }
    const char *separator = "";
    for (const int32_t value : {v1, v2, v3, v4}) {
        out.add(separator);
        out.add_number(value);
        separator = ",";
    }
    out.add('\n');
    za::append_to_file(log_or_default(logFile), out.text());
    return 0;
}

uint32_t ZAPR_DebugDumpData(const char *logFile, const uint8_t *data, uint32_t length,
                            uint32_t indent) {
    constexpr std::string_view kHex = "0123456789ABCDEF";
    const za::Bytes bytes(data, data == nullptr ? 0 : length);
    const uint64_t lines = bytes.size() / kBytesPerLine + 1;
    Builder out;
    if (!out.reserve(bytes.size() * 3 + lines * (uint64_t{indent} + 1) + 1)) {
        return 0;
    }
    out.add_break(indent);
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (i > 0 && i % kBytesPerLine == 0) {
            out.add_break(indent);
        }
        out.add(kHex[bytes[i] >> 4]);
        out.add(kHex[bytes[i] & 0x0F]);
        out.add(' ');
    }
    out.add('\n');
    za::append_to_file(log_or_default(logFile), out.text());
    return 0;
}
