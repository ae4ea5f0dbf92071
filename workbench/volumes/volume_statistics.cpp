#include "workbench/volumes/volume_statistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <mutex>
#include <numeric>
#include <tuple>
#include <vector>

#include "workbench/volumes/level_banks.h"
#include "workbench/volumes/work_share.h"

namespace volumes {

namespace {

constexpr std::size_t HALF_SIZE = std::size_t{1} << 16U;  // values of either half of a 32-bit number
constexpr double WINDOW_REACH = 1e-6;                     // of a single value, at least: what a float can tell apart

// The level's distance from the smallest possible one: keeps the order, and is never negative.
std::uint32_t Ordered(std::int32_t level) {
    return static_cast<std::uint32_t>(level) ^ 0x80000000U;
}
std::int32_t Level_From_Ordered(std::uint32_t ordered) {
    return static_cast<std::int32_t>(ordered ^ 0x80000000U);
}

// Moves `rank` on to its position inside the bin it falls into. @return that bin
std::size_t Bin_Of_Rank(const std::vector<std::uint64_t>& bins, std::uint64_t& rank) {
    std::size_t bin = 0;
    while (bin + 1 < bins.size() && rank >= bins[bin]) {
        rank -= bins[bin];
        ++bin;
    }
    return bin;
}

// Exact order statistics of levels without a copy: one pass counts the upper halves of the numbers, one more per
// question the lower halves of those that share the right upper one.
class Level_Ranking {
  public:
    // Levels outside are the largest number: they come after all ranks that are asked for.
    explicit Level_Ranking(const Level_View& all_levels) : levels(all_levels), upper(HALF_SIZE) {
        levels.Visit([this](const auto& own) {
            for (const std::int32_t level : own) {
                ++upper[Ordered(level) >> 16U];
            }
        });
    }

    // The level at position `rank` of the sorted ones, from 0.
    std::int32_t Level_At(std::uint64_t rank) const {
        const std::size_t bin = Bin_Of_Rank(upper, rank);
        std::vector<std::uint64_t> lower(HALF_SIZE);
        levels.Visit([&](const auto& own) {
            for (const std::int32_t level : own) {
                const std::uint32_t ordered = Ordered(level);
                if ((ordered >> 16U) == bin) {
                    ++lower[ordered & 0xFFFFU];
                }
            }
        });
        const std::size_t low = Bin_Of_Rank(lower, rank);
        return Level_From_Ordered(static_cast<std::uint32_t>((bin << 16U) | low));
    }

  private:
    Level_View levels;
    std::vector<std::uint64_t> upper;
};

// Position of the smallest value that at least `share` of `count` values do not exceed.
std::uint64_t Rank_Of_Share(double share, std::uint64_t count) {
    const double rank = std::ceil(share * static_cast<double>(count));
    return static_cast<std::uint64_t>(std::clamp(rank, 1.0, static_cast<double>(count))) - 1;
}

void Window_Mend(Volume_Statistics& statistics) {
    if (!(statistics.window_low < statistics.window_high)) {
        statistics.window_low = statistics.min;
        statistics.window_high = statistics.max;
    }
    if (!(statistics.window_low < statistics.window_high)) {
        // The one value stands in the middle of the window. Half is not enough where a float has no room for it.
        const double value = statistics.window_low;
        const double reach = std::max(0.5, std::abs(value) * WINDOW_REACH);
        statistics.window_low = value - reach;
        statistics.window_high = value + reach;
    }
}

Volume_Statistics Statistics_Of_Color(const Level_View& levels) {
    std::array<std::uint64_t, 256> bins{};
    levels.Visit([&](const auto& own) {
        for (const std::int32_t level : own) {
            for (int shift = 0; shift < 24; shift += 8) {
                ++bins[static_cast<std::size_t>((level >> shift) & 0xFF)];
            }
        }
    });
    Volume_Statistics statistics;
    statistics.count = static_cast<std::uint64_t>(levels.size()) * 3;
    double sum = 0;
    double square_sum = 0;
    for (std::size_t i = 0; i < bins.size(); ++i) {
        sum += static_cast<double>(i) * static_cast<double>(bins[i]);
        square_sum += static_cast<double>(i * i) * static_cast<double>(bins[i]);
    }
    const auto count = static_cast<double>(statistics.count);
    statistics.mean = sum / count;
    statistics.sd = std::sqrt(std::max(0.0, square_sum / count - statistics.mean * statistics.mean));
    const std::vector<std::uint64_t> list(bins.begin(), bins.end());
    const auto at = [&](std::uint64_t rank) { return static_cast<double>(Bin_Of_Rank(list, rank)); };
    statistics.min = at(0);
    statistics.max = at(statistics.count - 1);
    statistics.window_low = at(Rank_Of_Share(WINDOW_TAIL, statistics.count));
    statistics.window_high = at(Rank_Of_Share(1.0 - WINDOW_TAIL, statistics.count));
    return statistics;
}

// Levels of a narrow range, counted one by one: everything else follows from the counts. Spread over the processors.
class Level_Counts {
  public:
    static constexpr std::int64_t RANGE_MOST = std::int64_t{1} << 18U;

