#include "histogram/blow_view.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr Pixel_Rectangle AREA{60, 40, 700, 300};

Histo_Record Record_Of(int nb_bins, float origin, float bin_width, std::uint32_t max_count) {
    Histo_Record record;
    record.nb_bins = static_cast<std::uint16_t>(nb_bins);
    record.origin = origin;
    record.bin_width = bin_width;
    record.max_count = max_count;
    return record;
}

Blow_View View_Of(const Histo_Record& record) {
    Blow_View view;
    view.Full_View_Set(record, AREA);
    return view;
}

/** A view zoomed into the middle, so that neither limit nor clamp acts on the next step. */
Blow_View Zoomed_View() {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    EXPECT_TRUE(view.Zoom_Rectangle({260, 460, 140, 240}));
    return view;
}

TEST(Blow_View, the_full_view_holds_all_bins_and_a_margin) {
    const Blow_View view = View_Of(Record_Of(101, 10.0F, 2.0F, 500));
    EXPECT_FLOAT_EQ(view.Visible_X().start, 0.0F);
    EXPECT_FLOAT_EQ(view.Visible_X().end, 220.0F);
    EXPECT_FLOAT_EQ(view.Visible_Y().start, -50.0F);
    EXPECT_FLOAT_EQ(view.Visible_Y().end, 550.0F);
    EXPECT_FALSE(view.Is_Zoomed());
}

TEST(Blow_View, a_rectangle_becomes_the_view) {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    const float scale_x = view.X().at.scale;
    const float start = view.Visible_X().start;
    ASSERT_TRUE(view.Zoom_Rectangle({410, 210, 240, 90}));
    EXPECT_TRUE(view.Is_Zoomed());
    EXPECT_FLOAT_EQ(view.Visible_X().start, start + 150.0F * scale_x);
    EXPECT_FLOAT_EQ(view.Visible_X().end, start + 350.0F * scale_x);
    EXPECT_FLOAT_EQ(view.Y().at.scale, view.Y().scale_max * 150.0F / 300.0F);
}

TEST(Blow_View, a_rectangle_beyond_the_plot_is_cut_at_it) {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    ASSERT_TRUE(view.Zoom_Rectangle({0, 2000, 0, 2000}));
    EXPECT_FLOAT_EQ(view.X().at.scale, view.X().scale_max);
    EXPECT_FLOAT_EQ(view.Visible_X().start, view.X().full.start);
}

TEST(Blow_View, a_short_drag_does_not_zoom) {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    EXPECT_FALSE(view.Zoom_Rectangle({100, 400, 100, 109}));
    EXPECT_FALSE(view.Zoom_Rectangle({100, 109, 100, 200}));
    EXPECT_FALSE(view.Is_Zoomed());
    EXPECT_TRUE(view.Zoom_Rectangle({100, 110, 100, 110}));
}

TEST(Blow_View, many_rectangles_stop_before_the_scale_vanishes) {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    int zooms = 0;
    while (view.Zoom_Rectangle({300, 310, 100, 110}) && zooms < 1000) {
        ++zooms;
    }
    EXPECT_LT(zooms, 1000);
    EXPECT_GT(view.X().at.scale, 0.0F);
    EXPECT_GT(view.Y().at.scale, 0.0F);
}

TEST(Blow_View, a_notch_forward_widens_and_a_notch_back_narrows_around_the_pointer) {
    for (const int notches : {1, -1, 3, -4}) {
        Blow_View view = Zoomed_View();
        const float scale_x = view.X().at.scale;
        const float scale_y = view.Y().at.scale;
        const int x = 400;
        const int y = 190;
        const float under_x = view.X().at.origin + static_cast<float>(x - AREA.x) * scale_x;
        const float under_y = view.Y().at.origin + static_cast<float>(y - AREA.y) * scale_y;
        view.Zoom_Wheel(notches, x, y);
        const float factor = static_cast<float>(notches + 10) / 10.0F;
        EXPECT_FLOAT_EQ(view.X().at.scale, scale_x * factor);
        EXPECT_FLOAT_EQ(view.Y().at.scale, scale_y * factor);
        EXPECT_NEAR(view.X().at.origin + static_cast<float>(x - AREA.x) * view.X().at.scale, under_x, 1e-3);
        EXPECT_NEAR(view.Y().at.origin + static_cast<float>(y - AREA.y) * view.Y().at.scale, under_y, 1e-3);
    }
}

