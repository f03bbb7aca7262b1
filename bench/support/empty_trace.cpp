// A trace that writes nothing, linked in the place of the real one.
#include "runtime/trace.hpp"

void za::write_trace(const char *, uint32_t, const TraceText &) noexcept {}
