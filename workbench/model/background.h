/** Which pixels of a volume show nothing: the air around what was scanned. Pure code. */
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "workbench/volumes/volume.h"

namespace workbench {

/** The grey value that parts a volume's voxels in two groups whose means lie as far apart as their spread allows
 * (Otsu's method): the largest one of the darker group. Colours and volumes of one value have none. */
std::optional<double> Background_Threshold(const volumes::Volume& volume);

/** Marks what is to be counted in a slice. Background are the pixels whose grey value is not greater than the
 *  threshold, or that have none, and that reach the edge of the slice through such pixels from side to side: dark
 *  places inside, such as fluid, count.
 *  @param levels width * height values @param mask receives as many: 1 counts, 0 is background */
void Background_Leave_Out(const volumes::Level_View& levels, int width, int height, double slope, double intercept,
                          double threshold, std::span<unsigned char> mask);

}  // namespace workbench
