#include "workbench/tools/polygon_tool.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "tests/workbench/tools/tool_double.h"

using namespace workbench;

namespace {

/** Even-odd by another way: how often a ray to the left crosses the line. */
bool Is_Inside(const std::vector<Slice_Point>& points, double x, double y) {
    bool is_inside = false;
    for (std::size_t at = 0; at < points.size(); ++at) {
        Slice_Point low = points[at];
        Slice_Point high = points[(at + 1) % points.size()];
        if (low.y > high.y) {
            std::swap(low, high);
        }
        if (low.y <= y && y < high.y) {
            // Left of the middle: the area of the triangle has that sign.
            const double area = (high.x - low.x) * (y - low.y) - (x - low.x) * (high.y - low.y);
            is_inside = (area <= 0.0) != is_inside;
        }
    }
    return is_inside;
}

TEST(Polygon_Pixels, are_those_whose_middles_lie_inside_by_even_and_odd) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> across(-5.0, 25.0);
    for (int round = 0; round < 400; ++round) {
        std::vector<Slice_Point> points;
        for (int corner = 0; corner < 3 + round % 7; ++corner) {
            points.push_back({across(random), across(random)});
        }
        const Brush_Footprint pixels = Polygon_Pixels(points, 20, 16);
        for (int y = -2; y < 18; ++y) {
            for (int x = -2; x < 22; ++x) {
                const bool is_in_picture = x >= 0 && x < 20 && y >= 0 && y < 16;
                ASSERT_EQ(pixels.Covers(x, y), is_in_picture && Is_Inside(points, x + 0.5, y + 0.5))
                    << round << ": " << x << ", " << y;
            }
        }
    }
}

TEST(Polygon_Pixels, neighbours_with_one_side_share_no_pixel_and_leave_none_out) {
    // Sides through the middles of pixels.
    const Brush_Footprint left = Polygon_Pixels({{0.5, 0.5}, {4.5, 0.5}, {4.5, 6.5}, {0.5, 6.5}}, 20, 20);
    const Brush_Footprint right = Polygon_Pixels({{4.5, 0.5}, {9.5, 0.5}, {9.5, 6.5}, {4.5, 6.5}}, 20, 20);
    EXPECT_EQ(left.Pixel_Nb(), 24U);
    EXPECT_EQ(right.Pixel_Nb(), 30U);
    EXPECT_TRUE(right.Covers(4, 3));
    EXPECT_FALSE(left.Covers(4, 3));
    EXPECT_EQ(Polygon_Pixels({{1, 1}, {5, 5}}, 20, 20).Pixel_Nb(), 0U);
    EXPECT_EQ(Polygon_Pixels({}, 20, 20).Pixel_Nb(), 0U);
}

class Polygon_Test : public ::testing::Test {
  protected:
    void Click(double x, double y, Tool_Hand hand = Tool_Hand::Left) {
        tool.Press(app.In_Slice(x, y, 3), hand);
        tool.Release();
    }
    std::vector<Shown_Path> Paths(int slice) const {
        std::vector<Shown_Path> paths;
        tool.Paths_Add(app.In_Slice(0, 0, slice).cut, paths);
        return paths;
    }
    Tool_Double app;
    Tool_Host host = app.Host();
    Polygon_Tool tool{host, Polygon_Kind::Corners};
};

TEST_F(Polygon_Test, enter_paints_the_inside_in_one_step) {
    Click(1, 1);
    Click(9, 1);
    Click(9, 5);
    tool.Hover(app.In_Slice(2, 6, 3));
    ASSERT_EQ(Paths(3).size(), 2U) << "what is set, and the line to the pointer";
    EXPECT_EQ(Paths(3)[1].points[1].y, 6.0);
    EXPECT_TRUE(Paths(2).empty());
    Click(1, 5);
    EXPECT_EQ(app.Nb(1), 0U);
    EXPECT_TRUE(tool.Accept());
    EXPECT_EQ(app.Nb(1), 32U);
    EXPECT_EQ(app.Step_Nb(), 1U);
    EXPECT_EQ(app.told, "Paint a polygon: 32 voxels");
    EXPECT_TRUE(app.noted.Has(Change::Pixels));
    EXPECT_TRUE(Paths(3).empty());
    EXPECT_FALSE(tool.Accept());
    app.session.Undo();
    EXPECT_EQ(app.Nb(1), 0U);
}

