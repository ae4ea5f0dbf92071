#include "workbench/segmentation/level_bands.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <random>
#include <vector>

#include "tests/workbench/segmentation/label_scene.h"
#include "workbench/segmentation/region_edits.h"
#include "workbench/segmentation/tag_statistics.h"

using namespace workbench::segmentation;

namespace {

/** What bands say, voxel by voxel. */
std::vector<std::uint8_t> Expected(const Edit_Input& input, const std::vector<Tag_Levels_Claim>& claims) {
    std::vector<std::uint8_t> tags(input.tags.begin(), input.tags.end());
    for (int z = input.slices.first; z <= input.slices.last; ++z) {
        for (std::size_t at = input.grid.Index(0, 0, z); at < input.grid.Index(0, 0, z + 1); ++at) {
            for (const Tag_Levels_Claim& claim : claims) {
                if (input.levels[at] >= claim.band.low && input.levels[at] <= claim.band.high &&
                    input.levels[at] <= volumes::LEVEL_LARGEST && input.May_Change(input.tags[at])) {
                    tags[at] = claim.tag;
                }
            }
        }
    }
    return tags;
}

}  // namespace

TEST(Level_Bands, every_voxel_of_a_band_gets_its_tag_and_no_other) {
    for (unsigned int seed = 0; seed < 60; ++seed) {
        std::mt19937 random(seed);
        Label_Scene scene = Random_Scene(seed, 13, 9, 5, 5);
        const int stretch = seed % 3 == 0 ? 40'000'000 : 1;  // so far apart that no table is made
        for (std::int32_t& level : scene.levels) {
            level *= stretch;
        }
        scene.levels[7] = volumes::LEVEL_OUTSIDE;
        scene.levels[8] = std::numeric_limits<std::int32_t>::min();
        std::vector<Tag_Levels_Claim> claims(seed % 2 == 0 ? seed % 5 : 30);
        for (Tag_Levels_Claim& claim : claims) {
            claim.tag = static_cast<std::uint8_t>(random() % 256);
            claim.band.low = (static_cast<std::int32_t>(random() % 101) - 50) * stretch;
            claim.band.high = claims.size() > 5   ? claim.band.low + stretch * 2
                              : random() % 8 == 0 ? std::numeric_limits<std::int32_t>::max()
                                                  : (static_cast<std::int32_t>(random() % 101) - 50) * stretch;
        }
        Edit_Input input = scene.Input();
        input.locked[3] = seed % 2 == 0 ? 1 : 0;
        if (seed % 7 == 0) {
            input.only_inside = 0;
        }
        if (seed % 4 == 0) {
            input.slices = {1, 2};
        }
        const std::optional<Label_Edit> edit = Bands_Apply(input, claims);
        ASSERT_TRUE(edit.has_value());
        EXPECT_EQ(scene.After(*edit), Expected(input, claims)) << "seed " << seed;
    }
}

TEST(Level_Bands, of_overlapping_bands_the_last_one_gets_the_level) {
    Label_Scene scene = Scene_Of(5, 1, 1);
    scene.levels = {1, 2, 3, 4, 5};
    const std::vector<Tag_Levels_Claim> claims = {{1, {1, 4}}, {2, {3, 3}}, {3, {5, 9}}};
    EXPECT_EQ(scene.After(*Bands_Apply(scene.Input(), claims)), (std::vector<std::uint8_t>{1, 1, 2, 1, 3}));
}

TEST(Level_Bands, slices_beyond_the_volume_do_not_count) {
    Label_Scene scene = Scene_Of(2, 2, 3);
    Edit_Input input = scene.Input();
    input.slices = {-5, 99};
    const std::vector<Tag_Levels_Claim> claims = {{4, {0, 0}}};
    EXPECT_EQ(Bands_Apply(input, claims)->voxel_nb, 12U);
    input.slices = {3, 9};
    EXPECT_EQ(Bands_Apply(input, claims)->voxel_nb, 0U);
}

TEST(Level_Bands, giving_up_gives_no_change_and_progress_never_falls) {
    Label_Scene scene = Scene_Of(4, 4, 10);
    Edit_Input input = scene.Input();
    const std::vector<Tag_Levels_Claim> claims = {{4, {0, 0}}};
    std::vector<double> told;
    input.progress = [&](double fraction) {
        told.push_back(fraction);
        return true;
    };
    EXPECT_EQ(Bands_Apply(input, claims)->voxel_nb, 160U);
    EXPECT_TRUE(std::ranges::is_sorted(told));
    EXPECT_EQ(told.front(), 0.0);
    EXPECT_EQ(told.back(), 1.0);
    input.progress = [](double fraction) { return fraction < 0.4; };
    EXPECT_FALSE(Bands_Apply(input, claims).has_value());
}

