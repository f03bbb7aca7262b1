// Ours against another way of the same work, in pairs: each repetition measures both, one right
// after the other, so that whatever else the machine does falls on both alike.
#pragma once

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <string>
#include <vector>

namespace bench {

constexpr int kPairs = 301;

// Ends a benchmark whose work did not happen; its time would mean nothing.
inline void check(bool done, const char *what) {
    if (!done) {
        throw std::runtime_error(what);
    }
}

// The thread's processor time, in the kernel too: a long repetition is interrupted by other
// programs more often than a short one, and by the clock on the wall would lose for that.
inline double now() {
    timespec time{};
    check(clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time) == 0, "clock_gettime");
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

template <class Work>
double nanoseconds(const Work &work) {
    const double start = now();
    work();
    return now() - start;
}

class Series {
  public:
    void add(double value) { values_.push_back(value); }
    double median() { return quantile(1, 2); }
    double quantile(size_t part, size_t of) {
        std::sort(values_.begin(), values_.end());
        return values_.at(values_.size() * part / of);
    }

  private:
    std::vector<double> values_;
};

// What a comparison is held against, and what its times are given for.
struct Bar {
    double most_ratio;
    const char *item;
    size_t items;  // in one repetition
    const char *peer;
};

class Comparison {
  public:
    explicit Comparison(const Bar &bar) : bar_(bar) {}

    void add(double ours, double theirs) {
        const auto items = static_cast<double>(bar_.items);
        ours_.add(ours / items);
        theirs_.add(theirs / items);
        ratios_.add(ours / theirs);
    }

    std::string verdict() {
        const double ratio = ratios_.median();
        std::string text(200, '\0');
        const int length = std::snprintf(
            text.data(), text.size(),
            "per %s: ours %.0f ns, %s %.0f ns; ratio %.4f (quartiles %.4f, %.4f), bar %.2f: %s",
            bar_.item, ours_.median(), bar_.peer, theirs_.median(), ratio, ratios_.quantile(1, 4),
            ratios_.quantile(3, 4), bar_.most_ratio, ratio <= bar_.most_ratio ? "met" : "not met");
        text.resize(static_cast<size_t>(length));
        return text;
    }

  private:
    Bar bar_;
    Series ours_;
    Series theirs_;
    Series ratios_;
};

// `ours` and `theirs` do one repetition each and return the nanoseconds of its measured part. The
// ratio is the median of the pairs' ratios; which of a pair comes first alternates.
template <class Ours, class Theirs>
void compare(benchmark::State &state, const Bar &bar, const Ours &ours, const Theirs &theirs) {
    Comparison comparison(bar);
    bool ours_first = false;
    try {
        for (auto _ : state) {
            ours_first = !ours_first;
            const double early = ours_first ? ours() : theirs();
            const double late = ours_first ? theirs() : ours();
            const double our_time = ours_first ? early : late;
            comparison.add(our_time, ours_first ? late : early);
            state.SetIterationTime(our_time / static_cast<double>(bar.items) * 1e-9);
        }
        state.SetLabel(comparison.verdict());
    } catch (const std::exception &failure) {
        state.SkipWithError(failure.what());
    }
}

// The zone stands in the results: reading a certificate's times costs more in some than in others.
inline int run(int argc, char **argv) {
    const char *zone = std::getenv("TZ");
    benchmark::AddCustomContext("TZ", zone == nullptr ? "(unset)" : zone);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return EXIT_FAILURE;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}

}  // namespace bench

// A function of type void(benchmark::State &) that calls compare().
#define ZA_PAIRED_BENCHMARK(function) \
    BENCHMARK(function)->Iterations(::bench::kPairs)->UseManualTime()->Unit(benchmark::kNanosecond)
