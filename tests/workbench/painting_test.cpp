#include "workbench/model/painting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

#include "workbench/model/voxel_stroke.h"

using namespace workbench;

namespace {

/** A disc as the brush panel builds them: dx * dx + dy * dy < size * size. */
struct Disc {
    explicit Disc(int size, int mask_radius = 8) : radius(mask_radius), side(2 * radius + 1) {
        bytes.assign(static_cast<std::size_t>(side * side), 0);
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                const int dx = x - radius;
                const int dy = y - radius;
                const bool is_covered = size < 2 ? dx == 0 && dy == 0 : dx * dx + dy * dy < size * size;
                bytes[static_cast<std::size_t>(y * side + x)] = is_covered ? 1 : 0;
            }
        }
        for (int y = 0; y < side; ++y) {
            rows.push_back(bytes.data() + y * side);
        }
    }
    Brush_Footprint Footprint() const { return {rows.data(), radius}; }
    bool Covers(int x, int y) const {
        return std::abs(x) <= radius && std::abs(y) <= radius &&
               bytes[static_cast<std::size_t>((y + radius) * side + x + radius)] != 0;
    }
    int radius;
    int side;
    std::vector<unsigned char> bytes;
    std::vector<const unsigned char*> rows;
};

struct Slice {
    static constexpr int WIDTH = 30;
    static constexpr int HEIGHT = 20;
    std::vector<std::uint8_t> pixels = std::vector<std::uint8_t>(WIDTH * HEIGHT);
    Plane_Cut Cut() const { return {Plane_Geometry_Of_Slices({WIDTH, HEIGHT, 1}, {1.0, 1.0, 1.0}), 0}; }
    Pixel_Rect Dab(const Brush_Footprint& brush, int x, int y, const Paint_Ink& ink) {
        return Voxel_Stroke(Cut(), brush, ink).Dab({pixels, {}}, x, y);
    }
    Pixel_Rect Line(const Brush_Footprint& brush, int x0, int y0, int x1, int y1, const Paint_Ink& ink) {
        Voxel_Stroke stroke(Cut(), brush, ink);
        const Pixel_Rect begin = stroke.Dab({pixels, {}}, x0, y0);
        return Rect_Union(begin, stroke.Line_To({pixels, {}}, x1, y1));
    }
    std::uint8_t At(int x, int y) const { return pixels[static_cast<std::size_t>(y * WIDTH + x)]; }
};

TEST(Brush_Footprint, covers_exactly_the_bytes_of_the_mask) {
    for (int size = 0; size < 9; ++size) {
        const Disc disc(size);
        const Brush_Footprint brush = disc.Footprint();
        std::size_t count = 0;
        for (int y = -9; y <= 9; ++y) {
            for (int x = -9; x <= 9; ++x) {
                EXPECT_EQ(brush.Covers(x, y), disc.Covers(x, y)) << size << ": " << x << ", " << y;
                count += disc.Covers(x, y) ? 1 : 0;
            }
        }
        EXPECT_EQ(brush.Pixel_Nb(), count);
    }
}

TEST(Brush_Footprint, survives_missing_rows) {
    EXPECT_EQ(Brush_Footprint(nullptr, 3).Pixel_Nb(), 0U);
    const unsigned char row[3] = {1, 0, 1};
    const unsigned char* rows[3] = {nullptr, row, nullptr};
    const Brush_Footprint brush(rows, 1);
    EXPECT_EQ(brush.Pixel_Nb(), 2U);
    EXPECT_TRUE(brush.Covers(-1, 0));
    EXPECT_FALSE(brush.Covers(0, 0));
}

TEST(Voxel_Stroke, a_dab_paints_every_covered_pixel_and_no_other_also_at_the_edges) {
    const Disc disc(5);
    for (const auto& [cx, cy] : {std::pair{15, 10}, {0, 0}, {29, 19}, {-2, 10}, {31, 22}, {-100, 5}}) {
        Slice slice;
        Paint_Ink ink;
        ink.tag = 3;
        const Pixel_Rect touched = slice.Dab(disc.Footprint(), cx, cy, ink);
        for (int y = 0; y < Slice::HEIGHT; ++y) {
            for (int x = 0; x < Slice::WIDTH; ++x) {
                EXPECT_EQ(slice.At(x, y) == 3, disc.Covers(x - cx, y - cy)) << cx << ", " << cy;
                if (slice.At(x, y) != 0) {
                    EXPECT_TRUE(x >= touched.left && x < touched.right && y >= touched.top && y < touched.bottom);
                }
            }
        }
    }
}

