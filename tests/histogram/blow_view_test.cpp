#include "histogram/blow_view.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr Blow_Area AREA{60, 40, 700, 300};

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

TEST(Blow_View, The_Full_View_Holds_All_Bins_And_A_Margin) {
    const Blow_View view = View_Of(Record_Of(101, 10.0F, 2.0F, 500));
    EXPECT_FLOAT_EQ(view.Visible_X().start, 0.0F);
    EXPECT_FLOAT_EQ(view.Visible_X().end, 220.0F);
    EXPECT_FLOAT_EQ(view.Visible_Y().start, -50.0F);
    EXPECT_FLOAT_EQ(view.Visible_Y().end, 550.0F);
    EXPECT_FALSE(view.Is_Zoomed());
}

TEST(Blow_View, A_Rectangle_Becomes_The_View) {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    const float scale_x = view.Scale_X();
    const float start = view.Visible_X().start;
    ASSERT_TRUE(view.Zoom_Rectangle({410, 210, 240, 90}));
    EXPECT_TRUE(view.Is_Zoomed());
    EXPECT_FLOAT_EQ(view.Visible_X().start, start + 150.0F * scale_x);
    EXPECT_FLOAT_EQ(view.Visible_X().end, start + 350.0F * scale_x);
    EXPECT_FLOAT_EQ(view.Scale_Y(), view.Scale_Y_Max() * 150.0F / 300.0F);
}

TEST(Blow_View, A_Rectangle_Beyond_The_Plot_Is_Cut_At_It) {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    ASSERT_TRUE(view.Zoom_Rectangle({0, 2000, 0, 2000}));
    EXPECT_FLOAT_EQ(view.Scale_X(), view.Scale_X_Max());
    EXPECT_FLOAT_EQ(view.Visible_X().start, view.Full_X().start);
}

TEST(Blow_View, A_Short_Drag_Does_Not_Zoom) {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    EXPECT_FALSE(view.Zoom_Rectangle({100, 400, 100, 109}));
    EXPECT_FALSE(view.Zoom_Rectangle({100, 109, 100, 200}));
    EXPECT_FALSE(view.Is_Zoomed());
    EXPECT_TRUE(view.Zoom_Rectangle({100, 110, 100, 110}));
}

TEST(Blow_View, Many_Rectangles_Stop_Before_The_Scale_Vanishes) {
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    int zooms = 0;
    while (view.Zoom_Rectangle({300, 310, 100, 110}) && zooms < 1000) {
        ++zooms;
    }
    EXPECT_LT(zooms, 1000);
    EXPECT_GT(view.Scale_X(), 0.0F);
    EXPECT_GT(view.Scale_Y(), 0.0F);
}

TEST(Blow_View, A_Notch_Forward_Widens_And_A_Notch_Back_Narrows_Around_The_Pointer) {
    for (const int notches : {1, -1, 3, -4}) {
        Blow_View view = Zoomed_View();
        const float scale_x = view.Scale_X();
        const float scale_y = view.Scale_Y();
        const int x = 400;
        const int y = 190;
        const float under_x = view.Origin_X() + static_cast<float>(x - AREA.left) * scale_x;
        const float under_y = view.Origin_Y() + static_cast<float>(y - AREA.bottom) * scale_y;
        view.Zoom_Wheel(notches, x, y);
        const float factor = static_cast<float>(notches + 10) / 10.0F;
        EXPECT_FLOAT_EQ(view.Scale_X(), scale_x * factor);
        EXPECT_FLOAT_EQ(view.Scale_Y(), scale_y * factor);
        EXPECT_NEAR(view.Origin_X() + static_cast<float>(x - AREA.left) * view.Scale_X(), under_x, 1e-3);
        EXPECT_NEAR(view.Origin_Y() + static_cast<float>(y - AREA.bottom) * view.Scale_Y(), under_y, 1e-3);
    }
}

TEST(Blow_View, A_Big_Turn_Back_Does_Not_Make_The_View_Vanish) {
    Blow_View view = Zoomed_View();
    const float scale = view.Scale_X();
    view.Zoom_Wheel(-50, 300, 100);
    EXPECT_FLOAT_EQ(view.Scale_X(), scale * 0.1F);
}

TEST(Blow_View, The_Wheel_Never_Widens_Beyond_The_Full_View) {
    Blow_View view = Zoomed_View();
    view.Zoom_Wheel(1000, 100, 100);
    EXPECT_EQ(view.Scale_X(), view.Scale_X_Max());
    EXPECT_EQ(view.Origin_X(), view.Full_X().start);
    EXPECT_FLOAT_EQ(view.Visible_X().end, view.Full_X().end);
}

