#ifdef _WIN32
#include "base/gdi_handles.h"
#endif

#include <gtest/gtest.h>

#include "kits/dataset/dataset_host.h"
#include "kits/widgets/painter.h"
#include "kits/widgets/theme.h"
#include "tests/kits/widgets/test_window.h"

namespace {

constexpr int WINDOW_WIDTH = 90;
constexpr int WINDOW_HEIGHT = 70;

Boxs Framed_Box(HWND window) {
    Boxs box;
    box.style = STYLE_FRAMED_BOX;
    box.x = 12;
    box.y = 9;
    box.width = 40;
    box.height = 30;
    box.border = 2;
    box.Set_Color(60, 62, 70);
    box.Init(window);
    return box;
}

/** The box's device rectangle in a window of the axis. */
Rect Device(const Boxs& box, Window_Axis axis) {
    return {box.x, axis == Window_Axis::Up ? WINDOW_HEIGHT - box.y - box.height : box.y, box.width, box.height};
}

class Boxs_Test : public testing::TestWithParam<Window_Axis> {
  protected:
    Test_Window window{WINDOW_WIDTH, WINDOW_HEIGHT, GetParam()};
};

}  // namespace

TEST_P(Boxs_Test, draw_paints_border_and_inside_and_nothing_else) {
    Boxs box = Framed_Box(window.Get());
    box.Draw();
    const Window_Picture picture = window.Read();
    const Rect outer = Device(box, GetParam());
    const std::uint32_t line = picture.At(outer.left, outer.top);
    EXPECT_NE(line, Rgb_Of(box.color));
    for (int y = 0; y < WINDOW_HEIGHT; y++) {
        for (int x = 0; x < WINDOW_WIDTH; x++) {
            const std::uint32_t expected = outer.Inner(2).Has_Point({x, y}) ? Rgb_Of(box.color)
                                           : outer.Has_Point({x, y})        ? line
                                                                            : Test_Window::MARKER;
            ASSERT_EQ(picture.At(x, y), expected) << x << "," << y;
        }
    }
}

TEST_P(Boxs_Test, one_far_larger_than_its_window_is_painted_in_a_picture_of_the_windows_size) {
    Boxs box = Framed_Box(window.Get());
    box.x = -9000;
    box.y = -9000;
    box.width = 24000;
    box.height = 24000;
    box.Draw();
    const Window_Picture picture = window.Read();
    for (const std::uint32_t pixel : picture.pixels) {
        ASSERT_EQ(pixel, Rgb_Of(box.color));
    }
    Painter painter(box);
    ASSERT_TRUE(painter);
    EXPECT_EQ(painter.Picture().Held().width, WINDOW_WIDTH);
    EXPECT_EQ(painter.Picture().Held().height, WINDOW_HEIGHT);
    EXPECT_EQ(painter.Area(), (Rect{0, 0, 24000, 24000}));
    painter.Show_Nothing();
}

TEST_P(Boxs_Test, one_partly_in_its_window_shows_that_part) {
    Boxs box = Framed_Box(window.Get());
    box.Set_Name("A title that is cut");
    box.Draw();
    const Window_Picture whole = window.Read();
    window.Wipe();
    const Rect before = Device(box, GetParam());
    box.x = static_cast<short>(box.x - 20);
    box.y = static_cast<short>(box.y + (GetParam() == Window_Axis::Up ? 35 : -20));
    box.Draw();
    const Window_Picture part = window.Read();
    const Rect now = Device(box, GetParam());
    const Rect seen = Rect_Common(now, {0, 0, WINDOW_WIDTH, WINDOW_HEIGHT});
    ASSERT_LT(seen.width, now.width);
    ASSERT_LT(seen.height, now.height);
    for (int y = 0; y < WINDOW_HEIGHT; y++) {
        for (int x = 0; x < WINDOW_WIDTH; x++) {
            const std::uint32_t expected = seen.Has_Point({x, y})
                                               ? whole.At(x - now.left + before.left, y - now.top + before.top)
                                               : Test_Window::MARKER;
            ASSERT_EQ(part.At(x, y), expected) << x << "," << y;
        }
    }
}

