#include "workbench/segmentation/label_comparison.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "tests/workbench/segmentation/label_scene.h"

using namespace workbench::segmentation;

namespace {

/** A block of TAG 1, half-open. */
Label_Scene Block_Scene(const std::array<int, 3>& begin, const std::array<int, 3>& end) {
    Label_Scene scene = Scene_Of(24, 20, 16);
    scene.grid.spacing = {0.5, 1.0, 2.0};
    for (int z = begin[2]; z < end[2]; ++z) {
        for (int y = begin[1]; y < end[1]; ++y) {
            for (int x = begin[0]; x < end[0]; ++x) {
                scene.tags[scene.grid.Index(x, y, z)] = 1;
            }
        }
    }
    return scene;
}

Label_Scene Sphere_Scene(double radius) {
    Label_Scene scene = Scene_Of(41, 41, 41);
    for (int z = 0; z < 41; ++z) {
        for (int y = 0; y < 41; ++y) {
            for (int x = 0; x < 41; ++x) {
                const int way = (x - 20) * (x - 20) + (y - 20) * (y - 20) + (z - 20) * (z - 20);
                scene.tags[scene.grid.Index(x, y, z)] = way <= radius * radius ? 1 : 0;
            }
        }
    }
    return scene;
}

}  // namespace

TEST(Label_Comparison, a_block_shifted_by_three_voxels_lies_three_steps_apart) {
    const Label_Scene one = Block_Scene({4, 4, 4}, {14, 12, 10});
    const Label_Scene other = Block_Scene({7, 4, 4}, {17, 12, 10});
    const auto found = Labels_Compare(one.Input(), 1, other.tags, 1);
    ASSERT_TRUE(found.has_value() && found->distances.has_value());
    EXPECT_EQ(found->one_nb, 480U);
    EXPECT_EQ(found->common_nb, 336U);
    EXPECT_DOUBLE_EQ(found->dice, 0.7);
    EXPECT_DOUBLE_EQ(found->jaccard, 336.0 / 624.0);
    EXPECT_EQ(found->volume_difference, 0.0);
    EXPECT_DOUBLE_EQ(found->distances->hausdorff, 1.5);
    // 80 voxels of either surface lie aside by one, two or three steps of half a millimetre: 48 of the side that the
    // shift comes from are 1.5 off; the inner ones of the frame beside it find their like in the frame of the other.
    EXPECT_LE(found->distances->hausdorff_95, 1.5);
    EXPECT_GT(found->distances->mean, 0.0);
    EXPECT_LT(found->distances->mean, 1.5);
    const auto along_slices = Labels_Compare(one.Input(), 1, Block_Scene({4, 4, 6}, {14, 12, 12}).tags, 1);
    EXPECT_DOUBLE_EQ(along_slices->distances->hausdorff, 4.0);
}

