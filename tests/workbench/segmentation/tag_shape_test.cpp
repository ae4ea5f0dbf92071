#include "workbench/segmentation/tag_shape.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <queue>
#include <string_view>
#include <vector>

#include "tests/workbench/segmentation/label_scene.h"
#include "workbench/segmentation/distance_map.h"

using namespace workbench::segmentation;

namespace {

constexpr std::array<std::array<double, 3>, 4> SPACINGS = {
    {{1.0, 1.0, 1.0}, {0.1, 0.1, 0.3}, {0.9375, 0.9375, 3.0}, {2.0, 0.7, 1.3}}};

Voxel_Place Place_Of(const Label_Grid& grid, std::size_t at) {
    const int in_volume = static_cast<int>(at);
    return {in_volume % grid.width, in_volume / grid.width % grid.height, in_volume / grid.width / grid.height};
}

double Squared_Way(const Label_Grid& grid, std::size_t one, std::size_t other) {
    const Voxel_Place a = Place_Of(grid, one);
    const Voxel_Place b = Place_Of(grid, other);
    const double x = (a.x - b.x) * grid.spacing[0];
    const double y = (a.y - b.y) * grid.spacing[1];
    const double z = (a.z - b.z) * grid.spacing[2];
    return x * x + y * y + z * z;
}

/** A few voxels of TAG 1, most of TAG 0, some of TAG 2. */
Label_Scene Sparse_Scene(unsigned int seed, int width, int height, int slices) {
    Label_Scene scene = Random_Scene(seed, width, height, slices, 40);
    for (std::uint8_t& tag : scene.tags) {
        tag = tag > 2 ? 0 : tag;
    }
    scene.grid.spacing = SPACINGS[seed % SPACINGS.size()];
    return scene;
}

/** Whether any voxel of a kind lies within a radius. */
template <class Is_Kind>
std::vector<bool> Within(const Label_Scene& scene, double radius, Is_Kind is_kind) {
    std::vector<bool> within(scene.tags.size());
    for (std::size_t at = 0; at < within.size(); ++at) {
        for (std::size_t other = 0; other < within.size() && !within[at]; ++other) {
            within[at] =
                is_kind(scene.tags[other]) && Squared_Way(scene.grid, at, other) <= radius * radius * (1.0 + 1e-6);
        }
    }
    return within;
}

/** A ball of TAG 1 around the middle. @param radius voxels */
Label_Scene Ball_Scene(int side, double radius) {
    Label_Scene scene = Scene_Of(side, side, side);
    const std::size_t middle = scene.grid.Index(side / 2, side / 2, side / 2);
    for (std::size_t at = 0; at < scene.tags.size(); ++at) {
        scene.tags[at] = Squared_Way(scene.grid, at, middle) <= radius * radius ? 1 : 0;
    }
    return scene;
}

}  // namespace

TEST(Distance_Map, distances_are_those_to_the_nearest_voxel_of_all) {
    for (unsigned int seed = 0; seed < 16; ++seed) {
        const Label_Scene scene = Sparse_Scene(seed, 9, 19, seed % 3 == 0 ? 1 : 6);
        const Edit_Input input = scene.Input();
        const Voxel_Mask mask = Mask_Of_Tag(input, Box_Of_Slices(input), 1);
        const Edit_Progress silent;
        for (const std::uint8_t value : {std::uint8_t{0}, std::uint8_t{1}}) {
            const Distance_Map map = Distances_Find(mask, value, scene.grid.spacing, Step_Progress(silent));
            for (std::size_t at = 0; at < mask.on.size(); ++at) {
                double nearest = std::numeric_limits<double>::infinity();
                for (std::size_t other = 0; other < mask.on.size(); ++other) {
                    nearest = mask.on[other] == value ? std::min(nearest, Squared_Way(scene.grid, at, other)) : nearest;
                }
                if (std::isinf(nearest)) {
                    EXPECT_TRUE(std::isinf(map.squared[at]));
                } else {
                    EXPECT_NEAR(static_cast<double>(map.squared[at]), nearest, nearest * 3e-7);
                }
            }
        }
    }
}

