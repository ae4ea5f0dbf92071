#include "workbench/model/volume_planes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace workbench {

namespace {

constexpr std::size_t SLICE_AXIS = 2;
constexpr std::array<std::array<char, 2>, 3> SIDE_NAMES = {{{'L', 'R'}, {'P', 'A'}, {'I', 'S'}}};

/** The patient's axes across, down and through the pictures of each plane. */
constexpr std::array<std::array<std::size_t, 3>, PLANE_NB> PLANE_AXES = {{{0, 1, 2}, {0, 2, 1}, {1, 2, 0}}};

/** For display, columns and rows may run the other way than in the file. */
void Turn(Patient_Axes& axes, const Display_Order& order) {
    axes.is_rising[0] = axes.is_rising[0] != order.flip_x;
    axes.is_rising[1] = axes.is_rising[1] != order.flip_y;
}

std::size_t Voxel_Axis_Of(const Patient_Axes& axes, std::size_t patient) {
    return static_cast<std::size_t>(std::ranges::find(axes.patient, patient) - axes.patient.begin());
}

}  // namespace

Patient_Axes Patient_Axes_Of(const volumes::Affine& affine, const Display_Order& order) {
    std::array<std::array<double, 3>, 3> share{};  // of the patient's axis in a voxel's
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double length = std::hypot(affine[0][axis], affine[1][axis], affine[2][axis]);
        for (std::size_t patient = 0; patient < 3; ++patient) {
            share[axis][patient] = length > 0.0 ? affine[patient][axis] / length : axis == patient ? 1.0 : 0.0;
        }
    }
    // The first of the orders in which the axes fit together best.
    Patient_Axes found;
    double best = -1.0;
    std::array<std::size_t, 3> tried{0, 1, 2};
    do {
        double fit = 0.0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            fit += std::abs(share[axis][tried[axis]]);
        }
        if (fit > best + 1e-9) {
            best = fit;
            found.patient = tried;
        }
    } while (std::ranges::next_permutation(tried).found);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        found.is_rising[axis] = share[axis][found.patient[axis]] >= 0.0;
    }
    found.is_known = true;
    Turn(found, order);
    return found;
}

Patient_Axes Patient_Axes_Of_Letters(std::string_view towards, const Display_Order& order) {
    Patient_Axes found;
    std::array<bool, 3> is_used{};
    found.is_known = towards.size() == 3;
    for (std::size_t at = 0; at < towards.size() && found.is_known; ++at) {
        const char letter =
            towards[at] >= 'a' && towards[at] <= 'z' ? static_cast<char>(towards[at] - 'a' + 'A') : towards[at];
        const auto* const sides = std::ranges::find_if(
            SIDE_NAMES, [letter](const auto& names) { return letter == names[0] || letter == names[1]; });
        const auto patient = static_cast<std::size_t>(sides - SIDE_NAMES.begin());
        found.is_known = sides != SIDE_NAMES.end() && !is_used[patient];
        if (found.is_known) {
            is_used[patient] = true;
            found.patient[at] = patient;
            found.is_rising[at] = letter == (*sides)[1];
        }
    }
    if (!found.is_known) {
        found = Patient_Axes();
    }
    Turn(found, order);
    return found;
}

Plane_Geometry Plane_Geometry_Of(Plane plane, const Patient_Axes& axes, const std::array<int, 3>& voxel_nb,
                                 const std::array<double, 3>& spacing) {
    const std::array<std::size_t, 3>& patient = PLANE_AXES[static_cast<std::size_t>(plane)];
    Plane_Geometry geometry;
    geometry.voxel_nb = voxel_nb;
    for (std::size_t at = 0; at < 3; ++at) {
        const std::size_t voxel_axis = Voxel_Axis_Of(axes, patient[at]);
        const bool is_depth = at == 2;
        // Right, front and head stand first in a picture; from picture to picture they come last.
        geometry.axes[at] = {voxel_axis, axes.is_rising[voxel_axis] != is_depth};
    }
    geometry.pixel_aspect = spacing[geometry.axes[1].voxel_axis] / spacing[geometry.axes[0].voxel_axis];
    if (axes.is_known) {
        geometry.left = SIDE_NAMES[patient[0]][1];
        geometry.right = SIDE_NAMES[patient[0]][0];
        geometry.top = SIDE_NAMES[patient[1]][1];
        geometry.bottom = SIDE_NAMES[patient[1]][0];
    }
    return geometry;
}

