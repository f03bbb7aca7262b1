// What a trace line costs beyond the system calls it cannot do without.
#include "log.hpp"

#include <fstream>
#include <iterator>
#include <string>

namespace {

// The octets that one call appends, read back from the log.
std::string appended_octets() {
    std::ifstream log(bench::kLog, std::ios::binary | std::ios::ate);
    bench::trace_line();
    return {std::istreambuf_iterator<char>(log), {}};
}

void append_bare(std::string_view octets) {
    const int file = bench::open_log();
    bench::check(write(file, octets.data(), octets.size()) == static_cast<ssize_t>(octets.size()),
                 "write");
    bench::check(close(file) == 0, "close");
}

void line_against_system_calls(benchmark::State &state) {
    const std::string octets = bench::log_opens() ? appended_octets() : "";
    if (octets.empty()) {
        state.SkipWithError("the trace log cannot be written");
        return;
    }
    const auto bare = [&] {
        return bench::nanoseconds([&] {
            for (size_t i = 0; i < bench::kLines; ++i) {
                append_bare(octets);
            }
        });
    };
    bench::compare(state, {1.15, "line", bench::kLines, "open/write/close"}, bench::traced_lines,
                   bare);
}

ZA_PAIRED_BENCHMARK(line_against_system_calls);

}  // namespace

int main(int argc, char **argv) {
    return bench::run(argc, argv);
}
