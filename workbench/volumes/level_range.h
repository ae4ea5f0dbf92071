/** The range of a volume's levels. */
#pragma once

#include <cstdint>

#include "workbench/volumes/volume.h"

namespace volumes {

/** Finds level_min, level_max and nonfinite_nb from the levels. */
void Level_Range_Find(Volume& volume);

/** The range of slices that are put together, without another look at their levels. */
class Joined_Range {
  public:
    /** @param slice with its range found and its levels there; none of them may be an outlier (Volume::outlier_nb) */
    void Add(const Volume& slice);
    /** Fills in what Level_Range_Find would find. */
    void Put(Volume& volume) const;

  private:
    bool is_found = false;
    std::int32_t lowest = 0;
    std::int32_t highest = 0;
    std::uint64_t outside_nb = 0;
};

}  // namespace volumes