TEST(Distance_Map, rows_and_distances_find_the_same_voxels_within_a_radius) {
    for (unsigned int seed = 0; seed < 40; ++seed) {
        const Label_Scene scene = Sparse_Scene(seed, 17, 14, 9);
        const Edit_Input input = scene.Input();
        const Voxel_Mask mask = Mask_Of_Tag(input, Box_Of_Slices(input), 1);
        const Edit_Progress silent;
        const double radius = scene.grid.spacing[0] * (seed % 5);
        const std::vector<Ball_Row> ball = Ball_Rows(radius, scene.grid.spacing, 100);
        for (const std::uint8_t value : {std::uint8_t{0}, std::uint8_t{1}}) {
            EXPECT_EQ(Mask_Within_By_Rows(mask, value, ball, Step_Progress(silent)).on,
                      Mask_Within_By_Distance(mask, value, radius, scene.grid.spacing, Step_Progress(silent)).on)
                << "seed " << seed;
        }
    }
}

TEST(Tag_Shape, growing_reaches_every_voxel_within_the_distance_and_no_other) {
    for (unsigned int seed = 0; seed < 24; ++seed) {
        const Label_Scene scene = Sparse_Scene(seed, 12, 10, 6);
        Edit_Input input = scene.Input();
        input.locked[2] = seed % 2 == 0 ? 1 : 0;
        const double radius = scene.grid.spacing[0] * (seed % 7);  // far ones go over distances
        const std::vector<bool> reached = Within(scene, radius, [](std::uint8_t tag) { return tag == 1; });
        std::vector<std::uint8_t> expected = scene.tags;
        for (std::size_t at = 0; at < expected.size(); ++at) {
            expected[at] = reached[at] && input.May_Change(expected[at]) ? 1 : expected[at];
        }
        EXPECT_EQ(scene.After(*Tag_Grow(input, 1, radius)), expected) << "seed " << seed;
    }
}

TEST(Tag_Shape, shrinking_takes_every_voxel_within_the_distance_of_others_and_stays_at_the_edges) {
    for (unsigned int seed = 0; seed < 24; ++seed) {
        Label_Scene scene = Sparse_Scene(seed, 12, 10, 6);
        for (std::uint8_t& tag : scene.tags) {
            tag = tag == 0 ? 1 : tag == 1 ? 0 : 2;
        }
        const Edit_Input input = scene.Input();
        const double radius = scene.grid.spacing[0] * (seed % 4);
        const std::vector<bool> reached = Within(scene, radius, [](std::uint8_t tag) { return tag != 1; });
        std::vector<std::uint8_t> expected = scene.tags;
        for (std::size_t at = 0; at < expected.size(); ++at) {
            expected[at] = reached[at] && expected[at] == 1 ? 0 : expected[at];
        }
        EXPECT_EQ(scene.After(*Tag_Shrink(input, 1, radius)), expected) << "seed " << seed;
    }
    Label_Scene full = Scene_Of(4, 4, 4);
    std::ranges::fill(full.tags, std::uint8_t{1});
    EXPECT_EQ(Tag_Shrink(full.Input(), 1, 100.0)->voxel_nb, 0U);
}

TEST(Tag_Shape, three_steps_of_a_tenth_reach_three_tenths) {
    Label_Scene scene = Scene_Of(9, 1, 1);
    scene.grid.spacing = {0.1, 0.1, 0.1};
    scene.tags[0] = 1;
    EXPECT_EQ(Tag_Grow(scene.Input(), 1, 0.3)->voxel_nb, 3U);
    EXPECT_EQ(Tag_Grow(scene.Input(), 1, 0.29999)->voxel_nb, 2U);
}

