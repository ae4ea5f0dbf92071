#include "workbench/model/display_order.h"

#include <cmath>

namespace workbench {

namespace {

/** The patient axis that a voxel axis follows most, and whether it runs towards right, front or top. */
struct Patient_Axis {
    std::size_t axis = 0;
    bool is_rising = true;
};

Patient_Axis Axis_Of(const volumes::Affine& affine, std::size_t column) {
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

constexpr std::array<std::array<char, 2>, 3> SIDE_NAMES = {{{'L', 'R'}, {'P', 'A'}, {'I', 'S'}}};

}  // namespace

Display_Order Display_Order_Of(const volumes::Affine& affine) {
    const Patient_Axis x = Axis_Of(affine, 0);
    const Patient_Axis y = Axis_Of(affine, 1);
    Display_Order order;
    // Right, front and top come first: at the left of the picture, or at its top.
    order.flip_x = x.is_rising;
    order.flip_y = y.is_rising;
    order.left = SIDE_NAMES[x.axis][1];
    order.right = SIDE_NAMES[x.axis][0];
    order.top = SIDE_NAMES[y.axis][1];
    order.bottom = SIDE_NAMES[y.axis][0];
    return order;
}

bool Letters_Set(std::string_view towards, Display_Order& order) {
    if (towards.size() != SIDE_NAMES.size()) {
        return false;
    }
    struct Sides {
        char towards = ' ';
        char away = ' ';
    };
    std::array<Sides, 3> found{};
    std::array<bool, 3> is_used{};
    for (std::size_t at = 0; at < found.size(); ++at) {
        const char letter =
            towards[at] >= 'a' && towards[at] <= 'z' ? static_cast<char>(towards[at] - 'a' + 'A') : towards[at];
        for (std::size_t axis = 0; axis < SIDE_NAMES.size(); ++axis) {
            const auto& names = SIDE_NAMES[axis];
            if (!is_used[axis] && (letter == names[0] || letter == names[1])) {
                is_used[axis] = true;
                found[at] = {letter, letter == names[0] ? names[1] : names[0]};
            }
        }
        if (found[at].towards == ' ') {
            return false;
        }
    }
    order.left = order.flip_x ? found[0].towards : found[0].away;
    order.right = order.flip_x ? found[0].away : found[0].towards;
    order.top = order.flip_y ? found[1].towards : found[1].away;
    order.bottom = order.flip_y ? found[1].away : found[1].towards;
    return true;
}

}  // namespace workbench
