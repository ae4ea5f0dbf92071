/** Where the labels of peaks stand: next to their peaks, inside the plot area, none on another. Pure numbers.
 *
 *  Columns count from the left edge of the plot area, rows from its bottom edge upward.
 */
#pragma once

#include <span>
#include <vector>

/** One label that asks for a place. */
struct Peak_Label_Request {
    int column = 0;  ///< of the peak's top
    int row = 0;     ///< of the peak's top
    int width = 0;   ///< of the text, pixels
    int height = 0;  ///< of the text, pixels
};

/** Its place: the pixels left .. left + width - 1, bottom .. bottom + height - 1. */
struct Peak_Label_Place {
    bool shown = false;
    int left = 0;
    int bottom = 0;
};

/** Pixels between a peak's top and its label. */
inline constexpr int PEAK_LABEL_GAP = 3;
/** Columns that stay free between two labels. */
inline constexpr int PEAK_LABEL_APART = 4;

/** Places labels, higher peaks first: above the top if there is room, else a little aside or higher up, else below; a
 *  label without a place near its peak is left out, as are those that would hide more than a quarter of the area, and
 *  so is that of a peak whose top is not in view: left, right or below. A top above the area has its label at the
 *  area's upper edge.
 *  @return one place per request, in their order */
std::vector<Peak_Label_Place> Peak_Labels_Place(std::span<const Peak_Label_Request> requests, int area_width,
                                                int area_height);
