// From the values that were collected to levels.
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>

#include "workbench/volumes/level_builder.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/value_outliers.h"
#include "workbench/volumes/value_steps.h"

namespace volumes {

// The i-th collected value in its own type.
template <class Stored>
Stored Level_Builder::Value(std::size_t i) const {
    if constexpr (sizeof(Stored) == 8) {
        return std::bit_cast<Stored>(wide[i]);
    } else {
        return std::bit_cast<Stored>(levels[i]);
    }
}

// Room for the levels of values that were kept aside in `wide`.
void Level_Builder::Levels_Ready() {
    levels.resize(static_cast<std::size_t>(voxel_nb));
}

void Level_Builder::Wide_Release() {
    std::vector<std::uint64_t>().swap(wide);
}

template <class Stored>
bool Level_Builder::Outliers_Find(Volume& volume) {
    Value_Clusters clusters;
    for (std::size_t i = 0; i < static_cast<std::size_t>(voxel_nb); ++i) {
        const auto value = static_cast<double>(Value<Stored>(i));
        if (std::isfinite(value)) {
            clusters.Take(value);
        }
    }
    const Value_Range range = Value_Range_Find(clusters.All());
    if (range.outlier_nb == 0) {
        return false;
    }
    inside_low = range.lowest;
    inside_high = range.highest;
    volume.outlier_nb = range.outlier_nb;
    volume.outlier_lowest = range.outlier_lowest;
    volume.outlier_highest = range.outlier_highest;
    return true;
}

template <class Stored>
bool Level_Builder::Type_Ends_Find(Volume& volume) {
    constexpr Stored least = std::numeric_limits<Stored>::min();
    constexpr Stored most = std::numeric_limits<Stored>::max();
    Stored low = most;
    Stored high = least;
    std::uint64_t least_nb = 0;
    std::uint64_t most_nb = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(voxel_nb); ++i) {
        const Stored value = Value<Stored>(i);
        // 0 is the least of the types without a sign, and a value like any other.
        const bool is_least = std::is_signed_v<Stored> && value == least;
        least_nb += is_least ? 1 : 0;
        most_nb += value == most ? 1 : 0;
        if (!is_least && value != most) {
            low = std::min(low, value);
            high = std::max(high, value);
        }
    }
    const double range = static_cast<double>(high) - static_cast<double>(low);
    const bool is_least_far = least_nb > 0 && static_cast<double>(low) - static_cast<double>(least) > range;
    const bool is_most_far = most_nb > 0 && static_cast<double>(most) - static_cast<double>(high) > range;
    if (low >= high || (!is_least_far && !is_most_far)) {
        return false;
    }
    inside_low = static_cast<double>(is_least_far || least_nb == 0 ? low : least);
    inside_high = static_cast<double>(is_most_far || most_nb == 0 ? high : most);
    volume.outlier_nb = (is_least_far ? least_nb : 0) + (is_most_far ? most_nb : 0);
    volume.outlier_lowest = static_cast<double>(is_least_far ? least : most);
    volume.outlier_highest = static_cast<double>(is_most_far ? most : least);
    return true;
}

void Level_Builder::Finish_Narrow(Volume& volume) {
    if (narrow.empty()) {
        return;
    }
    if (collector) {
        tally = collector->Finish();
        volume.level_min = tally->lowest;
        volume.level_max = tally->lowest + static_cast<std::int32_t>(tally->times.size()) - 1;
        return;
    }
    std::uint16_t smallest = Level_Code::LAST;
    std::uint16_t largest = 0;
    for (const std::uint16_t one : narrow) {  // several in one instruction
        smallest = std::min(smallest, one);
        largest = std::max(largest, one);
    }
    volume.level_min = code.Level(smallest);
    volume.level_max = code.Level(largest);
}

