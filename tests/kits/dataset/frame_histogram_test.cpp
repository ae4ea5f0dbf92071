#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "kits/dataset/dataset_host.h"

namespace {

std::vector<std::int32_t> Random_Levels(std::size_t nb, int lowest, int highest, unsigned int seed) {
    std::mt19937 generator(seed);
    std::uniform_int_distribution<std::int32_t> levels(lowest, highest);
    std::vector<std::int32_t> result(nb);
    std::generate(result.begin(), result.end(), [&] { return levels(generator); });
    return result;
}

std::uint64_t Total(const Histo_Record& record) {
    return std::accumulate(record.counts, record.counts + record.nb_bins, std::uint64_t{0});
}

/** Bin by whole numbers: the grid has `levels_per_bin` levels in each bin. */
void Expect_Plain_Counts(const Level_Frame& frame, const std::vector<std::int32_t>& levels, std::int32_t first,
                         int levels_per_bin, bool downwards) {
    ASSERT_NE(frame.histogram, nullptr);
    const Histo_Record& record = *frame.histogram;
    std::vector<std::uint32_t> counts(record.nb_bins);
    for (const std::int32_t level : levels) {
        const std::int64_t distance = downwards ? std::int64_t{first} - level : std::int64_t{level} - first;
        ++counts.at(static_cast<std::size_t>(distance / levels_per_bin));
    }
    for (int i = 0; i < record.nb_bins; ++i) {
        ASSERT_EQ(record.counts[i], counts[static_cast<std::size_t>(i)]) << "bin " << i;
    }
    EXPECT_EQ(record.max_count, *std::max_element(counts.begin(), counts.end()));
    EXPECT_EQ(record.flags, 0);
    EXPECT_EQ(record.counts_red, nullptr);
}

}  // namespace

TEST(Histogram_Grid, has_a_bin_per_level) {
    const Histo_Grid grid = Histo_Grid_Of_Levels(0, 255, 1.0F, 0.0F, 4096);
    EXPECT_EQ(grid.origin, 0.0F);
    EXPECT_EQ(grid.bin_width, 1.0F);
    EXPECT_EQ(grid.nb_bins, 256);
    const Histo_Grid scaled = Histo_Grid_Of_Levels(-100, 900, 0.5F, 10.0F, 4096);
    EXPECT_EQ(scaled.origin, -40.0F);
    EXPECT_EQ(scaled.bin_width, 0.5F);
    EXPECT_EQ(scaled.nb_bins, 1001);
}

TEST(Histogram_Grid, joins_whole_levels_to_keep_within_the_limit) {
    const Histo_Grid grid = Histo_Grid_Of_Levels(0, 9999, 2.0F, 0.0F, 4096);
    EXPECT_EQ(grid.bin_width, 6.0F) << "three levels";
    EXPECT_EQ(grid.nb_bins, 3334);
    EXPECT_EQ(Histo_Grid_Of_Levels(0, 4095, 1.0F, 0.0F, 4097).nb_bins, 4096);
    EXPECT_EQ(Histo_Grid_Of_Levels(0, 4096, 1.0F, 0.0F, 4097).nb_bins, 2049);
    EXPECT_EQ(Histo_Grid_Of_Levels(INT32_MIN, INT32_MAX, 1.0F, 0.0F, 1 << 30).nb_bins, 65535);
    EXPECT_EQ(Histo_Grid_Of_Levels(0, 100, 1.0F, 0.0F, 0).nb_bins, 1);
}

TEST(Histogram_Grid, is_kept_by_a_panel_whose_limit_is_the_same) {
    struct Case {
        int highest;
        float slope;
        float intercept;
    };
    for (const Case& each : {Case{255, 1.0F, 0.0F}, Case{4095, 0.1F, -3.0F}, Case{65535, 0.25F, -1024.0F},
                             Case{1000, 3.7F, 12.5F}, Case{40000, 0.001F, 0.0F}}) {
        for (int most = 2; most < 6000; most += most / 3 + 1) {
            const Histo_Grid grid = Histo_Grid_Of_Levels(0, each.highest, each.slope, each.intercept, most);
            // What a panel makes of frames on the grid: one grey level more than they cover.
            const float edge = static_cast<float>(grid.nb_bins) * grid.bin_width + grid.origin;
            const float bins = std::trunc((edge - grid.origin + 1.0F) / grid.bin_width);
            if (grid.nb_bins > 1) {
                EXPECT_LE(bins, static_cast<float>(most)) << each.highest << " x " << each.slope << ", " << most;
            }
        }
    }
    EXPECT_EQ(Histo_Grid_Of_Levels(0, 255, 1.0F, 0.0F, 257).nb_bins, 256);
    EXPECT_EQ(Histo_Grid_Of_Levels(0, 255, 1.0F, 0.0F, 256).bin_width, 2.0F) << "256 bins and one more are 257";
}

