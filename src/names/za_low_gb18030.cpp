#include "names/za_low_gb18030.hpp"

#include "runtime/trace.hpp"

#include <algorithm>
#include <bit>
#include <iconv.h>

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

namespace za::names {
namespace {

// Not "GBK" or "CP936": these lack two-octet codes and take 0x80 for a sign.
constexpr const char *kGb18030 = "GB18030";
constexpr const char *kCharacters =
    std::endian::native == std::endian::little ? "UTF-32LE" : "UTF-32BE";

constexpr size_t kMostGb18030Octets = 4;

class Converter {
  public:
    Converter(const char *to, const char *from) : handle_(iconv_open(to, from)) {}
    ~Converter() {
        if (is_open()) {
            iconv_close(handle_);
        }
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    bool is_open() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    // Converts up to what cannot be converted, counts the octets written and tells whether that was
    // everything.
    bool run(Bytes in, std::span<uint8_t> out, size_t &num_written) {
        // Without this iconv would meet NULL buffers, on which it ends the process.
        if (in.empty()) {
            num_written = 0;
            return true;
        }
        // iconv changes no input in spite of its declaration.
        char *from = const_cast<char *>(reinterpret_cast<const char *>(in.data()));
        char *to = reinterpret_cast<char *>(out.data());
        size_t from_len = in.size();
        size_t to_len = out.size();
        const bool whole = iconv(handle_, &from, &from_len, &to, &to_len) != size_t(-1);
        num_written = out.size() - to_len;
        return whole;
    }

  private:
    iconv_t handle_;
};

bool is_character(char32_t c) {
    return c <= 0x10FFFF && !is_surrogate(c);
}

}  // namespace

bool has_gb18030() {
    return Converter(kCharacters, kGb18030).is_open() && Converter(kGb18030, kCharacters).is_open();
}

Status read_gb18030(Bytes in, Characters &out) {
    ZA_PASS(out.allocate(in.size()));
    Converter converter(kCharacters, kGb18030);
    if (!converter.is_open()) {
        return trace.fail(Status::memory, "------>iconv_open");
    }
    size_t written = 0;
    if (!converter.run(in, out.area(), written)) {
        out.stop_at_invalid();
    }
    out.set_size(written / sizeof(char32_t));
    return Status::ok;
}

Status write_gb18030(const Characters &in, Octets &out) {
    const std::span<const char32_t> all = in.view();
    const auto end = std::find_if_not(all.begin(), all.end(), is_character);
    const auto characters = all.first(static_cast<size_t>(end - all.begin()));

    Octets text;
    ZA_PASS(text.allocate(kMostGb18030Octets * characters.size()));
    Converter converter(kGb18030, kCharacters);
    if (!converter.is_open()) {
        return trace.fail(Status::memory, "------>iconv_open");
    }
    const Bytes octets(reinterpret_cast<const uint8_t *>(characters.data()),
                       characters.size_bytes());
    size_t written = 0;
    if (!converter.run(octets, text.span(), written) || characters.size() < all.size()) {
        return trace.fail(Status::text_not_representable, "------>iconv");
    }
    text.truncate(written);
    out.swap(text);
    return Status::ok;
}

}  // namespace za::names
