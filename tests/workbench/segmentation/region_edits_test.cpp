#include "workbench/segmentation/region_edits.h"

#include <gtest/gtest.h>

#include <array>
#include <queue>
#include <set>
#include <string_view>
#include <vector>

#include "tests/workbench/segmentation/label_scene.h"

using namespace workbench::segmentation;

namespace {

using Flags = std::vector<bool>;

/** The voxels that hang together with a seed, one by one. */
Flags Walk(const Label_Grid& grid, const Flags& is_in, std::size_t seed, bool corners) {
    Flags found(is_in.size());
    std::queue<std::size_t> todo;
    if (is_in[seed]) {
        found[seed] = true;
        todo.push(seed);
    }
    for (; !todo.empty(); todo.pop()) {
        const int x = static_cast<int>(todo.front()) % grid.width;
        const int y = static_cast<int>(todo.front()) / grid.width % grid.height;
        const int z = static_cast<int>(todo.front()) / grid.width / grid.height;
        for (int step = 0; step < 27; ++step) {
            const int dx = step % 3 - 1;
            const int dy = step / 3 % 3 - 1;
            const int dz = step / 9 - 1;
            if ((!corners && std::abs(dx) + std::abs(dy) + std::abs(dz) != 1) || !grid.Has(x + dx, y + dy, z + dz)) {
                continue;
            }
            const std::size_t at = grid.Index(x + dx, y + dy, z + dz);
            if (is_in[at] && !found[at]) {
                found[at] = true;
                todo.push(at);
            }
        }
    }
    return found;
}

Neighbours Touching(unsigned int seed) {
    return seed % 2 == 0 ? Neighbours::Faces : Neighbours::Corners;
}

Flags Voxels_Of(const Label_Scene& scene, std::uint8_t tag) {
    Flags flags(scene.tags.size());
    for (std::size_t at = 0; at < flags.size(); ++at) {
        flags[at] = scene.tags[at] == tag;
    }
    return flags;
}

Voxel_Place Place_Of(const Label_Grid& grid, std::size_t at) {
    const int in_volume = static_cast<int>(at);
    return {in_volume % grid.width, in_volume / grid.width % grid.height, in_volume / grid.width / grid.height};
}

}  // namespace

TEST(Voxel_Regions, regions_are_those_that_a_walk_from_voxel_to_voxel_finds) {
    for (unsigned int seed = 0; seed < 60; ++seed) {
        const bool is_plane = seed % 3 == 0;
        const Label_Scene scene = Random_Scene(seed, 11, 9, is_plane ? 1 : 6, seed % 4 == 0 ? 2 : seed % 4 + 2);
        const Edit_Input input = scene.Input();
        const Region_Map map = Regions_Of_Tag(input, 1, Touching(seed), Step_Progress(input.progress));
        const Flags all = Voxels_Of(scene, 1);
        Flags left = all;
        std::uint32_t region = 0;
        for (std::size_t at = 0; at < left.size(); ++at) {
            if (!left[at]) {
                EXPECT_EQ(all[at], map.At(Place_Of(scene.grid, at)) != Region_Map::NONE);
                continue;
            }
            const Flags found = Walk(scene.grid, all, at, seed % 2 == 1);
            std::uint64_t voxel_nb = 0;
            for (std::size_t other = 0; other < found.size(); ++other) {
                if (found[other]) {
                    left[other] = false;
                    ++voxel_nb;
                    EXPECT_EQ(map.At(Place_Of(scene.grid, other)), region);
                }
            }
            ASSERT_LT(region, map.Regions().size());
            EXPECT_EQ(map.Regions()[region].voxel_nb, voxel_nb);
            const Voxel_Place& first = map.Regions()[region].first;
            EXPECT_EQ(scene.grid.Index(first.x, first.y, first.z), at);
            ++region;
        }
        EXPECT_EQ(map.Regions().size(), region);
    }
}

