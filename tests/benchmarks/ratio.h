/** Ratios of two ways of doing one thing, measured alternately in one process: times drift on shared machines, ratios
 * much less. */
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

/** Times, in seconds per call, of two functions that are called in turn: medians or the least. */
struct Paired_Times {
    double plain = 0.0;
    double ours = 0.0;
    double Ratio() const { return ours > 0.0 ? plain / ours : 0.0; }
};

/** Which of the rounds' times counts. The least for what takes microseconds: other programs on the same core only make
 * it longer. */
enum class Of_Rounds { Median, Least };

template <class Plain, class Ours>
Paired_Times Pair_Time(int rounds, Plain plain, Ours ours, Of_Rounds of = Of_Rounds::Median) {
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
    const auto counts = [of](std::vector<double>& times) {
        std::sort(times.begin(), times.end());
        return of == Of_Rounds::Least ? times.front() : times[times.size() / 2];
    };
    return {counts(plain_times), counts(our_times)};
}