Plane_Geometry Plane_Geometry_Of_Slices(const std::array<int, 3>& voxel_nb, const std::array<double, 3>& spacing) {
    Plane_Geometry geometry;
    geometry.axes = {{{0, false}, {1, false}, {2, false}}};
    geometry.voxel_nb = voxel_nb;
    geometry.pixel_aspect = spacing[1] / spacing[0];
    return geometry;
}

Plane Plane_Of_Slices(const Patient_Axes& axes) {
    constexpr std::array<Plane, 3> across = {Plane::Sagittal, Plane::Coronal, Plane::Axial};
    return across[axes.patient[SLICE_AXIS]];
}

const char* Plane_Name(Plane plane) {
    constexpr const char* names[] = {"Axial", "Coronal", "Sagittal"};
    return names[static_cast<std::size_t>(plane)];
}

Shown_Voxel Plane_Geometry::To_Voxel(const Plane_Pixel& pixel) const {
    const std::array<int, 3> given = {pixel.x, pixel.y, pixel.depth};
    std::array<int, 3> voxel{};
    for (std::size_t at = 0; at < 3; ++at) {
        const std::size_t axis = axes[at].voxel_axis;
        voxel[axis] = axes[at].is_reversed ? voxel_nb[axis] - 1 - given[at] : given[at];
    }
    return {voxel[0], voxel[1], voxel[2]};
}

Plane_Pixel Plane_Geometry::To_Pixel(const Shown_Voxel& voxel) const {
    const std::array<int, 3> given = {voxel.x, voxel.y, voxel.slice};
    std::array<int, 3> pixel{};
    for (std::size_t at = 0; at < 3; ++at) {
        const std::size_t axis = axes[at].voxel_axis;
        pixel[at] = axes[at].is_reversed ? voxel_nb[axis] - 1 - given[axis] : given[axis];
    }
    return {pixel[0], pixel[1], pixel[2]};
}

std::array<std::ptrdiff_t, 3> Plane_Geometry::Steps() const {
    const std::array<std::ptrdiff_t, 3> voxel_steps = {1, voxel_nb[0],
                                                       static_cast<std::ptrdiff_t>(voxel_nb[0]) * voxel_nb[1]};
    std::array<std::ptrdiff_t, 3> steps{};
    for (std::size_t at = 0; at < 3; ++at) {
        const std::ptrdiff_t step = voxel_steps[axes[at].voxel_axis];
        steps[at] = axes[at].is_reversed ? -step : step;
    }
    return steps;
}

std::size_t Plane_Geometry::First(int depth) const {
    const Shown_Voxel voxel = To_Voxel({0, 0, depth});
    return (static_cast<std::size_t>(voxel.slice) * static_cast<std::size_t>(voxel_nb[1]) +
            static_cast<std::size_t>(voxel.y)) *
               static_cast<std::size_t>(voxel_nb[0]) +
           static_cast<std::size_t>(voxel.x);
}

void Plane_Write(std::span<const std::uint8_t> picture, const Plane_Geometry& geometry, int depth,
                 const Pixel_Rect& part, std::span<std::uint8_t> voxels) {
    Plane_Walk(geometry, depth, part, [&](std::size_t pixel, std::size_t voxel) { voxels[voxel] = picture[pixel]; });
}

