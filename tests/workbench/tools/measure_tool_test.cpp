#include "workbench/tools/measure_tool.h"

#include <gtest/gtest.h>

#include "tests/workbench/tools/tool_double.h"

using namespace workbench;

namespace {

class Measure_Test : public ::testing::Test {
  protected:
    void Click(const Tool_Spot& spot, Tool_Hand hand = Tool_Hand::Left) {
        tool.Press(spot, hand);
        tool.Release();
    }
    std::vector<Shown_Path> Paths(const Plane_Cut& cut) const {
        std::vector<Shown_Path> paths;
        tool.Paths_Add(cut, paths);
        return paths;
    }
    Tool_Double app;
    Tool_Host host = app.Host();
    Measure_Tool tool{host};
};

TEST(Measure, distances_and_angles_are_those_of_millimetres) {
    const std::array<double, 3> spacing = {1.0, 2.0, 3.0};
    EXPECT_DOUBLE_EQ(Distance_Mm({1, 1, 1}, {4, 3, 1}, spacing), 5.0);
    EXPECT_DOUBLE_EQ(Distance_Mm({0, 0, 0}, {2, 3, 1}, spacing), 7.0);
    EXPECT_NEAR(Angle_Degrees({4, 0, 0}, {0, 0, 0}, {0, 5, 0}, spacing), 90.0, 1e-9);
    EXPECT_NEAR(Angle_Degrees({2, 0, 0}, {0, 0, 0}, {2, 1, 0}, spacing), 45.0, 1e-9) << "voxels are higher than wide";
    EXPECT_NEAR(Angle_Degrees({1, 0, 0}, {0, 0, 0}, {-3, 0, 0}, spacing), 180.0, 1e-9);
    EXPECT_EQ(Angle_Degrees({1, 0, 0}, {1, 0, 0}, {-3, 0, 0}, spacing), 0.0);
}

TEST_F(Measure_Test, two_clicks_measure_a_distance_that_stays_in_its_picture) {
    Click(app.In_Slice(1.5, 1.5, 3));
    tool.Hover(app.In_Slice(3.5, 1.5, 3));
    ASSERT_EQ(Paths(app.In_Slice(0, 0, 3).cut).size(), 1U);
    EXPECT_EQ(Paths(app.In_Slice(0, 0, 3).cut)[0].points.size(), 2U);
    Click(app.In_Slice(4.5, 3.5, 3));
    EXPECT_EQ(app.told, "Distance: 5.0 mm");
    EXPECT_EQ(tool.Texts(), std::vector<std::string>{"5.0 mm"});
    EXPECT_EQ(Paths(app.In_Slice(0, 0, 3).cut)[0].text, "5.0 mm");
    EXPECT_TRUE(Paths(app.In_Slice(0, 0, 2).cut).empty());
    EXPECT_EQ(app.Step_Nb(), 0U);
    EXPECT_FALSE(app.session.Has_Unsaved_Work());
}

TEST_F(Measure_Test, a_line_through_several_pictures_is_dashed_where_it_passes) {
    Click(app.In_Slice(1.5, 1.5, 1));
    Click(app.In_Slice(4.5, 3.5, 3));
    for (int slice = 0; slice < 5; ++slice) {
        const std::vector<Shown_Path> paths = Paths(app.In_Slice(0, 0, slice).cut);
        ASSERT_EQ(paths.size(), slice >= 1 && slice <= 3 ? 1U : 0U) << slice;
        if (paths.empty()) {
            continue;
        }
        EXPECT_TRUE(paths[0].is_dashed);
        ASSERT_EQ(paths[0].points.size(), 2U) << "its shadow on the picture";
        EXPECT_EQ(paths[0].points[1].x, 4.5);
        EXPECT_EQ(paths[0].points[1].y, 3.5);
        EXPECT_EQ(paths[0].text, tool.Texts()[0]);
        ASSERT_EQ(paths[0].knots.size(), slice == 2 ? 0U : 1U) << "points are taken hold of where they lie";
        if (slice != 2) {
            EXPECT_EQ(paths[0].knots[0].x, slice == 1 ? 1.5 : 4.5);
        }
    }
}

TEST_F(Measure_Test, a_line_within_one_picture_is_not_dashed) {
    Click(app.In_Slice(1.5, 1.5, 3));
    Click(app.In_Slice(4.5, 3.5, 3));
    ASSERT_EQ(Paths(app.In_Slice(0, 0, 3).cut).size(), 1U);
    EXPECT_FALSE(Paths(app.In_Slice(0, 0, 3).cut)[0].is_dashed);
    EXPECT_EQ(Paths(app.In_Slice(0, 0, 3).cut)[0].knots.size(), 2U);
}

TEST_F(Measure_Test, three_clicks_in_another_plane_measure_an_angle) {
    tool.Kind_Set(Measure_Kind::Angle);
    // Across a coronal picture a pixel is 1 mm, down it is 3 mm.
    Click(app.Spot(Plane::Coronal, 4, 1, 2));
    Click(app.Spot(Plane::Coronal, 1, 1, 2));
    Click(app.Spot(Plane::Coronal, 4, 2, 2));
    EXPECT_EQ(app.told, "Angle: 45.0\xC2\xB0");
    const Plane_Cut cut = app.Spot(Plane::Coronal, 0, 0, 2).cut;
    ASSERT_EQ(Paths(cut).size(), 1U);
    EXPECT_EQ(Paths(cut)[0].points[1].x, 1.5);
    EXPECT_EQ(Paths(cut)[0].points[2].y, 2.5);
    EXPECT_TRUE(Paths(app.Spot(Plane::Coronal, 0, 0, 3).cut).empty());
}

TEST_F(Measure_Test, points_are_moved_and_measurements_removed) {
    Click(app.In_Slice(1.5, 1.5, 3));
    Click(app.In_Slice(7.5, 1.5, 3));
    Click(app.In_Slice(1.5, 7.5, 3));
    Click(app.In_Slice(7.5, 7.5, 3));
    tool.Press(app.In_Slice(7.0, 1.0, 3), Tool_Hand::Left);
    tool.Move(app.In_Slice(4.5, 3.5, 3));
    EXPECT_EQ(app.told, "Distance: 5.0 mm");
    tool.Release();
    tool.Move(app.In_Slice(9.5, 9.5, 3));
    EXPECT_EQ(tool.Texts(), (std::vector<std::string>{"5.0 mm", "6.0 mm"}));
    Click(app.In_Slice(1.0, 1.0, 3), Tool_Hand::Right);
    EXPECT_EQ(tool.Texts(), std::vector<std::string>{"6.0 mm"});
    Click(app.In_Slice(9.5, 3.5, 3), Tool_Hand::Right);
    EXPECT_EQ(app.told, "There is no measurement to remove here");
    EXPECT_EQ(app.Nb(1), 0U);
    tool.Remove_All();
    EXPECT_TRUE(tool.Texts().empty());
    EXPECT_TRUE(Paths(app.In_Slice(0, 0, 3).cut).empty());
}

TEST_F(Measure_Test, what_is_begun_is_dropped_or_taken_back) {
    tool.Kind_Set(Measure_Kind::Angle);
    Click(app.In_Slice(1.5, 1.5, 3));
    Click(app.In_Slice(7.5, 1.5, 3));
    EXPECT_TRUE(tool.Step_Back());
    EXPECT_EQ(tool.Texts().size(), 1U);
    EXPECT_TRUE(tool.Cancel());
    EXPECT_TRUE(tool.Texts().empty());
    EXPECT_FALSE(tool.Cancel());
    EXPECT_FALSE(tool.Step_Back());
    Click(app.In_Slice(-1.5, 1.5, 3));
    EXPECT_TRUE(tool.Texts().empty());
}

TEST_F(Measure_Test, each_volume_has_its_own_and_unknown_sizes_are_no_millimetres) {
    Click(app.In_Slice(1.5, 1.5, 3));
    Click(app.In_Slice(4.5, 3.5, 3));
    volumes::Volume other = Tool_Volume();
    other.is_size_known = false;
    other.spacing = {1.0, 1.0, 1.0};
    app.session.Take(std::move(other), "other.nii");
    EXPECT_TRUE(tool.Texts().empty());
    Click(app.In_Slice(1.5, 1.5, 3));
    Click(app.In_Slice(4.5, 5.5, 3));
    EXPECT_EQ(tool.Texts(), std::vector<std::string>{"5.0 voxels"});
}

}  // namespace