    explicit Level_Counts(const Level_Tally& tally) : lowest(tally.lowest), counts(tally.times) {}
    explicit Level_Counts(const Volume& volume) : lowest(volume.level_min) {
        const auto level_nb = static_cast<std::size_t>(std::int64_t{volume.level_max} - volume.level_min + 1);
        const std::size_t size = volume.levels.size();
        const std::size_t tables_most = std::max<std::size_t>(TABLES_SIZE_MOST / Level_Banks::Size(level_nb + 1), 1);
        const std::size_t parts = Work_Thread_Nb(std::clamp<std::size_t>(size / PART_LEAST, 1, tables_most));
        counts.resize(level_nb);
        std::mutex mutex;
        const auto count = [&](std::size_t part) {
            Level_Banks banks(level_nb + 1);  // what lies outside is counted beside the levels
            const std::size_t end = size * (part + 1) / parts;
            std::size_t i = size * part / parts;
            while (i < end) {
                const std::size_t block_end = std::min(end, i + Level_Banks::COUNTED_MOST);
                volume.levels.Visit([&](const auto& levels) {
                    for (; i < block_end; ++i) {
                        const auto from_lowest =
                            static_cast<std::uint32_t>(levels[i]) - static_cast<std::uint32_t>(volume.level_min);
                        banks.Count(std::min<std::size_t>(from_lowest, level_nb), i);
                    }
                });
                const std::lock_guard lock(mutex);
                banks.Empty_To(counts);
            }
        };
        Work_Share(parts, parts, count, {});
    }

    std::uint64_t Count() const { return std::accumulate(counts.begin(), counts.end(), std::uint64_t{0}); }
    /** Calls `take` with every level and how often it occurs. */
    template <class Take>
    void For_Each(Take take) const {
        for (std::size_t at = 0; at < counts.size(); ++at) {
            take(Level(at), counts[at]);
        }
    }
    /** The level at position `rank` of the sorted ones, from 0. */
    std::int32_t Level_At(std::uint64_t rank) const { return Level(Bin_Of_Rank(counts, rank)); }

  private:
    static constexpr std::size_t PART_LEAST = std::size_t{1} << 20U;        // levels that are worth a thread
    static constexpr std::size_t TABLES_SIZE_MOST = std::size_t{8} << 20U;  // bytes, of all threads
    std::int32_t Level(std::size_t at) const {
        return static_cast<std::int32_t>(std::int64_t{lowest} + static_cast<std::int64_t>(at));
    }

    std::int32_t lowest;
    std::vector<std::uint64_t> counts;
};

// What levels that were counted, or are looked through, have in common.
template <class Ranking>
Volume_Statistics Statistics_Of(const Volume& volume, std::uint64_t count, double mean, double square_sum,
                                const Ranking& ranking) {
    Volume_Statistics statistics;
    statistics.count = count;
    const auto grey = [&](double level) { return level * volume.slope + volume.intercept; };
    const auto percentile = [&](double share) { return grey(ranking.Level_At(Rank_Of_Share(share, count))); };
    // A negative slope turns the order round.
    std::tie(statistics.min, statistics.max) = std::minmax({grey(volume.level_min), grey(volume.level_max)});
    std::tie(statistics.window_low, statistics.window_high) =
        std::minmax({percentile(WINDOW_TAIL), percentile(1.0 - WINDOW_TAIL)});
    statistics.mean = grey(mean);
    statistics.sd = std::sqrt(std::max(0.0, square_sum / static_cast<double>(count))) * std::fabs(volume.slope);
    return statistics;
}

Volume_Statistics Statistics_Of_Counts(const Volume& volume, const Level_Counts& counts) {
    const std::uint64_t count = counts.Count();
    if (count == 0) {
        return {};
    }
    std::int64_t sum = 0;
    counts.For_Each([&](std::int32_t level, std::uint64_t times) { sum += level * static_cast<std::int64_t>(times); });
    const double mean = static_cast<double>(sum) / static_cast<double>(count);
    double square_sum = 0.0;
    counts.For_Each([&](std::int32_t level, std::uint64_t times) {
        square_sum += (level - mean) * (level - mean) * static_cast<double>(times);
    });
    return Statistics_Of(volume, count, mean, square_sum, counts);
}

Volume_Statistics Statistics_Of_Grey(const Volume& volume) {
    if (volume.level_max <= LEVEL_LARGEST &&
        std::int64_t{volume.level_max} - volume.level_min < Level_Counts::RANGE_MOST) {
        return Statistics_Of_Counts(volume, Level_Counts(volume));
    }
    Volume_Statistics statistics;
    std::int64_t sum = 0;
    volume.levels.Visit([&](const auto& levels) {
        for (const std::int32_t level : levels) {
            const bool is_inside = level != LEVEL_OUTSIDE;
            sum += is_inside ? level : 0;
            statistics.count += is_inside ? 1 : 0;
        }
    });
    if (statistics.count == 0) {
        return statistics;
    }
    const double mean = static_cast<double>(sum) / static_cast<double>(statistics.count);
    double square_sum = 0.0;
    volume.levels.Visit([&](const auto& levels) {
        for (const std::int32_t level : levels) {
            square_sum += level != LEVEL_OUTSIDE ? (level - mean) * (level - mean) : 0.0;
        }
    });
    return Statistics_Of(volume, statistics.count, mean, square_sum, Level_Ranking(volume.levels));
}

}  // namespace

Volume_Statistics Volume_Statistics_Compute(const Volume& volume, const Level_Tally* tally) {
    if (volume.levels.empty()) {
        return {};
    }
    const auto of_grey = [&] {
        return tally != nullptr ? Statistics_Of_Counts(volume, Level_Counts(*tally)) : Statistics_Of_Grey(volume);
    };
    Volume_Statistics statistics = volume.color ? Statistics_Of_Color(volume.levels) : of_grey();
    Window_Mend(statistics);
    return statistics;
}

}  // namespace volumes
