/** Which voxels of a volume a growing region has, so that a picture asks for its own pixels only. */
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace workbench {

/** One bit per voxel. A change of the tolerance turns only the voxels that come or go, however large the region is. */
class Growth_Mask {
  public:
    /** No voxel is had. Throws std::bad_alloc when memory is short. @param voxel_nb of the whole volume */
    void Begin(std::size_t voxel_nb);
    /** Has just the first voxels of a list from now on. Takes no memory.
     *  @param voxels positions in the volume, the same list since Begin @param first_nb at most all of them
     *  @return voxels that were turned */
    std::size_t Follow(std::span<const std::size_t> voxels, std::size_t first_nb);
    std::size_t Voxel_Nb() const { return is_had.size(); }
    bool operator[](std::size_t at) const { return is_had[at]; }

  private:
    std::vector<bool> is_had;
    std::size_t had_nb = 0;
};

}  // namespace workbench
