#include <gtest/gtest.h>

#include "host/kit_widgets.h"
#include "kits/widgets/theme.h"
#include "tests/kits/widgets/test_window.h"

namespace {

Labels Flat_Label(HWND window) {
    Labels label;
    label.style = STYLE_FLAT;
    label.x = 4;
    label.y = 6;
    label.width = 50;
    label.height = 18;
    label.Set_Color(255, 255, 0);
    label.Init(window);
    return label;
}

}  // namespace

TEST(Labels, fills_its_rectangle_with_its_colour) {
    const Test_Window window(70, 40, Window_Axis::Down);
    Labels label = Flat_Label(window.Get());
    label.Draw();
    const Window_Picture picture = window.Read();
    for (int y = 0; y < 40; y++) {
        for (int x = 0; x < 70; x++) {
            const bool inside = Rect{4, 6, 50, 18}.Has_Point({x, y});
            ASSERT_EQ(picture.At(x, y), inside ? 0xFFFF00U : Test_Window::MARKER);
        }
    }
}

TEST(Labels, text_leaves_ink_inside_the_label_only) {
    const Test_Window window(70, 40, Window_Axis::Down);
    Labels label = Flat_Label(window.Get());
    label.Set_Name("%s", "Warning! This text is much longer than the label");
    label.Draw();
    const Window_Picture picture = window.Read();
    int ink = 0;
    for (int y = 0; y < 40; y++) {
        for (int x = 0; x < 70; x++) {
            if (Rect{4, 6, 50, 18}.Has_Point({x, y})) {
                ink += picture.At(x, y) != 0xFFFF00U ? 1 : 0;
            } else {
                ASSERT_EQ(picture.At(x, y), Test_Window::MARKER);
            }
        }
    }
    EXPECT_GT(ink, 20);
}

TEST(Labels, inactive_looks_different_and_edited_is_not_drawn) {
    const Test_Window window(70, 40, Window_Axis::Down);
    Labels label = Flat_Label(window.Get());
    label.Draw();
    const Window_Picture plain = window.Read();
    label.style = STYLE_FLAT_INACTIVE;
    label.Draw();
    EXPECT_NE(window.Read(), plain);
    window.Wipe();
    label.style = STYLE_FLAT | STYLE_EDITED;
    label.Draw();
    EXPECT_EQ(window.Read().At(10, 10), Test_Window::MARKER);
}

TEST(Labels, takes_no_input_and_has_no_value) {
    const Test_Window window(70, 40, Window_Axis::Down);
    Labels label = Flat_Label(window.Get());
    window.Point_At(10, 10);
    EXPECT_EQ(label.Select(MOUSE_PRESS | MOUSE_LEFT), 0);
    EXPECT_EQ(label.Scroll(3), 0.0F);
    EXPECT_EQ(label.Read(), 0.0F);
    Widget_Counters_Reset();
    label.Deselect();
    label.Adjust();
    EXPECT_EQ(Widget_Counters_Get().adjusts + Widget_Counters_Get().draws, 0U);
}
