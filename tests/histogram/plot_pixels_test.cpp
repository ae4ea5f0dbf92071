#include "histogram/plot_pixels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

constexpr int WIDTH = 37;  // not a multiple of the columns that are worked on together
constexpr int HEIGHT = 9;

/** A picture between rows that nobody may touch. */
struct Canvas {
    static constexpr std::size_t PIXEL_NB = WIDTH * HEIGHT;
    static constexpr std::size_t GUARD_NB = PIXEL_NB;
    static constexpr std::uint32_t GUARD = 0xDEADBEEF;
    std::vector<std::uint32_t> memory = std::vector<std::uint32_t>(PIXEL_NB + 2 * GUARD_NB, GUARD);
    std::uint32_t* pixels = memory.data() + GUARD_NB;
    Plot_Pixels picture{pixels, WIDTH, HEIGHT};
    Canvas() { std::fill(pixels, pixels + PIXEL_NB, 0U); }
    ~Canvas() {
        for (std::size_t i = 0; i < GUARD_NB; ++i) {
            EXPECT_EQ(memory[i], GUARD) << "written above the picture";
            EXPECT_EQ(memory[GUARD_NB + PIXEL_NB + i], GUARD) << "written below the picture";
        }
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    int Count(std::uint32_t pixel) const { return static_cast<int>(std::count(pixels, pixels + PIXEL_NB, pixel)); }
};

}  // namespace

TEST(Plot_Pixels_Test, colors_turn_into_pixels) {
    EXPECT_EQ(Pixel_Of_Color(0x00FFFF), 0xFFFF00U);
    EXPECT_EQ(Pixel_Of_Color(0x123456), 0x563412U);
}

TEST(Plot_Pixels_Test, blend_mixes_each_component_by_itself) {
    EXPECT_EQ(Pixel_Blend(0x102030, 0xFFFFFF, 0), 0x102030U);
    EXPECT_EQ(Pixel_Blend(0x102030, 0xABCDEF, OPACITY_FULL), 0xABCDEFU);
    EXPECT_EQ(Pixel_Blend(0x000000, 0xFF00FF, 128), 0x7F007FU);
    EXPECT_EQ(Pixel_Blend(0xFFFFFF, 0x00FF00, 128), 0x7FFF7FU);
}

TEST(Plot_Pixels_Test, rows_count_from_the_bottom) {
    Canvas canvas;
    Column_Spans spans(WIDTH);
    spans[5] = {2, 4};
    canvas.picture.Line_Draw(spans, 0xFF);
    EXPECT_EQ(canvas.Count(0xFF), 3);
    for (int row = 2; row <= 4; ++row) {
        EXPECT_EQ(canvas.pixels[(HEIGHT - 1 - row) * WIDTH + 5], 0xFFU);
        EXPECT_EQ(canvas.picture.At(5, row), 0xFFU);
    }
}

TEST(Plot_Pixels_Test, spans_are_clipped_to_the_picture) {
    Canvas canvas;
    Column_Spans spans(WIDTH, {-5, HEIGHT + 7});
    spans[0] = {-9, -1};
    spans[1] = {HEIGHT, HEIGHT + 3};
    spans[2] = {};
    canvas.picture.Layer_Draw({Span_Blocks(spans, WIDTH, HEIGHT), 0xFF, OPACITY_FULL});
    EXPECT_EQ(canvas.Count(0xFF), (WIDTH - 3) * HEIGHT);
    EXPECT_EQ(canvas.picture.At(0, 0) + canvas.picture.At(1, HEIGHT - 1) + canvas.picture.At(2, 3), 0U);
}

TEST(Plot_Pixels_Test, spans_mix_as_single_pixels_do) {
    Canvas canvas;
    std::vector<std::uint32_t> before;
    for (std::size_t i = 0; i < Canvas::PIXEL_NB; ++i) {
        canvas.pixels[i] = static_cast<std::uint32_t>(i * 0x9E3779B1U) & 0xFFFFFF;
        before.push_back(canvas.pixels[i]);
    }
    for (const std::uint32_t opacity : {0U, 1U, 90U, 255U, OPACITY_FULL}) {
        std::copy(before.begin(), before.end(), canvas.pixels);
        canvas.picture.Layer_Draw(
            {Span_Blocks(Column_Spans(WIDTH, {0, HEIGHT - 1}), WIDTH, HEIGHT), 0xFA8C01, opacity});
        for (std::size_t i = 0; i < before.size(); ++i) {
            ASSERT_EQ(canvas.pixels[i] & 0xFFFFFF, Pixel_Blend(before[i], 0xFA8C01, opacity)) << opacity;
        }
    }
}

TEST(Plot_Pixels_Test, every_column_has_its_own_color_and_spans_may_be_fewer) {
    Canvas canvas;
    std::vector<std::uint32_t> colors;
    for (int column = 0; column < WIDTH; ++column) {
        colors.push_back(static_cast<std::uint32_t>(column + 1));
    }
    canvas.picture.Spans_Fill(Column_Spans(WIDTH - 1, {1, 1}), colors);
    for (int column = 0; column < WIDTH - 1; ++column) {
        EXPECT_EQ(canvas.picture.At(column, 1), static_cast<std::uint32_t>(column + 1));
    }
    EXPECT_EQ(canvas.picture.At(WIDTH - 1, 1), 0U);
    EXPECT_EQ(canvas.picture.At(3, 0), 0U);
    canvas.picture.Rows_Fill(colors, colors);
    EXPECT_EQ(canvas.picture.At(WIDTH - 1, HEIGHT - 1), static_cast<std::uint32_t>(WIDTH));
    EXPECT_EQ(canvas.picture.At(0, 0), 1U);
}

