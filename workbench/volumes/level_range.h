/** The range of a volume's levels. */
#pragma once

#include "workbench/volumes/volume.h"

namespace volumes {

/** Finds level_min, level_max and nonfinite_nb from the levels. */
void Level_Range_Find(Volume& volume);

}  // namespace volumes
