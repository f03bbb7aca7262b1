#include "runtime/bytes.hpp"
#include "runtime/log_file.hpp"
#include "runtime/trace.hpp"

#include <array>
#include <charconv>
#include <cstring>

namespace za {
namespace {

// Longer lines, which only an application's own texts can be, are put together on the heap.
constexpr size_t kLineOnStack = 512;

struct Line {
    char *end;
    void add(std::string_view text) {
        // An empty piece may have no octets to point to.
        if (!text.empty()) {
            std::memcpy(end, text.data(), text.size());
            end += text.size();
        }
    }
};

}  // namespace

void write_trace(const char *source, uint32_t line, const TraceText &text) noexcept {
    std::array<char, 10> digits;
    const char *digits_end = std::to_chars(digits.data(), digits.data() + digits.size(), line).ptr;
    const std::array<std::string_view, 8> pieces{
        "File ", source,    "; Line ", std::string_view(digits.data(), digits_end),
        " # ",   text.head, text.body, text.tail};

    size_t size = 1;
    for (const std::string_view piece : pieces) {
        size += piece.size();
    }
    std::array<char, kLineOnStack> on_stack;
    char *start = on_stack.data();
    void *on_heap = nullptr;
    if (size > on_stack.size()) {
        on_heap = fits_u32(size) ? ZAPR_Malloc(source, line, to_u32(size)) : nullptr;
        if (on_heap == nullptr) {
            return;
        }
        start = static_cast<char *>(on_heap);
    }

    Line assembled{start};
    for (const std::string_view piece : pieces) {
        assembled.add(piece);
    }
    assembled.add("\n");
    append_to_file(kTraceLog, {start, size});
    ZAPR_Free(on_heap);
}

}  // namespace za
