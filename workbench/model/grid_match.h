/** How the voxels of a label volume lie on those of an image: compared by place, not by index. */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/volume.h"

namespace workbench {

/** Where voxels lie: their number along the three axes of the file, and the millimetres of each. */
struct Volume_Grid {
    std::array<std::int32_t, 3> size{};
    volumes::Affine affine{};
    std::size_t Voxel_Nb() const;
    friend bool operator==(const Volume_Grid&, const Volume_Grid&) = default;
};
Volume_Grid Volume_Grid_Of(const volumes::Volume& volume);

/** "181 x 217 x 181 voxels of 1 x 1 x 1 mm, the first at (-90, -126, -72) mm, axes to R, A, S". */
std::string Volume_Grid_Text(const Volume_Grid& grid);

enum class Grid_Relation {
    Same,    ///< voxel for voxel
    Turned,  ///< the same voxels, with axes exchanged or running the other way
    Other,   ///< other places
};

/** A voxel by its index along the three axes. */
using Grid_Voxel = std::array<std::int32_t, 3>;

struct Grid_Match {
    Grid_Relation relation = Grid_Relation::Other;
    bool is_same_size = false;          ///< along every axis
    std::array<std::size_t, 3> axis{};  ///< of the labels, that the image's axis runs along; not for OTHER
    std::array<bool, 3> is_flipped{};   ///< the image's axis runs the other way; not for OTHER
    bool is_placed = false;             ///< `image_to_labels` is known: the labels' affine can be turned round
    std::array<std::array<double, 4>, 3> image_to_labels{};  ///< index to index; whole numbers for SAME and TURNED
};

/** Voxels are the same when all corners of the grid lie within a tenth of a voxel of each other, along every axis: that
 *  compares size, spacing, directions and origin together. */
Grid_Match Grid_Compare(const Volume_Grid& image, const Volume_Grid& labels);
/** Index to index, whatever the places are. */
Grid_Match Grid_By_Index(const Volume_Grid& image, const Volume_Grid& labels);
/** What is turned, for a user: "x flipped, y and z exchanged"; empty unless TURNED. */
std::string Grid_Turn_Text(const Grid_Match& match);

/** The label nearest to every voxel of the image, in the image's order; background where the labels do not reach.
 *  @param labels in the order of their file @param match placed
 *  @param outside_nb receives the voxels of the image beyond the labels; may be null */
std::vector<std::uint8_t> Grid_Carry(const Volume_Grid& image, const Volume_Grid& of_labels, const Grid_Match& match,
                                     std::span<const std::uint8_t> labels, std::size_t* outside_nb = nullptr);
/** The image's voxel nearest to one of the labels; none when it lies outside the image. */
std::optional<Grid_Voxel> Grid_Image_Voxel(const Volume_Grid& image, const Grid_Match& match, const Grid_Voxel& labels);

}  // namespace workbench