TEST(Region_Edits, a_fill_takes_what_hangs_together_with_its_seed) {
    for (unsigned int seed = 0; seed < 60; ++seed) {
        Label_Scene scene = Random_Scene(seed, 12, 9, 4, 5);
        scene.levels[5] = volumes::LEVEL_OUTSIDE;
        Edit_Input input = scene.Input();
        input.locked[2] = 1;
        if (seed % 5 == 0) {
            input.only_inside = 0;
        }
        const std::size_t start = seed * 7;
        const Flood flood{Place_Of(scene.grid, start), 4, {-35, 40}, Touching(seed)};
        const auto is_crossed = [&](std::size_t at) {
            const std::int32_t level = scene.levels[at];
            return level >= -35 && level <= 40 && (input.May_Change(scene.tags[at]) || scene.tags[at] == 4);
        };
        Flags fits(scene.tags.size());
        for (std::size_t at = 0; at < fits.size(); ++at) {
            fits[at] = is_crossed(at);
        }
        const Flags filled = Walk(scene.grid, fits, start, seed % 2 == 1);
        std::vector<std::uint8_t> expected = scene.tags;
        for (std::size_t at = 0; at < filled.size(); ++at) {
            expected[at] = filled[at] ? 4 : expected[at];
        }
        EXPECT_EQ(scene.After(*Flood_Fill(input, flood)), expected) << "seed " << seed;
    }
}

TEST(Region_Edits, a_fill_stays_in_the_slices_that_are_worked_on) {
    const Label_Scene scene = Scene_Of(3, 3, 5);
    Edit_Input input = scene.Input();
    input.slices = {2, 2};
    Flood flood{{1, 1, 2}, 6, {0, 0}, Neighbours::Corners};
    EXPECT_EQ(Flood_Fill(input, flood)->voxel_nb, 9U);
    flood.seed.z = 3;
    EXPECT_EQ(Flood_Fill(input, flood)->voxel_nb, 0U);
    flood.seed = {-1, 0, 2};
    EXPECT_EQ(Flood_Fill(input, flood)->voxel_nb, 0U);
}

TEST(Region_Edits, growing_is_the_fill_of_each_tolerance) {
    for (unsigned int seed = 0; seed < 20; ++seed) {
        Label_Scene scene = Random_Scene(seed, 8, 7, 4, 4);
        Edit_Input input = scene.Input();
        input.slices = {0, static_cast<int>(seed % 4)};
        input.locked[3] = 1;
        Flood flood{{4, 3, 0}, 1, {}, Touching(seed)};
        const std::int32_t level = scene.levels[scene.grid.Index(4, 3, 0)];
        const std::optional<Region_Growth> growth = Region_Growth::Find(input, flood, 60);
        ASSERT_TRUE(growth.has_value());
        for (std::int32_t tolerance = 0; tolerance <= 70; tolerance += 3) {
            flood.levels = Level_Band_Around(level, std::min(tolerance, 60));
            EXPECT_EQ(scene.After(growth->Edit(input, tolerance)), scene.After(*Flood_Fill(input, flood)))
                << "seed " << seed << ", tolerance " << tolerance;
        }
    }
}

TEST(Region_Edits, a_band_around_a_level_ends_where_levels_end) {
    const Level_Band high = Level_Band_Around(volumes::LEVEL_LARGEST - 1, 10);
    EXPECT_EQ(high.low, volumes::LEVEL_LARGEST - 11);
    EXPECT_EQ(high.high, volumes::LEVEL_LARGEST);
    EXPECT_EQ(Level_Band_Around(-2147483647, 100).low, -2147483647 - 1);
}

constexpr std::array<std::string_view, 5> ISLANDS = {
    "11..1.3",  //
    "1...1.3",  //
    "..1.1..",  //
    ".......",  //
    "22.1.11",
};