template <class Stored>
void Level_Builder::Finish_Integer(Volume& volume) {
    const auto count = static_cast<std::size_t>(voxel_nb);
    Stored smallest = std::numeric_limits<Stored>::max();
    Stored largest = std::numeric_limits<Stored>::min();
    const auto range_find = [&] {
        smallest = std::numeric_limits<Stored>::max();
        largest = std::numeric_limits<Stored>::min();
        if (inside_low == std::numeric_limits<double>::lowest() && inside_high == std::numeric_limits<double>::max()) {
            for (std::size_t i = 0; i < count; ++i) {  // several values in one instruction
                const Stored value = Value<Stored>(i);
                smallest = std::min(smallest, value);
                largest = std::max(largest, value);
            }
            return;
        }
        for (std::size_t i = 0; i < count; ++i) {
            const Stored value = Value<Stored>(i);
            if (Is_Inside(static_cast<double>(value))) {
                smallest = std::min(smallest, value);
                largest = std::max(largest, value);
            }
        }
    };
    const auto is_level = [&] {
        return std::cmp_greater_equal(smallest, std::numeric_limits<std::int32_t>::min()) &&
               std::cmp_less_equal(largest, LEVEL_LARGEST);
    };
    range_find();
    Levels_Ready();
    if (count == 0) {
        return;
    }
    if (!is_level() && (Outliers_Find<Stored>(volume) || Type_Ends_Find<Stored>(volume))) {
        range_find();
    }
    if (is_level()) {
        for (std::size_t i = 0; i < count; ++i) {
            const Stored value = Value<Stored>(i);
            levels[i] = Is_Inside(static_cast<double>(value)) ? static_cast<std::int32_t>(value) : LEVEL_OUTSIDE;
        }
        volume.level_min = static_cast<std::int32_t>(smallest);
        volume.level_max = static_cast<std::int32_t>(largest);
        return;
    }
    // Differences are exact even where the values themselves have more digits than a double.
    const auto base = static_cast<std::uint64_t>(smallest);
    const auto range = static_cast<double>(static_cast<std::uint64_t>(largest) - base);
    volume.intercept = static_cast<double>(smallest);
    volume.level_min = 0;
    if (largest == smallest) {
        std::fill(levels.begin(), levels.end(), 0);
        volume.level_max = 0;
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const Stored value = Value<Stored>(i);
        if (!Is_Inside(static_cast<double>(value))) {
            levels[i] = LEVEL_OUTSIDE;
            continue;
        }
        const auto difference = static_cast<double>(static_cast<std::uint64_t>(value) - base);
        levels[i] = static_cast<std::int32_t>(difference / range * QUANTISED_STEPS + 0.5);
    }
    volume.slope = range / QUANTISED_STEPS;
    volume.max_error = range / QUANTISED_STEPS / 2;
    volume.level_max = QUANTISED_STEPS;
}

template <class Stored>
void Level_Builder::Finish_Real(Volume& volume) {
    double smallest = 0;
    double largest = 0;
    const auto is_level = [&] {
        smallest = std::numeric_limits<double>::infinity();
        largest = -smallest;
        bool is_whole = true;
        for (std::size_t i = 0; i < static_cast<std::size_t>(voxel_nb); ++i) {
            const auto value = static_cast<double>(Value<Stored>(i));
            if (Is_Inside(value)) {
                smallest = std::min(smallest, value);
                largest = std::max(largest, value);
                is_whole = is_whole && value == std::trunc(value);
            }
        }
        if (smallest > largest) {  // no finite value at all
            smallest = largest = 0;
        }
        return is_whole && std::abs(smallest) <= WHOLE_RANGE && std::abs(largest) <= WHOLE_RANGE;
    };
    for (std::size_t i = 0; i < static_cast<std::size_t>(voxel_nb); ++i) {
        volume.nonfinite_nb += std::isfinite(static_cast<double>(Value<Stored>(i))) ? 0 : 1;
    }
    Levels_Ready();
    if (is_level() || (Outliers_Find<Stored>(volume) && is_level())) {
        Finish_Whole<Stored>(smallest, largest, volume);
    } else {
        Finish_Steps<Stored>(smallest, largest, volume);
    }
}

template <class Stored>
void Level_Builder::Finish_Whole(double smallest, double largest, Volume& volume) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(voxel_nb); ++i) {
        const auto value = static_cast<double>(Value<Stored>(i));
        levels[i] = Is_Inside(value) ? static_cast<std::int32_t>(value) : LEVEL_OUTSIDE;
    }
    volume.level_min = static_cast<std::int32_t>(smallest);
    volume.level_max = static_cast<std::int32_t>(largest);
}

template <class Stored>
void Level_Builder::Finish_Steps(double smallest, double largest, Volume& volume) {
    // The range of doubles near both ends of their scale is more than a double: such values are halved on the way.
    const double half = std::isfinite(largest - smallest) ? 1.0 : 0.5;
    const double range = largest * half - smallest * half;
    Value_Steps steps(range);
    for (std::size_t i = 0; i < static_cast<std::size_t>(voxel_nb); ++i) {
        const auto value = static_cast<double>(Value<Stored>(i));
        if (!Is_Inside(value)) {
            levels[i] = LEVEL_OUTSIDE;
            continue;
        }
        const double difference = value * half - smallest * half;
        levels[i] = range > 0 ? static_cast<std::int32_t>(difference / range * QUANTISED_STEPS + 0.5) : 0;
        steps.Note(difference, levels[i]);
    }
    volume.intercept = smallest;
    volume.level_min = 0;
    volume.level_max = range > 0 ? QUANTISED_STEPS : 0;
    if (!(range > 0)) {
        return;
    }
    volume.max_error = range / QUANTISED_STEPS / half / 2;
    if (const std::optional<Value_Grid> grid = steps.Grid()) {
        for (std::int32_t& level : levels) {
            level = level == LEVEL_OUTSIDE ? level : steps.Step_Of(level, *grid);
        }
        volume.level_max = grid->step_nb;
        volume.max_error = grid->max_error / half;
    }
    const double step = range / volume.level_max / half;
    volume.slope = step > 0 ? step : std::numeric_limits<double>::denorm_min();
}

