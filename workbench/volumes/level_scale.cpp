#include "workbench/volumes/level_scale.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "workbench/volumes/message_text.h"
#include "workbench/volumes/value_outliers.h"

namespace volumes {

namespace {

constexpr double least_level = std::numeric_limits<std::int32_t>::min();
constexpr double most_level = LEVEL_LARGEST;
constexpr double whole_most = 9.0e15;       // whole numbers up to here are exact as double
constexpr double whole_tolerance = 1.0e-6;  // levels: slopes are written as decimals, 0.3 is not quite three times 0.1
constexpr double rounding = 1.0e-11;        // levels: what the arithmetic itself loses
constexpr double parts_distance = 65536.0;  // of outliers: there are far more steps than for voxels of one scale

struct Range {
    double lowest = 0.0;
    double highest = 0.0;
};

Range Greys_Of(const Scaled_Part& part) {
    const double first = static_cast<double>(part.lowest) * part.slope + part.intercept;
    const double last = static_cast<double>(part.highest) * part.slope + part.intercept;
    return {std::min(first, last), std::max(first, last)};
}

bool Is_Usable(const Scaled_Part& part) {
    const Range greys = Greys_Of(part);
    return std::isfinite(part.slope) && part.slope != 0.0 && std::isfinite(part.intercept) &&
           std::isfinite(greys.lowest) && std::isfinite(greys.highest);
}

/** level = stored * factor + shift, for one part. */
struct Whole_Map {
    std::int64_t factor = 1;
    std::int64_t shift = 0;
    double deviation = 0.0;  // levels: how far the truth is from it at most
};

/** Nothing when the part's values do not fall on whole levels. */
std::optional<Whole_Map> Whole_Map_Of(const Scaled_Part& part, double slope, double intercept) {
    const double factor = part.slope / slope;
    const double shift = (part.intercept - intercept) / slope;
    const double reach =
        std::max(std::abs(static_cast<double>(part.lowest)), std::abs(static_cast<double>(part.highest)));
    if (!(std::abs(factor) * std::max(reach, 1.0) < whole_most) || !(std::abs(shift) < whole_most)) {
        return std::nullopt;
    }
    Whole_Map map{std::llround(factor), std::llround(shift), 0.0};
    map.deviation =
        std::abs(factor - static_cast<double>(map.factor)) * reach + std::abs(shift - static_cast<double>(map.shift));
    if (map.deviation > whole_tolerance) {
        return std::nullopt;
    }
    map.deviation = map.deviation > rounding ? map.deviation : 0.0;
    return map;
}

/** Puts whole levels lowest .. highest where levels can be. @return false: too many */
bool Levels_Place(std::int64_t lowest, std::int64_t highest, Level_Scale& scale) {
    std::int64_t base = 0;
    if (lowest < static_cast<std::int64_t>(least_level) || highest > LEVEL_LARGEST) {
        const std::int64_t span = highest - lowest;
        if (span > static_cast<std::int64_t>(most_level - least_level)) {
            return false;
        }
        base = span <= LEVEL_LARGEST ? lowest : highest - LEVEL_LARGEST;
    }
    scale.intercept += static_cast<double>(base) * scale.slope;
    scale.lowest = static_cast<std::int32_t>(lowest - base);
    scale.highest = static_cast<std::int32_t>(highest - base);
    return true;
}

bool Exact_Choose(const std::vector<Scaled_Part>& parts, const Scaled_Part& finest, Level_Scale& scale) {
    Level_Scale exact = scale;
    exact.slope = finest.slope;
    exact.intercept = finest.intercept;
    std::int64_t lowest = std::numeric_limits<std::int64_t>::max();
    std::int64_t highest = std::numeric_limits<std::int64_t>::min();
    double deviation = 0.0;
    for (const Scaled_Part& part : parts) {
        Whole_Map map;
        if (part.slope != exact.slope || part.intercept != exact.intercept) {
            const std::optional<Whole_Map> found = Whole_Map_Of(part, exact.slope, exact.intercept);
            if (!found) {
                return false;
            }
            map = *found;
        }
        const auto [low, high] =
            std::minmax({part.lowest * map.factor + map.shift, part.highest * map.factor + map.shift});
        lowest = std::min(lowest, low);
        highest = std::max(highest, high);
        deviation = std::max(deviation, map.deviation * std::abs(exact.slope) + part.max_error);
    }
    exact.max_error = deviation;
    if (!Levels_Place(lowest, highest, exact)) {
        return false;
    }
    scale = exact;
    return true;
}

/** Leaves parts outside that would flatten all others. */
Range Outliers_Leave(std::vector<Scaled_Part>& parts, Level_Scale& scale) {
    std::vector<Value_Cluster> clusters;
    for (const Scaled_Part& part : parts) {
        const Range greys = Greys_Of(part);
        clusters.push_back({greys.lowest, greys.highest, std::max<std::uint64_t>(part.count, 1)});
    }
    const Value_Range range = Value_Range_Find(std::move(clusters), parts_distance);
    scale.outlier_nb += range.outlier_nb;
    std::erase_if(parts, [&](const Scaled_Part& part) {
        const Range greys = Greys_Of(part);
        return greys.highest < range.lowest || greys.lowest > range.highest;
    });
    return {range.lowest, range.highest};
}

/** The part with the finest step. One value alone has no step. */
const Scaled_Part& Finest_Of(const std::vector<Scaled_Part>& parts) {
    return *std::ranges::min_element(parts, [](const Scaled_Part& left, const Scaled_Part& right) {
        const bool is_left_one = left.lowest == left.highest;
        const bool is_right_one = right.lowest == right.highest;
        return is_left_one != is_right_one ? is_right_one : std::abs(left.slope) < std::abs(right.slope);
    });
}

void Slopes_Note(const std::vector<Scaled_Part>& parts, Level_Scale& scale) {
    const auto [finest, coarsest] =
        std::ranges::minmax(parts, {}, [](const Scaled_Part& part) { return std::abs(part.slope); });
    scale.finest_slope = std::abs(finest.slope);
    scale.coarsest_slope = std::abs(coarsest.slope);
}

/** Equal steps over the whole range: the finest part's own where there is room. */
void Steps_Choose(const std::vector<Scaled_Part>& parts, const Scaled_Part& finest, Range range, Level_Scale& scale) {
    scale.slope = finest.slope;
    scale.intercept = finest.intercept;
    const auto level_of = [&](double grey) { return std::round((grey - scale.intercept) / scale.slope); };
    const auto is_level = [&](double grey) { return std::abs(level_of(grey)) <= LEVEL_SCALE_STEPS; };
    if (!is_level(range.lowest) || !is_level(range.highest)) {
        const double least = range.highest / LEVEL_SCALE_STEPS - range.lowest / LEVEL_SCALE_STEPS;
        scale.slope = std::max({least, std::abs(finest.slope), std::numeric_limits<double>::min()});
        scale.intercept = range.lowest;
    }
    const auto [lowest, highest] = std::minmax({level_of(range.lowest), level_of(range.highest)});
    scale.lowest = static_cast<std::int32_t>(std::clamp(lowest, least_level, most_level));
    scale.highest = static_cast<std::int32_t>(std::clamp(highest, least_level, most_level));
    double earlier = 0.0;
    for (const Scaled_Part& part : parts) {
        earlier = std::max(earlier, part.max_error);
    }
    scale.max_error = std::abs(scale.slope) / 2.0 + earlier;
}

}  // namespace

Level_Scale Level_Scale_Choose(std::span<const Scaled_Part> parts) {
    Level_Scale scale;
    std::vector<Scaled_Part> inside;
    for (const Scaled_Part& part : parts) {
        if (Is_Usable(part)) {
            inside.push_back(part);
        } else {
            scale.outlier_nb += part.count;
        }
    }
    if (inside.empty()) {
        return scale;
    }
    Scaled_Part finest = Finest_Of(inside);
    Slopes_Note(inside, scale);
    if (Exact_Choose(inside, finest, scale)) {
        return scale;
    }
    Range range = Greys_Of(finest);
    for (const Scaled_Part& part : inside) {
        const Range greys = Greys_Of(part);
        range = {std::min(range.lowest, greys.lowest), std::max(range.highest, greys.highest)};
    }
    const double step = std::abs(finest.slope);
    if (!((range.highest / step) - (range.lowest / step) <= LEVEL_SCALE_STEPS)) {
        range = Outliers_Leave(inside, scale);
        finest = Finest_Of(inside);
        Slopes_Note(inside, scale);
        if (scale.outlier_nb > 0 && Exact_Choose(inside, finest, scale)) {
            return scale;
        }
    }
    Steps_Choose(inside, finest, range, scale);
    return scale;
}

Level_Map::Level_Map(const Scaled_Part& part, const Level_Scale& scale)
    : slope(part.slope / scale.slope),
      intercept((part.intercept - scale.intercept) / scale.slope),
      lowest(scale.lowest),
      highest(scale.highest) {
    if (const std::optional<Whole_Map> map = Whole_Map_Of(part, scale.slope, scale.intercept)) {
        is_exact = true;
        factor = map->factor;
        shift = map->shift;
    }
}

std::int32_t Level_Map::Level(std::int64_t stored) const {
    if (is_exact) {
        const std::int64_t level = stored * factor + shift;
        return level >= lowest && level <= highest ? static_cast<std::int32_t>(level) : LEVEL_OUTSIDE;
    }
    const double level = std::round(static_cast<double>(stored) * slope + intercept);
    return level >= lowest && level <= highest ? static_cast<std::int32_t>(level) : LEVEL_OUTSIDE;
}

std::string Level_Scale_Warning(const Level_Scale& scale, const std::string& parts_name) {
    std::string text;
    // Half a step of the finest part is below what that part can tell apart.
    if (std::abs(scale.slope) > scale.finest_slope * (1.0 + whole_tolerance) && scale.max_error > 0.0) {
        text = "has " + parts_name + " of very different scales (slopes " + Value_Text(scale.finest_slope) + " to " +
               Value_Text(scale.coarsest_slope) + "): greys are rounded to steps of " +
               Value_Text(std::abs(scale.slope)) + " and are at most " + Value_Text(scale.max_error) + " off";
    }
    if (scale.outlier_nb > 0) {
        text += text.empty() ? "has " : "; it has ";
        text += parts_name + " whose scale is far from all others: up to " + Count_Text(scale.outlier_nb) +
                " of their values are left outside the scale, are shown black and count nowhere";
    }
    return text;
}

}  // namespace volumes