TEST(Voxel_Stroke, a_dab_leaves_locked_tags_alone_and_erases_the_others) {
    Slice slice;
    for (std::size_t at = 0; at < slice.pixels.size(); ++at) {
        slice.pixels[at] = static_cast<std::uint8_t>(at % 2 == 0 ? 4 : 5);
    }
    Paint_Ink eraser;
    eraser.locked[4] = 1;
    slice.Dab(Disc(6).Footprint(), 15, 10, eraser);
    for (std::size_t at = 0; at < slice.pixels.size(); ++at) {
        if (at % 2 == 0) {
            EXPECT_EQ(slice.pixels[at], 4);
        }
    }
    EXPECT_EQ(slice.At(15, 10), 15 % 2 == 0 ? 4 : 0);
}

TEST(Voxel_Stroke, a_line_is_the_dabs_of_its_pixels_without_a_gap) {
    const Disc disc(2);
    for (const auto& [x1, y1] : {std::pair{25, 3}, {3, 15}, {25, 15}, {2, 1}, {15, 10}}) {
        Slice slice;
        Paint_Ink ink;
        ink.tag = 1;
        slice.Line(disc.Footprint(), 15, 10, x1, y1, ink);
        EXPECT_EQ(slice.At(15, 10), 1);
        EXPECT_EQ(slice.At(x1, y1), 1);
        // Every column (or row) between the ends has a painted pixel near the straight line.
        const int steps = std::max(std::abs(x1 - 15), std::abs(y1 - 10));
        for (int step = 0; step <= steps; ++step) {
            const double share = steps == 0 ? 0.0 : static_cast<double>(step) / steps;
            const int x = static_cast<int>(std::lround(15 + share * (x1 - 15)));
            const int y = static_cast<int>(std::lround(10 + share * (y1 - 10)));
            EXPECT_EQ(slice.At(x, y), 1) << x << ", " << y;
        }
    }
}

TEST(Voxel_Stroke, a_line_far_outside_ends_without_touching_anything) {
    Slice slice;
    Paint_Ink ink;
    ink.tag = 1;
    EXPECT_TRUE(slice.Line(Disc(5).Footprint(), -200, -200, -100, -300, ink).Is_Empty());
    EXPECT_EQ(std::ranges::count(slice.pixels, 0), Slice::WIDTH * Slice::HEIGHT);
}

/** The unit edges of a footprint by definition: between a covered pixel and a free neighbour. */
std::multiset<std::tuple<int, int, bool>> Unit_Edges(const Brush_Footprint& brush) {
    std::multiset<std::tuple<int, int, bool>> edges;
    for (int y = -12; y <= 12; ++y) {
        for (int x = -12; x <= 12; ++x) {
            if (brush.Covers(x, y) != brush.Covers(x - 1, y)) {
                edges.insert({x, y, true});
            }
            if (brush.Covers(x, y) != brush.Covers(x, y - 1)) {
                edges.insert({x, y, false});
            }
        }
    }
    return edges;
}

TEST(Brush_Outline, runs_along_every_edge_between_covered_and_free_once) {
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        Disc mask(round < 10 ? round : 1);
        if (round >= 10) {
            for (unsigned char& byte : mask.bytes) {
                byte = static_cast<unsigned char>(random() % 2);
            }
        }
        const Brush_Footprint brush = mask.Footprint();
        std::multiset<std::tuple<int, int, bool>> found;
        for (const Outline_Edge& edge : Brush_Outline(brush)) {
            const bool is_upright = edge.x0 == edge.x1;
            const int length = is_upright ? edge.y1 - edge.y0 : edge.x1 - edge.x0;
            EXPECT_GT(length, 0);
            for (int step = 0; step < length; ++step) {
                const int x = edge.x0 + (is_upright ? 0 : step);
                const int y = edge.y0 + (is_upright ? step : 0);
                found.insert({x, y, is_upright});
                EXPECT_EQ(brush.Covers(x, y), edge.is_first);
            }
        }
        EXPECT_EQ(found, Unit_Edges(brush)) << round;
    }
}

}  // namespace
