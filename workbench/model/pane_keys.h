/** Where a key leads among things that stand in a grid: TAGs, markers, brushes. Pure. */
#pragma once

#include <optional>

namespace workbench {

/** The grid of the label panels: four columns, the lowest index at the lower left, so that Right goes on by one and Up
 *  by a whole row. Home and End go to the ends. Nothing goes round.
 *  @param current index; one outside the grid counts as the nearest inside
 *  @param columns of the grid; a row of things is a grid of one row
 *  @param key KEY_* @return the index that the key leads to, maybe the same; no value: the key does not move */
std::optional<int> Grid_Step(int current, int count, int columns, int key);

}  // namespace workbench
