#include "workbench/model/display_order.h"

#include <cmath>

namespace {

/** The patient axis that a voxel axis follows most, and whether it runs towards right, front or top. */
struct Patient_Axis {
    std::size_t axis = 0;
    bool is_rising = true;
};

Patient_Axis Axis_Of(const Affine& affine, std::size_t column) {
    Patient_Axis found;
    double largest = 0.0;
    for (std::size_t row = 0; row < 3; ++row) {
        if (std::abs(affine[row][column]) > largest) {
            largest = std::abs(affine[row][column]);
            found = {row, affine[row][column] > 0.0};
        }
    }
    if (largest == 0.0) {
        found = {column, true};
    }
    return found;
}

constexpr std::array<std::array<char, 2>, 3> side_names = {{{'L', 'R'}, {'P', 'A'}, {'I', 'S'}}};

}  // namespace

Display_Order Display_Order_Of(const Affine& affine) {
    const Patient_Axis x = Axis_Of(affine, 0);
    const Patient_Axis y = Axis_Of(affine, 1);
    Display_Order order;
    // Right, front and top come first: at the left of the picture, or at its top.
    order.flip_x = x.is_rising;
    order.flip_y = y.is_rising;
    order.left = side_names[x.axis][1];
    order.right = side_names[x.axis][0];
    order.top = side_names[y.axis][1];
    order.bottom = side_names[y.axis][0];
    return order;
}
