#include "workbench/volumes/frame_voxels.h"

#include <cmath>
#include <cstddef>

namespace volumes {

namespace {

using Vector = std::array<double, 3>;

constexpr double IN_PLANE_OFF_MOST = 0.1;  // voxels
constexpr double ACROSS_OFF_MOST = 0.45;   // slices that lie unevenly are beside the grid that stands for them

Vector Column_Of(const Affine& affine, std::size_t column) {
    return {affine[0][column], affine[1][column], affine[2][column]};
}

Vector Cross(const Vector& a, const Vector& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double Dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/** The axis that a step of one pixel runs along, with its sign in `unit`; no value when it is no such step. */
std::optional<std::size_t> Axis_Of(const Vector& step, std::array<std::int32_t, 3>& unit) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (std::abs(std::abs(step[axis]) - 1.0) < IN_PLANE_OFF_MOST) {
            unit = {};
            unit[axis] = step[axis] > 0.0 ? 1 : -1;
            return axis;
        }
    }
    return std::nullopt;
}

}  // namespace

To_Voxels::To_Voxels(const Affine& affine) : offset(Column_Of(affine, 3)) {
    const Vector x = Column_Of(affine, 0);
    const Vector y = Column_Of(affine, 1);
    const Vector z = Column_Of(affine, 2);
    const double whole = Dot(x, Cross(y, z));
    const double sides = std::sqrt(Dot(x, x) * Dot(y, y) * Dot(z, z));
    constexpr double flat = 1e-6;
    is_usable = std::isfinite(whole) && std::abs(whole) > flat * sides;
    rows = {Cross(y, z), Cross(z, x), Cross(x, y)};
    for (Vector& row : rows) {
        for (double& part : row) {
            part /= whole;
        }
    }
}

std::array<double, 3> To_Voxels::Way(const std::array<double, 3>& mm) const {
    return {Dot(rows[0], mm), Dot(rows[1], mm), Dot(rows[2], mm)};
}

std::array<double, 3> To_Voxels::Place(const std::array<double, 3>& mm) const {
    return Way({mm[0] - offset[0], mm[1] - offset[1], mm[2] - offset[2]});
}

std::optional<Picture_Voxels> Picture_Voxels_Find(const Volume& volume, const Placed_Picture& picture) {
    const To_Voxels to_voxels(volume.affine);
    if (!to_voxels.Is_Usable() || !picture.place.is_known) {
        return std::nullopt;
    }
    const Affine own = Affine_Of(picture.place, {picture.pixel[0], picture.pixel[1], 1.0}, {0, 0, 1});
    const Vector corner = to_voxels.Place(Column_Of(own, 3));
    const Vector row_step = to_voxels.Way(Column_Of(own, 0));
    const Vector column_step = to_voxels.Way(Column_Of(own, 1));
    Picture_Voxels found;
    const std::optional<std::size_t> row_axis = Axis_Of(row_step, found.along_row);
    const std::optional<std::size_t> column_axis = Axis_Of(column_step, found.along_column);
    if (!row_axis || !column_axis || row_axis == column_axis) {
        return std::nullopt;
    }
    constexpr double index_most = 1e8;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (!(std::abs(corner[axis]) < index_most)) {
            return std::nullopt;
        }
        const double nearest = std::round(corner[axis]);
        found.origin[axis] = static_cast<std::int32_t>(nearest);
        // Farthest off at one of the four corners.
        const double row_end = (row_step[axis] - found.along_row[axis]) * (picture.size[0] - 1);
        const double column_end = (column_step[axis] - found.along_column[axis]) * (picture.size[1] - 1);
        const double start = corner[axis] - nearest;
        double off = 0.0;
        for (const double end : {start, start + row_end, start + column_end, start + row_end + column_end}) {
            off = std::max(off, std::abs(end));
        }
        const bool is_across = axis != *row_axis && axis != *column_axis;
        if (off > (is_across ? ACROSS_OFF_MOST : IN_PLANE_OFF_MOST)) {
            return std::nullopt;
        }
        found.off = is_across ? off : found.off;
    }
    return found;
}

}  // namespace volumes
