#include "workbench/model/propagation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "workbench/volumes/volume.h"

namespace workbench {

namespace {

constexpr std::uint8_t UNREACHED = 255;  // distance of pixels that lie deeper than any band

struct Tag_Levels {
    double mean = 0.0;
    double range = 0.0;  ///< farthest distance from the mean that fits
};

bool Is_Carried(const Propagation_Tags& tags, std::uint8_t tag) {
    return tag != 0 && tags.carried[tag] != 0;
}

std::array<Tag_Levels, TAG_MAX> Measure(const Propagation_Frames& frames, const Grow_Options& options) {
    std::array<double, TAG_MAX> count{};
    std::array<double, TAG_MAX> sum{};
    std::array<double, TAG_MAX> square{};
    for (std::size_t at = 0; at < frames.from_tags.size(); ++at) {
        if (frames.from_levels[at] == volumes::LEVEL_OUTSIDE) {
            continue;
        }
        const std::uint8_t tag = frames.from_tags[at];
        const auto level = static_cast<double>(frames.from_levels[at]);
        count[tag] += 1.0;
        sum[tag] += level;
        square[tag] += level * level;
    }
    std::array<Tag_Levels, TAG_MAX> levels{};
    for (std::size_t tag = 0; tag < levels.size(); ++tag) {
        if (count[tag] > 0.0) {
            const double mean = sum[tag] / count[tag];
            const double variance = std::max(0.0, square[tag] / count[tag] - mean * mean);
            levels[tag] = {mean, std::max<double>(options.least_range, options.deviations * std::sqrt(variance))};
        }
    }
    return levels;
}

/** Walks outwards from a set of pixels, one ring of the four neighbours at a time. */
class Ring_Walk {
  public:
    Ring_Walk(int walk_width, int walk_height) : width(walk_width), height(walk_height) {}

    std::vector<std::uint32_t> ring;  ///< the pixels reached last; to be filled with the first ones

    /** One step outwards: `enter(from, to)` says whether a neighbour joins the next ring. */
    template <class Enter>
    void Step(Enter enter) {
        next.clear();
        const auto stride = static_cast<std::uint32_t>(width);
        for (const std::uint32_t at : ring) {
            const int x = static_cast<int>(at % stride);
            const int y = static_cast<int>(at / stride);
            if (x > 0 && enter(at, at - 1)) {
                next.push_back(at - 1);
            }
            if (x + 1 < width && enter(at, at + 1)) {
                next.push_back(at + 1);
            }
            if (y > 0 && enter(at, at - stride)) {
                next.push_back(at - stride);
            }
            if (y + 1 < height && enter(at, at + stride)) {
                next.push_back(at + stride);
            }
        }
        ring.swap(next);
    }

  private:
    int width;
    int height;
    std::vector<std::uint32_t> next;
};

/** Distance of every carried pixel to the border of its area, 1 at the border, up to `band`; deeper ones stay
 * unreached. */
std::vector<std::uint8_t> Border_Distance(const Propagation_Frames& frames, const Propagation_Tags& tags, int band) {
    const auto& from = frames.from_tags;
    const auto width = static_cast<std::size_t>(frames.width);
    std::vector<std::uint8_t> distance(from.size(), UNREACHED);
    Ring_Walk walk(frames.width, frames.height);
    for (int y = 0; y < frames.height; ++y) {
        for (int x = 0; x < frames.width; ++x) {
            const std::size_t at = static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x);
            const std::uint8_t tag = from[at];
            if (Is_Carried(tags, tag) &&
                ((x > 0 && from[at - 1] != tag) || (x + 1 < frames.width && from[at + 1] != tag) ||
                 (y > 0 && from[at - width] != tag) || (y + 1 < frames.height && from[at + width] != tag))) {
                distance[at] = 1;
                walk.ring.push_back(static_cast<std::uint32_t>(at));
            }
        }
    }
    for (int step = 2; step <= band && !walk.ring.empty(); ++step) {
        walk.Step([&](std::uint32_t at, std::uint32_t to) {
            if (from[to] != from[at] || distance[to] != UNREACHED) {
                return false;
            }
            distance[to] = static_cast<std::uint8_t>(step);
            return true;
        });
    }
    return distance;
}

/** Where "grow" begins: the insides, and of TAGs without one every pixel of the old area that `fits`. */
template <class Fits>
std::vector<std::uint32_t> Starts(const Propagation_Frames& frames, const Propagation_Tags& tags,
                                  const std::vector<std::uint8_t>& distance, Fits fits) {
    const auto& from = frames.from_tags;
    std::array<bool, TAG_MAX> has_inside{};
    for (std::size_t at = 0; at < from.size(); ++at) {
        if (Is_Carried(tags, from[at]) && distance[at] == UNREACHED) {
            has_inside[from[at]] = true;
        }
    }
    std::vector<std::uint32_t> starts;
    for (std::size_t at = 0; at < from.size(); ++at) {
        const std::uint8_t tag = from[at];
        if (Is_Carried(tags, tag) && (distance[at] == UNREACHED || (!has_inside[tag] && fits(at, tag)))) {
            starts.push_back(static_cast<std::uint32_t>(at));
        }
    }
    return starts;
}

}  // namespace