TEST(Level_Bands, a_band_of_greys_has_just_the_levels_whose_grey_lies_in_it) {
    struct Scale {
        double slope;
        double intercept;
    };
    for (const Scale scale : {Scale{1, 0}, Scale{0.25, -1000}, Scale{-2.5, 17}, Scale{1e-7, 0}, Scale{0.1, 0.3}}) {
        volumes::Volume volume;
        volume.slope = scale.slope;
        volume.intercept = scale.intercept;
        for (std::int32_t from = -30; from < 30; from += 7) {
            for (std::int32_t to = from; to < 35; to += 6) {
                const float one = volume.grey(from);
                const float other = volume.grey(to);
                const Level_Band band = Level_Band_Of({std::min(one, other), std::max(one, other)}, volume);
                EXPECT_EQ(band.low, from);
                EXPECT_EQ(band.high, to);
            }
        }
        // Open ends reach as far as levels do; no voxel without a grey value lies in them.
        const Level_Band all = Level_Band_Of({}, volume);
        EXPECT_EQ(all.low, std::numeric_limits<std::int32_t>::min());
        EXPECT_EQ(all.high, volumes::LEVEL_LARGEST);
        EXPECT_FALSE(all.Has(volumes::LEVEL_OUTSIDE));
        EXPECT_TRUE(Level_Band_Of({5.0F, 4.0F}, volume).Is_Empty());
    }
    volumes::Volume colors;
    colors.color = true;
    EXPECT_TRUE(Level_Band_Of({}, colors).Is_Empty());
}

// Levels of 16 bits are compared as codes: whatever a band covers of them, the outcome is that of 32 bits.
TEST(Level_Bands, levels_of_either_width_give_the_same) {
    constexpr std::array<std::int32_t, 4> bases = {-32768, 0, 1'000'000, std::numeric_limits<std::int32_t>::min()};
    for (unsigned int seed = 0; seed < 120; ++seed) {
        std::mt19937 random(seed);
        Label_Scene scene = Random_Scene(seed, 19, 11, 3, 5);
        const std::int32_t base = bases[seed % bases.size()];
        const bool has_outside = seed % 3 == 0;
        const auto any_level = [&] { return base + static_cast<std::int32_t>(random() % 65'536); };
        for (std::int32_t& level : scene.levels) {
            const std::int32_t near = base + static_cast<std::int32_t>(random() % 3) * 32'767;
            level = has_outside && random() % 9 == 0 ? volumes::LEVEL_OUTSIDE : random() % 2 == 0 ? near : any_level();
            level = has_outside && level == base + 65'535 ? base : level;
        }
        scene.levels[0] = base;
        scene.levels[1] = base + (has_outside ? 65'534 : 65'535);
        const volumes::Voxel_Levels narrow(scene.levels);
        ASSERT_TRUE(narrow.Is_Narrow());
        std::vector<Tag_Levels_Claim> claims(seed % 2 == 0 ? 1 + seed % 5 : 30);
        for (Tag_Levels_Claim& claim : claims) {
            claim.tag = static_cast<std::uint8_t>(random() % 256);
            claim.band.low = random() % 4 == 0 ? std::numeric_limits<std::int32_t>::min() : any_level();
            claim.band.high = random() % 4 == 0   ? std::numeric_limits<std::int32_t>::max()
                              : claims.size() > 5 ? claim.band.low + 9
                                                  : any_level();
        }
        Edit_Input wide_input = scene.Input();
        Edit_Input narrow_input = scene.Input();
        narrow_input.levels = narrow;
        ASSERT_FALSE(wide_input.levels.Is_Narrow());
        EXPECT_EQ(scene.After(*Bands_Apply(narrow_input, claims)), Expected(wide_input, claims)) << "seed " << seed;
        const Flood flood{{9, 5, 1}, 7, Level_Band_Around(scene.levels[scene.grid.Index(9, 5, 1)], 30'000), {}};
        EXPECT_EQ(scene.After(*Flood_Fill(narrow_input, flood)), scene.After(*Flood_Fill(wide_input, flood)));
        const auto narrow_numbers = Tag_Statistics(narrow_input, {});
        const auto wide_numbers = Tag_Statistics(wide_input, {});
        EXPECT_EQ(Statistics_Csv(*narrow_numbers, {}, {}), Statistics_Csv(*wide_numbers, {}, {}));
    }
}