TEST(Plot_Pixels_Test, rectangles_are_clipped) {
    Canvas canvas;
    canvas.picture.Rectangle_Blend(-3, -2, 5, 4, 0xFF, OPACITY_FULL);
    EXPECT_EQ(canvas.Count(0xFF), 2 * 2);
    canvas.picture.Rectangle_Blend(WIDTH - 1, HEIGHT - 1, 9, 9, 0xFF00, OPACITY_FULL);
    EXPECT_EQ(canvas.Count(0xFF00), 1);
    canvas.picture.Rectangle_Blend(WIDTH, 0, 9, 9, 0xAA, OPACITY_FULL);
    EXPECT_EQ(canvas.Count(0xAA), 0);
}

TEST(Plot_Pixels_Test, a_thick_line_grows_to_the_right_and_upward) {
    Canvas canvas;
    Column_Spans spans(WIDTH);
    spans[10] = {2, 2};
    spans[11] = {2, 5};
    spans[12] = {5, 5};
    canvas.picture.Line_Draw(Thick_Spans(spans, 2), 0xFF);
    const Column_Spans wanted = {{2, 3}, {2, 6}, {2, 6}, {5, 6}};
    int nb = 0;
    for (int i = 0; i < 4; ++i) {
        for (int row = 0; row < HEIGHT; ++row) {
            const Column_Span& span = wanted[static_cast<std::size_t>(i)];
            EXPECT_EQ(canvas.picture.At(10 + i, row) == 0xFF, row >= span.low && row <= span.high) << i << " " << row;
            nb += row >= span.low && row <= span.high ? 1 : 0;
        }
    }
    EXPECT_EQ(canvas.Count(0xFF), nb);
}

namespace {

/** Spans of all kinds beside each other: none, single pixels, a few rows, the whole height, and beyond the picture. */
Column_Spans Random_Spans(std::mt19937& random, int width, int height) {
    const auto below = [&](int end) { return static_cast<int>(random() % static_cast<unsigned int>(end)); };
    Column_Spans spans(static_cast<std::size_t>(width));
    int kind = 0;
    for (Column_Span& span : spans) {
        kind = below(4) == 0 ? below(5) : kind;  // neighbours are often of one kind
        const int low = below(height);
        switch (kind) {
            case 1:
                span = {low, low};
                break;
            case 2:
                span = {low, low + below(6)};
                break;
            case 3:
                span = {-below(3), height + below(3)};
                break;
            case 4:
                span = {low - height, low + height};
                break;
            default:
                break;
        }
    }
    return spans;
}

}  // namespace

TEST(Plot_Pixels_Test, layers_drawn_strip_by_strip_are_those_that_are_drawn_pixel_by_pixel) {
    constexpr int height = 61;
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        const int width = 1 + static_cast<int>(random() % 70);
        const auto size = static_cast<std::size_t>(width) * height;
        std::vector<std::uint32_t> expected(size);
        std::ranges::generate(expected, [&] { return static_cast<std::uint32_t>(random() & 0xFFFFFF); });
        std::vector<std::uint32_t> drawn = expected;
        std::vector<std::uint32_t> colors(static_cast<std::size_t>(width));
        std::ranges::generate(colors, [&] { return static_cast<std::uint32_t>(random() & 0xFFFFFF); });
        const Column_Spans bars = Random_Spans(random, width, height);
        std::vector<Plot_Layer> layers;
        const auto lay = [&](const Column_Spans& spans, int first, auto mixed) {
            for (int at = 0; at < static_cast<int>(spans.size()); ++at) {
                const Column_Span& span = spans[static_cast<std::size_t>(at)];
                for (int row = std::max(span.low, 0); row <= std::min(span.high, height - 1); ++row) {
                    std::uint32_t& pixel = expected[static_cast<std::size_t>((height - 1 - row) * width + first + at)];
                    pixel = mixed(pixel, static_cast<std::size_t>(first + at));
                }
            }
        };
        lay(bars, 0, [&](std::uint32_t, std::size_t column) { return colors[column]; });
        for (int layer = 0; layer < 4; ++layer) {
            const int first = static_cast<int>(random() % static_cast<unsigned int>(width));
            const Column_Spans spans = Random_Spans(random, width - first, height);
            const auto over = static_cast<std::uint32_t>(random() & 0xFFFFFF);
            const std::uint32_t opacity = layer % 2 == 0 ? OPACITY_FULL : 90;
            lay(spans, first, [&](std::uint32_t under, std::size_t) { return Pixel_Blend(under, over, opacity); });
            layers.push_back({Span_Blocks(spans, width, height, first), over, opacity});
        }
        const Span_Blocks bar_blocks(bars, width, height);
        const Plot_Pixels picture(drawn.data(), width, height);
        const int strip_rows = 1 + static_cast<int>(random() % 70);
        for (int row = 0; row < height; row += strip_rows) {
            Plot_Pixels strip = picture.Strip(row, row + strip_rows);
            strip.Spans_Fill(bar_blocks, colors);
            for (const Plot_Layer& layer : layers) {
                strip.Layer_Draw(layer);
            }
        }
        ASSERT_EQ(drawn, expected) << "round " << round;
    }
}
