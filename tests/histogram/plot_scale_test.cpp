#include "histogram/plot_scale.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(Plot_Scale, columns_and_bins_agree_in_both_directions) {
    for (const int nb_bins : {1, 2, 7, 100, 257, 4096, 65535}) {
        for (const int width : {1, 3, 99, 256, 1000}) {
            const Plot_Scale scale({17, width, 50}, {nb_bins, 0.0F, 1.0F}, 10.0F);
            for (int column = 17; column < 17 + width; ++column) {
                const int bin = scale.Column_To_Bin(column);
                ASSERT_LE(scale.Bin_To_Column(bin), column);
                ASSERT_TRUE(bin == nb_bins - 1 || scale.Bin_To_Column(bin + 1) > column)
                    << nb_bins << " bins on " << width << ", column " << column;
            }
            ASSERT_LE(scale.Bin_To_Column(nb_bins), 17 + width);
        }
    }
}

TEST(Plot_Scale, a_bin_of_the_full_count_reaches_the_top_and_higher_ones_are_cut) {
    const Plot_Scale scale({0, 100, 80}, {10, 0.0F, 1.0F}, 200.0F * 0.5F);
    EXPECT_EQ(scale.Count_To_Height(100), 80);
    EXPECT_EQ(scale.Count_To_Height(200), 80);
    EXPECT_EQ(scale.Count_To_Height(50), 40);
    EXPECT_EQ(scale.Count_To_Height(1), 0) << "truncated";
    EXPECT_EQ(scale.Count_To_Height(0), 0);
    EXPECT_FLOAT_EQ(scale.Height_To_Count(40), 50.0F);
}

TEST(Plot_Scale, the_fullest_bin_is_as_high_as_the_plot_however_many_pixels_it_counts) {
    struct Full {
        int height;
        std::uint32_t count;
    };
    // Counts whose product with the height a float cannot hold.
    for (const Full& full : {Full{94, 1493294}, Full{94, 1494293}, Full{100, 6973215}, Full{116, 4998718},
                             Full{196, 1613764}, Full{21, 1966794}, Full{97, 4294967295U}}) {
        const Plot_Scale scale({0, 100, full.height}, {10, 0.0F, 1.0F}, static_cast<float>(full.count));
        EXPECT_EQ(scale.Count_To_Height(full.count), full.height) << full.count;
    }
    for (const int height : {21, 94, 100, 116, 196}) {
        for (std::uint32_t count = 1; count < (1U << 24U); count += 997) {
            const Plot_Scale scale({0, 100, height}, {10, 0.0F, 1.0F}, static_cast<float>(count));
            ASSERT_EQ(scale.Count_To_Height(count), height) << count;
            ASSERT_EQ(scale.Count_To_Height(count / 2),
                      static_cast<int>(std::uint64_t{count / 2} * static_cast<unsigned int>(height) / count))
                << count;
        }
    }
}

TEST(Plot_Scale, draws_nothing_without_counts_or_area) {
    EXPECT_EQ(Plot_Scale({0, 10, 10}, {10, 0.0F, 1.0F}, 0.0F).Count_To_Height(5), 0);
    EXPECT_EQ(Plot_Scale({0, 10, -3}, {10, 0.0F, 1.0F}, 5.0F).Count_To_Height(5), 0);
    EXPECT_TRUE(Plot_Scale({0, 0, 10}, {10, 0.0F, 1.0F}, 5.0F).Is_Empty());
    EXPECT_TRUE(Plot_Scale({0, 10, 10}, {0, 0.0F, 1.0F}, 5.0F).Is_Empty());
}

TEST(Plot_Scale, grey_levels_are_limited_to_the_grid) {
    const Plot_Scale scale({0, 100, 80}, {10, -20.0F, 2.0F}, 1.0F);
    EXPECT_EQ(scale.Level_To_Bin(-1000.0F), 0);
    EXPECT_EQ(scale.Level_To_Bin(-20.0F), 0);
    EXPECT_EQ(scale.Level_To_Bin(-18.1F), 0);
    EXPECT_EQ(scale.Level_To_Bin(-18.0F), 1);
    EXPECT_EQ(scale.Level_To_Bin(0.0F), 9);
    EXPECT_EQ(scale.Level_To_Bin(1e30F), 9);
    EXPECT_EQ(scale.Level_To_Bin(std::numeric_limits<float>::infinity()), 9);
    EXPECT_EQ(scale.Level_To_Bin(std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(scale.Bin_To_Level(0), -19.0F);
}

}  // namespace
