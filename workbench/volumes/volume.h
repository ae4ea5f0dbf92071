/** A 3D image or a series of them, as loaded from a file. */
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "workbench/volumes/voxel_levels.h"

namespace volumes {

/** Three rows of four: millimetres = first three columns * voxel index + fourth column. */
using Affine = std::array<std::array<double, 4>, 3>;

/** Most steps between the smallest and the largest level of quantised values: levels 0 .. QUANTISED_STEPS. */
inline constexpr std::int32_t QUANTISED_STEPS = 65535;

/** Where the affine of a volume comes from. Qform: a rotation and an offset of the file, or DICOM's positions and
 * directions. Spacing: the file does not say how the patient lies, and the affine holds the voxel sizes alone. Chosen:
 * the user said it. */
enum class Affine_Source { Sform, Qform, Spacing, Chosen };

/** How grey values become brightness between a window's ends. */
enum class Window_Function {
    Linear,        ///< DICOM's own: width - 1 grey values wide, and half a value lower
    Linear_Exact,  ///< from centre - width / 2 to centre + width / 2
    Sigmoid,       ///< 1 / (1 + exp(-4 * (grey - centre) / width))
};

/** A window that a file proposes, in grey values. */
struct Display_Window {
    std::string name;  ///< UTF-8; empty: none
    double center = 0;
    double width = 1;  ///< positive; LINEAR: 1 or more
    Window_Function function = Window_Function::Linear;
    bool operator==(const Display_Window&) const = default;
};

/** The geometry fields of a NIfTI header exactly as stored (in the file's units), kept so that a label file can repeat
 * them. */
struct Stored_Geometry {
    bool present = false;  ///< false: the volume did not come from such a file and the rest means nothing
    std::int32_t qform_code = 0;
    std::int32_t sform_code = 0;
    std::int32_t units = 0;           ///< the field xyzt_units
    std::array<double, 8> pixdim{};   ///< [0] is the handedness of the quaternion, [1..3] voxel sizes, [4] time step
    std::array<double, 3> quatern{};  ///< b, c, d
    std::array<double, 3> qoffset{};
    Affine srow{};
};

/** Voxels are kept x fastest, then y, z, t.
 *
 *  Display: NIfTI's axes run to the patient's right (x), front (y) and top (z) when the affine's diagonal is positive,
 *  so an axial frame stands upright when the picture's row r, counted from the top, shows y = ny - 1 - r. Where the
 *  affine's element [0][0] (or [1][1]) is negative, the x (or y) axis runs the other way.
 */
struct Volume {
    std::int32_t nx = 0;                     ///< 1 or more
    std::int32_t ny = 0;                     ///< 1 or more
    std::int32_t nz = 0;                     ///< 1 or more
    std::int32_t nt = 0;                     ///< 1 or more: time points, and all further dimensions multiplied
    std::array<double, 3> spacing{1, 1, 1};  ///< mm, positive
    double time_step = 0;                    ///< seconds; 0: unknown
    bool is_size_known = true;               ///< false: the file does not say how large a voxel is in the patient
    Affine affine{};                         ///< voxel index (x, y, z) to millimetres
    Affine_Source affine_source = Affine_Source::Spacing;
    std::string scalar_type;  ///< type in the file: "uint8", "int16", "float32", "rgb24" ...
    bool color = false;       ///< levels are packed: red in the low byte, then green, then blue
    double slope = 1;         ///< grey = level * slope + intercept; may be negative, not 0
    double intercept = 0;
    double max_error = 0;  ///< grey of a level is at most this far from the file's value (see Level_Builder); 0: exact
    std::uint64_t nonfinite_nb = 0;  ///< values that were no number or infinite; they have the level LEVEL_OUTSIDE
    std::uint64_t outlier_nb = 0;    ///< values far from all others (see Value_Range_Find); they too are LEVEL_OUTSIDE
    double outlier_lowest = 0;       ///< grey: the smallest of those; 0 without any
    double outlier_highest = 0;      ///< grey: the largest
    std::int32_t level_min = 0;      ///< smallest level present but LEVEL_OUTSIDE; colour: smallest component
    std::int32_t level_max = 0;      ///< largest level present but LEVEL_OUTSIDE; colour: largest component
    Voxel_Levels levels;             ///< nx * ny * nz * nt values, at most LEVEL_LARGEST, or LEVEL_OUTSIDE
    Stored_Geometry stored;
    bool is_inverted = false;  ///< to be shown with small greys bright; levels and greys are the file's all the same
    std::string encoding;      ///< what the file is: "NIfTI-1, little-endian"; DICOM's transfer syntax; empty: not told
    std::string place_source;  ///< where positions and directions come from, for people; may be empty
    std::vector<Display_Window> windows;  ///< that the file proposes, in its order; mostly none

    /** Grey value of a level, limited to the range of float; colour: its luminance, 0 .. 255. LEVEL_OUTSIDE has none:
     * no number. */
    float grey(std::int32_t level) const {
        if (level == LEVEL_OUTSIDE) {
            return std::numeric_limits<float>::quiet_NaN();
        }
        if (color) {
            const double red = level & 0xFF;
            const double green = (level >> 8) & 0xFF;
            const double blue = (level >> 16) & 0xFF;
            return static_cast<float>(0.299 * red + 0.587 * green + 0.114 * blue);
        }
        constexpr double largest = std::numeric_limits<float>::max();
        return static_cast<float>(std::clamp(static_cast<double>(level) * slope + intercept, -largest, largest));
    }
    /** Position of a voxel in `levels`; every index inside the volume. */
    std::size_t Index(std::int32_t x, std::int32_t y, std::int32_t z, std::int32_t t = 0) const {
        const auto row = (static_cast<std::size_t>(t) * static_cast<std::size_t>(nz) + static_cast<std::size_t>(z)) *
                             static_cast<std::size_t>(ny) +
                         static_cast<std::size_t>(y);
        return row * static_cast<std::size_t>(nx) + static_cast<std::size_t>(x);
    }
    /** Voxels of one time point. */
    std::size_t Voxel_Nb_3D() const {
        return static_cast<std::size_t>(nx) * static_cast<std::size_t>(ny) * static_cast<std::size_t>(nz);
    }
};

}  // namespace volumes
