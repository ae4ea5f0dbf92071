#include "workbench/model/view_geometry.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace workbench;

namespace {

View_State State(int view_width, int view_height, int slice_width, int slice_height, double zoom) {
    View_State state;
    state.view_width = view_width;
    state.view_height = view_height;
    state.slice_width = slice_width;
    state.slice_height = slice_height;
    state.zoom = zoom;
    return state;
}

TEST(View_Geometry, fits_the_slice_and_centres_it) {
    const View_Layout layout = View_Layout_Make(State(300, 200, 50, 50, ZOOM_FIT));
    EXPECT_DOUBLE_EQ(layout.scale_x, 4.0);
    EXPECT_EQ(layout.Slice_On_Screen(), (Pixel_Rect{50, 0, 250, 200}));
}

TEST(View_Geometry, respects_the_shape_of_pixels) {
    View_State state = State(300, 200, 50, 50, ZOOM_FIT);
    state.pixel_aspect = 2.0;
    const View_Layout layout = View_Layout_Make(state);
    EXPECT_DOUBLE_EQ(layout.scale_x, 2.0);
    EXPECT_DOUBLE_EQ(layout.scale_y, 4.0);
    state.pixel_aspect = std::nan("");
    EXPECT_DOUBLE_EQ(View_Layout_Make(state).scale_y, 4.0);
}

TEST(View_Geometry, a_large_slice_leaves_no_gap) {
    View_State state = State(100, 100, 200, 200, 1.0);
    for (const double center : {0.0, 0.3, 0.5, 1.0}) {
        state.center_x = state.center_y = center;
        const Pixel_Rect slice = View_Layout_Make(state).Slice_On_Screen();
        EXPECT_LE(slice.left, 0);
        EXPECT_GE(slice.right, 100);
        EXPECT_LE(slice.top, 0);
        EXPECT_GE(slice.bottom, 100);
    }
}

TEST(View_Geometry, sides_of_pixels_agree_with_what_the_screen_shows) {
    for (const double zoom : {0.25, 0.7, 1.0, 1.5, 2.0, 3.7, 16.0}) {
        const View_Layout layout = View_Layout_Make(State(97, 61, 31, 23, zoom));
        for (int screen = 0; screen < 97; ++screen) {
            const auto pixel = std::floor(layout.To_Slice(screen, 0).x);
            EXPECT_GE(screen, layout.To_Screen_X(pixel)) << zoom;
            EXPECT_LT(screen, layout.To_Screen_X(pixel + 1)) << zoom;
        }
    }
}

TEST(View_Geometry, a_screen_pixel_is_where_its_middle_is) {
    const View_Layout layout = View_Layout_Make(State(20, 20, 10, 10, 2.0));
    EXPECT_DOUBLE_EQ(layout.To_Slice(0, 0).x, 0.25);
    EXPECT_DOUBLE_EQ(layout.To_Slice(1, 19).x, 0.75);
    EXPECT_DOUBLE_EQ(layout.To_Slice(1, 19).y, 9.75);
}

TEST(View_Geometry, panning_moves_the_slice_by_the_pixels_of_the_pointer_and_stops_at_its_sides) {
    View_State state = State(100, 100, 100, 100, 4.0);
    const int before = View_Layout_Make(state).To_Screen_X(50);
    View_Pan(state, 30, 0);
    EXPECT_NEAR(View_Layout_Make(state).To_Screen_X(50) - before, 30, 1);
    View_Pan(state, 100000, -100000);
    const Pixel_Rect slice = View_Layout_Make(state).Slice_On_Screen();
    EXPECT_EQ(slice.left, 0);
    EXPECT_EQ(slice.bottom, 100);
    View_State small = State(100, 100, 10, 10, 1.0);
    View_Pan(small, 40, 40);
    EXPECT_EQ(View_Layout_Make(small).Slice_On_Screen(), (Pixel_Rect{45, 45, 55, 55}));
    EXPECT_EQ(small.center_x, 0.5) << "and when it is larger again";
    EXPECT_EQ(small.center_y, 0.5);
}

TEST(View_Geometry, zoom_steps_stay_in_range_and_meet_whole_factors) {
    View_Layout layout;
    layout.scale_x = 1.0;
    EXPECT_DOUBLE_EQ(Zoom_Step(layout, 2), 2.0);
    EXPECT_DOUBLE_EQ(Zoom_Step(layout, 1), std::sqrt(2.0)) << "1 and 2 are too far";
    EXPECT_DOUBLE_EQ(Zoom_Step(layout, 3), 3.0) << "2.83 is close";
    EXPECT_DOUBLE_EQ(Zoom_Step(layout, -1), std::sqrt(0.5)) << "smaller than whole";
    EXPECT_DOUBLE_EQ(Zoom_Step(layout, 100), ZOOM_MAX);
    EXPECT_DOUBLE_EQ(Zoom_Step(layout, -100), ZOOM_MIN);
}

TEST(View_Geometry, the_scale_bar_is_the_longest_round_length_that_fits) {
    struct Case {
        double pixel_mm;
        int most;
        int length;
        double mm;
    };
    for (const Case& of : {Case{1.0, 100, 100, 100.0}, Case{1.0, 99, 50, 50.0}, Case{0.5, 99, 40, 20.0},
                           Case{0.03, 200, 167, 5.0}, Case{0.001, 200, 200, 0.2}, Case{12.5, 7, 4, 50.0}}) {
        const Scale_Bar bar = Scale_Bar_Of(of.pixel_mm, of.most);
        EXPECT_EQ(bar.length, of.length) << of.pixel_mm;
        EXPECT_NEAR(bar.mm, of.mm, 1e-9) << of.pixel_mm;
    }
    for (const double unknown : {0.0, -1.0, std::nan("")}) {
        EXPECT_EQ(Scale_Bar_Of(unknown, 100).length, 0);
    }
    EXPECT_EQ(Scale_Bar_Of(1.0, 0).length, 0);
}

}  // namespace
