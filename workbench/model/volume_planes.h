/** The three planes through a volume, as the patient lies: which voxels a picture of each shows, and where.
 *
 *  Voxels are counted in the order of display (see Display_Order); planes of oblique volumes run along the voxels' axes
 *  that lie nearest to the patient's.
 */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "workbench/model/display_order.h"
#include "workbench/model/label_map.h"
#include "workbench/model/undo_journal.h"
#include "workbench/volumes/volume.h"

namespace workbench {

enum class Plane { Axial, Coronal, Sagittal };
inline constexpr int PLANE_NB = 3;

/** How the axes of the voxels run in the patient: each of x, y and z along another of the patient's. */
struct Patient_Axes {
    std::array<std::size_t, 3> patient{0, 1, 2};  ///< per axis of the voxels: 0 left-right, 1 back-front, 2 foot-head
    std::array<bool, 3> is_rising{true, true, true};  ///< it runs to the right, the front or the head
    bool is_known = false;                            ///< false: the file does not say it, and the rest is a guess
};

/** Which axes of the voxels lie nearest to the patient's, all together. @param order the turn for display */
Patient_Axes Patient_Axes_Of(const volumes::Affine& affine, const Display_Order& order);
/** The same as a user said it. @param towards as for Letters_Set; no such text: not known */
Patient_Axes Patient_Axes_Of_Letters(std::string_view towards, const Display_Order& order);

/** A voxel in the order of display. */
struct Shown_Voxel {
    int x = 0;
    int y = 0;
    int slice = 0;
    bool operator==(const Shown_Voxel&) const = default;
};
/** A pixel of one of a plane's pictures. */
struct Plane_Pixel {
    int x = 0;      ///< from the left
    int y = 0;      ///< from the top
    int depth = 0;  ///< which picture: rises to the patient's head, front or right
    bool operator==(const Plane_Pixel&) const = default;
};

/** The pictures of a plane. The patient's right is at their left, the front at their top or left, the head at their
 *  top. */
struct Plane_Geometry {
    /** An axis of the pictures: which axis of the voxels it is, and whether it runs the other way. */
    struct Axis {
        std::size_t voxel_axis = 0;
        bool is_reversed = false;
        bool operator==(const Axis&) const = default;
    };
    std::array<Axis, 3> axes;       ///< across, down, through
    std::array<int, 3> voxel_nb{};  ///< extents of the volume along x, y and slices
    double pixel_aspect = 1.0;      ///< height of a pixel by its width, in millimetres
    char left = ' ';                ///< side of the patient, ' ': not known
    char right = ' ';
    char top = ' ';
    char bottom = ' ';

    int Width() const { return voxel_nb[axes[0].voxel_axis]; }
    int Height() const { return voxel_nb[axes[1].voxel_axis]; }
    int Depth_Nb() const { return voxel_nb[axes[2].voxel_axis]; }
    std::size_t Pixel_Nb() const { return static_cast<std::size_t>(Width()) * static_cast<std::size_t>(Height()); }
    Pixel_Rect Whole() const { return {0, 0, Width(), Height()}; }
    bool Has(int x, int y) const { return x >= 0 && x < Width() && y >= 0 && y < Height(); }
    /** @param pixel inside the volume or not: so is the voxel */
    Shown_Voxel To_Voxel(const Plane_Pixel& pixel) const;
    Plane_Pixel To_Pixel(const Shown_Voxel& voxel) const;
    /** Steps in memory from pixel to pixel across, down and through, of volumes of one time point. */
    std::array<std::ptrdiff_t, 3> Steps() const;
    /** Position in memory of the first pixel of a picture. */
    std::size_t First(int depth) const;
};
/** One picture of a plane. */
struct Plane_Cut {
    Plane_Geometry geometry;
    int depth = 0;
};
/** @param spacing millimetres from voxel to voxel along x, y and slices */
Plane_Geometry Plane_Geometry_Of(Plane plane, const Patient_Axes& axes, const std::array<int, 3>& voxel_nb,
                                 const std::array<double, 3>& spacing);
/** The pictures that the slices themselves are, as they are displayed. */
Plane_Geometry Plane_Geometry_Of_Slices(const std::array<int, 3>& voxel_nb, const std::array<double, 3>& spacing);
/** The plane that a volume's slices lie in. */
Plane Plane_Of_Slices(const Patient_Axes& axes);
const char* Plane_Name(Plane plane);

/** Goes over the pixels of a part of a picture, row by row from the top. @param depth inside @param part cut to the
 *  picture @param visit called as visit(pixel, voxel), both positions: in the picture and in the volume */
template <class Visit>
void Plane_Walk(const Plane_Geometry& geometry, int depth, const Pixel_Rect& part, Visit visit) {
    const Pixel_Rect area = Rect_Common(part, geometry.Whole());
    const auto [across, down, through] = geometry.Steps();
    const auto first = static_cast<std::ptrdiff_t>(geometry.First(depth));
    for (int y = area.top; y < area.bottom; ++y) {
        std::ptrdiff_t voxel = first + y * down + area.left * across;
        std::ptrdiff_t pixel = static_cast<std::ptrdiff_t>(y) * geometry.Width() + area.left;
        for (int x = area.left; x < area.right; ++x, voxel += across) {
            visit(static_cast<std::size_t>(pixel++), static_cast<std::size_t>(voxel));
        }
    }
}

/** Makes a part of a picture. @param voxels one time point, with an index operator @param depth inside
 *  @param part cut to the picture
 *  @param picture Pixel_Nb() values, rows from the top; those outside the part stay */
template <class Voxels, class Value>
void Plane_Copy(const Voxels& voxels, const Plane_Geometry& geometry, int depth, const Pixel_Rect& part,
                std::span<Value> picture) {
    Plane_Walk(geometry, depth, part, [&](std::size_t pixel, std::size_t voxel) { picture[pixel] = voxels[voxel]; });
}

/** Writes a part of a picture back. @param part cut to the picture @param picture Pixel_Nb() TAGs */
void Plane_Write(std::span<const std::uint8_t> picture, const Plane_Geometry& geometry, int depth,
                 const Pixel_Rect& part, std::span<std::uint8_t> voxels);

/** What two states of a picture differ in, as changes of the slices that it cuts, ascending. */
std::vector<Slice_Change> Plane_Changes(const Plane_Geometry& geometry, int depth, std::span<const std::uint8_t> before,
                                        std::span<const std::uint8_t> after);

/** The slices that a part of a picture touches, first and last; last < first: none. */
struct Touched_Slices {
    int first = 0;
    int last = -1;
};
Touched_Slices Plane_Slices(const Plane_Geometry& geometry, int depth, const Pixel_Rect& part);

}  // namespace workbench