TEST_F(Polygon_Test, corners_are_moved_and_taken_back_and_the_first_one_closes) {
    Click(1, 1);
    Click(5, 1);
    Click(5, 5);
    Click(8.5, 8.5);
    tool.Press(app.In_Slice(8, 8, 3), Tool_Hand::Left);
    tool.Move(app.In_Slice(1, 5, 3));
    tool.Release();
    EXPECT_EQ(Paths(3)[0].points[3].x, 1.0);
    Click(9.5, 1.5);
    EXPECT_TRUE(tool.Step_Back());
    EXPECT_EQ(Paths(3)[0].points.size(), 4U);
    Click(1.5, 1.5);
    EXPECT_EQ(app.Nb(1), 16U);
    EXPECT_FALSE(tool.Step_Back());
}

TEST_F(Polygon_Test, too_few_corners_and_escape_change_nothing) {
    Click(1, 1);
    Click(5, 1);
    EXPECT_TRUE(tool.Accept());
    EXPECT_EQ(app.told, "A polygon has three corners at least");
    EXPECT_TRUE(tool.Cancel());
    EXPECT_FALSE(tool.Cancel());
    EXPECT_EQ(app.Step_Nb(), 0U);
    Click(1, 1);
    tool.Step_Back();
    EXPECT_FALSE(tool.Cancel());
    Click(1, 1);
    tool.Follow(Change::Volume);
    EXPECT_FALSE(tool.Cancel());
}

TEST_F(Polygon_Test, the_right_button_erases_and_locks_hold) {
    app.tag = 2;
    for (const auto& [x, y] : {std::pair{0, 0}, {11, 0}, {11, 9}, {0, 9}}) {
        Click(x, y);
    }
    tool.Accept();
    EXPECT_EQ(app.Nb(2), 99U);
    app.only_inside = 1;
    Polygon_Tool lasso(host, Polygon_Kind::Lasso);
    const auto draw = [&](Tool_Hand hand) {
        lasso.Press(app.In_Slice(1, 1, 3), hand);
        for (const auto& [x, y] : {std::pair{4, 1}, {4, 4}, {1, 4}}) {
            lasso.Move(app.In_Slice(x, y, 3));
        }
        lasso.Release();
    };
    draw(Tool_Hand::Right);
    EXPECT_EQ(app.Nb(2), 99U);
    app.only_inside.reset();
    app.locked[2] = 1;
    draw(Tool_Hand::Right);
    EXPECT_EQ(app.Nb(2), 99U);
    EXPECT_EQ(app.told, "Erase a lasso: no voxel changes");
    app.locked = {};
    draw(Tool_Hand::Right);
    EXPECT_EQ(app.Nb(2), 90U);
    app.tag = 3;
    draw(Tool_Hand::Left);
    EXPECT_EQ(app.Nb(3), 9U);
    EXPECT_EQ(app.Step_Nb(), 3U);
}

TEST_F(Polygon_Test, another_plane_has_its_own_pixels) {
    const Plane_Cut cut = app.Spot(Plane::Sagittal, 0, 0, 4).cut;
    for (const auto& [x, y] : {std::pair{1.0, 1.0}, {4.0, 1.0}, {4.0, 3.0}, {1.0, 3.0}}) {
        tool.Press({cut, {x, y}}, Tool_Hand::Left);
        tool.Release();
    }
    tool.Accept();
    EXPECT_EQ(app.Nb(1), 6U);
    for (int y = 1; y < 3; ++y) {
        for (int x = 1; x < 4; ++x) {
            const Shown_Voxel voxel = cut.geometry.To_Voxel({x, y, 4});
            EXPECT_EQ(app.session.Labels().At(voxel.x, voxel.y, voxel.slice), 1);
        }
    }
}

}  // namespace