TEST(Histogram_Grid, turns_with_a_falling_scale) {
    const Histo_Grid grid = Histo_Grid_Of_Levels(0, 99, -1.0F, 0.0F, 4096);
    EXPECT_EQ(grid.origin, -99.0F);
    EXPECT_EQ(grid.bin_width, 1.0F);
    EXPECT_EQ(grid.nb_bins, 100);
}

TEST(Histogram_Grid, is_usable_for_odd_input) {
    EXPECT_EQ(Histo_Grid_Of_Levels(10, 0, 1.0F, 0.0F, 100).nb_bins, 11) << "levels in either order";
    for (const float slope : {0.0F, INFINITY, NAN, 1e38F * 10}) {
        const Histo_Grid grid = Histo_Grid_Of_Levels(0, 10, slope, 5.0F, 100);
        EXPECT_EQ(grid.nb_bins, 1);
        EXPECT_GT(grid.bin_width, 0.0F);
        EXPECT_EQ(grid.origin, 5.0F);
    }
    EXPECT_EQ(Histo_Grid_Of_Levels(0, 10, 1.0F, NAN, 100).origin, 0.0F);
}

TEST(Frame_Histogram, counts_every_pixel_like_a_plain_loop) {
    struct Case {
        int lowest, highest;
        float slope, intercept;
        int most_bins;
    };
    const Case cases[] = {{0, 255, 1.0F, 0.0F, 4096},         {-1024, 3071, 1.0F, -1024.0F, 65535},
                          {0, 4095, 0.1F, 0.0F, 4096},        {-500, 500, 0.3F, 17.7F, 4096},
                          {0, 4095, 0.0123F, -3.3F, 100},     {0, 1000, -0.7F, 3.0F, 4096},
                          {-3000, 60000, 1.7F, 0.1F, 1000},   {5, 5, 1.0F, 0.0F, 10},
                          {0, 65535, 1.0F, -32768.0F, 65535}, {0, 40000, 0.001F, 0.0F, 65535}};
    for (const Case& each : cases) {
        const auto levels = Random_Levels(96 * 64 * 3, each.lowest, each.highest, 1);
        Level_Frame frame(levels.data(), 96, 64, 3, 1, each.slope, each.intercept, false);
        const Histo_Grid grid =
            Histo_Grid_Of_Levels(each.lowest, each.highest, each.slope, each.intercept, each.most_bins);
        ASSERT_EQ(Frame_Histogram_Build(&frame, grid, nullptr), 1);
        EXPECT_EQ(frame.histogram->origin, grid.origin);
        EXPECT_EQ(frame.histogram->bin_width, grid.bin_width);
        EXPECT_EQ(Total(*frame.histogram), levels.size());
        const int levels_per_bin = static_cast<int>(std::lround(grid.bin_width / std::abs(each.slope)));
        const bool downwards = each.slope < 0;
        Expect_Plain_Counts(frame, levels, downwards ? each.highest : each.lowest, levels_per_bin, downwards);
    }
}

TEST(Frame_Histogram, counts_levels_that_are_spread_far_apart) {
    auto levels = Random_Levels(1000, INT32_MIN, INT32_MAX, 2);
    levels[0] = INT32_MIN;
    levels[1] = INT32_MAX;
    Level_Frame frame(levels.data(), 100, 10, 1, 1, 1.0F, 0.0F, false);
    const Histo_Grid grid = Histo_Grid_Of_Levels(INT32_MIN, INT32_MAX, 1.0F, 0.0F, 256);
    ASSERT_EQ(Frame_Histogram_Build(&frame, grid, nullptr), 1);
    EXPECT_EQ(frame.histogram->nb_bins, 256);
    Expect_Plain_Counts(frame, levels, INT32_MIN, 1 << 24, false);
}

