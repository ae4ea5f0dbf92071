/** Ratios of two ways of doing one thing, measured alternately in one process: times drift on shared machines, ratios
 * much less. */
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

/** Median times, in seconds per call, of two functions that are called in turn. */
struct Paired_Times {
    double plain = 0.0;
    double ours = 0.0;
    double Ratio() const { return ours > 0.0 ? plain / ours : 0.0; }
};

template <class Plain, class Ours>
Paired_Times Pair_Time(int rounds, Plain plain, Ours ours) {
    using Clock = std::chrono::steady_clock;
    std::vector<double> plain_times;
    std::vector<double> our_times;
    const auto time = [](auto& call) {
        const auto start = Clock::now();
        call();
        return std::chrono::duration<double>(Clock::now() - start).count();
    };
    for (int round = 0; round < rounds; ++round) {
        plain_times.push_back(time(plain));
        our_times.push_back(time(ours));
    }
    const auto median = [](std::vector<double>& times) {
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    };
    return {median(plain_times), median(our_times)};
}
