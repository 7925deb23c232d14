// The time of a piece of work, so that two pieces can be set in relation within one run.

#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <limits>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {

/// The shortest of several runs, in microseconds of processor time: other programs take no part in it. The
/// clock counts microseconds, so that short runs are taken many at a time.
struct Best {
    int runs = 1;
    double time = std::numeric_limits<double>::max();

    template <typename Run>
    void Take(Run run) {
        const std::clock_t start = std::clock();
        for (int left = runs; left > 0; --left) run();
        const auto spent = static_cast<double>(std::clock() - start);
        time = std::min(time, spent / CLOCKS_PER_SEC * 1e6 / runs);
    }
};

/// Fills the processor's caches with other bytes.
inline void CachesFlush() {
    constexpr std::size_t MoreThanCaches = std::size_t{96} << 20U;
    constexpr std::size_t LineBytes = 64;
    static std::vector<unsigned char> bytes(MoreThanCaches);
    for (std::size_t at = 0; at < bytes.size(); at += LineBytes) ++bytes[at];
    benchmark::ClobberMemory();
}

/// The median of single runs, each with cold caches, in microseconds of processor time.
struct Cold {
    std::vector<double> times{};

    template <typename Run>
    void Take(Run run) {
        CachesFlush();
        const std::clock_t start = std::clock();
        run();
        times.push_back(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC * 1e6);
    }
    double Median() {
        const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
        std::nth_element(times.begin(), middle, times.end());
        return *middle;
    }
};

}  // namespace bench
