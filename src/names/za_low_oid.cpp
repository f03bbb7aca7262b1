#include "names/za_low_oid.hpp"

#include "runtime/trace.hpp"

#include <algorithm>
#include <charconv>

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

namespace za::names {
namespace {

// No octet of content gives more characters: ".127" is the longest text of a single one, and the
// octets of longer numbers carry seven bits each. The first octet's two arcs are at most "2.47".
constexpr size_t kTextPerOctet = 4;

// The number at the start of `rest`, which is moved behind it.
bool take_base128(Bytes &rest, uint64_t &out) {
    uint64_t number = 0;
    for (size_t at = 0; at < rest.size(); ++at) {
        const uint8_t octet = rest[at];
        const bool not_minimal = at == 0 && octet == 0x80;
        if (not_minimal || number >> 57 != 0) {
            return false;
        }
        number = number << 7 | (octet & 0x7Fu);
        if (octet < 0x80) {
            rest = rest.subspan(at + 1);
            out = number;
            return true;
        }
    }
    return false;
}

// The first octets carry two arcs as first * 40 + second, where only the first arc 2 leaves the
// second without limit.
uint64_t first_arc(uint64_t number) {
    return std::min<uint64_t>(number / 40, 2);
}

class TextWriter {
  public:
    explicit TextWriter(std::span<uint8_t> area)
        : begin_(reinterpret_cast<char *>(area.data())), to_(begin_), end_(begin_ + area.size()) {}

    void add_number(uint64_t number) { to_ = std::to_chars(to_, end_, number).ptr; }
    void add(char c) { *to_++ = c; }
    size_t size() const { return static_cast<size_t>(to_ - begin_); }

  private:
    char *begin_;
    char *to_;
    char *end_;
};

bool write_dotted(Bytes content, TextWriter &out) {
    uint64_t number = 0;
    if (!take_base128(content, number)) {
        return false;
    }
    const uint64_t first = first_arc(number);
    out.add_number(first);
    out.add('.');
    out.add_number(number - 40 * first);
    while (!content.empty()) {
        if (!take_base128(content, number)) {
            return false;
        }
        out.add('.');
        out.add_number(number);
    }
    return true;
}

void write_hex(Bytes content, TextWriter &out) {
    constexpr std::string_view kHex = "0123456789ABCDEF";
    for (const uint8_t octet : content) {
        out.add(kHex[octet >> 4]);
        out.add(kHex[octet & 0x0F]);
    }
}

}  // namespace

Bytes dotted_text(const char *text, uint32_t length) {
    constexpr uint32_t kUpToZero = 0xFFFFFFFF;
    constexpr uint32_t kMost = 0x7FFFFFFF;
    if (text == nullptr) {
        return {};
    }
    if (length == kUpToZero) {
        return bytes_of(std::string_view(text));
    }
    return bytes_of(std::string_view(text, length <= kMost ? length : 0));
}

Status oid_from_text(Bytes text, Octets &out) {
    if (text.empty() || text.front() == 0) {
        return trace.fail(Status::general);
    }
    size_t size = 0;
    const bool valid =
        each_subidentifier(text_of(text), [&](uint32_t number) { size += base128_octets(number); });
    if (!valid || size > kMostOidOctets) {
        return trace.fail(Status::invalid_algorithm);
    }
    Octets content;
    ZA_PASS(content.allocate(size));
    uint8_t *to = content.data();
    each_subidentifier(text_of(text), [&](uint32_t number) { to = put_base128(to, number); });
    out.swap(content);
    return Status::ok;
}

Status oid_to_text(Bytes content, Octets &out) {
    Octets text;
    ZA_PASS(text.allocate(kTextPerOctet * content.size()));
    TextWriter dotted(text.span());
    size_t size = 0;
    if (write_dotted(content, dotted)) {
        size = dotted.size();
    } else {
        TextWriter hex(text.span());
        write_hex(content, hex);
        size = hex.size();
    }
    text.truncate(size);
    out.swap(text);
    return Status::ok;
}

}  // namespace za::names

using za::Status;

uint32_t ZACert_GetOIDValue(const char *text, uint32_t textLen, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(text, outLen));
        za::Octets content;
        ZA_PASS(za::names::oid_from_text(za::names::dotted_text(text, textLen), content));
        za::hand_out(content.bytes(), out, outLen);
        return Status::ok;
    });
}