TEST(Tag_Shape, a_ball_that_grows_and_shrinks_is_the_ball_of_that_radius) {
    // The radius grown in steps of the grid is a ball again along its axes; elsewhere it is at most a voxel smaller.
    const Label_Scene ball = Ball_Scene(41, 8.0);
    const std::vector<std::uint8_t> grown = ball.After(*Tag_Grow(ball.Input(), 1, 6.0));
    const std::vector<std::uint8_t> largest = Ball_Scene(41, 14.0).tags;
    const std::vector<std::uint8_t> smallest = Ball_Scene(41, 13.0).tags;
    for (std::size_t at = 0; at < grown.size(); ++at) {
        EXPECT_LE(smallest[at], grown[at]);
        EXPECT_LE(grown[at], largest[at]);
    }
}

TEST(Tag_Shape, a_hole_is_what_cannot_reach_the_edge) {
    const std::array<std::string_view, 7> rows = {"1111111", "1.1.2.1", "1.1...1", "1111111",
                                                  "1..1...", "1..1..1", "111...."};
    Label_Scene scene = Scene_Of(rows);
    const std::array<std::string_view, 7> filled = {"1111111", "1111111", "1111111", "1111111",
                                                    "1111...", "1111..1", "111...."};
    const std::array<std::string_view, 7> only_free = {"1111111", "1111211", "1111111", "1111111",
                                                       "1111...", "1111..1", "111...."};
    // The way out at the corner of two voxels is none: the hole at the left is shut.
    EXPECT_EQ(scene.After(*Holes_Fill(scene.Input(), 1, Hole_Kind::Per_Slice)), Scene_Of(filled).tags);
    Edit_Input input = scene.Input();
    input.only_inside = 0;
    EXPECT_EQ(scene.After(*Holes_Fill(input, 1, Hole_Kind::Per_Slice)), Scene_Of(only_free).tags);
    EXPECT_EQ(Holes_Fill(scene.Input(), 9, Hole_Kind::Per_Slice)->voxel_nb, 0U);
}

TEST(Tag_Shape, what_is_open_at_any_side_is_no_hole) {
    const std::array<std::string_view, 3> left = {"111", "..1", "111"};
    const std::array<std::string_view, 3> right = {"111", "1..", "111"};
    const std::array<std::string_view, 3> top = {"1.1", "1.1", "111"};
    const std::array<std::string_view, 3> bottom = {"111", "1.1", "1.1"};
    for (const auto& rows : {left, right, top, bottom}) {
        EXPECT_EQ(Holes_Fill(Scene_Of(rows).Input(), 1, Hole_Kind::Per_Slice)->voxel_nb, 0U) << rows[0] << rows[1];
    }
}

TEST(Tag_Shape, a_block_inside_the_image_shrinks_from_all_sides) {
    Label_Scene scene = Scene_Of(7, 7, 7);
    for (int at = 0; at < 27; ++at) {
        scene.tags[scene.grid.Index(2 + at % 3, 2 + at / 3 % 3, 2 + at / 9)] = 1;
    }
    EXPECT_EQ(Tag_Shrink(scene.Input(), 1, 1.0)->voxel_nb, 26U);
}

TEST(Tag_Shape, a_thin_line_that_moves_from_slice_to_slice_does_not_break) {
    Label_Scene scene = Scene_Of(9, 4, 3);
    for (int y = 0; y < 4; ++y) {
        scene.tags[scene.grid.Index(4, y, 0)] = 1;
        scene.tags[scene.grid.Index(5, y, 2)] = 1;
    }
    const std::vector<std::uint8_t> after = scene.After(*Slices_Between_Fill(scene.Input(), 1));
    for (int x = 0; x < 9; ++x) {
        EXPECT_EQ(after[scene.grid.Index(x, 2, 1)], x == 4 || x == 5 ? 1 : 0) << x;
    }
}

