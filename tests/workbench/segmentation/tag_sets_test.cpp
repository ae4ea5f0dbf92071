#include "workbench/segmentation/tag_sets.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <string_view>
#include <vector>

#include "tests/workbench/segmentation/label_scene.h"

using namespace workbench::segmentation;

TEST(Tag_Sets, sets_of_voxels_are_joined_voxel_by_voxel) {
    const Label_Scene scene = Random_Scene(1, 9, 8, 4, 4);
    const Label_Scene others = Random_Scene(2, 9, 8, 4, 3);
    Edit_Input input = scene.Input();
    input.locked[3] = 1;
    input.slices = {1, 3};
    for (const Set_Operation operation :
         {Set_Operation::Copy, Set_Operation::Add, Set_Operation::Subtract, Set_Operation::Intersect}) {
        std::vector<std::uint8_t> expected = scene.tags;
        for (std::size_t at = scene.grid.Slice_Size(); at < expected.size(); ++at) {
            const bool one = scene.tags[at] == 1;
            const bool other = others.tags[at] == 2;
            const std::array<bool, 4> in = {other, one || other, one && !other, one && other};
            if (scene.tags[at] != 3) {
                expected[at] = in[static_cast<std::size_t>(operation)] ? 1 : one ? 0 : scene.tags[at];
            }
        }
        EXPECT_EQ(scene.After(*Tag_Combine(input, 1, operation, {others.tags, 2})), expected);
    }
    // A TAG of the same labels is taken up.
    const std::vector<std::uint8_t> joined =
        scene.After(*Tag_Combine(scene.Input(), 1, Set_Operation::Add, {scene.tags, 2}));
    for (std::size_t at = 0; at < joined.size(); ++at) {
        EXPECT_EQ(joined[at], scene.tags[at] == 2 ? 1 : scene.tags[at]);
    }
}

TEST(Tag_Sets, a_pixel_is_filled_when_its_centre_lies_inside) {
    const Label_Scene scene = Scene_Of(6, 5, 2);
    const std::array<Outline_Point, 4> box = {{{1.0, 1.0}, {4.0, 1.0}, {4.0, 3.0}, {1.0, 3.0}}};
    const std::vector<std::uint8_t> after = scene.After(Outline_Fill(scene.Input(), 1, box, 5));
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 6; ++x) {
            EXPECT_EQ(after[scene.grid.Index(x, y, 0)], 0);
            EXPECT_EQ(after[scene.grid.Index(x, y, 1)], x >= 1 && x < 4 && y >= 1 && y < 3 ? 5 : 0);
        }
    }
    const std::array<Outline_Point, 4> less = {{{1.6, 1.6}, {4.4, 1.6}, {4.4, 3.4}, {1.6, 3.4}}};
    EXPECT_EQ(Outline_Fill(scene.Input(), 1, less, 5).voxel_nb, 2U);
    EXPECT_EQ(Outline_Fill(scene.Input(), 2, box, 5).voxel_nb, 0U);
    const std::array<Outline_Point, 4> no_number = {
        {{1.0, 1.0}, {4.0, 1.0}, {std::numeric_limits<double>::quiet_NaN(), 3.0}, {1.0, 3.0}}};
    EXPECT_EQ(Outline_Fill(scene.Input(), 1, no_number, 5).voxel_nb, 0U);
    const std::array<Outline_Point, 4> huge = {{{-1e300, -1e300}, {1e300, -1e300}, {1e300, 1e300}, {-1e300, 1e300}}};
    EXPECT_EQ(Outline_Fill(scene.Input(), 1, huge, 5).voxel_nb, 30U);
    EXPECT_EQ(Outline_Fill(scene.Input(), 1, {}, 5).voxel_nb, 0U);
}

TEST(Tag_Sets, what_an_outline_goes_around_twice_is_outside) {
    const Label_Scene scene = Scene_Of(9, 9, 1);
    // Two squares in one line: the inner one is gone around twice.
    const std::array<Outline_Point, 10> twice = {
        {{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {3, 3}, {6, 3}, {6, 6}, {3, 6}, {3, 3}}};
    const std::vector<std::uint8_t> after = scene.After(Outline_Fill(scene.Input(), 0, twice, 1));
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 9; ++x) {
            const bool is_hole = x >= 3 && x < 6 && y >= 3 && y < 6;
            EXPECT_EQ(after[scene.grid.Index(x, y, 0)], is_hole ? 0 : 1) << x << ", " << y;
        }
    }
}

TEST(Tag_Sets, triangles_of_a_fan_leave_no_pixel_and_take_none_twice) {
    std::mt19937 random(5);
    for (int round = 0; round < 30; ++round) {
        const Label_Scene scene = Scene_Of(40, 40, 1);
        const auto place = [&] { return static_cast<double>(random() % 81) / 2.0; };
        const Outline_Point middle = {place(), place()};
        const std::array<Outline_Point, 4> corners = {{{0, 0}, {40, 0}, {40, 40}, {0, 40}}};
        std::vector<int> taken(scene.tags.size());
        for (std::size_t side = 0; side < 4; ++side) {
            // Sides are walked in either direction.
            std::array<Outline_Point, 3> triangle = {{middle, corners[side], corners[(side + 1) % 4]}};
            if (side % 2 == 1) {
                std::swap(triangle[0], triangle[2]);
            }
            const std::vector<std::uint8_t> after = scene.After(Outline_Fill(scene.Input(), 0, triangle, 1));
            for (std::size_t at = 0; at < taken.size(); ++at) {
                taken[at] += after[at];
            }
        }
        EXPECT_EQ(taken, std::vector<int>(taken.size(), 1)) << "round " << round;
    }
}