TEST(Label_Comparison, distances_are_those_of_all_surface_voxels_to_all_others) {
    for (unsigned int seed = 0; seed < 12; ++seed) {
        Label_Scene one = Random_Scene(seed, 8, 7, seed % 3 == 0 ? 1 : 5, 3);
        Label_Scene other = Random_Scene(seed + 50, 8, 7, one.grid.slices, 3);
        if (one.grid.slices == 1) {  // so dense that sets have an inside
            std::ranges::replace(one.tags, 2, 1);
            std::ranges::replace(other.tags, 1, 2);
        }
        one.grid.spacing = {0.7, 1.1, 2.5};
        const auto surface = [&](const std::vector<std::uint8_t>& tags, std::uint8_t tag) {
            std::vector<std::array<double, 3>> places;
            const auto is_in = [&](int x, int y, int z) {
                return one.grid.Has(x, y, z) && tags[one.grid.Index(x, y, z)] == tag;
            };
            for (int z = 0; z < one.grid.slices; ++z) {
                for (int y = 0; y < 7; ++y) {
                    for (int x = 0; x < 8; ++x) {
                        const bool in_plane =
                            is_in(x - 1, y, z) && is_in(x + 1, y, z) && is_in(x, y - 1, z) && is_in(x, y + 1, z);
                        const bool shut =
                            in_plane && (one.grid.slices == 1 || (is_in(x, y, z - 1) && is_in(x, y, z + 1)));
                        if (is_in(x, y, z) && !shut) {
                            places.push_back({x * 0.7, y * 1.1, z * 2.5});
                        }
                    }
                }
            }
            return places;
        };
        const auto ways = [](const auto& from, const auto& to) {
            std::vector<double> found;
            for (const auto& a : from) {
                double nearest = 1e9;
                for (const auto& b : to) {
                    nearest = std::min(nearest, std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]));
                }
                found.push_back(nearest);
            }
            std::ranges::sort(found);
            return found;
        };
        const auto percentile = [](const std::vector<double>& all) {
            const double place = 0.95 * static_cast<double>(all.size() - 1);
            const auto at = static_cast<std::size_t>(place);
            return at + 1 < all.size() ? all[at] + (place - static_cast<double>(at)) * (all[at + 1] - all[at])
                                       : all[at];
        };
        const std::vector<double> there = ways(surface(one.tags, 1), surface(other.tags, 2));
        const std::vector<double> back = ways(surface(other.tags, 2), surface(one.tags, 1));
        double sum = 0.0;
        for (const double way : there) {
            sum += way;
        }
        for (const double way : back) {
            sum += way;
        }
        const auto found = Labels_Compare(one.Input(), 1, other.tags, 2);
        ASSERT_TRUE(found->distances.has_value());
        EXPECT_NEAR(found->distances->hausdorff, std::max(there.back(), back.back()), 1e-6);
        EXPECT_NEAR(found->distances->hausdorff_95, std::max(percentile(there), percentile(back)), 1e-6);
        EXPECT_NEAR(found->distances->mean, sum / static_cast<double>(there.size() + back.size()), 1e-6);
    }
}

TEST(Label_Comparison, spheres_in_each_other_lie_apart_by_the_difference_of_their_radii) {
    const Label_Scene small = Sphere_Scene(10.0);
    const Label_Scene large = Sphere_Scene(14.0);
    const auto found = Labels_Compare(small.Input(), 1, large.tags, 1);
    EXPECT_EQ(found->common_nb, found->one_nb);
    EXPECT_NEAR(found->dice, 2.0 * 1000.0 / (1000.0 + 2744.0), 0.01);
    EXPECT_NEAR(found->jaccard, 1000.0 / 2744.0, 0.01);
    EXPECT_NEAR(found->volume_difference, 4.0 / 3.0 * 3.14159265 * 1744.0 / 1000.0, 0.05);
    EXPECT_NEAR(found->distances->hausdorff, 4.0, 0.75);
    EXPECT_NEAR(found->distances->mean, 4.0, 0.25);
    EXPECT_LE(found->distances->hausdorff_95, found->distances->hausdorff);
}

TEST(Label_Comparison, equal_labels_agree_and_nothing_agrees_with_nothing) {
    const Label_Scene one = Block_Scene({4, 4, 4}, {14, 12, 10});
    const auto same = Labels_Compare(one.Input(), 1, one.tags, 1);
    EXPECT_EQ(same->dice, 1.0);
    EXPECT_EQ(same->jaccard, 1.0);
    EXPECT_EQ(same->distances->hausdorff, 0.0);
    EXPECT_EQ(same->distances->mean, 0.0);
    const auto none = Labels_Compare(one.Input(), 8, one.tags, 9);
    EXPECT_EQ(none->dice, 1.0);
    EXPECT_EQ(none->jaccard, 1.0);
    EXPECT_FALSE(none->distances.has_value());
    const auto half = Labels_Compare(one.Input(), 1, one.tags, 9);
    EXPECT_EQ(half->dice, 0.0);
    EXPECT_EQ(half->jaccard, 0.0);
    EXPECT_EQ(half->volume_difference, -0.48);
    EXPECT_FALSE(half->distances.has_value());
    Edit_Input input = one.Input();
    input.progress = [](double fraction) { return fraction < 0.3; };
    EXPECT_FALSE(Labels_Compare(input, 1, one.tags, 1).has_value());
}