TEST_P(Boxs_Test, draw_twice_shows_the_same) {
    Boxs box = Framed_Box(window.Get());
    box.Set_Name("Title");
    box.Draw();
    const Window_Picture once = window.Read();
    box.Draw();
    EXPECT_EQ(window.Read(), once);
    box.Adjust();
    EXPECT_EQ(window.Read(), once);
}

TEST_P(Boxs_Test, looks_the_same_when_drawings_are_collected) {
    struct Look {
        short x;
        short y;
        short width;
        short height;
        unsigned int style;
        const char* title;
    };
    constexpr unsigned int bordered = 0x2;
    constexpr unsigned int filled = 0x40;
    for (const Look& look : {Look{12, 9, 40, 30, STYLE_FRAMED_BOX, ""}, Look{12, 9, 40, 30, STYLE_FRAMED_BOX, "Title"},
                             Look{12, 9, 40, 30, filled, ""}, Look{12, 9, 40, 30, bordered, "Title"},
                             Look{-8, -9, 60, 40, STYLE_FRAMED_BOX, "Title"}, Look{70, 50, 60, 40, filled, "Title"},
                             Look{0, 0, WINDOW_WIDTH, WINDOW_HEIGHT, filled, ""}, Look{200, 9, 40, 30, filled, ""},
                             Look{-9000, -9000, 24000, 24000, STYLE_FRAMED_BOX, "Title"}}) {
        Boxs box = Framed_Box(window.Get());
        box.x = look.x;
        box.y = look.y;
        box.width = look.width;
        box.height = look.height;
        box.style = look.style;
        box.Set_Name("%s", look.title);
        window.Wipe();
        box.Draw();
        const Window_Picture at_once = window.Read();
        window.Wipe();
        Window_Buffer_Begin(window.Get());
        box.Draw();
        Window_Buffer_End(window.Get());
        EXPECT_EQ(window.Read(), at_once) << look.x << ' ' << look.style << ' ' << look.title;
    }
}

#ifdef _WIN32
TEST_P(Boxs_Test, fills_no_more_than_the_clip_of_a_drawing_in_the_collected_window) {
    Boxs box = Framed_Box(window.Get());
    const Rect outer = Device(box, GetParam());
    Window_Buffer_Begin(window.Get());
    HDC dc = Y_setup(window.Get(), "test");
    const Gdi_Region half(::CreateRectRgn(outer.left, outer.top, outer.left + 20, outer.Bottom()));
    ::SelectClipRgn(dc, half.Get());
    box.Draw();
    EXPECT_EQ(Y_release(window.Get(), dc), 1);
    Window_Buffer_End(window.Get());
    const Window_Picture picture = window.Read();
    EXPECT_EQ(picture.At(outer.left + 19, outer.top + 5), Rgb_Of(box.color));
    EXPECT_EQ(picture.At(outer.left + 20, outer.top + 5), Test_Window::MARKER);
}
#endif

TEST_P(Boxs_Test, title_band_stands_at_the_visual_top) {
    Variable_Define_Scalar("$INTERFACE_TITLE_DIM_SML", VARIABLE_SIGNED_16, 11);
    Boxs box = Framed_Box(window.Get());
    box.Set_Name(" ");  // a title without ink, so that the band alone is seen
    box.Draw();
    Variable_Undefine("$INTERFACE_TITLE_DIM_SML");
    const Window_Picture picture = window.Read();
    const Rect inner = Device(box, GetParam()).Inner(2);
    for (int y = inner.top; y < inner.Bottom(); y++) {
        EXPECT_EQ(picture.At(inner.left + 1, y) != Rgb_Of(box.color), y < inner.top + 11) << y;
    }
}

