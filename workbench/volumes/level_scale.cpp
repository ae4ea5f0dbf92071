#include "workbench/volumes/level_scale.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>

#include "workbench/volumes/message_text.h"
#include "workbench/volumes/value_outliers.h"

namespace volumes {

namespace {

constexpr double LEAST_LEVEL = std::numeric_limits<std::int32_t>::min();
constexpr double MOST_LEVEL = LEVEL_LARGEST;
constexpr double WHOLE_MOST = 9.0e15;       // whole numbers up to here are exact as double
constexpr double WHOLE_TOLERANCE = 1.0e-6;  // levels: slopes are written as decimals, 0.3 is not quite three times 0.1
constexpr double ROUNDING = 1.0e-11;        // levels: what the arithmetic itself loses
constexpr double ROUNDING_SHARE = 1.0e-15;  // of a level's magnitude: the same for large levels
constexpr double PARTS_DISTANCE = 65536.0;  // of outliers: nearer ones leave QUANTISED_STEPS to the others
constexpr double STEPS_MOST = static_cast<double>(LEVEL_SCALE_STEPS);
static_assert(STEPS_MOST / QUANTISED_STEPS >= PARTS_DISTANCE);

struct Range {
    double lowest = 0.0;
    double highest = 0.0;
};

Range Greys_Of(const Scaled_Part& part) {
    const double first = static_cast<double>(part.lowest) * part.slope + part.intercept;
    const double last = static_cast<double>(part.highest) * part.slope + part.intercept;
    return {std::min(first, last), std::max(first, last)};
}

bool Is_One_Value(const Scaled_Part& part) {
    return part.lowest == part.highest;
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
    if (!(std::abs(factor) * std::max(reach, 1.0) < WHOLE_MOST) || !(std::abs(shift) < WHOLE_MOST)) {
        return std::nullopt;
    }
    Whole_Map map{std::llround(factor), std::llround(shift), 0.0};
    map.deviation =
        std::abs(factor - static_cast<double>(map.factor)) * reach + std::abs(shift - static_cast<double>(map.shift));
    if (map.deviation > WHOLE_TOLERANCE) {
        return std::nullopt;
    }
    const double least = std::max(ROUNDING, ROUNDING_SHARE * (std::abs(factor) * reach + std::abs(shift)));
    map.deviation = map.deviation > least ? map.deviation : 0.0;
    return map;
}

/** The smallest number of even pieces of 1 that a number is a whole number of; 0: there are too many. */
std::int64_t Pieces_Of(double number) {
    constexpr double pieces_most = 1.0e6;
    constexpr double whole = 1.0e-9;
    // By continued fractions: the best approximations, with growing denominators.
    double before = 0.0;
    double pieces = 1.0;
    double rest = std::abs(number);
    while (pieces <= pieces_most && std::abs(number) * pieces < WHOLE_MOST) {
        if (std::abs(number * pieces - std::round(number * pieces)) <= whole) {
            return std::llround(pieces);
        }
        rest = 1.0 / (rest - std::floor(rest));
        const double next = std::floor(rest) * pieces + before;
        before = pieces;
        pieces = next;
    }
    return 0;
}

/** Into how many pieces the finest slope has to be cut so that the values of all parts are whole numbers of them; 0:
 * that is not possible. */
std::int64_t Pieces_Needed(const std::vector<Scaled_Part>& parts, const Scaled_Part& finest) {
    constexpr std::int64_t most = std::int64_t{1} << 31U;
    std::int64_t needed = 1;
    for (const Scaled_Part& part : parts) {
        for (const double number : {part.slope / finest.slope, (part.intercept - finest.intercept) / finest.slope}) {
            const std::int64_t pieces = std::isfinite(number) ? Pieces_Of(number) : 0;
            if (pieces == 0 || std::lcm(needed, pieces) > most) {
                return 0;
            }
            needed = std::lcm(needed, pieces);
        }
    }
    return needed;
}

/** Puts whole levels lowest .. highest where levels can be. @return false: too many */
bool Levels_Place(std::int64_t lowest, std::int64_t highest, Level_Scale& scale) {
    std::int64_t base = 0;
    if (lowest < static_cast<std::int64_t>(LEAST_LEVEL) || highest > LEVEL_LARGEST) {
        const std::int64_t span = highest - lowest;
        if (span > LEVEL_SCALE_STEPS) {
            return false;
        }
        base = span <= LEVEL_LARGEST ? lowest : highest - LEVEL_LARGEST;
    }
    scale.intercept += static_cast<double>(base) * scale.slope;
    scale.lowest = static_cast<std::int32_t>(lowest - base);
    scale.highest = static_cast<std::int32_t>(highest - base);
    return true;
}

/** @param pieces of the finest slope that make up a step */
bool Exact_Choose(const std::vector<Scaled_Part>& parts, const Scaled_Part& finest, std::int64_t pieces,
                  Level_Scale& scale) {
    Level_Scale exact = scale;
    exact.slope = finest.slope / static_cast<double>(pieces);
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

/** The same with the slope itself, or with even pieces of it. */
bool Exact_Choose(const std::vector<Scaled_Part>& parts, const Scaled_Part& finest, Level_Scale& scale) {
    if (Exact_Choose(parts, finest, 1, scale)) {
        return true;
    }
    const std::int64_t pieces = Pieces_Needed(parts, finest);
    return pieces > 1 && Exact_Choose(parts, finest, pieces, scale);
}

/** Leaves parts outside that would flatten all others. */
Range Outliers_Leave(std::vector<Scaled_Part>& parts, Level_Scale& scale) {
    std::vector<Value_Cluster> clusters;
    for (const Scaled_Part& part : parts) {
        const Range greys = Greys_Of(part);
        clusters.push_back({greys.lowest, greys.highest, std::max<std::uint64_t>(part.count, 1)});
    }
    const Value_Range range = Value_Range_Find(std::move(clusters), PARTS_DISTANCE);
    scale.outlier_nb += range.outlier_nb;
    scale.outlier_lowest = range.outlier_lowest;
    scale.outlier_highest = range.outlier_highest;
    std::erase_if(parts, [&](const Scaled_Part& part) {
        const Range greys = Greys_Of(part);
        return greys.highest < range.lowest || greys.lowest > range.highest;
    });
    return {range.lowest, range.highest};
}

/** The part with the finest step. One value alone has no step. */
const Scaled_Part& Finest_Of(const std::vector<Scaled_Part>& parts) {
    return *std::ranges::min_element(parts, [](const Scaled_Part& left, const Scaled_Part& right) {
        const bool is_left_one = Is_One_Value(left);
        const bool is_right_one = Is_One_Value(right);
        return is_left_one != is_right_one ? is_right_one : std::abs(left.slope) < std::abs(right.slope);
    });
}

void Slopes_Note(const std::vector<Scaled_Part>& parts, Level_Scale& scale) {
    scale.finest_slope = scale.coarsest_slope = std::abs(Finest_Of(parts).slope);
    for (const Scaled_Part& part : parts) {
        if (!Is_One_Value(part)) {
            scale.coarsest_slope = std::max(scale.coarsest_slope, std::abs(part.slope));
        }
    }
}

/** What has one value has no step of its own: the finest one's stands for it. */
void Single_Values_Fit(std::vector<Scaled_Part>& parts, const Scaled_Part& finest) {
    for (Scaled_Part& part : parts) {
        if (Is_One_Value(part) && part.slope != finest.slope) {
            part.intercept += static_cast<double>(part.lowest) * part.slope;
            part.slope = finest.slope;
            part.lowest = part.highest = 0;
        }
    }
}

/** Steps from the smallest value to the largest; may be more than a double where the step is tiny. */
double Steps_Of(Range range, double step) {
    return range.highest / step - range.lowest / step;
}

/** Equal steps over the whole range: the finest part's own where there is room. */
void Steps_Choose(const std::vector<Scaled_Part>& parts, const Scaled_Part& finest, Range range, Level_Scale& scale) {
    scale.slope = finest.slope;
    scale.intercept = finest.intercept;
    const auto level_of = [&](double grey) { return std::round((grey - scale.intercept) / scale.slope); };
    const auto is_level = [&](double grey) { return level_of(grey) >= LEAST_LEVEL && level_of(grey) <= MOST_LEVEL; };
    const bool has_room = Steps_Of(range, std::abs(finest.slope)) <= STEPS_MOST && !Is_One_Value(finest);
    if (!has_room || !is_level(range.lowest) || !is_level(range.highest)) {
        // A step more than needed: the ends may be rounded outwards.
        const double least = range.highest / (STEPS_MOST - 1.0) - range.lowest / (STEPS_MOST - 1.0);
        scale.slope = std::max({least, has_room ? std::abs(finest.slope) : 0.0, std::numeric_limits<double>::min()});
        scale.intercept = range.lowest - LEAST_LEVEL * scale.slope;
    }
    const auto [lowest, highest] = std::minmax({level_of(range.lowest), level_of(range.highest)});
    scale.lowest = static_cast<std::int32_t>(std::clamp(lowest, LEAST_LEVEL, MOST_LEVEL));
    scale.highest = static_cast<std::int32_t>(std::clamp(highest, LEAST_LEVEL, MOST_LEVEL));
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
            scale.nonfinite_nb += part.count;
        }
    }
    if (inside.empty()) {
        return scale;
    }
    const auto exact_choose = [&] {
        const Scaled_Part finest = Finest_Of(inside);
        Slopes_Note(inside, scale);
        std::vector<Scaled_Part> fitted = inside;
        Single_Values_Fit(fitted, finest);
        return Exact_Choose(fitted, finest, scale);
    };
    if (exact_choose()) {
        return scale;
    }
    Range range = Greys_Of(inside.front());
    for (const Scaled_Part& part : inside) {
        const Range greys = Greys_Of(part);
        range = {std::min(range.lowest, greys.lowest), std::max(range.highest, greys.highest)};
    }
    if (!(Steps_Of(range, std::abs(Finest_Of(inside).slope)) <= STEPS_MOST)) {
        range = Outliers_Leave(inside, scale);
        if (scale.outlier_nb > 0 && exact_choose()) {
            return scale;
        }
    }
    Steps_Choose(inside, Finest_Of(inside), range, scale);
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

void Outside_Note(const Level_Scale& scale, Volume& volume) {
    volume.nonfinite_nb = scale.nonfinite_nb;
    volume.outlier_nb = scale.outlier_nb;
    volume.outlier_lowest = scale.outlier_lowest;
    volume.outlier_highest = scale.outlier_highest;
}

std::string Level_Scale_Warning(const Level_Scale& scale, const std::string& parts_name) {
    std::string text;
    // Half a step of the finest part is below what that part can tell apart.
    const double step = std::abs(scale.slope);
    if (step > scale.finest_slope * (1.0 + ROUNDING) && scale.max_error > 0.0) {
        const bool is_one = scale.coarsest_slope == scale.finest_slope;
        text = is_one ? "has " + parts_name + " of more values than levels can be"
                      : "has " + parts_name + " of very different scales (slopes " + Value_Text(scale.finest_slope) +
                            " to " + Value_Text(scale.coarsest_slope) + ")";
        text += ": greys are rounded to steps of " + Value_Text(step) + " and are at most " +
                Value_Text(scale.max_error) + " off";
    }
    if (scale.outlier_nb > 0) {
        text += text.empty() ? "has " : "; it has ";
        text += parts_name + " whose scale is far from all others: " + Count_Text(scale.outlier_nb) +
                " of their values (" + Value_Text(scale.outlier_lowest) +
                (scale.outlier_lowest == scale.outlier_highest ? "" : " to " + Value_Text(scale.outlier_highest)) +
                ") are left outside the scale, are shown black and count nowhere";
    }
    if (scale.nonfinite_nb > 0) {
        text += text.empty() ? "has " : "; it has ";
        text += parts_name + " without a usable scale: " + Count_Text(scale.nonfinite_nb) +
                " of their values are left outside, are shown black and count nowhere";
    }
    return text;
}

}  // namespace volumes
