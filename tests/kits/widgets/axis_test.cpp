#include "kits/widgets/axis.h"

#include <gtest/gtest.h>

#include "tests/kits/widgets/test_window.h"

namespace {

Boxs Box_At(HWND window, short x, short y, short width, short height) {
    Boxs box;
    box.x = x;
    box.y = y;
    box.width = width;
    box.height = height;
    box.window = window;
    return box;
}

}  // namespace

TEST(Axis, up_turns_client_row_7_of_100_into_row_92_and_back) {
    EXPECT_EQ(Axis_Row(Window_Axis::Up, 100, 7), 92);
    EXPECT_EQ(Axis_Row(Window_Axis::Up, 100, 92), 7);
    EXPECT_EQ(Axis_Row(Window_Axis::Down, 100, 7), 7);
}

TEST(Axis, default_is_up) {
    const Test_Window window(50, 100, Window_Axis::Down);
    EXPECT_EQ(Window_Axis_Get(window.Get()), Window_Axis::Down);
    Window_Forget(window.Get());
    EXPECT_EQ(Window_Axis_Get(window.Get()), Window_Axis::Up);
    EXPECT_EQ(Window_Axis_Get(nullptr), Window_Axis::Up);
}

TEST(Axis, device_rectangle_of_a_widget) {
    const Test_Window up(80, 100, Window_Axis::Up);
    const Test_Window down(80, 100, Window_Axis::Down);
    Rect rect;
    ASSERT_TRUE(Widget_Device_Rect(Box_At(up.Get(), 3, 10, 20, 30), &rect));
    EXPECT_EQ(rect, (Rect{3, 60, 20, 30}));  // rows 10 .. 39 from the bottom are rows 60 .. 89 from the top
    ASSERT_TRUE(Widget_Device_Rect(Box_At(down.Get(), 3, 10, 20, 30), &rect));
    EXPECT_EQ(rect, (Rect{3, 10, 20, 30}));
}

TEST(Axis, client_height_is_taken_afresh) {
    Test_Window window(80, 100, Window_Axis::Up);
    const Boxs box = Box_At(window.Get(), 0, 0, 10, 10);
    Rect rect;
    ASSERT_TRUE(Widget_Device_Rect(box, &rect));
    EXPECT_EQ(rect.top, 90);
    window.Resize(80, 60);
    ASSERT_TRUE(Widget_Device_Rect(box, &rect));
    EXPECT_EQ(rect.top, 50);
}

TEST(Axis, no_rectangle_without_window_or_area) {
    const Test_Window window(80, 100, Window_Axis::Up);
    Rect rect;
    EXPECT_FALSE(Widget_Device_Rect(Box_At(nullptr, 0, 0, 10, 10), &rect));
    EXPECT_FALSE(Widget_Device_Rect(Box_At(window.Get(), 0, 0, 0, 10), &rect));
    EXPECT_FALSE(Widget_Device_Rect(Box_At(window.Get(), 0, 0, 10, -1), &rect));
}

TEST(Axis, pointer_in_the_windows_own_axis) {
    const Test_Window up(80, 100, Window_Axis::Up);
    const Test_Window down(80, 100, Window_Axis::Down);
    int x = 0;
    int y = 0;
    up.Point_At(5, 7);
    ASSERT_TRUE(Window_Pointer(up.Get(), &x, &y));
    EXPECT_EQ(x, 5);
    EXPECT_EQ(y, 92);
    down.Point_At(5, 7);
    ASSERT_TRUE(Window_Pointer(down.Get(), &x, &y));
    EXPECT_EQ(y, 7);
    EXPECT_FALSE(Window_Pointer(nullptr, &x, &y));
}

TEST(Axis, pointer_in_a_widgets_picture_counts_from_its_visual_top_left) {
    const Test_Window window(80, 100, Window_Axis::Up);
    const Boxs box = Box_At(window.Get(), 10, 20, 30, 40);
    Point point;
    window.Point_At_Logical(10, 59);  // its last row is its visual top
    EXPECT_TRUE(Widget_Pointer(box, &point));
    EXPECT_EQ(point, (Point{0, 0}));
    window.Point_At_Logical(39, 20);
    EXPECT_TRUE(Widget_Pointer(box, &point));
    EXPECT_EQ(point, (Point{29, 39}));
    window.Point_At_Logical(40, 20);
    EXPECT_FALSE(Widget_Pointer(box, &point));
    EXPECT_EQ(point, (Point{30, 39}));
}
