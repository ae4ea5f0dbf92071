/** Which views of the image there are, and where each stands in the room that they share. */
#pragma once

#include <array>

#include "workbench/model/label_map.h"

namespace workbench {

/** What the room of the image is divided into. */
enum class View_Arrangement { One, Three, Four };

/** The views, in the order in which they can become the large one; the table never does. */
inline constexpr int SLICES_VIEW = 0;
inline constexpr int PLANE_VIEW_NB = 3;  ///< the slices and the two other planes
inline constexpr int TABLE_VIEW = PLANE_VIEW_NB;
inline constexpr int ALL_VIEW_NB = PLANE_VIEW_NB + 1;

struct Views_Shown {
    View_Arrangement arrangement = View_Arrangement::One;
    int large = SLICES_VIEW;  ///< the one, the largest of three, or the first of four
    bool is_linked = false;   ///< zoom and centre of one are those of all

    bool Has(int view) const;
    bool operator==(const Views_Shown&) const = default;
};

/** The places of all views, without a common pixel; of those that are not shown they are empty.
 *  @param gap pixels between two views */
std::array<Pixel_Rect, ALL_VIEW_NB> View_Places(const Pixel_Rect& room, const Views_Shown& shown, int gap);

}  // namespace workbench
