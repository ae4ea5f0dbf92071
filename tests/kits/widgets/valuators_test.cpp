// Vertical valuators: a bar from the visual top, dragged and scrolled within 0.001 to 1.
#include "kits/widgets/painter.h"
#include "kits/widgets/theme.h"
#include "tests/kits/widgets/shown_window.h"

namespace {

constexpr int LEFT = 25;
constexpr int TOP = 30;
constexpr int WIDTH = 14;
constexpr int HEIGHT = 123;  // a mark of 3 rows has 120 pixels of travel

class Valuators_Test : public Both_Axes {
  protected:
    Valuators_Test() {
        window.Place(valuator, LEFT, TOP, WIDTH, HEIGHT);
        valuator.minimum = 0.001F;
        valuator.Init(window.Handle());
    }
    void Pointer(int along) const { window.Pointer(LEFT + WIDTH / 2, TOP + along); }
    int Bar_Rows() const {
        const Window_Picture shown = window.Shown();
        int rows = 0;
        while (rows < HEIGHT && shown.At(LEFT + WIDTH / 2, TOP + rows) == Theme_Now().accent) {
            ++rows;
        }
        return rows;
    }
    Shown_Window window{120, 200, GetParam()};
    Valuators valuator;
};

INSTANTIATE_TEST_SUITE_P(All, Valuators_Test, testing::Values(Window_Axis::Up, Window_Axis::Down), Axis_Name);

}  // namespace

TEST_P(Valuators_Test, bar_reaches_from_the_visual_top_to_the_value) {
    valuator.Draw();
    EXPECT_EQ(120, Bar_Rows());
    valuator.value = 0.001F;
    valuator.Draw();
    EXPECT_EQ(0, Bar_Rows());
    valuator.value = 0.5005F;
    valuator.Adjust();
    EXPECT_EQ(60, Bar_Rows());
}

TEST_P(Valuators_Test, press_anywhere_takes_the_value_there_and_drags_on) {
    Pointer(31);
    EXPECT_NE(0, valuator.Select(LEFT_PRESS));
    EXPECT_NEAR(0.001F + 0.999F * 0.25F, valuator.Read(), 0.0001F);
    Pointer(91);
    EXPECT_NE(0, valuator.Select(LEFT_DRAG));
    EXPECT_NEAR(0.001F + 0.999F * 0.75F, valuator.Read(), 0.0001F);
    Pointer(-400);
    EXPECT_NE(0, valuator.Select(LEFT_DRAG));
    EXPECT_EQ(0.001F, valuator.Read());
    Pointer(4000);
    EXPECT_NE(0, valuator.Select(LEFT_DRAG));
    EXPECT_EQ(1.0F, valuator.Read());
}

TEST_P(Valuators_Test, drag_ends_by_itself_and_hover_is_not_taken) {
    Pointer(31);
    valuator.Select(LEFT_PRESS);
    const float value = valuator.Read();
    Pointer(61);
    EXPECT_EQ(0, valuator.Select(0));
    EXPECT_EQ(0, valuator.Select(LEFT_DRAG));
    EXPECT_EQ(value, valuator.Read());
    EXPECT_NE(0, valuator.Select(MOUSE_ASK));
}

TEST_P(Valuators_Test, press_beside_it_is_not_taken) {
    window.Pointer(LEFT - 1, TOP + 5);
    EXPECT_EQ(0, valuator.Select(LEFT_PRESS));
    EXPECT_EQ(0, valuator.Select(LEFT_DRAG));
    EXPECT_EQ(1.0F, valuator.Read());
}

TEST_P(Valuators_Test, wheel_goes_by_twentieths_and_stays_in_the_range) {
    EXPECT_NEAR(0.95F, valuator.Scroll(-1), 0.0001F);
    EXPECT_EQ(valuator.value, valuator.Read());
    EXPECT_EQ(0.001F, valuator.Scroll(-100));
    EXPECT_NEAR(0.051F, valuator.Scroll(1), 0.0001F);
    EXPECT_EQ(1.0F, valuator.Scroll(100));
}

TEST_P(Valuators_Test, inactive_is_greyed_and_takes_nothing_and_hidden_is_not_painted) {
    const auto blank = window.Pixels();
    valuator.style = STYLE_EDITED;
    valuator.Draw();
    EXPECT_EQ(blank, window.Pixels());
    valuator.style = STYLE_INACTIVE;
    valuator.Draw();
    EXPECT_NE(blank, window.Pixels());
    EXPECT_EQ(0, Bar_Rows());  // not in the lively colour
    Pointer(31);
    EXPECT_EQ(0, valuator.Select(LEFT_PRESS));
    EXPECT_EQ(1.0F, valuator.Read());
}

TEST_P(Valuators_Test, deselect_ends_the_drag_and_paints_only_a_change) {
    Pointer(31);
    valuator.Select(LEFT_PRESS);
    Widget_Counters_Reset();
    valuator.Deselect();
    valuator.Deselect();
    EXPECT_EQ(1U, Widget_Counters_Get().adjusts);
    EXPECT_EQ(0, valuator.Select(LEFT_DRAG));
}

TEST_P(Valuators_Test, without_room_for_its_mark_it_keeps_its_value) {
    valuator.height = 2;
    valuator.value = 0.4F;
    valuator.Init(nullptr);
    valuator.Draw();
    YCursor_X = -9999;
    EXPECT_EQ(0, valuator.Select(LEFT_PRESS));
    window.Place(valuator, LEFT, TOP, WIDTH, 2);
    Pointer(1);
    EXPECT_NE(0, valuator.Select(LEFT_PRESS));
    EXPECT_EQ(0.4F, valuator.Read());
}

TEST_P(Valuators_Test, equal_ends_have_one_value_and_ends_that_cross_leave_it_alone) {
    valuator.minimum = valuator.maximum = 0.5F;
    valuator.value = 0.75F;
    valuator.Init(nullptr);
    EXPECT_EQ(0.5F, valuator.value);
    valuator.value = 0.25F;
    EXPECT_EQ(0.5F, valuator.Scroll(-1));
    valuator.maximum = 0.25F;
    valuator.value = 0.75F;
    valuator.Init(nullptr);
    EXPECT_EQ(0.75F, valuator.Scroll(1));
}

TEST_P(Valuators_Test, one_that_does_not_react_ignores_the_wheel_too) {
    valuator.style |= STYLE_INACTIVE;
    EXPECT_EQ(1.0F, valuator.Scroll(-3));
}
