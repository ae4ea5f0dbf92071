#include "histogram/plot_columns.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "histogram/plot_pixels.h"

namespace {

constexpr std::uint32_t GROUND = 0x202226;
constexpr std::uint32_t LINE = 0xFFFF00;

using Picture = std::vector<std::uint32_t>;

/** Every bin drawn as a line along its value and a stroke to the next one, pixel by pixel. */
template <typename Value>
Picture Every_Bin(const Plot_Frame& frame, const Plot_Grid& grid, const std::vector<Value>& values) {
    Picture picture(static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(frame.height), GROUND);
    const auto put = [&](int column, int row) {
        if (column >= 0 && column < frame.width && row >= 0 && row < frame.height) {
            picture[static_cast<std::size_t>((frame.height - 1 - row) * frame.width + column)] = LINE;
        }
    };
    const auto stroke = [&](int column, int from, int to) {
        for (int row = std::min(from, to); row <= std::max(from, to); ++row) {
            put(column, row);
        }
    };
    int row = frame.Row(0.0);
    for (int bin = 0; bin < static_cast<int>(values.size()); ++bin) {
        const int begin = frame.Column(grid.Edge(bin));
        const int end = frame.Column(grid.Edge(bin + 1));
        const int next = frame.Row(static_cast<double>(values[static_cast<std::size_t>(bin)]));
        stroke(begin, row, next);
        row = next;
        for (int column = begin; column <= end; ++column) {
            put(column, row);
        }
    }
    stroke(frame.Column(grid.Edge(static_cast<int>(values.size()))), row, frame.Row(0.0));
    return picture;
}

Picture Reduced(const Plot_Frame& frame, const Column_Spans& spans) {
    Picture picture(static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(frame.height), GROUND);
    Plot_Pixels(picture.data(), frame.width, frame.height).Line_Draw(spans, LINE);
    return picture;
}

struct Random_Scene {
    std::mt19937 random;
    explicit Random_Scene(unsigned seed) : random(seed) {}
    int Int(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random); }
    double Real(double least, double most) { return std::uniform_real_distribution<double>(least, most)(random); }
};

constexpr Plot_Frame TEN{100, 50, 0.0, 10.0, 0.0, 5.0};

}  // namespace

TEST(Plot_Frame_Test, a_value_stands_on_the_nearest_pixel_as_ticks_do) {
    EXPECT_EQ(TEN.Column(0.0), 0);
    EXPECT_EQ(TEN.Column(0.04), 0);
    EXPECT_EQ(TEN.Column(0.06), 1);
    EXPECT_EQ(TEN.Column(9.94), 99);
    EXPECT_EQ(TEN.Row(2.5), 25);
}

TEST(Plot_Frame_Test, outside_is_one_pixel_beyond_and_huge_numbers_do_not_wrap) {
    EXPECT_EQ(TEN.Column(-0.06), -1);
    EXPECT_EQ(TEN.Column(-1e300), -1);
    EXPECT_EQ(TEN.Column(10.0), 100);
    EXPECT_EQ(TEN.Column(1e300), 100);
    EXPECT_EQ(TEN.Row(std::nan("")), -1);
    EXPECT_EQ(TEN.Row(INFINITY), 50);
}

TEST(Plot_Frame_Test, ranges_that_do_not_increase_are_empty) {
    EXPECT_FALSE(TEN.Is_Empty());
    EXPECT_TRUE((Plot_Frame{0, 50, 0, 1, 0, 1}.Is_Empty()));
    EXPECT_TRUE((Plot_Frame{10, 50, 1, 1, 0, 1}.Is_Empty()));
    EXPECT_TRUE((Plot_Frame{10, 50, 0, 1, 0, std::nan("")}.Is_Empty()));
    EXPECT_TRUE((Plot_Frame{10, 50, 0, INFINITY, 0, 1}.Is_Empty()));
}

TEST(Plot_Columns_Test, one_span_per_column_holds_every_bin_that_touches_it) {
    const Plot_Columns columns({10, 100, 0.0, 10.0, 0.0, 100.0}, {4, 2.0, 1.0});
    const std::vector<std::uint32_t> counts = {10, 20, 5, 5};
    const Column_Spans spans = columns.Stepped(counts.data(), 4);
    const Column_Spans wanted = {{}, {}, {0, 10}, {10, 20}, {5, 20}, {5, 5}, {0, 5}, {}, {}, {}};
    EXPECT_EQ(spans, wanted);
}

TEST(Plot_Columns_Test, a_bin_that_reaches_over_the_whole_view_is_one_flat_line) {
    const Plot_Columns columns({10, 100, 3.2, 3.4, 0.0, 100.0}, {8, 0.0, 1.0});
    const std::vector<std::uint32_t> counts = {10, 20, 5, 42, 7, 1, 1, 1};
    EXPECT_EQ(columns.Stepped(counts.data(), 8), Column_Spans(10, Column_Span{42, 42}));
}