TEST(Blow_View, A_Zoom_That_Single_Precision_Cannot_Tell_Apart_Is_Refused) {
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

TEST(Blow_View, A_Zoom_Goes_On_From_What_Is_Shown_Where_The_Full_View_Cuts_It_Off) {
    // Zoomed to the right half; then the area grows, and the view reaches past the full end.
    for (const int how : {0, 1}) {
        Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
        ASSERT_TRUE(view.Zoom_Rectangle({AREA.left + 350, AREA.left + 700, AREA.bottom, AREA.bottom + 300}));
        Blow_Area area = AREA;
        area.width *= 2;
        view.Full_View_Set(Record_Of(1001, 0.0F, 1.0F, 1000), area);
        const Blow_Range shown = view.Visible_X();
        ASSERT_FLOAT_EQ(shown.end, view.Full_X().end);
        const float extent = shown.end - shown.start;
        const float pointer = shown.start + extent * 0.25F;
        const int x = area.left + area.width / 4;
        if (how == 0) {
            view.Zoom_Wheel(-1, x, 100);
            const Blow_Range now = view.Visible_X();
            EXPECT_NEAR(now.start + (now.end - now.start) * 0.25F, pointer, 0.01F);
            EXPECT_NEAR(now.end - now.start, 0.9F * extent, 0.01F);
        } else {
            ASSERT_TRUE(view.Zoom_Rectangle({x, x + area.width / 2, 100, 200}));
            EXPECT_NEAR(view.Visible_X().start, pointer, 0.01F);
            EXPECT_NEAR(view.Visible_X().end, pointer + extent / 2, 0.01F);
        }
    }
}

TEST(Blow_View, A_Pinch_Outside_Its_Limits_Is_Ignored) {
    Blow_View view = Zoomed_View();
    const float scale = view.Scale_X();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const Gesture_Record& gesture :
         {Gesture_Record{0.05F, 1.0F, 9.0F, 9.0F}, Gesture_Record{1.0F, 1.2F, 0, 0}, Gesture_Record{nan, 1.0F, 0, 0}}) {
        EXPECT_FALSE(view.Zoom_Pinch(gesture));
        EXPECT_EQ(view.Scale_X(), scale);
    }
    EXPECT_TRUE(view.Zoom_Pinch({1.1F, 0.09F, 0.0F, 0.0F})) << "the limits themselves count";
}

TEST(Blow_View, A_Pinch_Moves_By_The_Old_Scale_And_Divides_It) {
    Blow_View view = Zoomed_View();
    const float scale_x = view.Scale_X();
    const float scale_y = view.Scale_Y();
    const float origin_x = view.Origin_X();
    const float origin_y = view.Origin_Y();
    ASSERT_TRUE(view.Zoom_Pinch({0.8F, 1.1F, 12.0F, -7.0F}));
    EXPECT_FLOAT_EQ(view.Origin_X(), origin_x - scale_x * 12.0F);
    EXPECT_FLOAT_EQ(view.Origin_Y(), origin_y + scale_y * -7.0F);
    EXPECT_FLOAT_EQ(view.Scale_X(), scale_x / 0.8F);
    EXPECT_FLOAT_EQ(view.Scale_Y(), scale_y / 1.1F);
}

TEST(Blow_View, Reset_Goes_Back_To_The_Full_View) {
    Blow_View view = Zoomed_View();
    view.Reset();
    EXPECT_FALSE(view.Is_Zoomed());
    EXPECT_EQ(view.Visible_X().start, view.Full_X().start);
    EXPECT_EQ(view.Visible_X().end, view.Full_X().end);
}

TEST(Blow_View, Nothing_Happens_Without_An_Area) {
    Blow_View view;
    view.Full_View_Set(Record_Of(10, 0.0F, 1.0F, 5), {0, 0, 0, 100});
    view.Zoom_Wheel(1, 5, 5);
    EXPECT_FALSE(view.Zoom_Rectangle({0, 50, 0, 50}));
    EXPECT_FALSE(view.Zoom_Pinch({}));
    EXPECT_FALSE(view.Is_Zoomed());
}

TEST(Blow_View, Keeps_Its_Limits_Through_A_Long_Random_Session) {
    std::mt19937 random(12);
    Blow_View view = View_Of(Record_Of(1001, 0.0F, 1.0F, 1000));
    Blow_Area area = AREA;
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
        ASSERT_TRUE(std::isfinite(view.Origin_X()) && std::isfinite(view.Origin_Y()));
        ASSERT_GT(view.Scale_X(), 0.0F);
        ASSERT_GT(view.Scale_Y(), 0.0F);
        ASSERT_LE(view.Scale_X(), view.Scale_X_Max() * 1.0001F);
        if (clamped) {
            ASSERT_GE(view.Origin_X(), view.Full_X().start - 1e-3F * std::abs(view.Full_X().end));
        }
        ASSERT_LE(view.Visible_X().end, view.Full_X().end);
        ASSERT_GE(view.Visible_X().start, view.Full_X().start);
    }
}

TEST(Wheel_Accumulator, Keeps_What_Is_Less_Than_A_Notch) {
    Wheel_Accumulator wheel;
    EXPECT_EQ(wheel.Add(40), 0);
    EXPECT_EQ(wheel.Add(40), 0);
    EXPECT_EQ(wheel.Add(40), 1);
    EXPECT_EQ(wheel.Remainder(), 0);
    EXPECT_EQ(wheel.Add(-40), 0);
    EXPECT_EQ(wheel.Add(-80), -1);
    EXPECT_EQ(wheel.Add(300), 2);
    EXPECT_EQ(wheel.Remainder(), 60);
}

}  // namespace