TEST(Region_Edits, the_largest_region_stays_and_the_others_become_background) {
    const Label_Scene scene = Scene_Of(ISLANDS);
    const std::array<std::string_view, 5> faces = {"11....3", "1.....3", ".......", ".......", "22....."};
    EXPECT_EQ(scene.After(*Region_Keep_Largest(scene.Input(), 1, Neighbours::Faces)), Scene_Of(faces).tags);
    const std::array<std::string_view, 5> locked = {"11..1.3", "1...1.3", "..1.1..", ".......", "22.1.11"};
    Edit_Input input = scene.Input();
    input.locked[1] = 1;
    EXPECT_EQ(scene.After(*Region_Keep_Largest(input, 1, Neighbours::Faces)), Scene_Of(locked).tags);
    EXPECT_EQ(Region_Keep_Largest(scene.Input(), 9, Neighbours::Faces)->voxel_nb, 0U);
}

TEST(Region_Edits, regions_below_a_volume_become_background) {
    Label_Scene scene = Scene_Of(ISLANDS);
    scene.grid.spacing = {0.7, 1.0, 1.0};
    const std::array<std::string_view, 5> below_two = {"11..1.3", "1...1.3", "....1..", ".......", "22...11"};
    EXPECT_EQ(scene.After(*Regions_Drop_Below(scene.Input(), 1, 1.4, Neighbours::Faces)), Scene_Of(below_two).tags);
    // Three times 0.7 is no less than 2.1, though the product of the nearest binary fractions is.
    const std::array<std::string_view, 5> below_three = {"11..1.3", "1...1.3", "....1..", ".......", "22....."};
    EXPECT_EQ(scene.After(*Regions_Drop_Below(scene.Input(), 1, 2.1, Neighbours::Faces)), Scene_Of(below_three).tags);
}

TEST(Region_Edits, a_region_is_picked_by_a_voxel_of_it) {
    const Label_Scene scene = Scene_Of(ISLANDS);
    const std::array<std::string_view, 5> kept = {"......3", "......3", ".......", ".......", "22...11"};
    EXPECT_EQ(scene.After(*Region_Keep_At(scene.Input(), 1, {6, 4, 0}, Neighbours::Faces)), Scene_Of(kept).tags);
    EXPECT_EQ(Region_Keep_At(scene.Input(), 1, {0, 4, 0}, Neighbours::Faces)->voxel_nb, 0U);
    EXPECT_EQ(Region_Keep_At(scene.Input(), 9, {0, 4, 0}, Neighbours::Faces)->voxel_nb, 0U);
    const std::array<std::string_view, 5> given = {"11..1.7", "1...1.7", "..1.1..", ".......", "22.1.11"};
    EXPECT_EQ(scene.After(*Region_Give(scene.Input(), {6, 0, 0}, 7, Neighbours::Faces)), Scene_Of(given).tags);
    EXPECT_EQ(Region_Give(scene.Input(), {6, 4, 0}, 7, Neighbours::Faces)->voxel_nb, 2U);  // not the others of TAG 1
    EXPECT_EQ(Region_Give(scene.Input(), {7, 0, 0}, 7, Neighbours::Faces)->voxel_nb, 0U);
}

TEST(Region_Edits, regions_that_touch_at_corners_are_one_when_corners_count) {
    const std::array<std::string_view, 3> diagonal = {"1..", ".1.", "..1"};
    const Label_Scene scene = Scene_Of(diagonal);
    EXPECT_EQ(Region_Keep_Largest(scene.Input(), 1, Neighbours::Corners)->voxel_nb, 0U);
    EXPECT_EQ(Region_Keep_Largest(scene.Input(), 1, Neighbours::Faces)->voxel_nb, 2U);
}

TEST(Region_Edits, giving_up_gives_no_change) {
    const Label_Scene scene = Scene_Of(4, 4, 4);
    Edit_Input input = scene.Input();
    input.progress = [](double fraction) { return fraction < 0.5; };
    EXPECT_FALSE(Flood_Fill(input, {{0, 0, 0}, 1, {0, 0}, Neighbours::Faces}).has_value());
    EXPECT_FALSE(Region_Keep_Largest(input, 0, Neighbours::Faces).has_value());
    EXPECT_FALSE(Region_Growth::Find(input, {{0, 0, 0}, 1, {}, Neighbours::Faces}, 4).has_value());
}
