/** Filling, growing and choosing regions. What is locked, or outside the chosen TAG, is neither changed nor crossed by
 *  a fill; operations on a TAG's regions look at all its voxels and change those that they may.
 *
 *  Every operation returns nothing when it is cancelled, and throws std::bad_alloc when memory is short.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "workbench/segmentation/label_edit.h"
#include "workbench/segmentation/level_bands.h"
#include "workbench/segmentation/voxel_regions.h"

namespace workbench::segmentation {

/** The levels at most so far from one. @param tolerance 0 or more */
Level_Band Level_Band_Around(std::int32_t level, std::int32_t tolerance);

struct Flood {
    Voxel_Place seed;
    std::uint8_t tag = 0;
    Level_Band levels;
    Neighbours neighbours = Neighbours::Faces;
};

/** Gives a TAG to the voxels of a band that hang together with the seed; none when the seed is not one of them. Voxels
 *  that have the TAG already are crossed. A fill in a plane is one over a range of one slice. @param input with levels
 */
std::optional<Label_Edit> Flood_Fill(const Edit_Input& input, const Flood& flood);

/** The voxels around a seed in the order in which a rising tolerance reaches them, so that a slider need not begin
 *  anew. */
class Region_Growth {
  public:
    /** @param input with levels; only looked at here @param levels around the seed's own: the largest tolerance
     *  @return nothing: cancelled */
    static std::optional<Region_Growth> Find(const Edit_Input& input, const Flood& flood, std::int32_t tolerance_most);
    /** Voxels within a tolerance. */
    std::uint64_t Voxel_Nb(std::int32_t tolerance) const;
    /** The same, their positions in the grid. */
    std::span<const std::size_t> Voxels(std::int32_t tolerance) const {
        return std::span(voxels).first(static_cast<std::size_t>(Voxel_Nb(tolerance)));
    }
    /** What Flood_Fill gives for that tolerance. @param input as at Find */
    Label_Edit Edit(const Edit_Input& input, std::int32_t tolerance) const;

  private:
    std::uint8_t tag = 0;
    std::vector<std::size_t> voxels;    // in the order of their tolerances
    std::vector<std::size_t> voxel_nb;  // one per tolerance: voxels up to it
};

/** Leaves the region of the most voxels of a TAG; the others become background. */
std::optional<Label_Edit> Region_Keep_Largest(const Edit_Input& input, std::uint8_t tag, Neighbours neighbours);
/** A TAG's regions of less than a volume become background. @param mm3 cubic millimetres */
std::optional<Label_Edit> Regions_Drop_Below(const Edit_Input& input, std::uint8_t tag, double mm3,
                                             Neighbours neighbours);
/** Leaves the region that a voxel lies in; no change when the voxel does not have the TAG. */
std::optional<Label_Edit> Region_Keep_At(const Edit_Input& input, std::uint8_t tag, const Voxel_Place& place,
                                         Neighbours neighbours);
/** Gives the region that a voxel lies in, whatever its TAG, another TAG. */
std::optional<Label_Edit> Region_Give(const Edit_Input& input, const Voxel_Place& place, std::uint8_t to,
                                      Neighbours neighbours);

}  // namespace workbench::segmentation