TEST(Tag_Shape, a_hole_in_space_is_shut_above_and_below_too) {
    // A box of 5 x 5 x 5 with a hollow of one voxel, and a tube through it.
    Label_Scene scene = Scene_Of(9, 9, 9);
    for (int z = 2; z < 7; ++z) {
        for (int y = 2; y < 7; ++y) {
            for (int x = 2; x < 7; ++x) {
                scene.tags[scene.grid.Index(x, y, z)] = 1;
            }
        }
    }
    scene.tags[scene.grid.Index(3, 3, 4)] = 0;
    for (int z = 2; z < 7; ++z) {
        scene.tags[scene.grid.Index(5, 5, z)] = 0;
    }
    EXPECT_EQ(Holes_Fill(scene.Input(), 1, Hole_Kind::In_Space)->voxel_nb, 1U);
    EXPECT_EQ(Holes_Fill(scene.Input(), 1, Hole_Kind::Per_Slice)->voxel_nb, 6U);
}

TEST(Tag_Shape, smoothing_is_a_vote_of_the_ball) {
    for (unsigned int seed = 0; seed < 12; ++seed) {
        Label_Scene scene = Random_Scene(seed, 9, 8, 5, 3);
        scene.grid.spacing = SPACINGS[seed % SPACINGS.size()];
        Edit_Input input = scene.Input();
        input.locked[2] = seed % 2 == 0 ? 1 : 0;
        const double radius = scene.grid.spacing[0] * (1.0 + seed % 3);
        std::vector<std::uint8_t> expected = scene.tags;
        for (std::size_t at = 0; at < expected.size(); ++at) {
            int votes = 0;
            for (std::size_t other = 0; other < expected.size(); ++other) {
                if (Squared_Way(scene.grid, at, other) <= radius * radius * (1.0 + 1e-6)) {
                    votes += scene.tags[other] == 1 ? 1 : -1;
                }
            }
            if (votes > 0 && input.May_Change(scene.tags[at])) {
                expected[at] = 1;
            } else if (votes < 0 && scene.tags[at] == 1) {
                expected[at] = 0;
            }
        }
        EXPECT_EQ(scene.After(*Tag_Smooth(input, 1, radius)), expected) << "seed " << seed;
    }
}

TEST(Tag_Shape, slices_between_a_small_and_a_large_square_grow_evenly) {
    Label_Scene scene = Scene_Of(21, 21, 9);
    const auto square = [&](int z, int reach) {
        for (int y = 10 - reach; y <= 10 + reach; ++y) {
            for (int x = 10 - reach; x <= 10 + reach; ++x) {
                scene.tags[scene.grid.Index(x, y, z)] = 1;
            }
        }
    };
    square(1, 2);
    square(5, 6);
    const std::vector<std::uint8_t> after = scene.After(*Slices_Between_Fill(scene.Input(), 1));
    for (int z = 0; z < 9; ++z) {
        // Along the middle row the outline moves by one pixel from slice to slice.
        for (int x = 0; x < 21; ++x) {
            const bool is_between = z >= 1 && z <= 5;
            EXPECT_EQ(after[scene.grid.Index(x, 10, z)], is_between && std::abs(x - 10) <= z + 1 ? 1 : 0)
                << x << ", slice " << z;
        }
    }
    Edit_Input input = scene.Input();
    input.slices = {2, 8};
    EXPECT_EQ(Slices_Between_Fill(input, 1)->voxel_nb, 0U);
}

TEST(Tag_Shape, giving_up_gives_no_change) {
    const Label_Scene scene = Ball_Scene(15, 4.0);
    Edit_Input input = scene.Input();
    input.progress = [](double fraction) { return fraction < 0.3; };
    EXPECT_FALSE(Tag_Grow(input, 1, 2.0).has_value());
    EXPECT_FALSE(Tag_Grow(input, 1, 20.0).has_value());
    EXPECT_FALSE(Tag_Shrink(input, 1, 2.0).has_value());
    EXPECT_FALSE(Tag_Smooth(input, 1, 2.0).has_value());
    EXPECT_FALSE(Holes_Fill(input, 1, Hole_Kind::In_Space).has_value());
    EXPECT_FALSE(Holes_Fill(input, 1, Hole_Kind::Per_Slice).has_value());
}