TEST(Blow_View, a_wheel_beside_the_area_acts_as_at_its_edge) {
    struct Pointer {
        int x;
        int y;
        int at_x;
        int at_y;
    };
    const int right = AREA.x + AREA.width;
    const int top = AREA.y + AREA.height;
    for (const Pointer& pointer :
         {Pointer{AREA.x - 30, AREA.y - 20, AREA.x, AREA.y}, Pointer{right + 25, top + 9, right, top}}) {
        Blow_View beside = Zoomed_View();
        Blow_View at_edge = Zoomed_View();
        beside.Zoom_Wheel(-2, pointer.x, pointer.y);
        at_edge.Zoom_Wheel(-2, pointer.at_x, pointer.at_y);
        EXPECT_EQ(beside.X().at.origin, at_edge.X().at.origin);
        EXPECT_EQ(beside.Y().at.origin, at_edge.Y().at.origin);
    }
}

TEST(Blow_View, a_big_turn_back_does_not_make_the_view_vanish) {
    Blow_View view = Zoomed_View();
    const float scale = view.X().at.scale;
    view.Zoom_Wheel(-50, 300, 100);
    EXPECT_FLOAT_EQ(view.X().at.scale, scale * 0.1F);
}

TEST(Blow_View, the_wheel_never_widens_beyond_the_full_view) {
    Blow_View view = Zoomed_View();
    view.Zoom_Wheel(1000, 100, 100);
    EXPECT_EQ(view.X().at.scale, view.X().scale_max);
    EXPECT_EQ(view.X().at.origin, view.X().full.start);
    EXPECT_FLOAT_EQ(view.Visible_X().end, view.X().full.end);
}

TEST(Blow_View, a_zoom_that_single_precision_cannot_tell_apart_is_refused) {
    Blow_View view = View_Of(Record_Of(1001, 5000.0F, 0.01F, 1000));
    const auto shows = [&view] {
        return view.Visible_X().start < view.Visible_X().end && view.Visible_Y().start < view.Visible_Y().end;
    };
    while (view.Zoom_Rectangle({300, 310, 100, 110})) {
        ASSERT_TRUE(shows());
    }
    ASSERT_TRUE(shows());
    for (int i = 0; i < 400; ++i) {
        view.Zoom_Wheel(-5, 400, 200);
        ASSERT_TRUE(shows());
        view.Zoom_Pinch({1.1F, 1.1F, 1.0F, 1.0F});
        ASSERT_TRUE(shows());
    }
    EXPECT_LT(view.Visible_X().end - view.Visible_X().start, 0.01F) << "as deep as there are numbers";
}

/** A view zoomed to the right half, whose area then grew: the unzoomed view cuts it off. */
Blow_View Cut_View(const Pixel_Rectangle& area) {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    EXPECT_TRUE(view.Zoom_Rectangle({AREA.x + 350, AREA.x + 700, AREA.y, AREA.y + 300}));
    view.Full_View_Set(Record_Of(1001, 0.0F, 1.0F, 1000), area);
    EXPECT_FLOAT_EQ(view.Visible_X().end, view.X().full.end);
    return view;
}

TEST(Blow_View, a_rectangle_begins_from_where_the_view_stands_also_where_it_is_cut_off) {
    Pixel_Rectangle area = AREA;
    area.width *= 2;
    Blow_View view = Cut_View(area);
    const Blow_Step x = view.X().at;
    const Blow_Step y = view.Y().at;
    ASSERT_TRUE(view.Zoom_Rectangle({area.x + 100, area.x + 450, area.y + 30, area.y + 180}));
    EXPECT_EQ(view.X().at.origin, x.origin + 100.0F * x.scale);
    EXPECT_EQ(view.X().at.scale, x.scale * 350.0F / 1400.0F);
    EXPECT_EQ(view.Y().at.origin, y.origin + 30.0F * y.scale);
    EXPECT_EQ(view.Y().at.scale, y.scale * 150.0F / 300.0F);
}

TEST(Blow_View, a_rectangle_begins_from_where_the_view_stands_also_below_the_data) {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    ASSERT_TRUE(view.Zoom_Rectangle({AREA.x, AREA.x + 350, AREA.y, AREA.y + 300}));
    view.Full_View_Set(Record_Of(1001, 200.0F, 1.0F, 1000), AREA);  // data that begin further right
    const Blow_Step x = view.X().at;
    ASSERT_GT(view.Visible_X().start, x.origin);
    ASSERT_TRUE(view.Zoom_Rectangle({AREA.x + 70, AREA.x + 700, AREA.y, AREA.y + 300}));
    EXPECT_EQ(view.X().at.origin, x.origin + 70.0F * x.scale);
    EXPECT_EQ(view.X().at.scale, x.scale * 630.0F / 700.0F);
}