void Level_Builder::Finish_Color(Volume& volume) const {
    volume.color = true;
    std::int32_t smallest = 255;
    std::int32_t largest = 0;
    for (const std::int32_t level : levels) {
        for (int shift = 0; shift < 24; shift += 8) {
            const std::int32_t component = (level >> shift) & 0xFF;
            smallest = std::min(smallest, component);
            largest = std::max(largest, component);
        }
    }
    volume.level_min = smallest;
    volume.level_max = largest;
}

void Level_Builder::Finish(double file_slope, double file_intercept, Volume& volume) {
    volume.scalar_type = Voxel_Type_Name(type);
    volume.slope = 1;
    volume.intercept = 0;
    switch (type) {
        case Voxel_Type::Uint8:
        case Voxel_Type::Int8:
        case Voxel_Type::Int16:
        case Voxel_Type::Uint16:
            Finish_Narrow(volume);
            break;
        case Voxel_Type::Int32:
            Finish_Integer<std::int32_t>(volume);
            break;
        case Voxel_Type::Uint32:
            Finish_Integer<std::uint32_t>(volume);
            break;
        case Voxel_Type::Int64:
            Finish_Integer<std::int64_t>(volume);
            break;
        case Voxel_Type::Uint64:
            Finish_Integer<std::uint64_t>(volume);
            break;
        case Voxel_Type::Float32:
            Finish_Real<float>(volume);
            break;
        case Voxel_Type::Float64:
            Finish_Real<double>(volume);
            break;
        case Voxel_Type::Rgb24:
        case Voxel_Type::Rgba32:
            Finish_Color(volume);
            break;
    }
    Wide_Release();
    if (Voxel_Type_Size(type) <= sizeof(std::uint16_t)) {
        volume.levels = Voxel_Levels::Of_Codes(std::move(narrow), code);
    } else if (volume.color) {
        volume.levels = Voxel_Levels::Of_Wide(std::move(levels));
    } else {
        volume.levels = std::move(levels);
    }
    // A file's scale that leaves the range of double is of no use; the stored values then stand for themselves.
    const double slope = volume.slope * file_slope;
    const double intercept = volume.intercept * file_slope + file_intercept;
    if (!volume.color && std::isfinite(slope) && slope != 0 && std::isfinite(intercept) &&
        std::isfinite(volume.max_error * file_slope)) {
        volume.slope = slope;
        volume.intercept = intercept;
        volume.max_error *= std::fabs(file_slope);
        const double low = volume.outlier_lowest * file_slope + file_intercept;
        const double high = volume.outlier_highest * file_slope + file_intercept;
        volume.outlier_lowest = volume.outlier_nb > 0 ? std::min(low, high) : 0;
        volume.outlier_highest = volume.outlier_nb > 0 ? std::max(low, high) : 0;
    }
}

std::vector<std::string> Values_Outside_Texts(const Volume& volume) {
    std::vector<std::string> texts;
    if (volume.nonfinite_nb > 0) {
        texts.push_back(volume.nonfinite_nb == 1
                            ? "has 1 voxel that is no number; it is shown black and counts nowhere"
                            : "has " + Count_Text(volume.nonfinite_nb) +
                                  " voxels that are no number; they are shown black and count nowhere");
    }
    if (volume.outlier_nb > 0) {
        const bool is_one = volume.outlier_lowest == volume.outlier_highest;
        const double first = volume.level_min * volume.slope + volume.intercept;
        const double last = volume.level_max * volume.slope + volume.intercept;
        texts.push_back("has " + Count_Text(volume.outlier_nb) + " voxels of " + Value_Text(volume.outlier_lowest) +
                        (is_one ? "" : " to " + Value_Text(volume.outlier_highest)) + ", far from all others (" +
                        Value_Text(std::min(first, last)) + " to " + Value_Text(std::max(first, last)) +
                        "); they are left outside the scale, are shown black and count nowhere");
    }
    return texts;
}

}  // namespace volumes
