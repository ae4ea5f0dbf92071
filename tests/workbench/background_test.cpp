#include "workbench/model/background.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

using namespace volumes;
using namespace workbench;

namespace {

Volume Volume_Of(std::vector<std::int32_t> levels, double slope = 1, double intercept = 0) {
    Volume volume;
    volume.nx = static_cast<std::int32_t>(levels.size());
    volume.ny = volume.nz = volume.nt = 1;
    volume.slope = slope;
    volume.intercept = intercept;
    volume.level_min = *std::min_element(levels.begin(), levels.end());
    volume.level_max = volume.level_min;
    for (const std::int32_t level : levels) {
        volume.level_max = level == LEVEL_OUTSIDE ? volume.level_max : std::max(volume.level_max, level);
    }
    volume.levels = std::move(levels);
    return volume;
}

/** Between-class variance of a threshold, plainly. */
double Between(const std::vector<std::int32_t>& levels, std::int32_t threshold) {
    double below = 0.0;
    double below_nb = 0.0;
    double above = 0.0;
    double above_nb = 0.0;
    for (const std::int32_t level : levels) {
        (level <= threshold ? below : above) += level;
        (level <= threshold ? below_nb : above_nb) += 1.0;
    }
    if (below_nb == 0.0 || above_nb == 0.0) {
        return -1.0;
    }
    const double distance = below / below_nb - above / above_nb;
    return below_nb * above_nb * distance * distance;
}

TEST(Background_Threshold, parts_best_of_all_thresholds) {
    std::mt19937 random(11);
    std::normal_distribution<double> air(5.0, 3.0);
    std::normal_distribution<double> tissue(90.0, 20.0);
    std::vector<std::int32_t> levels;
    for (int i = 0; i < 4000; ++i) {
        const double value = i % 3 == 0 ? tissue(random) : air(random);
        levels.push_back(std::clamp(static_cast<std::int32_t>(value), 0, 255));
    }
    const std::optional<double> found = Background_Threshold(Volume_Of(levels));
    ASSERT_TRUE(found.has_value());
    double best = -1.0;
    for (std::int32_t threshold = 0; threshold < 255; ++threshold) {
        best = std::max(best, Between(levels, threshold));
    }
    EXPECT_DOUBLE_EQ(Between(levels, static_cast<std::int32_t>(*found)), best);
    EXPECT_GT(*found, 15.0);
    EXPECT_LT(*found, 70.0);
}

TEST(Background_Threshold, is_a_grey_value_whatever_the_scale) {
    const std::vector<std::int32_t> levels = {0, 1, 1, 2, 100, 101, 99};
    EXPECT_EQ(Background_Threshold(Volume_Of(levels)), 2.0);
    EXPECT_EQ(Background_Threshold(Volume_Of(levels, 0.5, -10)), -9.0);
    EXPECT_EQ(Background_Threshold(Volume_Of(levels, -1, 100)), 1.0) << "the darker group has the larger levels";
    EXPECT_EQ(Background_Threshold(Volume_Of({0, 1, LEVEL_OUTSIDE, 50, 51})), 1.0)
        << "what has no value counts nowhere";
    // More levels than bins: as exact as a bin.
    const double wide = Background_Threshold(Volume_Of({0, 10, 20, 1000000, 1000100})).value_or(-1.0);
    EXPECT_GE(wide, 20.0);
    EXPECT_LT(wide, 300.0);
}

TEST(Background_Threshold, one_value_and_colours_have_none) {
    EXPECT_EQ(Background_Threshold(Volume_Of({7, 7, 7})), std::nullopt);
    Volume colours = Volume_Of({0x010203, 0x7F7F7F});
    colours.color = true;
    EXPECT_EQ(Background_Threshold(colours), std::nullopt);
}

std::string Mask_Of(const std::string& picture, int width, double threshold) {
    std::vector<std::int32_t> levels;
    for (const char letter : picture) {
        levels.push_back(letter == 'x' ? LEVEL_OUTSIDE : letter - '0');
    }
    std::vector<unsigned char> mask(levels.size(), 7);
    Background_Leave_Out(levels, width, static_cast<int>(levels.size()) / width, 1.0, 0.0, threshold, mask);
    std::string shown;
    for (const unsigned char counted : mask) {
        shown += counted == 1 ? '#' : counted == 0 ? '.' : '!';
    }
    return shown;
}

TEST(Background_Leave_Out, leaves_out_what_reaches_the_edge_and_keeps_dark_places_inside) {
    EXPECT_EQ(Mask_Of("0000000"
                      "0999990"
                      "0900090"
                      "0901090"
                      "0999990"
                      "0000000",
                      7, 1.0),
              "......."
              ".#####."
              ".#####."
              ".#####."
              ".#####."
              ".......");
}

TEST(Background_Leave_Out, goes_from_side_to_side_only) {
    // The dark place touches the outside by a corner.
    EXPECT_EQ(Mask_Of("0099"
                      "0909"
                      "9009"
                      "9999",
                      4, 1.0),
              "..##"
              ".###"
              "####"
              "####");
    EXPECT_EQ(Mask_Of("099"
                      "000"
                      "999",
                      3, 0.0),
              ".##"
              "..."
              "###");
}

TEST(Background_Leave_Out, follows_inlets_from_every_side) {
    for (const char* picture : {"99099"
                                "99099"
                                "99009"
                                "99999",
                                "99999"
                                "90099"
                                "99099"
                                "99099",
                                "99999"
                                "00099"
                                "99099"
                                "99999",
                                "99999"
                                "99000"
                                "99099"
                                "99999"}) {
        const std::string shown = Mask_Of(picture, 5, 1.0);
        for (std::size_t at = 0; at < shown.size(); ++at) {
            EXPECT_EQ(shown[at], picture[at] == '0' ? '.' : '#') << picture << " at " << at;
        }
    }
}

TEST(Background_Leave_Out, pixels_without_a_value_are_background_at_the_edge) {
    EXPECT_EQ(Mask_Of("x9x"
                      "9x9"
                      "x9x",
                      3, 1.0),
              ".#."
              "###"
              ".#.");
    EXPECT_EQ(Mask_Of("5", 1, 1.0), "#");
    EXPECT_EQ(Mask_Of("1", 1, 1.0), ".");
}

}  // namespace
