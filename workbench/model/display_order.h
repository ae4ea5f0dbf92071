/** How the axial slices of a volume are turned for display. */
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "workbench/volumes/volume.h"

namespace workbench {

/** Radiological display: the patient's right at the viewer's left, the front up. Other orientations by the same rule:
 *  top before bottom, and of an axis that runs left-right in the patient the right side first. */
struct Display_Order {
    bool flip_x = false;  ///< columns are shown in the reverse of the file's order
    bool flip_y = false;  ///< rows are
    char left = ' ';      ///< patient side at the left of the picture: R, L, A, P, S or I
    char right = ' ';
    char top = ' ';
    char bottom = ' ';
};
Display_Order Display_Order_Of(const volumes::Affine& affine);

/** Puts letters to an image whose file does not say how the patient lies; the picture stays as it is.
 *  @param towards three letters, one each of R or L, A or P, S or I, in capitals or not: where columns, rows and slices
 *  run to in the file @return false, and nothing is changed: the text is none of these */
bool Letters_Set(std::string_view towards, Display_Order& order);

/** Turns slices from the file's order to the displayed one, in place; doing it twice restores them.
 *  @param values slices of ny rows of nx values */
template <class Value>
void Slices_Turn(std::span<Value> values, int nx, int ny, const Display_Order& order) {
    const auto width = static_cast<std::size_t>(nx);
    const auto height = static_cast<std::size_t>(ny);
    const std::size_t size = width * height;
    for (std::size_t slice = 0; size != 0 && slice + size <= values.size(); slice += size) {
        if (order.flip_x) {
            for (std::size_t row = 0; row < height; ++row) {
                std::ranges::reverse(values.subspan(slice + row * width, width));
            }
        }
        for (std::size_t row = 0; order.flip_y && row < height / 2; ++row) {
            std::ranges::swap_ranges(values.subspan(slice + row * width, width),
                                     values.subspan(slice + (height - 1 - row) * width, width));
        }
    }
}

}  // namespace workbench
