#include "workbench/model/linked_views.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

using namespace workbench;

namespace {

constexpr std::array<int, 3> VOXELS = {100, 80, 40};
constexpr std::array<double, 3> SPACING = {0.5, 1.0, 3.0};  // millimetres

/** A view of 400 x 300 screen pixels. */
Linked_View View_Of(const Plane_Geometry& geometry) {
    Linked_View view;
    view.axes = geometry.axes;
    view.pixel_width = SPACING[geometry.axes[0].voxel_axis];
    view.state.view_width = 400;
    view.state.view_height = 300;
    view.state.slice_width = geometry.Width();
    view.state.slice_height = geometry.Height();
    view.state.pixel_aspect = geometry.pixel_aspect;
    return view;
}

Patient_Axes Upright() {
    return Patient_Axes_Of({{{0.5, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 3, 0}}}, {});
}
Linked_View Slices() {
    return View_Of(Plane_Geometry_Of_Slices(VOXELS, SPACING));
}
Linked_View Other(Plane plane) {
    return View_Of(Plane_Geometry_Of(plane, Upright(), VOXELS, SPACING));
}

/** Screen pixels of a millimetre. */
double Scale_Of(const Linked_View& view) {
    return View_Layout_Make(view.state).scale_x / view.pixel_width;
}

TEST(Linked_Views, a_millimetre_is_as_long_in_all) {
    Linked_View leader = Slices();
    leader.state.zoom = 3.0;
    for (const Plane plane : {Plane::Coronal, Plane::Sagittal}) {
        Linked_View follower = Other(plane);
        follower.state.zoom = 1.0;
        follower.state = Linked_State(follower, leader);
        EXPECT_DOUBLE_EQ(Scale_Of(follower), 6.0) << Plane_Name(plane);
        const View_Layout layout = View_Layout_Make(follower.state);
        EXPECT_DOUBLE_EQ(layout.scale_y, 18.0) << "downwards a pixel is a slice of 3 mm";
    }
}

TEST(Linked_Views, the_same_place_is_in_the_middle_of_all) {
    Linked_View leader = Slices();
    leader.state.zoom = 8.0;
    leader.state.center_x = 0.3;
    leader.state.center_y = 0.6;
    Linked_View coronal = Other(Plane::Coronal);
    coronal.state.center_y = 0.9;
    const View_State seen = Linked_State(coronal, leader);
    const std::size_t across = coronal.axes[0].voxel_axis;
    ASSERT_EQ(across, leader.axes[0].voxel_axis);
    const bool is_turned = coronal.axes[0].is_reversed != leader.axes[0].is_reversed;
    EXPECT_DOUBLE_EQ(seen.center_x, is_turned ? 0.7 : 0.3);
    EXPECT_DOUBLE_EQ(seen.center_y, 0.9) << "the slices do not run that way";
    Linked_View sagittal = Other(Plane::Sagittal);
    const View_State other = Linked_State(sagittal, leader);
    const bool is_side_turned = sagittal.axes[0].is_reversed != leader.axes[1].is_reversed;
    ASSERT_EQ(sagittal.axes[0].voxel_axis, leader.axes[1].voxel_axis);
    EXPECT_DOUBLE_EQ(other.center_x, is_side_turned ? 0.4 : 0.6);
}

TEST(Linked_Views, leading_from_any_view_comes_back_the_same) {
    Linked_View coronal = Other(Plane::Coronal);
    coronal.state.zoom = 5.0;
    coronal.state.center_x = 0.2;
    coronal.state.center_y = 0.8;
    Linked_View sagittal = Other(Plane::Sagittal);
    sagittal.state = Linked_State(sagittal, coronal);
    EXPECT_DOUBLE_EQ(sagittal.state.center_y, 0.8) << "both go from head to foot";
    const View_State back = Linked_State(coronal, sagittal);
    EXPECT_DOUBLE_EQ(back.zoom, 5.0);
    EXPECT_DOUBLE_EQ(back.center_x, 0.2);
    EXPECT_DOUBLE_EQ(back.center_y, 0.8);
}

TEST(Linked_Views, fitted_all_fit_at_one_scale) {
    std::array<Linked_View, 3> views = {Slices(), Other(Plane::Coronal), Other(Plane::Sagittal)};
    views[2].state.view_width = 150;
    const double scale = Linked_Fit(views);
    double least = 1e9;
    for (Linked_View& view : views) {
        least = std::min(least, Scale_Of(view));
        view.state.fit_most = scale * view.pixel_width;
        EXPECT_DOUBLE_EQ(Scale_Of(view), scale);
        const View_Layout layout = View_Layout_Make(view.state);
        EXPECT_LE(layout.scale_x * view.state.slice_width, view.state.view_width + 1e-9);
        EXPECT_LE(layout.scale_y * view.state.slice_height, view.state.view_height + 1e-9);
    }
    EXPECT_DOUBLE_EQ(scale, least) << "one of them has no room left";
    EXPECT_EQ(Linked_State(views[1], views[0]).zoom, ZOOM_FIT);
    EXPECT_EQ(Linked_Fit({}), 0.0);
}

}  // namespace