TEST(Plot_Columns_Test, no_bins_and_no_width_draw_nothing) {
    const std::vector<std::uint32_t> counts = {10, 20};
    EXPECT_EQ(Plot_Columns(TEN, {0, 0.0, 1.0}).Stepped(counts.data(), 2), Column_Spans(100));
    EXPECT_EQ(Plot_Columns(TEN, {2, 0.0, 0.0}).Stepped(counts.data(), 2), Column_Spans(100));
    EXPECT_EQ(Plot_Columns(TEN, {2, 0.0, -1.0}).Stepped(counts.data(), 2), Column_Spans(100));
    EXPECT_EQ(Plot_Columns(TEN, {2, 0.0, std::nan("")}).Stepped(counts.data(), 2), Column_Spans(100));
    EXPECT_TRUE(Plot_Columns({}, {2, 0.0, 1.0}).Stepped(counts.data(), 2).empty());
}

TEST(Plot_Columns_Test, a_curve_shorter_than_the_grid_ends_with_its_values) {
    const Plot_Columns columns({10, 100, 0.0, 10.0, 0.0, 100.0}, {10, 0.0, 1.0});
    const std::vector<double> values = {50.0, 60.0, 70.0};
    const Column_Spans spans = columns.Stepped(values.data(), 3);
    EXPECT_EQ(spans[3], (Column_Span{0, 70}));
    EXPECT_TRUE(spans[4].Is_Empty());
}

TEST(Plot_Columns_Test, same_picture_as_every_bin_at_random_zooms) {
    for (unsigned seed = 0; seed < 400; ++seed) {
        Random_Scene scene(seed);
        const int nb = scene.Int(1, seed % 4 == 0 ? 5000 : 60);
        const Plot_Grid grid{nb, scene.Real(-50.0, 50.0), scene.Real(0.01, 3.0)};
        std::vector<std::uint32_t> counts(static_cast<std::size_t>(nb));
        for (auto& count : counts) {
            count = static_cast<std::uint32_t>(scene.Int(0, 1000));
        }
        const double span = nb * grid.bin_width;
        const double middle = grid.origin + scene.Real(-0.1, 1.1) * span;
        const double reach = span * std::pow(10.0, scene.Real(-3.0, 0.2));
        const double low = scene.Real(-100.0, 800.0);
        const Plot_Frame frame{
            scene.Int(1, 300), scene.Int(1, 90), middle - reach, middle + reach, low, low + scene.Real(1.0, 1200.0)};
        const Plot_Columns columns(frame, grid);
        ASSERT_EQ(Reduced(frame, columns.Stepped(counts.data(), nb)), Every_Bin(frame, grid, counts))
            << "seed " << seed;
    }
}

TEST(Plot_Columns_Test, negative_values_reach_below_zero) {
    const Plot_Frame frame{40, 60, -1.0, 11.0, -30.0, 30.0};
    const Plot_Grid grid{10, 0.0, 1.0};
    const std::vector<float> values = {0, 5, 20, -10, -25, -3, 0, 1, -1, 4};
    EXPECT_EQ(Reduced(frame, Plot_Columns(frame, grid).Stepped(values.data(), 10)), Every_Bin(frame, grid, values));
}

TEST(Plot_Columns_Test, a_smooth_curve_has_no_gaps_and_its_top_in_place) {
    const Plot_Columns columns({400, 300, 0.0, 20.0, 0.0, 110.0}, {20, 0.0, 1.0});
    const auto hill = [](double bin) { return 100.0 * std::exp(-(bin - 9.5) * (bin - 9.5)); };
    const Column_Spans spans = columns.Smooth(0, 19, hill);
    int best = 0;
    for (int column = 1; column < 400; ++column) {
        const Column_Span& span = spans[static_cast<std::size_t>(column)];
        const Column_Span& left = spans[static_cast<std::size_t>(column - 1)];
        ASSERT_FALSE(span.Is_Empty());
        EXPECT_LE(span.low, left.high + 1);
        EXPECT_GE(span.high, left.low - 1);
        best = span.high > spans[static_cast<std::size_t>(best)].high ? column : best;
    }
    // Bin 9.5 stands at grey level 10, the middle of 20: column 200, the top a few columns wide.
    EXPECT_NEAR(best, 200, 2);
    EXPECT_EQ(spans[200].high, columns.Frame().Row(100.0));
}

TEST(Plot_Columns_Test, a_smooth_curve_stays_inside_its_bins) {
    const Plot_Columns columns({100, 100, 0.0, 10.0, 0.0, 10.0}, {10, 0.0, 1.0});
    double least = 100.0;
    double most = -100.0;
    const Column_Spans spans = columns.Smooth(3, 5, [&](double bin) {
        least = std::min(least, bin);
        most = std::max(most, bin);
        return 1.0;
    });
    EXPECT_GE(least, 2.5);
    EXPECT_LE(most, 5.5);
    EXPECT_TRUE(spans[29].Is_Empty());
    EXPECT_FALSE(spans[30].Is_Empty());
    EXPECT_FALSE(spans[60].Is_Empty());
    EXPECT_TRUE(spans[61].Is_Empty());
}
