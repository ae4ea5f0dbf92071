#include "kits/widgets/shown_widgets.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/kits/widgets/test_window.h"

namespace {

template <class Widget>
void Put(Widget& widget, HWND window, short x, short y, const char* name) {
    widget.x = x;
    widget.y = y;
    widget.width = 40;
    widget.height = 20;
    widget.Set_Name("%s", name);
    widget.Init(window);
}

Shown_Widget At(HWND window, int index) {
    Shown_Widget shown;
    EXPECT_TRUE(Window_Widget_Get(window, index, &shown));
    return shown;
}

}  // namespace

TEST(Shown_Widgets, nothing_is_noted_unless_asked_for) {
    const Test_Window window(100, 60, Window_Axis::Down);
    Buttons button;
    Put(button, window.Get(), 10, 10, "Up");
    button.Draw();
    EXPECT_EQ(Window_Widget_Nb(window.Get()), 0);
    Shown_Widget shown;
    EXPECT_FALSE(Window_Widget_Get(window.Get(), 0, &shown));
    EXPECT_FALSE(Window_Widget_Get(nullptr, 0, &shown));
}

TEST(Shown_Widgets, a_button_tells_its_name_place_and_marks) {
    const Test_Window window(100, 60, Window_Axis::Up);
    Window_Widgets_Watch(window.Get(), true);
    Buttons button;
    Put(button, window.Get(), 10, 10, "White matter");
    button.Draw();
    ASSERT_EQ(Window_Widget_Nb(window.Get()), 1);
    Shown_Widget shown = At(window.Get(), 0);
    EXPECT_EQ(shown.kind, Widget_Kind::Button);
    EXPECT_EQ(std::string(shown.name), "White matter");
    EXPECT_EQ(shown.left, 10);
    EXPECT_EQ(shown.top, 60 - 10 - 20);  // y down, although the window's axis points up
    EXPECT_EQ(shown.width, 40);
    EXPECT_FALSE(shown.is_current || shown.is_checked || shown.is_inactive);
    button.current = 1;
    button.checked = 1;
    button.Adjust();
    ASSERT_EQ(Window_Widget_Nb(window.Get()), 1);
    shown = At(window.Get(), 0);
    EXPECT_TRUE(shown.is_current);
    EXPECT_TRUE(shown.is_checked);
    button.style |= STYLE_EDITED | STYLE_GREYED;
    button.Draw();
    EXPECT_TRUE(At(window.Get(), 0).is_inactive);
    Window_Widgets_Watch(window.Get(), false);
    EXPECT_EQ(Window_Widget_Nb(window.Get()), 0);
}

TEST(Shown_Widgets, values_are_texts) {
    const Test_Window window(100, 60, Window_Axis::Down);
    Window_Widgets_Watch(window.Get(), true);
    Valuators valuator;
    Put(valuator, window.Get(), 0, 0, "Scale");
    valuator.value = 0.25F;
    valuator.Draw();
    Selects list;
    Put(list, window.Get(), 50, 0, "Frame:");
    ASSERT_EQ(list.Grow(3, 0), 1);
    std::snprintf(list.item[1].text, sizeof list.item[1].text, "17");
    list.current = 1;
    list.Draw();
    Labels label;
    Put(label, window.Get(), 0, 30, "Note");
    label.Draw();
    ASSERT_EQ(Window_Widget_Nb(window.Get()), 3);
    EXPECT_EQ(At(window.Get(), 0).kind, Widget_Kind::Value);
    EXPECT_EQ(std::string(At(window.Get(), 0).value), "0.25");
    EXPECT_EQ(At(window.Get(), 1).kind, Widget_Kind::List);
    EXPECT_EQ(std::string(At(window.Get(), 1).value), "17");
    EXPECT_EQ(At(window.Get(), 2).kind, Widget_Kind::Label);
    list.current = 7;
    list.Draw();
    EXPECT_EQ(std::string(At(window.Get(), 1).value), "");
}

TEST(Shown_Widgets, what_is_painted_over_or_cleared_is_no_longer_seen) {
    const Test_Window window(100, 60, Window_Axis::Down);
    Window_Widgets_Watch(window.Get(), true);
    Buttons first;
    Put(first, window.Get(), 0, 0, "first");
    Buttons neighbour;
    Put(neighbour, window.Get(), 39, 0, "neighbour");  // shares the border line
    first.Draw();
    neighbour.Draw();
    EXPECT_EQ(Window_Widget_Nb(window.Get()), 2);
    Buttons over;
    Put(over, window.Get(), 2, 3, "over");
    over.Draw();
    ASSERT_EQ(Window_Widget_Nb(window.Get()), 2);
    EXPECT_EQ(std::string(At(window.Get(), 1).name), "over");
    Boxs ground;
    ground.width = 100;
    ground.height = 60;
    ground.Init(window.Get());
    ground.Clear();
    EXPECT_EQ(Window_Widget_Nb(window.Get()), 0);
}

TEST(Shown_Widgets, long_texts_are_cut_at_whole_characters) {
    const Test_Window window(100, 60, Window_Axis::Down);
    Window_Widgets_Watch(window.Get(), true);
    Selects list;
    Put(list, window.Get(), 0, 0, "");
    ASSERT_EQ(list.Grow(1, 0), 1);
    std::fill_n(list.item[0].text, sizeof list.item[0].text, 'x');  // without its zero
    list.Draw();
    const Shown_Widget shown = At(window.Get(), 0);
    EXPECT_EQ(std::string(shown.value), std::string(sizeof list.item[0].text, 'x'));
}