TEST(Frame_Histogram, leaves_out_what_is_outside_the_grid) {
    const std::int32_t levels[] = {-1, 0, 1, 2, 3, 4};
    Level_Frame frame(levels, 6, 1, 1, 1, 1.0F, 0.0F, false);
    ASSERT_EQ(Frame_Histogram_Build(&frame, {1.0F, 1.0F, 2}, nullptr), 1);
    EXPECT_EQ(frame.histogram->counts[0], 1U);
    EXPECT_EQ(frame.histogram->counts[1], 1U);
    EXPECT_EQ(frame.histogram->max_count, 1U);
}

TEST(Frame_Histogram, counts_only_the_masked_pixels_of_the_first_slice) {
    const auto levels = Random_Levels(20 * 10 * 2, 0, 9, 3);
    std::vector<unsigned char> mask(20 * 10);
    std::vector<std::int32_t> counted;
    for (std::size_t i = 0; i < mask.size(); i += 3) {
        mask[i] = static_cast<unsigned char>(1 + i % 200);
        counted.push_back(levels[i]);
    }
    Level_Frame frame(levels.data(), 20, 10, 2, 1, 1.0F, 0.0F, false);
    const Histo_Grid grid = Histo_Grid_Of_Levels(0, 9, 1.0F, 0.0F, 100);
    ASSERT_EQ(Frame_Histogram_Build(&frame, grid, mask.data()), 1);
    Expect_Plain_Counts(frame, counted, 0, 1, false);
    std::fill(mask.begin(), mask.end(), static_cast<unsigned char>(0));
    ASSERT_EQ(Frame_Histogram_Build(&frame, grid, mask.data()), 1);
    EXPECT_EQ(Total(*frame.histogram), 0U);
    EXPECT_EQ(frame.histogram->max_count, 0U);
}

TEST(Frame_Histogram, of_a_colour_frame_has_all_five_arrays) {
    const auto levels = Random_Levels(64 * 64, 0, 0xFFFFFF, 4);
    Level_Frame frame(levels.data(), 64, 64, 1, 1, 1.0F, 0.0F, true);
    ASSERT_EQ(Frame_Histogram_Build(&frame, {0.0F, 1.0F, 7}, nullptr), 1);
    const Histo_Record& record = *frame.histogram;
    EXPECT_EQ(record.flags, HISTO_COLOR);
    ASSERT_EQ(record.nb_bins, 256);
    EXPECT_EQ(record.origin, 0.0F);
    EXPECT_EQ(record.bin_width, 1.0F);
    std::vector<std::uint32_t> red(256), green(256), blue(256), largest(256);
    for (const std::int32_t level : levels) {
        const int r = level & 0xFF;
        const int g = level >> 8 & 0xFF;
        const int b = level >> 16 & 0xFF;
        ++red[static_cast<std::size_t>(r)];
        ++green[static_cast<std::size_t>(g)];
        ++blue[static_cast<std::size_t>(b)];
        ++largest[static_cast<std::size_t>(std::max({r, g, b}))];
    }
    std::uint32_t most = 0;
    for (std::size_t i = 0; i < 256; ++i) {
        ASSERT_EQ(record.counts_red[i], red[i]);
        ASSERT_EQ(record.counts_green[i], green[i]);
        ASSERT_EQ(record.counts_blue[i], blue[i]);
        ASSERT_EQ(record.counts_component0[i], largest[i]);
        ASSERT_EQ(record.counts[i], largest[i]);
        most = std::max({most, red[i], green[i], blue[i], largest[i]});
    }
    EXPECT_EQ(record.max_count, most);
}

TEST(Frame_Histogram, the_largest_count_is_that_of_all_arrays) {
    const std::int32_t levels[] = {0xFF0000, 0x00FE00, 0x0000FD, 0x0000FC};
    Level_Frame frame(levels, 4, 1, 1, 1, 1.0F, 0.0F, true);
    ASSERT_EQ(Frame_Histogram_Build(&frame, {}, nullptr), 1);
    EXPECT_EQ(frame.histogram->max_count, 3U)
        << "three pixels without blue, while each largest component is there once";
}

