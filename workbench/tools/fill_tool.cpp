#include "workbench/tools/fill_tool.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "workbench/model/number_text.h"
#include "workbench/tools/picture_edit.h"

namespace workbench {

using segmentation::Label_Edit;

std::int32_t Levels_Of_Greys(double greys, const volumes::Volume& volume) {
    constexpr double most = 2.0e9;
    return static_cast<std::int32_t>(std::clamp(greys / std::abs(volume.slope) + 1e-6, 0.0, most));
}

std::string Fill_Tool::Hint() const {
    return std::string("A click fills ") + (settings.is_in_space ? "in space" : "in the picture") + ", " +
           (settings.is_by_tolerance ? "by a tolerance of " + Number_Text(settings.tolerance)
                                     : "in the band of the TAG");
}

Pixel_Rect Fill_Tool::Press(const Tool_Spot& spot, Tool_Hand) {
    Session& work = host.work();
    if (!work.Has_Volume() || !spot.Is_Inside()) {
        return {};
    }
    const volumes::Level_View levels = work.Plain_Levels();
    if (levels.empty()) {
        host.tell("Images in colour have no grey values to fill by");
        return {};
    }
    const std::string name = host.tag_name(host.tag());
    const volumes::Volume& volume = work.Image();
    const Shown_Voxel seed = spot.Voxel();
    segmentation::Flood flood{
        {seed.x, seed.y, seed.slice}, static_cast<std::uint8_t>(host.tag()), {}, settings.Neighbours()};
    if (settings.is_by_tolerance) {
        flood.levels = segmentation::Level_Band_Around(levels[volume.Index(seed.x, seed.y, seed.slice)],
                                                       Levels_Of_Greys(settings.tolerance, volume));
    } else if (const auto band = host.band()) {
        flood.levels = *band;
    } else {
        host.tell(name + " has no band: set its thresholds, or fill by a tolerance");
        return {};
    }
    const std::string title = "Fill with " + name;
    try {
        if (!settings.is_in_space) {
            const Picture_Ground ground(work, spot.cut);
            flood.seed = {spot.X(), spot.Y(), 0};
            const Label_Edit edit = segmentation::Flood_Fill(ground.Input(host), flood).value_or(Label_Edit());
            Change_Take(host, title, ground.Change_By(edit), edit.voxel_nb);
            return {};
        }
        std::optional<Label_Edit> edit;
        host.run(title, [&](const segmentation::Edit_Progress& progress) {
            segmentation::Edit_Input input = Volume_Input(host);
            input.progress = progress;
            edit = segmentation::Flood_Fill(input, flood);
        });
        if (!edit) {
            host.tell(title + " was given up: nothing has changed");
            return {};
        }
        Change_Take(host, title, Voxel_Change{std::move(edit->slices)}, edit->voxel_nb);
    } catch (const std::bad_alloc&) {
        host.warn(title + ": there is not enough memory. Nothing has changed.");
    }
    return {};
}

}  // namespace workbench
