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
    Trail failures = remembered;
    std::erase_if(failures, [](const std::string &line) { return !line.starts_with("-"); });
    return failures;
}

}  // namespace za::test

void za::write_trace(const char *, uint32_t, const TraceText &text) noexcept {
    if (za::test::recording) {
        za::test::remembered.push_back(std::string(text.head) + std::string(text.body) +
                                       std::string(text.tail));
    }
}
