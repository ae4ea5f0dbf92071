#include "workbench/tools/growth_mask.h"

#include <algorithm>

namespace workbench {

void Growth_Mask::Begin(std::size_t voxel_nb) {
    is_had.assign(voxel_nb, false);
    had_nb = 0;
}

std::size_t Growth_Mask::Follow(std::span<const std::size_t> voxels, std::size_t first_nb) {
    const std::size_t low = std::min(had_nb, first_nb);
    const std::size_t turned_nb = std::max(had_nb, first_nb) - low;
    const bool comes = first_nb > had_nb;
    for (const std::size_t at : voxels.subspan(low, turned_nb)) {
        is_had[at] = comes;
    }
    had_nb = first_nb;
    return turned_nb;
}

}  // namespace workbench