TEST(Blow_View, the_wheel_begins_from_where_the_view_stands_and_not_from_what_is_left_of_it) {
    Pixel_Rectangle area = AREA;
    area.width *= 2;
    Blow_View view = Cut_View(area);
    const Blow_Step before = view.X().at;
    view.Zoom_Wheel(-1, area.x + 350, 100);
    EXPECT_FLOAT_EQ(view.X().at.scale, before.scale * 0.9F);
    // The view would still pass the end: the clamp takes it back.
    EXPECT_NEAR(view.X().at.origin, view.X().full.end - static_cast<float>(area.width) * before.scale * 0.9F, 0.001F);
}

TEST(Blow_View, new_data_and_a_new_size_leave_where_a_zoomed_view_stands) {
    Blow_View view = Zoomed_View();
    const Blow_Step x = view.X().at;
    const Blow_Step y = view.Y().at;
    view.Full_View_Set(Record_Of(401, 0.0F, 1.0F, 500), {60, 40, 300, 900});
    EXPECT_EQ(view.X().at.origin, x.origin);
    EXPECT_EQ(view.X().at.scale, x.scale);
    EXPECT_EQ(view.Y().at.origin, y.origin);
    EXPECT_EQ(view.Y().at.scale, y.scale);
    EXPECT_EQ(view.Visible_Y().end, view.Y().full.end) << "cut off";
}

TEST(Blow_View, pinching_out_from_anywhere_ends_in_the_full_view) {
    const Blow_Drag drags[] = {
        {AREA.x + 500, AREA.x + 700, AREA.y + 100, AREA.y + 300},  // at the right and upper end
        {AREA.x, AREA.x + 100, AREA.y, AREA.y + 50},
        {AREA.x + 300, AREA.x + 400, AREA.y + 100, AREA.y + 160},
        {AREA.x + 690, AREA.x + 700, AREA.y, AREA.y + 300},
    };
    for (const Blow_Drag& drag : drags) {
        SCOPED_TRACE(drag.x_start);
        Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
        ASSERT_TRUE(view.Zoom_Rectangle(drag));
        for (int i = 0; i < 60; ++i) {
            ASSERT_TRUE(view.Zoom_Pinch({0.9F, 0.9F, 0.0F, 0.0F}));
        }
        EXPECT_EQ(view.X().at.scale, view.X().scale_max);
        EXPECT_EQ(view.Y().at.scale, view.Y().scale_max);
        EXPECT_NEAR(view.Visible_X().start, view.X().full.start, 0.001F);
        EXPECT_NEAR(view.Visible_X().end, view.X().full.end, 0.001F);
        EXPECT_NEAR(view.Visible_Y().start, view.Y().full.start, 0.001F);
        EXPECT_NEAR(view.Visible_Y().end, view.Y().full.end, 0.001F);
    }
}

TEST(Blow_View, a_pinch_clamps_by_the_scale_of_before) {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    ASSERT_TRUE(view.Zoom_Rectangle({AREA.x + 350, AREA.x + 700, AREA.y + 150, AREA.y + 300}));
    const Blow_Direction x = view.X();
    const Blow_Direction y = view.Y();
    ASSERT_TRUE(view.Zoom_Pinch({0.8F, 0.5F, -40.0F, 25.0F}));
    EXPECT_FLOAT_EQ(view.X().at.origin, x.full.end - 700.0F * x.at.scale) << "moved right, taken back";
    EXPECT_FLOAT_EQ(view.Y().at.origin, y.full.end - 300.0F * y.at.scale);
    EXPECT_FLOAT_EQ(view.X().at.scale, x.at.scale / 0.8F);
    EXPECT_FLOAT_EQ(view.Y().at.scale, y.scale_max) << "limited";
}

TEST(Blow_View, data_without_bins_has_no_extent) {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    view.Full_View_Set(Record_Of(0, 7.0F, 2.0F, 0), AREA);
    EXPECT_GE(view.Visible_X().start, view.Visible_X().end) << "not what was shown before";
    view.Zoom_Wheel(-1, 300, 100);
    EXPECT_FALSE(view.Zoom_Rectangle({100, 300, 100, 200}));
}

