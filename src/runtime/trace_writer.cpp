#include "runtime/bytes.hpp"
#include "runtime/log_file.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace za {
namespace {

// Longer lines, which only an application's own texts can be, are put together on the heap.
constexpr size_t kLineOnStack = 512;

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

    char *end = start;
    for (const std::string_view piece : pieces) {
        end = std::copy(piece.begin(), piece.end(), end);
    }
    *end = '\n';
    append_to_file(kTraceLog, {start, size});
    ZAPR_Free(on_heap);
}

}  // namespace za
