/** How many voxels of each TAG there are in each slice, and of each grey level. */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "workbench/segmentation/cancelling.h"
#include "workbench/segmentation/label_edit.h"

namespace workbench::segmentation {

struct Level_Count {
    std::int32_t level;
    std::uint64_t nb;
};

/** The levels of each TAG's voxels. */
class Level_Counts {
  public:
    Level_Counts() = default;
    /** @param least, greatest of the levels that will be added; greatest < least: none will be */
    Level_Counts(std::int32_t least, std::int32_t greatest);

    /** @param levels of voxels that have the TAG */
    void Add(std::uint8_t tag, const volumes::Level_View& levels);
    /** What another one of the same range has counted, too. */
    void Add(const Level_Counts& other);
    /** The levels of a TAG, ascending, each once; the collected ones are given free. Several threads may, each with
     *  TAGs of its own. */
    std::vector<Level_Count> Take(std::uint8_t tag);

  private:
    std::int64_t first = 0;
    std::int64_t size = 0;
    std::array<std::vector<std::uint64_t>, TAG_MAX> tables;
    std::array<std::vector<std::int32_t>, TAG_MAX> lists;
};

struct Label_Counts {
    /** Voxels per TAG and slice of the grid; empty for a TAG that no slice has. */
    std::array<std::vector<std::uint64_t>, TAG_MAX> slice_voxels;
    Level_Counts levels;
};

/** Of an input's slices. @param threads at least 1 @throw Edit_Cancelled, std::bad_alloc */
Label_Counts Labels_Count(const Edit_Input& input, std::size_t threads, const Step_Progress& progress);

/** Work_Share with an operation's progress. @throw Edit_Cancelled, and what a piece throws */
void Pieces_Share(std::size_t count, std::size_t threads, const Step_Progress& progress,
                  const std::function<void(std::size_t)>& work);

}  // namespace workbench::segmentation
