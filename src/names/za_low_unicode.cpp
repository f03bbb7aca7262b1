#include "names/za_low_unicode.hpp"

#include "runtime/trace.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

namespace za::names {
namespace {

constexpr char32_t kByteOrderMark = 0xFEFF;
constexpr char32_t kReversedMark = 0xFFFE;

struct Utf8Form {
    uint8_t lead;       // the fixed bits of the first octet
    uint8_t mask;       // where they stand
    uint8_t trailing;   // octets that follow, each with six bits
    char32_t smallest;  // below it a shorter form exists
};

constexpr std::array<Utf8Form, 6> kUtf8Forms{{
    {0x00, 0x80, 0, 0x0},
    {0xC0, 0xE0, 1, 0x80},
    {0xE0, 0xF0, 2, 0x800},
    {0xF0, 0xF8, 3, 0x10000},
    {0xF8, 0xFC, 4, 0x200000},
    {0xFC, 0xFE, 5, 0x4000000},
}};
constexpr size_t kMostUtf8Octets = kUtf8Forms.size();

const Utf8Form *form_of_lead(uint8_t octet) {
    for (const Utf8Form &form : kUtf8Forms) {
        if ((octet & form.mask) == form.lead) {
            return &form;
        }
    }
    return nullptr;
}

const Utf8Form &form_of_character(char32_t c) {
    size_t at = kUtf8Forms.size() - 1;
    while (c < kUtf8Forms[at].smallest) {
        --at;
    }
    return kUtf8Forms[at];
}

// The octets of the character at the start of `in`; 0: invalid.
size_t read_utf8_character(Bytes in, char32_t &out) {
    const Utf8Form *form = form_of_lead(in.front());
    if (form == nullptr || in.size() - 1 < form->trailing) {
        return 0;
    }
    char32_t c = in.front() & static_cast<uint8_t>(~form->mask);
    for (const uint8_t octet : in.subspan(1, form->trailing)) {
        if ((octet & 0xC0) != 0x80) {
            return 0;
        }
        c = c << 6 | (octet & 0x3Fu);
    }
    if (c < form->smallest) {
        return 0;
    }
    out = c;
    return size_t{1} + form->trailing;
}

uint8_t *put_utf8(uint8_t *to, char32_t c) {
    const Utf8Form &form = form_of_character(c);
    uint32_t shift = 6u * form.trailing;
    *to++ = static_cast<uint8_t>(form.lead | c >> shift);
    while (shift > 0) {
        shift -= 6;
        *to++ = static_cast<uint8_t>(0x80 | (c >> shift & 0x3F));
    }
    return to;
}

bool in_ucs2(char32_t c) {
    return c < 0x10000 && c != kReversedMark && !is_surrogate(c);
}

}  // namespace

Status read_ucs2(Bytes in, Characters &out) {
    ZA_PASS(out.allocate(in.size() / 2));
    bool reversed = false;
    for (; in.size() >= 2; in = in.subspan(2)) {
        const uint8_t high = in[reversed ? 1 : 0];
        const uint8_t low = in[reversed ? 0 : 1];
        const auto c = static_cast<char32_t>(high << 8 | low);
        if (is_surrogate(c)) {
            break;
        }
        if (c == kReversedMark) {
            reversed = !reversed;
        } else if (c != kByteOrderMark) {
            out.add(c);
        }
    }
    if (!in.empty()) {
        out.stop_at_invalid();
    }
    return Status::ok;
}

Status write_ucs2(const Characters &in, Octets &out) {
    Octets text;
    ZA_PASS(text.allocate(2 * in.view().size()));
    uint8_t *to = text.data();
    for (const char32_t c : in.view()) {
        if (!in_ucs2(c)) {
            return trace.fail(Status::text_not_representable, "------>iconv");
        }
        *to++ = static_cast<uint8_t>(c >> 8);
        *to++ = static_cast<uint8_t>(c);
    }
    out.swap(text);
    return Status::ok;
}

Status read_utf8(Bytes in, Characters &out) {
    ZA_PASS(out.allocate(in.size()));
    while (!in.empty()) {
        char32_t c = 0;
        const size_t octets = read_utf8_character(in, c);
        if (octets == 0) {
            out.stop_at_invalid();
            break;
        }
        out.add(c);
        in = in.subspan(octets);
    }
    return Status::ok;
}

Status write_utf8(const Characters &in, Octets &out) {
    Octets text;
    ZA_PASS(text.allocate(kMostUtf8Octets * in.view().size()));
    uint8_t *to = text.data();
    for (const char32_t c : in.view()) {
        to = put_utf8(to, c);
    }
    text.truncate(static_cast<size_t>(to - text.data()));
    out.swap(text);
    return Status::ok;
}

}  // namespace za::names
