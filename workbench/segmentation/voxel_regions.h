/** Which voxels hang together. Rows are kept as runs, so that memory follows what is found and not the volume. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "workbench/segmentation/cancelling.h"
#include "workbench/segmentation/label_edit.h"
#include "workbench/segmentation/voxel_mask.h"

namespace workbench::segmentation {

/** Which voxels touch: FACES: 4 in a slice, 6 in space; CORNERS: 8 and 26. */
enum class Neighbours { Faces, Corners };

/** Voxels of a row that lie together; x in the volume, half-open. */
struct Region_Run {
    int begin = 0;
    int end = 0;
    std::uint32_t region = 0;
};

struct Region {
    std::uint64_t voxel_nb = 0;
    Voxel_Place first;  ///< by ascending z, then y, then x
};

/** Regions are numbered by their first voxels. */
class Region_Map {
  public:
    static constexpr std::uint32_t NONE = 0xFFFFFFFFU;

    const std::vector<Region>& Regions() const { return regions; }
    /** The runs of a row of the box, by ascending x. */
    std::span<const Region_Run> Row(int y, int z) const;
    /** The region of a voxel, NONE: it is in none. */
    std::uint32_t At(const Voxel_Place& place) const;
    /** The region of the most voxels, the first one of several; NONE: there is no region. */
    std::uint32_t Largest() const;
    const Voxel_Box& Box() const { return box; }

  private:
    friend class Region_Finder;
    Voxel_Box box;
    std::vector<std::size_t> row_begin;  // one more than rows
    std::vector<Region_Run> runs;
    std::vector<Region> regions;
};

/** Fills a row of a box with 1 and 0: which voxels take part. */
using Region_Row = std::function<void(int y, int z, std::span<std::uint8_t> row)>;

/** @throw Edit_Cancelled, std::bad_alloc */
Region_Map Regions_Find(const Voxel_Box& box, const Region_Row& row, Neighbours neighbours,
                        const Step_Progress& progress);
/** The regions of a TAG in the slices that are worked on. */
Region_Map Regions_Of_Tag(const Edit_Input& input, std::uint8_t tag, Neighbours neighbours,
                          const Step_Progress& progress);

}  // namespace workbench::segmentation
