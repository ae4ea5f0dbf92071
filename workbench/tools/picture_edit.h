/** Changes of one picture of a volume, whatever plane it lies in. */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "workbench/model/session.h"
#include "workbench/segmentation/label_edit.h"
#include "workbench/tools/tool_host.h"

namespace workbench {

/** A picture as a volume of one slice, for operations on labels. */
class Picture_Ground {
  public:
    /** @param work with a volume @param picture of it */
    Picture_Ground(const Session& work, const Plane_Cut& picture);
    /** What operations are given; the ground must stay as it is meanwhile. */
    segmentation::Edit_Input Input(const Tool_Host& host) const;
    std::size_t Index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(cut.geometry.Width()) +
               static_cast<std::size_t>(x);
    }
    const std::vector<std::uint8_t>& Tags() const { return tags; }
    const Plane_Cut& Cut() const { return cut; }
    /** The change of the volume that makes the picture this one. @param after one TAG per pixel */
    Voxel_Change Change_To(const std::vector<std::uint8_t>& after) const;
    /** The same of what an operation proposes. */
    Voxel_Change Change_By(const segmentation::Label_Edit& edit) const;

  private:
    Plane_Cut cut;
    segmentation::Label_Grid grid;
    std::vector<std::uint8_t> tags;
    std::vector<std::int32_t> levels;
};

/** The whole volume, for operations on labels; its slices as the application works on them. */
segmentation::Edit_Input Volume_Input(const Tool_Host& host);

/** Makes a step of a change, shows it, and tells how many voxels have changed. */
void Change_Take(const Tool_Host& host, const std::string& title, Voxel_Change&& change, std::uint64_t voxel_nb);

}  // namespace workbench
