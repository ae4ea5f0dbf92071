/** Picks one scale for values of several parts (frames, slices, files), each with a scale of its own. */
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/volume.h"

namespace volumes {

/** What one part holds: grey = stored * slope + intercept. */
struct Scaled_Part {
    double slope = 1.0;  ///< may be negative
    double intercept = 0.0;
    std::int64_t lowest = 0;   ///< smallest stored value present
    std::int64_t highest = 0;  ///< largest stored value present
    std::uint64_t count = 0;   ///< values
    double max_error = 0.0;    ///< of the part's greys already, for what was read earlier
};

/** A scale for Volume::slope and Volume::intercept that every part's greys fit into, with what it costs. */
struct Level_Scale {
    double slope = 1.0;  ///< not 0
    double intercept = 0.0;
    double max_error = 0.0;          ///< greys of levels are at most this far from the parts' own; 0: exact
    std::int32_t lowest = 0;         ///< levels are from here ..
    std::int32_t highest = 0;        ///< .. to here; what would lie beyond is LEVEL_OUTSIDE
    std::uint64_t outlier_nb = 0;    ///< values of parts so far from all others that they were left outside
    double outlier_lowest = 0.0;     ///< grey: the smallest of those; 0 without any
    double outlier_highest = 0.0;    ///< grey: the largest
    std::uint64_t nonfinite_nb = 0;  ///< values of parts that have no finite scale
    double finest_slope = 1.0;       ///< magnitude of the smallest slope of the parts inside that have several values
    double coarsest_slope = 1.0;     ///< magnitude of the largest

    bool Has_Outside() const { return outlier_nb > 0 || nonfinite_nb > 0; }
};

/** Most steps from the lowest level to the highest: as many as levels can be told apart. */
inline constexpr std::int64_t LEVEL_SCALE_STEPS =
    std::int64_t{LEVEL_LARGEST} - std::numeric_limits<std::int32_t>::min();

/** Picks the scale.
 *
 *  Where all parts have one slope and one intercept, levels are the stored values; where those are more than levels can
 *  be, the stored values less a common number, so that everything stays exact as long as highest - lowest is at most
 *  LEVEL_SCALE_STEPS. Where all slopes and distances of intercepts are whole multiples of the finest slope, or of an
 *  even part of it, and there is room, it is exact as well. Else the step is the finest slope, and where that has no
 *  room for the whole range, the smallest step that has: LEVEL_SCALE_STEPS from the smallest grey to the largest.
 *  Nothing is ever clamped.
 *
 *  Parts that are not finite, or whose slope is 0 or no number, are outside. So are parts far from all others, but only
 *  where the finest step has no room, and only those further away than 65,536 times the width of the rest (see
 *  Value_Range_Find): up to there they cost the others no more than what is left of QUANTISED_STEPS. A part of a single
 *  value is one of them like any other: nothing tells a mark from a true value there, and what is outside is told with
 *  its values.
 *  @param parts at least one */
Level_Scale Level_Scale_Choose(std::span<const Scaled_Part> parts);

/** From the stored values of one part to levels of a scale. */
class Level_Map {
  public:
    Level_Map(const Scaled_Part& part, const Level_Scale& scale);
    /** @return LEVEL_OUTSIDE for what the scale does not reach */
    std::int32_t Level(std::int64_t stored) const;
    /** The same for a level read earlier under the part's scale: LEVEL_OUTSIDE stays. */
    std::int32_t Level_Again(std::int32_t level) const { return level == LEVEL_OUTSIDE ? level : Level(level); }
    /** Levels and stored values are the same numbers. */
    bool Is_Same() const { return is_exact && factor == 1 && shift == 0; }

  private:
    bool is_exact = false;  // level = stored * factor + shift
    std::int64_t factor = 1;
    std::int64_t shift = 0;
    double slope = 1.0;  // level = stored * slope + intercept, rounded
    double intercept = 0.0;
    std::int32_t lowest;
    std::int32_t highest;
};

/** Writes down in a volume what its scale leaves outside. */
void Outside_Note(const Level_Scale& scale, Volume& volume);

/** What a user has to know of a scale, to follow a file's or a series' name; empty when nothing was lost that the parts
 *  had: "has slices of very different scales (slopes 1.2e-07 to 1.2): greys are rounded to steps of 9.2e-06 and are at
 *  most 4.6e-06 off".
 *  @param parts_name what the parts are: "slices", "frames" */
std::string Level_Scale_Warning(const Level_Scale& scale, const std::string& parts_name);

}  // namespace volumes
