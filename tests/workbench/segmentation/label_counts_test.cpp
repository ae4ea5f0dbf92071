// Counts of slices that are shared out to threads, beside a loop over all voxels.
#include "workbench/segmentation/label_counts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <vector>

#include "workbench/volumes/volume.h"

using namespace workbench::segmentation;
using volumes::LEVEL_OUTSIDE;

namespace {

constexpr int SIDE = 1500;  // so large that every slice is counted by itself
constexpr int SLICES = 3;
constexpr std::int32_t LEAST = -30;
constexpr int SMALL_NB = 200;

/** @param last the greatest level, which is rare */
std::vector<std::int32_t> Levels(std::int32_t last) {
    std::vector<std::int32_t> levels(std::size_t{SIDE} * SIDE * SLICES);
    std::uint32_t noise = 7;
    for (std::int32_t& level : levels) {
        noise = noise * 1664525U + 1013904223U;
        level = static_cast<std::int32_t>(noise >> 25U) + LEAST;
        level = noise >> 8U == 5 ? last : noise % 101 == 0 ? LEVEL_OUTSIDE : level;
    }
    levels[12] = last;
    return levels;
}

std::vector<std::uint8_t> Tags() {
    std::vector<std::uint8_t> tags(std::size_t{SIDE} * SIDE * SLICES);
    for (std::size_t at = 0; at < tags.size(); ++at) {
        tags[at] = static_cast<std::uint8_t>(at / 3000 % 5 == 0 ? at % 7 : at / 5000 % 3);
    }
    return tags;
}

Edit_Input Input(const std::vector<std::uint8_t>& tags, const volumes::Level_View& levels) {
    Edit_Input input;
    input.grid = {SIDE, SIDE, SLICES, {1.0, 1.0, 1.0}};
    input.tags = tags;
    input.levels = levels;
    input.slices = {1, SLICES - 1};
    return input;
}

void Compare(const Edit_Input& input, std::size_t threads) {
    const Edit_Progress silent;
    Label_Counts counts = Labels_Count(input, threads, Step_Progress(silent));
    std::vector<std::vector<std::uint64_t>> slices(workbench::TAG_MAX, std::vector<std::uint64_t>(SLICES));
    std::vector<std::vector<std::uint64_t>> small(workbench::TAG_MAX, std::vector<std::uint64_t>(SMALL_NB));
    std::map<int, std::map<std::int32_t, std::uint64_t>> levels;
    for (std::size_t at = input.grid.Slice_Size(); at < input.tags.size(); ++at) {
        const std::int32_t level = input.levels[at];
        const std::size_t tag = input.tags[at];
        ++slices[tag][at / input.grid.Slice_Size()];
        if (level < LEAST + SMALL_NB) {
            ++small[tag][static_cast<std::size_t>(level - LEAST)];
        } else if (level != LEVEL_OUTSIDE) {
            ++levels[input.tags[at]][level];
        }
    }
    for (int tag = 0; tag < workbench::TAG_MAX; ++tag) {
        const auto index = static_cast<std::size_t>(tag);
        const bool has_any = std::ranges::any_of(slices[index], [](std::uint64_t nb) { return nb != 0; });
        EXPECT_EQ(counts.slice_voxels[index], has_any ? slices[index] : std::vector<std::uint64_t>()) << tag;
        for (int level = 0; level < SMALL_NB; ++level) {
            if (const std::uint64_t nb = small[index][static_cast<std::size_t>(level)]; nb != 0) {
                levels[tag][LEAST + level] = nb;
            }
        }
        std::map<std::int32_t, std::uint64_t> found;
        for (const Level_Count& count : counts.levels.Take(static_cast<std::uint8_t>(tag))) {
            found[count.level] = count.nb;
        }
        EXPECT_EQ(found, levels[tag]) << tag;
    }
}

TEST(Label_Counts, of_levels_in_either_width_are_those_of_a_plain_loop) {
    const std::vector<std::uint8_t> tags = Tags();
    for (const std::int32_t last : {1000, 60'000'000}) {
        const std::vector<std::int32_t> wide = Levels(last);
        Compare(Input(tags, wide), last == 1000 ? 1 : 3);
    }
    const volumes::Voxel_Levels narrow(Levels(1000));
    ASSERT_TRUE(narrow.Is_Narrow());
    Compare(Input(tags, narrow), 3);
}

TEST(Label_Counts, of_no_levels_are_voxels_alone) {
    const std::vector<std::uint8_t> tags = Tags();
    const Edit_Progress silent;
    Label_Counts counts = Labels_Count(Input(tags, {}), 2, Step_Progress(silent));
    EXPECT_FALSE(counts.slice_voxels[0].empty());
    EXPECT_TRUE(counts.levels.Take(0).empty());
}

TEST(Label_Counts, are_given_up_when_the_progress_says_so) {
    const std::vector<std::uint8_t> tags = Tags();
    const std::vector<std::int32_t> levels = Levels(1000);
    const Edit_Progress stop = [](double) { return false; };
    EXPECT_THROW(Labels_Count(Input(tags, levels), 2, Step_Progress(stop)), Edit_Cancelled);
}

}  // namespace