TEST_P(Boxs_Test, unfilled_box_leaves_its_inside_alone) {
    Boxs box = Framed_Box(window.Get());
    box.style = 0x2;
    box.Draw();
    const Window_Picture picture = window.Read();
    const Rect outer = Device(box, GetParam());
    EXPECT_EQ(picture.At(outer.left + 5, outer.top + 5), Test_Window::MARKER);
    EXPECT_NE(picture.At(outer.left, outer.top + 5), Test_Window::MARKER);
}

TEST_P(Boxs_Test, select_hits_exactly_the_painted_pixels) {
    Boxs box = Framed_Box(window.Get());
    box.Draw();
    const Window_Picture picture = window.Read();
    for (int y = 0; y < WINDOW_HEIGHT; y++) {
        for (int x = 0; x < WINDOW_WIDTH; x++) {
            window.Point_At(x, y);
            ASSERT_EQ(box.Select(MOUSE_ASK) != 0, picture.At(x, y) != Test_Window::MARKER) << x << "," << y;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Both_Axes, Boxs_Test, testing::Values(Window_Axis::Up, Window_Axis::Down),
                         [](const auto& axis) { return axis.param == Window_Axis::Up ? "Up" : "Down"; });

TEST(Boxs, looks_the_same_in_both_axes) {
    const Test_Window up(WINDOW_WIDTH, WINDOW_HEIGHT, Window_Axis::Up);
    const Test_Window down(WINDOW_WIDTH, WINDOW_HEIGHT, Window_Axis::Down);
    Boxs box = Framed_Box(up.Get());
    box.Set_Name("Title");
    box.Draw();
    box.Init(down.Get());
    box.y = static_cast<short>(WINDOW_HEIGHT - box.y - box.height);
    box.Draw();
    EXPECT_EQ(up.Read(), down.Read());
}

TEST(Boxs, without_area_or_window_nothing_is_drawn_or_hit) {
    const Test_Window window(WINDOW_WIDTH, WINDOW_HEIGHT, Window_Axis::Up);
    Widget_Counters_Reset();
    Boxs box = Framed_Box(window.Get());
    box.width = 0;
    box.Draw();
    box.width = -5;
    box.Draw();
    box.Clear();
    EXPECT_EQ(box.Select(MOUSE_ASK), 0);
    Boxs nowhere = Framed_Box(nullptr);
    nowhere.Draw();
    EXPECT_EQ(nowhere.Select(MOUSE_ASK), 0);
    EXPECT_EQ(Widget_Counters_Get().draws, 0U);
    EXPECT_EQ(Widget_Counters_Get().clears, 0U);
    for (const std::uint32_t pixel : window.Read().pixels) {
        ASSERT_EQ(pixel, Test_Window::MARKER);
    }
}

TEST(Boxs, hidden_box_is_not_drawn_greyed_one_is) {
    const Test_Window window(WINDOW_WIDTH, WINDOW_HEIGHT, Window_Axis::Up);
    Boxs box = Framed_Box(window.Get());
    Widget_Counters_Reset();
    box.style |= STYLE_EDITED;
    box.Draw();
    EXPECT_EQ(Widget_Counters_Get().draws, 0U);
    box.style |= STYLE_GREYED;
    box.Draw();
    EXPECT_EQ(Widget_Counters_Get().draws, 1U);
}

TEST(Boxs, reaching_beyond_the_window_is_cut) {
    const Test_Window window(WINDOW_WIDTH, WINDOW_HEIGHT, Window_Axis::Up);
    Boxs box = Framed_Box(window.Get());
    box.x = -20;
    box.y = 50;
    box.width = 32000;
    box.height = 60;
    box.Draw();
    const Window_Picture picture = window.Read();
    EXPECT_EQ(picture.At(0, 0), Rgb_Of(box.color));
    EXPECT_EQ(picture.At(WINDOW_WIDTH - 1, 0), Rgb_Of(box.color));
    EXPECT_EQ(picture.At(0, 20), Test_Window::MARKER);
}
