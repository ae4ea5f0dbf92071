#include "workbench/segmentation/label_edit.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace workbench::segmentation {

Slice_Range Edit_Input::Slices() const {
    return {std::max(slices.first, 0), std::min(slices.last, grid.slices - 1)};
}

void Edit_Apply(const Label_Edit& edit, bool redo, const Label_Grid& grid, std::span<std::uint8_t> tags) {
    for (const Slice_Change& change : edit.slices) {
        Slice_Change_Apply(change, redo,
                           tags.subspan(static_cast<std::size_t>(change.slice) * grid.Slice_Size(), grid.Slice_Size()));
    }
}

Edit_Builder::Edit_Builder(const Edit_Input& edit_input) : input(edit_input) {
    for (std::size_t tag = 0; tag < stays.size(); ++tag) {
        stays[tag] = input.May_Change(static_cast<std::uint8_t>(tag)) ? 0 : 1;
    }
}

void Edit_Builder::Slice_Set(int slice, std::span<const std::uint8_t> after) {
    if (auto change = Slice_Change::Of_Difference(slice, input.Slice_Tags(slice), after, &stays)) {
        edit.voxel_nb += change->Voxel_Nb();
        edit.slices.push_back(std::move(*change));
    }
}

}  // namespace workbench::segmentation
