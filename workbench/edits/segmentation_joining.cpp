// TAGs that are joined with others, of the work or of a file.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "workbench/edits/segmentation_control.h"
#include "workbench/segmentation/tag_sets.h"

namespace workbench {

using segmentation::Edit_Input;

void Segmentation_Control::Tag_Merge() {
    if (!Has_Tag()) {
        return;
    }
    const Segmentation_Hand hand = host.Hand();
    std::vector<int> others;
    std::vector<std::string> lines;
    for (int tag = 1; tag < hand.tag_nb; ++tag) {
        if (tag != hand.tag) {
            others.push_back(tag);
            lines.push_back(std::to_string(tag) + "  " + host.Tag_Name(tag));
        }
    }
    const int chosen =
        host.Line_Ask("Take over another TAG", Name() + " is to have the voxels of this TAG, too:", lines, 0);
    if (chosen < 0 || static_cast<std::size_t>(chosen) >= others.size()) {
        return;
    }
    const int other = others[static_cast<std::size_t>(chosen)];
    Operate(host.Tag_Name(other) + " to " + Name(), [&](const Edit_Input& input) {
        return segmentation::Tag_Combine(input, Byte_Of(hand.tag), segmentation::Set_Operation::Add,
                                         {input.tags, Byte_Of(other)});
    });
}

void Segmentation_Control::Tag_Join_File() {
    using segmentation::Set_Operation;
    constexpr std::array<std::pair<Set_Operation, const char*>, 4> joinings = {
        {{Set_Operation::Copy, "Copy"},
         {Set_Operation::Add, "Add"},
         {Set_Operation::Subtract, "Subtract"},
         {Set_Operation::Intersect, "Intersect"}}};
    std::vector<std::uint8_t> laid;
    if (!Has_Tag() || !Label_File_Read("Join with a TAG of a file", laid)) {
        return;
    }
    std::array<std::uint64_t, TAG_MAX> voxel_nb{};
    for (const std::uint8_t tag : laid) {
        ++voxel_nb[tag];
    }
    std::vector<int> others;
    std::vector<std::string> lines;
    int current = 0;
    for (int tag = 1; tag < TAG_MAX; ++tag) {
        if (voxel_nb[static_cast<std::size_t>(tag)] != 0) {
            current = tag == host.Hand().tag ? static_cast<int>(others.size()) : current;
            others.push_back(tag);
            lines.push_back(std::to_string(tag) + "  " + std::to_string(voxel_nb[static_cast<std::size_t>(tag)]) +
                            " voxels");
        }
    }
    if (others.empty()) {
        return host.Warn("The file has only background.");
    }
    const int other = host.Line_Ask("Join with a TAG of a file", "TAG of the file:", lines, current);
    if (other < 0 || static_cast<std::size_t>(other) >= others.size()) {
        return;
    }
    const int joining = host.Line_Ask("Join with a TAG of a file", Name() + " is:",
                                      {"to have just the file's voxels", "to have the file's voxels, too",
                                       "to lose the file's voxels", "to stay only where the file has voxels, too"},
                                      1);
    if (joining < 0 || static_cast<std::size_t>(joining) >= joinings.size()) {
        return;
    }
    const auto& [operation, word] = joinings[static_cast<std::size_t>(joining)];
    const int from = others[static_cast<std::size_t>(other)];
    const int to = host.Hand().tag;
    Operate(std::string(word) + " TAG " + std::to_string(from) + " of a file: " + Name(),
            [&, kind = operation](const Edit_Input& input) {
                return segmentation::Tag_Combine(input, Byte_Of(to), kind, {laid, Byte_Of(from)});
            });
}

}  // namespace workbench
