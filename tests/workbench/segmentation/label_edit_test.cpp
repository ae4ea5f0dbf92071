#include "workbench/segmentation/label_edit.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/workbench/segmentation/label_scene.h"

using namespace workbench::segmentation;

namespace {

std::uint64_t Difference_Nb(const std::vector<std::uint8_t>& one, const std::vector<std::uint8_t>& other) {
    std::uint64_t nb = 0;
    for (std::size_t at = 0; at < one.size(); ++at) {
        nb += one[at] != other[at] ? 1 : 0;
    }
    return nb;
}

}  // namespace

TEST(Label_Edit, an_edit_leads_to_what_was_set_and_back_to_the_bits_before) {
    for (unsigned int seed = 0; seed < 40; ++seed) {
        const int tag_nb = seed % 2 == 0 ? 2 : 200;
        const Label_Scene scene = Random_Scene(seed, 37, 11, 3, tag_nb);
        std::vector<std::uint8_t> wanted = Random_Scene(seed + 1000, 37, 11, 3, tag_nb).tags;
        const Edit_Input input = scene.Input();
        Edit_Builder builder(input);
        for (int slice = 0; slice < 3; ++slice) {
            builder.Slice_Set(slice, std::span(wanted).subspan(static_cast<std::size_t>(slice) * 37 * 11, 37 * 11));
        }
        const Label_Edit edit = builder.Take();
        EXPECT_EQ(edit.voxel_nb, Difference_Nb(scene.tags, wanted));
        std::vector<std::uint8_t> tags = scene.After(edit);
        EXPECT_EQ(tags, wanted);
        Edit_Apply(edit, false, scene.grid, tags);
        EXPECT_EQ(tags, scene.tags);
    }
}

TEST(Label_Edit, long_runs_are_one_run) {
    const Label_Scene scene = Scene_Of(100, 4, 1);
    std::vector<std::uint8_t> wanted(400);
    std::fill(wanted.begin() + 3, wanted.begin() + 390, std::uint8_t{7});
    const Edit_Input input = scene.Input();
    Edit_Builder builder(input);
    builder.Slice_Set(0, wanted);
    const Label_Edit edit = builder.Take();
    ASSERT_EQ(edit.slices.size(), 1U);
    const std::vector<workbench::Voxel_Run> runs = edit.slices[0].Runs();
    ASSERT_EQ(runs.size(), 1U);
    EXPECT_EQ(runs[0].offset, 3U);
    EXPECT_EQ(runs[0].length, 387U);
}

TEST(Label_Edit, locked_tags_and_those_outside_the_chosen_one_stay) {
    Label_Scene scene = Random_Scene(3, 20, 20, 1, 4);
    const std::vector<std::uint8_t> wanted(400, 9);
    Edit_Input input = scene.Input();
    input.locked[2] = 1;
    Edit_Builder locked(input);
    locked.Slice_Set(0, wanted);
    const std::vector<std::uint8_t> after_lock = scene.After(locked.Take());
    input.only_inside = 1;
    Edit_Builder inside(input);
    inside.Slice_Set(0, wanted);
    const std::vector<std::uint8_t> after_inside = scene.After(inside.Take());
    for (std::size_t at = 0; at < wanted.size(); ++at) {
        EXPECT_EQ(after_lock[at], scene.tags[at] == 2 ? 2 : 9);
        EXPECT_EQ(after_inside[at], scene.tags[at] == 1 ? 9 : scene.tags[at]);
    }
    input.only_inside = 2;
    Edit_Builder none(input);
    none.Slice_Set(0, wanted);
    EXPECT_EQ(none.Take().voxel_nb, 0U);
}
