#pragma once
// Timings by topic. A file bench/<topic>_bench.cpp registers one topic at namespace scope:
//
//     const bool registered = Register("reading", [] { return std::vector<BenchRow>{...}; });
//
// and main() runs the topics and prints their rows as a table or as JSON.

#include <algorithm>
#include <chrono>
#include <ctime>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace nmr::bench {

/// One line of the table. A limit of 0 means that none is set.
struct BenchRow {
    std::string name;
    double measured = 0.0;
    std::string unit = "ms";
    double limit = 0.0; ///< largest allowed value of `measured`, in the same unit
    std::string note = {};
};

using Measure = std::function<std::vector<BenchRow>()>;

/// Topics run in the order of their names. The return value only serves the initialiser.
bool Register(std::string topic, Measure measure);

/// Milliseconds of one call.
template <class Body>
double OnceMs(Body&& body)
{
    const auto start = std::chrono::steady_clock::now();
    body();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The best of `times` calls: on a machine with other work the smallest time is the least disturbed.
template <class Body>
double BestMs(int times, Body&& body)
{
    double best = std::numeric_limits<double>::infinity();
    for (int i = 0; i < times; ++i) best = std::min(best, OnceMs(body));
    return best;
}

/// Processor time of the best of several calls: one thread is asked about, whatever else the machine does.
template <class Body>
double BestCpuMs(int times, Body&& body)
{
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return 1e3 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
    };
    double best = std::numeric_limits<double>::infinity();
    for (int i = 0; i < times; ++i) {
        const double start = now();
        body();
        best = std::min(best, now() - start);
    }
    return best;
}

/// Things to be compared take turns, so that a disturbance of the machine meets all of them; in its
/// turn each runs twice and the second run counts, so that none finds the other's data in the cache.
struct Contender {
    std::function<void()> prepare; ///< not timed, before every run
    std::function<void()> run;
};
/// The best time of each contender, in their order.
std::vector<double> BestMsInTurns(int times, const std::vector<Contender>& contenders);

} // namespace nmr::bench
