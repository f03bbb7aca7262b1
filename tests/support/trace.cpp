// Stands in the place of the library's own trace writer.
#include "support/trace.hpp"

#include "runtime/trace.hpp"

namespace za::test {
namespace {

bool recording = false;
Trail remembered;

}  // namespace

TraceRecord::TraceRecord() {
    remembered.clear();
    recording = true;
}

TraceRecord::~TraceRecord() {
    recording = false;
}

Trail TraceRecord::lines() const {
    return remembered;
}

Trail TraceRecord::failures() const {
    Trail failures;
    for (const std::string &line : remembered) {
        if (line.starts_with("-")) {
            failures.push_back(line);
        }
    }
    return failures;
}

}  // namespace za::test

void za::write_trace(const char *, uint32_t, const TraceText &text) noexcept {
    if (za::test::recording) {
        za::test::remembered.push_back(std::string(text.head) + std::string(text.body) +
                                       std::string(text.tail));
    }
}
