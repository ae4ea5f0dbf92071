/** Which voxels of a volume the pixels of a picture are. */
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "workbench/volumes/slice_stack.h"
#include "workbench/volumes/volume.h"

namespace volumes {

/** Turns millimetres into voxels: the inverse of an affine. */
class To_Voxels {
  public:
    explicit To_Voxels(const Affine& affine);
    /** Whether the affine can be turned round: its columns are no plane and no line. */
    bool Is_Usable() const { return is_usable; }
    /** A way in millimetres as a way in voxels. */
    std::array<double, 3> Way(const std::array<double, 3>& mm) const;
    /** A place, to the right, front and top, as the voxel whose centre it is, or between. */
    std::array<double, 3> Place(const std::array<double, 3>& mm) const;

  private:
    std::array<std::array<double, 3>, 3> rows{};
    std::array<double, 3> offset{};
    bool is_usable = false;
};

/** A picture somewhere in the patient. */
struct Placed_Picture {
    Slice_Place place;                       ///< known
    std::array<double, 2> pixel{1, 1};       ///< mm along a row, along a column
    std::array<std::int32_t, 2> size{1, 1};  ///< pixels of a row, of a column
};

/** Pixel (column, row) is the voxel origin + column * along_row + row * along_column. */
struct Picture_Voxels {
    std::array<std::int32_t, 3> origin{};
    std::array<std::int32_t, 3> along_row{};
    std::array<std::int32_t, 3> along_column{};
    double off = 0;  ///< voxels that the picture lies beside them, across its plane, at most; 0 .. 0.45
};

/** @return no value: the pixels lie elsewhere than the volume's voxels, by more than a tenth of a voxel in the plane or
 *  nearly half a one across it, or have other sizes; or the volume's affine cannot be turned round */
std::optional<Picture_Voxels> Picture_Voxels_Find(const Volume& volume, const Placed_Picture& picture);

}  // namespace volumes
