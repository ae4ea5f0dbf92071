#include "workbench/tools/picture_edit.h"

#include <span>
#include <utility>

namespace workbench {

Picture_Ground::Picture_Ground(const Session& work, const Plane_Cut& picture)
    : cut(picture), tags(picture.geometry.Pixel_Nb()) {
    const std::array<double, 3>& spacing = work.Image().spacing;
    grid = {cut.geometry.Width(),
            cut.geometry.Height(),
            1,
            {spacing[cut.geometry.axes[0].voxel_axis], spacing[cut.geometry.axes[1].voxel_axis],
             spacing[cut.geometry.axes[2].voxel_axis]}};
    Plane_Copy(work.Labels().All(), cut.geometry, cut.depth, cut.geometry.Whole(), std::span(tags));
    if (const volumes::Level_View all = work.Plain_Levels(); !all.empty()) {
        levels.resize(tags.size());
        all.Visit([&](const auto& voxels) {
            Plane_Copy(voxels, cut.geometry, cut.depth, cut.geometry.Whole(), std::span(levels));
        });
    }
}

segmentation::Edit_Input Picture_Ground::Input(const Tool_Host& host) const {
    segmentation::Edit_Input input;
    input.grid = grid;
    input.tags = tags;
    input.levels = levels;
    input.slices = {0, 0};
    input.locked = host.locked();
    input.locked[0] = 0;  // as for painting: there would be nothing to work on
    input.only_inside = host.only_inside();
    return input;
}

Voxel_Change Picture_Ground::Change_To(const std::vector<std::uint8_t>& after) const {
    return {Plane_Changes(cut.geometry, cut.depth, tags, after)};
}

Voxel_Change Picture_Ground::Change_By(const segmentation::Label_Edit& edit) const {
    std::vector<std::uint8_t> after = tags;
    segmentation::Edit_Apply(edit, true, grid, after);
    return Change_To(after);
}

segmentation::Edit_Input Volume_Input(const Tool_Host& host) {
    const Session& work = host.work();
    const volumes::Volume& volume = work.Image();
    segmentation::Edit_Input input;
    input.grid = {volume.nx, volume.ny, volume.nz, volume.spacing};
    input.tags = work.Labels().All();
    input.levels = work.Plain_Levels();
    input.slices = host.slices();
    input.locked = host.locked();
    input.locked[0] = 0;
    input.only_inside = host.only_inside();
    return input;
}

void Change_Take(const Tool_Host& host, const std::string& title, Voxel_Change&& change, std::uint64_t voxel_nb) {
    if (change.slices.empty()) {
        return host.tell(title + ": no voxel changes");
    }
    host.work().Voxels_Change(title, std::move(change));
    host.note(Change::Pixels);
    host.log("segmented");
    host.tell(title + ": " + std::to_string(voxel_nb) + (voxel_nb == 1 ? " voxel" : " voxels"));
}

}  // namespace workbench