TEST(Blow_View, a_pinch_outside_its_limits_is_ignored) {
    Blow_View view = Zoomed_View();
    const float scale = view.X().at.scale;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const Gesture_Record& gesture :
         {Gesture_Record{0.05F, 1.0F, 9.0F, 9.0F}, Gesture_Record{1.0F, 1.2F, 0, 0}, Gesture_Record{nan, 1.0F, 0, 0}}) {
        EXPECT_FALSE(view.Zoom_Pinch(gesture));
        EXPECT_EQ(view.X().at.scale, scale);
    }
    EXPECT_TRUE(view.Zoom_Pinch({1.1F, 0.09F, 0.0F, 0.0F})) << "the limits themselves count";
}

TEST(Blow_View, a_pinch_moves_by_the_old_scale_and_divides_it) {
    Blow_View view = Zoomed_View();
    const float scale_x = view.X().at.scale;
    const float scale_y = view.Y().at.scale;
    const float origin_x = view.X().at.origin;
    const float origin_y = view.Y().at.origin;
    ASSERT_TRUE(view.Zoom_Pinch({0.8F, 1.1F, 12.0F, -7.0F}));
    EXPECT_FLOAT_EQ(view.X().at.origin, origin_x - scale_x * 12.0F);
    EXPECT_FLOAT_EQ(view.Y().at.origin, origin_y + scale_y * -7.0F);
    EXPECT_FLOAT_EQ(view.X().at.scale, scale_x / 0.8F);
    EXPECT_FLOAT_EQ(view.Y().at.scale, scale_y / 1.1F);
}

TEST(Blow_View, reset_goes_back_to_the_full_view) {
    Blow_View view = Zoomed_View();
    view.Reset();
    EXPECT_FALSE(view.Is_Zoomed());
    EXPECT_EQ(view.Visible_X().start, view.X().full.start);
    EXPECT_EQ(view.Visible_X().end, view.X().full.end);
}

TEST(Blow_View, nothing_happens_without_an_area) {
    Blow_View view;
    view.Full_View_Set(Record_Of(10, 0.0F, 1.0F, 5), {0, 0, 0, 100});
    view.Zoom_Wheel(1, 5, 5);
    EXPECT_FALSE(view.Zoom_Rectangle({0, 50, 0, 50}));
    EXPECT_FALSE(view.Zoom_Pinch({}));
    EXPECT_FALSE(view.Is_Zoomed());
}

TEST(Blow_View, keeps_its_limits_through_a_long_random_session) {
    std::mt19937 random(12);
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    Pixel_Rectangle area = AREA;
    const auto number = [&random](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); };
    for (int step = 0; step < 20000; ++step) {
        bool clamped = false;
        switch (number(6)) {
            case 0:
                view.Zoom_Rectangle({number(900), number(900), number(500), number(500)});
                break;
            case 1:
            case 2:
                view.Zoom_Wheel(number(15) - 8, number(900), number(500));
                clamped = true;
                break;
            case 3:
                clamped = view.Zoom_Pinch(
                    {0.05F + static_cast<float>(number(120)) * 0.01F, 1.0F, static_cast<float>(number(60) - 30), 4.0F});
                break;
            case 4:
                if (number(20) == 0) {
                    view.Reset();
                }
                break;
            default:
                if (number(10) == 0) {
                    area.width = 50 + number(1500);
                    area.height = 50 + number(800);
                    view.Reset();
                    view.Full_View_Set(Record_Of(2 + number(5000), static_cast<float>(number(100)), 1.0F,
                                                 static_cast<std::uint32_t>(1 + number(100000))),
                                       area);
                }
                break;
        }
        ASSERT_TRUE(std::isfinite(view.X().at.origin) && std::isfinite(view.Y().at.origin));
        ASSERT_GT(view.X().at.scale, 0.0F);
        ASSERT_GT(view.Y().at.scale, 0.0F);
        ASSERT_LE(view.X().at.scale, view.X().scale_max * 1.0001F);
        if (clamped) {
            ASSERT_GE(view.X().at.origin, view.X().full.start - 1e-3F * std::abs(view.X().full.end));
        }
        ASSERT_LE(view.Visible_X().end, view.X().full.end);
        ASSERT_GE(view.Visible_X().start, view.X().full.start);
    }
}

}  // namespace