std::size_t Propagate_Copy(const Propagation_Frames& frames, const Propagation_Tags& tags) {
    std::size_t carried = 0;
    for (std::size_t at = 0; at < frames.from_tags.size(); ++at) {
        const std::uint8_t tag = frames.from_tags[at];
        if (Is_Carried(tags, tag) && tags.locked[frames.to_tags[at]] == 0) {
            frames.to_tags[at] = tag;
            ++carried;
        }
    }
    return carried;
}

std::size_t Propagate_Grow(const Propagation_Frames& frames, const Propagation_Tags& tags,
                           const Grow_Options& options) {
    const int band = std::clamp(options.band, 1, UNREACHED - 1);
    const std::array<Tag_Levels, TAG_MAX> levels = Measure(frames, options);
    const auto& from = frames.from_tags;
    const auto level_fits = [&](std::int32_t level, std::uint8_t tag) {
        return level != volumes::LEVEL_OUTSIDE &&
               std::abs(static_cast<double>(level) - levels[tag].mean) <= levels[tag].range;
    };
    const auto fits = [&](std::size_t at, std::uint8_t tag) { return level_fits(frames.to_levels[at], tag); };
    Ring_Walk walk(frames.width, frames.height);
    walk.ring = Starts(frames, tags, Border_Distance(frames, tags, band), fits);
    std::vector<std::uint8_t> result(from.size());  // the carried TAG, 0: none
    for (const std::uint32_t at : walk.ring) {
        result[at] = from[at];
    }
    const auto may_take = [&](std::uint32_t to, std::uint8_t tag) {
        return result[to] == 0 && tags.locked[frames.to_tags[to]] == 0 && fits(to, tag);
    };
    // From the insides to the old borders.
    while (!walk.ring.empty()) {
        walk.Step([&](std::uint32_t at, std::uint32_t to) {
            if (from[to] != result[at] || !may_take(to, result[at])) {
                return false;
            }
            result[to] = result[at];
            return true;
        });
    }
    // From there outwards. What fitted before and was left out stays out: a border through even tissue does not creep.
    for (std::size_t at = 0; at < result.size(); ++at) {
        if (result[at] != 0) {
            walk.ring.push_back(static_cast<std::uint32_t>(at));
        }
    }
    for (int step = 0; step < band && !walk.ring.empty(); ++step) {
        walk.Step([&](std::uint32_t at, std::uint32_t to) {
            const std::uint8_t tag = result[at];
            const bool is_free = Is_Carried(tags, from[to]) || frames.to_tags[to] == 0;
            if (!is_free || !may_take(to, tag) || level_fits(frames.from_levels[to], tag)) {
                return false;
            }
            result[to] = tag;
            return true;
        });
    }
    std::size_t carried = 0;
    for (std::size_t at = 0; at < result.size(); ++at) {
        if (result[at] != 0 && tags.locked[frames.to_tags[at]] == 0) {
            frames.to_tags[at] = result[at];
            ++carried;
        }
    }
    return carried;
}

double Overlap(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b, const Tag_Flags& carried) {
    std::uint64_t common = 0;
    std::uint64_t areas = 0;
    for (std::size_t at = 0; at < std::min(a.size(), b.size()); ++at) {
        const bool in_a = a[at] != 0 && carried[a[at]] != 0;
        const bool in_b = b[at] != 0 && carried[b[at]] != 0;
        common += in_a && a[at] == b[at] ? 1U : 0U;
        areas += (in_a ? 1U : 0U) + (in_b ? 1U : 0U);
    }
    return areas == 0 ? 1.0 : 2.0 * static_cast<double>(common) / static_cast<double>(areas);
}

}  // namespace workbench
