#include "workbench/volumes/slice_place.h"

#include <algorithm>
#include <cstddef>

namespace volumes {

namespace {

using Vector = std::array<double, 3>;

}  // namespace

Vector Slice_Normal(const Slice_Place& place) {
    const auto& row = place.along_row;
    const auto& column = place.along_column;
    return {row[1] * column[2] - row[2] * column[1], row[2] * column[0] - row[0] * column[2],
            row[0] * column[1] - row[1] * column[0]};
}

double Slice_Depth(const Slice_Place& place) {
    const Vector normal = Slice_Normal(place);
    return normal[0] * place.corner[0] + normal[1] * place.corner[1] + normal[2] * place.corner[2];
}

bool Directions_Assume(std::span<Slice_Place> places) {
    Vector lowest = places.front().corner;
    Vector highest = lowest;
    for (const Slice_Place& place : places) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            lowest[axis] = std::min(lowest[axis], place.corner[axis]);
            highest[axis] = std::max(highest[axis], place.corner[axis]);
        }
    }
    const Vector span = {highest[0] - lowest[0], highest[1] - lowest[1], highest[2] - lowest[2]};
    const auto axis = static_cast<std::size_t>(std::ranges::max_element(span) - span.begin());
    if (!(span[axis] > 0)) {
        return false;
    }
    constexpr std::array<Vector, 3> rows = {Vector{0, 1, 0}, Vector{1, 0, 0}, Vector{1, 0, 0}};
    constexpr std::array<Vector, 3> columns = {Vector{0, 0, -1}, Vector{0, 0, -1}, Vector{0, 1, 0}};
    for (Slice_Place& place : places) {
        place.along_row = rows[axis];
        place.along_column = columns[axis];
        place.is_known = true;
    }
    return true;
}

Affine Affine_Of(const Slice_Place& first, const Vector& spacing, const Vector& step) {
    Affine affine{};
    for (std::size_t row = 0; row < 3; ++row) {
        // To the left and back there, to the right and front here.
        const double sign = row < 2 ? -1.0 : 1.0;
        affine[row] = {sign * first.along_row[row] * spacing[0], sign * first.along_column[row] * spacing[1],
                       sign * step[row], sign * first.corner[row]};
    }
    return affine;
}

}  // namespace volumes
