// What a trace line costs when its log cannot be opened: this program has a trace writer of its
// own, compiled for a folder that does not exist.
#include "log.hpp"

namespace {

double failing_opens() {
    return bench::nanoseconds([] {
        for (size_t i = 0; i < bench::kLines; ++i) {
            bench::check(bench::open_log() < 0 && bench::open_log() < 0, "the log can be opened");
        }
    });
}

void unopened_line_against_system_calls(benchmark::State &state) {
    bench::compare(state, {1.15, "line", bench::kLines, "two opens"}, bench::traced_lines,
                   failing_opens);
}

ZA_PAIRED_BENCHMARK(unopened_line_against_system_calls);

}  // namespace

int main(int argc, char **argv) {
    return bench::run(argc, argv);
}
