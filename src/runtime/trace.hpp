// The trace: one line per event, and the macros that carry a failure upward, one line per level.
#pragma once

#include <zacert.h>

#include "runtime/status.hpp"

#include <cstdint>
#include <string_view>

namespace za {

// A message in up to three pieces, which are put together only when the line is written.
struct TraceText {
    // Implicit, so that a literal can stand where a message is wanted.
    constexpr TraceText(const char *whole) : head(whole) {}
    constexpr TraceText(std::string_view first, std::string_view second,
                        std::string_view third = {})
        : head(first), body(second), tail(third) {}

    std::string_view head;
    std::string_view body;
    std::string_view tail;
};

// Appends one line to the log. It stands alone in its object file, so that a benchmark can link an
// empty one in its place and a test one that remembers.
void write_trace(const char *source, uint32_t line, const TraceText &text) noexcept;

// How the lines of a family differ.
struct TraceStyle {
    std::string_view longer_arrow;  // more of the arrow before the name of a code
    Status missing_argument = Status::general;
    std::string_view frame = "======>";  // before the lines Begin and End
    std::string_view memory_arrow = {};  // more of the arrow where memory runs out
};

// The family of source files that a line names. Every .cpp file that traces defines one `trace`.
class TraceSource {
  public:
    constexpr explicit TraceSource(const char *source, TraceStyle style = {})
        : source_(source), style_(style) {}

    void note(const TraceText &text, uint32_t line = __builtin_LINE()) const noexcept {
        write_trace(source_, line, text);
    }

    [[gnu::cold, gnu::noinline]] Status fail(Status status, const TraceText &text,
                                             uint32_t line = __builtin_LINE()) const noexcept {
        write_trace(source_, line, text);
        return status;
    }

    // A condition that the function itself detects, told by the name of its code.
    [[gnu::cold, gnu::noinline]] Status fail(Status status,
                                             uint32_t line = __builtin_LINE()) const noexcept;

    // The arguments that must not be NULL.
    template <class... Pointers>
    Status need(Pointers... pointers) const noexcept {
        return ((pointers != nullptr) && ...) ? Status::ok : fail(style_.missing_argument);
    }

    // The lines around an exported function's body: Begin, and End on success. Functions of whole
    // objects write them also when another one of the library works through them.
    template <class Body>
    Status announced(const Body &body, const char *name, uint32_t line = __builtin_LINE(),
                     std::string_view frame = {}) const noexcept {
        const std::string_view arrow = frame.empty() ? style_.frame : frame;
        note({arrow, name, " Begin"}, line);
        const Status status = body();
        if (status == Status::ok) {
            note({arrow, name, " End"}, line);
        }
        return status;
    }

    // The frame of an exported function called by the application.
    template <class Body>
    uint32_t exported(const Body &body, const char *name = __builtin_FUNCTION(),
                      uint32_t line = __builtin_LINE()) const noexcept {
        return static_cast<uint32_t>(announced(body, name, line));
    }

    // The same for a function that writes lines of its own at its entry and exit.
    template <class Body>
    uint32_t unannounced(const Body &body) const noexcept {
        return static_cast<uint32_t>(body());
    }

  private:
    const char *source_;
    TraceStyle style_;
};

}  // namespace za

// The body of an exported function failed: names that function, which must exist.
#define ZA_TRY(exported_name, call)                                                 \
    do {                                                                            \
        static_assert(sizeof(&::exported_name) != 0);                               \
        if (const ::za::Status za_status = (call); za_status != ::za::Status::ok) { \
            return trace.fail(za_status, "------>" #exported_name);                 \
        }                                                                           \
    } while (false)

// As ZA_TRY with a text of its own.
#define ZA_TRY_AS(text, call)                                                       \
    do {                                                                            \
        if (const ::za::Status za_status = (call); za_status != ::za::Status::ok) { \
            return trace.fail(za_status, text);                                     \
        }                                                                           \
    } while (false)

// A helper of our own failed and has written its line already.
#define ZA_PASS(call)                                                               \
    do {                                                                            \
        if (const ::za::Status za_status = (call); za_status != ::za::Status::ok) { \
            return za_status;                                                       \
        }                                                                           \
    } while (false)
