#include "workbench/segmentation/label_edit.h"

#include <algorithm>
#include <cstring>

namespace workbench::segmentation {

namespace {

constexpr std::size_t WORD_SIZE = sizeof(std::uint64_t);
constexpr std::uint64_t EACH_BYTE = 0x0101010101010101U;

std::uint64_t Word(const std::uint8_t* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, WORD_SIZE);
    return word;
}

}  // namespace

Slice_Range Edit_Input::Slices() const {
    return {std::max(slices.first, 0), std::min(slices.last, grid.slices - 1)};
}

void Edit_Apply(const Label_Edit& edit, bool redo, const Label_Grid& grid, std::span<std::uint8_t> tags) {
    for (const Slice_Change& change : edit.slices) {
        Slice_Change_Apply(change, redo,
                           tags.subspan(static_cast<std::size_t>(change.slice) * grid.Slice_Size(), grid.Slice_Size()));
    }
}

void Edit_Builder::Slice_Set(int slice, std::span<const std::uint8_t> after) {
    const std::span<const std::uint8_t> before = input.Slice_Tags(slice);
    runs.clear();
    const std::size_t size = after.size();
    std::size_t at = 0;
    while (at < size) {
        // Eight voxels at a time over what stays, and along a run.
        if (at + WORD_SIZE <= size && Word(&before[at]) == Word(&after[at])) {
            at += WORD_SIZE;
            continue;
        }
        if (before[at] == after[at]) {
            ++at;
            continue;
        }
        const std::uint8_t from = before[at];
        const std::uint8_t to = after[at];
        std::size_t end = at + 1;
        while (end + WORD_SIZE <= size && Word(&before[end]) == from * EACH_BYTE &&
               Word(&after[end]) == to * EACH_BYTE) {
            end += WORD_SIZE;
        }
        while (end < size && before[end] == from && after[end] == to) {
            ++end;
        }
        if (input.May_Change(from)) {
            runs.push_back({static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(end - at), from, to});
            edit.voxel_nb += end - at;
        }
        at = end;
    }
    if (!runs.empty()) {
        edit.slices.emplace_back(slice, runs);
    }
}

}  // namespace workbench::segmentation