namespace {

/** The pixels of a picture that lie in one slice, by ascending offset in it. */
struct Slice_Line {
    std::ptrdiff_t first = 0;  ///< pixel of the picture
    std::ptrdiff_t step = 1;
    int pixel_nb = 0;
    std::uint32_t offset = 0;  ///< in the slice
    std::uint32_t offset_step = 1;
};

std::vector<Voxel_Run> Line_Runs(const Slice_Line& line, std::span<const std::uint8_t> before,
                                 std::span<const std::uint8_t> after) {
    std::vector<Voxel_Run> runs;
    for (int at = 0; at < line.pixel_nb; ++at) {
        const auto pixel = static_cast<std::size_t>(line.first + at * line.step);
        const std::uint32_t offset = line.offset + static_cast<std::uint32_t>(at) * line.offset_step;
        const std::uint8_t was = before[pixel];
        const std::uint8_t is = after[pixel];
        if (was == is) {
            continue;
        }
        if (!runs.empty() && runs.back().offset + runs.back().length == offset && runs.back().before == was &&
            runs.back().after == is) {
            ++runs.back().length;
        } else {
            runs.push_back({offset, 1, was, is});
        }
    }
    return runs;
}

/** Of a plane that cuts the slices. */
Slice_Line Line_In(const Plane_Geometry& geometry, int depth, int slice) {
    const bool is_slice_down = geometry.axes[1].voxel_axis == SLICE_AXIS;
    const Plane_Geometry::Axis& along = geometry.axes[is_slice_down ? 0 : 1];
    const Plane_Geometry::Axis& to_slices = geometry.axes[is_slice_down ? 1 : 0];
    const int width = geometry.Width();
    const int at = to_slices.is_reversed ? geometry.voxel_nb[SLICE_AXIS] - 1 - slice : slice;
    const int length = geometry.voxel_nb[along.voxel_axis];
    const int begin = along.is_reversed ? length - 1 : 0;
    Slice_Line line;
    line.pixel_nb = length;
    line.step = (along.is_reversed ? -1 : 1) * (is_slice_down ? 1 : width);
    line.first = is_slice_down ? static_cast<std::ptrdiff_t>(at) * width + begin
                               : static_cast<std::ptrdiff_t>(begin) * width + at;
    const Plane_Pixel first_pixel = is_slice_down ? Plane_Pixel{begin, at, depth} : Plane_Pixel{at, begin, depth};
    const Shown_Voxel first = geometry.To_Voxel(first_pixel);
    line.offset = static_cast<std::uint32_t>(first.y) * static_cast<std::uint32_t>(geometry.voxel_nb[0]) +
                  static_cast<std::uint32_t>(first.x);
    line.offset_step = along.voxel_axis == 0 ? 1U : static_cast<std::uint32_t>(geometry.voxel_nb[0]);
    return line;
}

}  // namespace

std::vector<Slice_Change> Plane_Changes(const Plane_Geometry& geometry, int depth, std::span<const std::uint8_t> before,
                                        std::span<const std::uint8_t> after) {
    std::vector<Slice_Change> changes;
    if (geometry.axes[2].voxel_axis == SLICE_AXIS) {
        // The picture is one slice, perhaps turned: in the slice's own order.
        std::vector<std::uint8_t> slice_before(before.size());
        std::vector<std::uint8_t> slice_after(after.size());
        for (int y = 0; y < geometry.Height(); ++y) {
            for (int x = 0; x < geometry.Width(); ++x) {
                const Shown_Voxel voxel = geometry.To_Voxel({x, y, depth});
                const auto to = static_cast<std::size_t>(voxel.y) * static_cast<std::size_t>(geometry.voxel_nb[0]) +
                                static_cast<std::size_t>(voxel.x);
                const auto from = static_cast<std::size_t>(y) * static_cast<std::size_t>(geometry.Width()) +
                                  static_cast<std::size_t>(x);
                slice_before[to] = before[from];
                slice_after[to] = after[from];
            }
        }
        if (auto change = Slice_Difference(geometry.To_Voxel({0, 0, depth}).slice, slice_before, slice_after)) {
            changes.push_back(std::move(*change));
        }
        return changes;
    }
    for (int slice = 0; slice < geometry.voxel_nb[SLICE_AXIS]; ++slice) {
        const std::vector<Voxel_Run> runs = Line_Runs(Line_In(geometry, depth, slice), before, after);
        if (!runs.empty()) {
            changes.emplace_back(slice, runs);
        }
    }
    return changes;
}

Touched_Slices Plane_Slices(const Plane_Geometry& geometry, int depth, const Pixel_Rect& part) {
    const Pixel_Rect area = Rect_Common(part, geometry.Whole());
    if (area.Is_Empty()) {
        return {};
    }
    const int one = geometry.To_Voxel({area.left, area.top, depth}).slice;
    const int other = geometry.To_Voxel({area.right - 1, area.bottom - 1, depth}).slice;
    return {std::min(one, other), std::max(one, other)};
}

}  // namespace workbench
