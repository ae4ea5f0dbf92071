// How every operation on labels runs: what it needs, one step of the history, what is told.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <new>
#include <utility>

#include "workbench/edits/segmentation_control.h"
#include "workbench/model/number_text.h"

namespace workbench {

using segmentation::Edit_Input;
using segmentation::Label_Edit;

bool Segmentation_Control::Has_Volume() {
    if (!host.Work().Has_Volume()) {
        host.Tell("There is no image: open one first");
        return false;
    }
    return true;
}

bool Segmentation_Control::Has_Tag() {
    if (!Has_Volume()) {
        return false;
    }
    if (host.Hand().tag == 0) {
        host.Tell("The background is no TAG that could be corrected: pick another one");
        return false;
    }
    return true;
}

Edit_Input Segmentation_Control::Input() const {
    const Session& work = host.Work();
    const volumes::Volume& volume = work.Image();
    Edit_Input input;
    input.grid = {volume.nx, volume.ny, volume.nz, volume.spacing};
    input.tags = work.Labels().All();
    if (!volume.color) {
        input.levels = volume.levels.View().first(input.grid.Voxel_Nb());
    }
    input.slices = Slices();
    input.locked = host.Hand().locked;
    input.locked[0] = 0;  // as for painting: there would be nothing to work on
    input.only_inside = only_inside;
    return input;
}

void Segmentation_Control::Operate(const std::string& title, const Operation& operation) {
    Session& work = host.Work();
    host.Stroke_End();
    try {
        Edit_Input input = Input();
        std::optional<Label_Edit> edit;
        host.Run(title, [&](const segmentation::Edit_Progress& progress) {
            input.progress = progress;
            edit = operation(input);
        });
        if (!edit) {
            return host.Tell(title + " was given up: nothing has changed");
        }
        if (edit->voxel_nb == 0) {
            return host.Tell(title + ": no voxel changes in " + Slices_Text() + Limits_Text());
        }
        const std::uint64_t voxel_nb = edit->voxel_nb;
        const std::size_t slice_nb = edit->slices.size();
        Voxel_Change change{std::move(edit->slices)};
        const int seen = Slice_Nearest(change, host.Hand().slice);
        work.Voxels_Change(title, std::move(change));
        host.Labels_Changed(seen);
        host.Tell(
            title + ": " + std::to_string(voxel_nb) + (voxel_nb == 1 ? " voxel" : " voxels") +
            (slice_nb == 1 ? " in slice " + std::to_string(seen + 1) : " in " + std::to_string(slice_nb) + " slices"));
    } catch (const std::bad_alloc&) {
        host.Warn(title + ": there is not enough memory. Nothing has changed.");
    }
}

std::string Segmentation_Control::Length_Unit() const {
    return host.Work().Image().is_size_known ? "mm" : "voxels";
}

std::optional<segmentation::Voxel_Place> Segmentation_Control::Cursor() {
    const std::optional<segmentation::Voxel_Place> cursor = host.Hand().cursor;
    if (!cursor) {
        host.Tell("Point at a voxel with the mouse and press the key, or show the keyboard's cursor (I)");
        return std::nullopt;
    }
    const segmentation::Slice_Range slices = Slices();
    if (cursor->z < slices.first || cursor->z > slices.last) {
        host.Tell("The shown slice is not among those that are worked on: " + Slices_Text());
        return std::nullopt;
    }
    return cursor;
}

bool Segmentation_Control::Number_Ask(const std::string& title, const std::string& question, double& last) {
    const std::optional<std::string> answer = host.Text_Ask(title, question, Number_Text(last));
    if (!answer) {
        return false;
    }
    std::string text = *answer;
    std::ranges::replace(text, ',', '.');
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != 0 || !std::isfinite(value) || value < 0.0) {
        host.Warn("\"" + *answer + "\" is no number of 0 or more.");
        return false;
    }
    last = value;
    return true;
}

void Segmentation_Control::Volume_Follow() {
    if (scope == Edit_Scope::Range) {
        scope = Edit_Scope::Volume;  // the slices of another image
    }
    if (!host.Work().Has_Volume() || compared.serial != host.Work().Serial()) {
        compared = {};
        is_difference = false;
    }
    is_quick = true;
    Labels_Follow();
}

}  // namespace workbench