TEST(Frame_Histogram, is_replaced_and_freed) {
    const std::int32_t levels[] = {1, 2};
    Level_Frame frame(levels, 2, 1, 1, 1, 1.0F, 0.0F, false);
    EXPECT_EQ(frame.Histogram_Get(), nullptr);
    ASSERT_EQ(Frame_Histogram_Build(&frame, {0.0F, 1.0F, 4}, nullptr), 1);
    EXPECT_EQ(frame.Histogram_Get()->nb_bins, 4);
    ASSERT_EQ(Frame_Histogram_Build(&frame, {0.0F, 1.0F, 9}, nullptr), 1);
    EXPECT_EQ(frame.Histogram_Get()->nb_bins, 9);
    Frame_Histogram_Free(&frame);
    EXPECT_EQ(frame.Histogram_Get(), nullptr);
    Frame_Histogram_Free(&frame);
    Frame_Histogram_Free(nullptr);
}

TEST(Frame_Histogram, one_that_the_application_put_there_stays_its_own) {
    Histo_Record own;
    const std::int32_t level = 1;
    {
        Level_Frame frame(&level, 1, 1, 1, 1, 1.0F, 0.0F, false);
        Frame_Histogram_Build(&frame, {}, nullptr);
        frame.histogram = &own;
        EXPECT_EQ(frame.Histogram_Get(), &own);
    }
    Quorel_2D_Frame base;
    base.histogram = &own;
}

TEST(Frame_Histogram, needs_a_frame_and_a_grid) {
    const std::int32_t level = 1;
    Level_Frame frame(&level, 1, 1, 1, 1, 1.0F, 0.0F, false);
    EXPECT_EQ(Frame_Histogram_Build(nullptr, {}, nullptr), 0);
    EXPECT_EQ(Frame_Histogram_Build(&frame, {0.0F, 1.0F, 0}, nullptr), 0);
    EXPECT_EQ(Frame_Histogram_Build(&frame, {0.0F, 1.0F, 65536}, nullptr), 0);
    EXPECT_EQ(Frame_Histogram_Build(&frame, {0.0F, 0.0F, 10}, nullptr), 0);
    EXPECT_EQ(Frame_Histogram_Build(&frame, {0.0F, NAN, 10}, nullptr), 0);
    EXPECT_EQ(frame.histogram, nullptr);
    frame.slope = NAN;
    EXPECT_EQ(Frame_Histogram_Build(&frame, {0.0F, 1.0F, 10}, nullptr), 1);
    EXPECT_EQ(Total(*frame.histogram), 0U);
    Level_Frame empty(nullptr, 1, 1, 1, 1, 1.0F, 0.0F, false);
    EXPECT_EQ(Frame_Histogram_Build(&empty, {}, nullptr), 0);
}

TEST(Frame_Histogram, needs_a_grid_of_finite_numbers_and_a_frame_with_pixels) {
    const std::vector<std::int32_t> levels = {1, 2, 3, 4};
    Level_Frame frame(levels.data(), 2, 2, 1, 1, 1.0F, 0.0F, false);
    for (const Histo_Grid& grid : {Histo_Grid{NAN, 1.0F, 10},
                                   {INFINITY, 1.0F, 10},
                                   {-INFINITY, 1.0F, 10},
                                   {0.0F, INFINITY, 10},
                                   {0.0F, NAN, 10},
                                   {0.0F, 0.0F, 10},
                                   {0.0F, -1.0F, 10}}) {
        ASSERT_EQ(Frame_Histogram_Build(&frame, {0.0F, 1.0F, 10}, nullptr), 1);
        EXPECT_EQ(Frame_Histogram_Build(&frame, grid, nullptr), 0);
        EXPECT_EQ(frame.Histogram_Get(), nullptr);
    }
    for (unsigned short Quorel_2D_Frame::*dimension :
         {&Quorel_2D_Frame::width, &Quorel_2D_Frame::height, &Quorel_2D_Frame::slices, &Quorel_2D_Frame::times}) {
        const unsigned short before = frame.*dimension;
        frame.*dimension = 0;
        EXPECT_EQ(Frame_Histogram_Build(&frame, {0.0F, 1.0F, 10}, nullptr), 0);
        frame.*dimension = before;
    }
    Level_Frame color(levels.data(), 2, 2, 1, 1, 1.0F, 0.0F, true);
    EXPECT_EQ(Frame_Histogram_Build(&color, {NAN, NAN, 0}, nullptr), 1) << "a colour frame has bins of its own";
}
