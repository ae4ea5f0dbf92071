#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <string>

#include "host/kit_graph.h"
#include "tests/kits/widgets/test_window.h"

namespace {

constexpr int WIDTH = 420;
constexpr int HEIGHT = 300;
constexpr std::uint32_t GROUND = 0x383A40;  // the box's colour

/** A plot in a window of one axis, drawn by SetUp. */
class Axes_Test : public testing::TestWithParam<Window_Axis> {
  protected:
    Test_Window window{WIDTH, HEIGHT, GetParam()};
    Boxs box;
    Plot_Area area;
    void SetUp() override {
        box.style = STYLE_FRAMED_BOX;
        box.x = 4;
        box.y = 3;
        box.width = WIDTH - 12;
        box.height = HEIGHT - 14;
        box.Set_Color(0x38, 0x3A, 0x40);
        box.Init(window.Get());
        box.Draw();
        area = Plot_Window_Area(box, "Grey level", "Pixels");
    }
    int Draw(float from, float to) {
        HDC dc = Y_setup(window.Get(), "axes test");
        const int done = Plot_Window_Axes_X(dc, box, area, "Grey level", from, to) &
                         Plot_Window_Axes_Y(dc, box, area, "Pixels", 0, 12000);
        Y_release(window.Get(), dc);
        return done;
    }
    Rect Device(int x, int y, int of_width, int of_height) const {
        return {x, GetParam() == Window_Axis::Up ? HEIGHT - y - of_height : y, of_width, of_height};
    }
};

}  // namespace

TEST_P(Axes_Test, draw_into_the_margins_only) {
    ASSERT_EQ(Draw(-1024, 3071), 1);
    const Window_Picture picture = window.Read();
    const Rect inner = Device(area.left, area.bottom, area.width, area.height);
    const Rect outer = Device(box.x, box.y, box.width, box.height);
    int ink = 0;
    for (int y = 0; y < HEIGHT; y++) {
        for (int x = 0; x < WIDTH; x++) {
            if (!outer.Has_Point({x, y})) {
                ASSERT_EQ(picture.At(x, y), Test_Window::MARKER);
            } else if (inner.Has_Point({x, y})) {
                ASSERT_EQ(picture.At(x, y), GROUND) << x << "," << y;
            } else {
                ink += picture.At(x, y) != GROUND ? 1 : 0;
            }
        }
    }
#if defined(_WIN32)
    EXPECT_GT(ink, area.width + area.height + 200);
#else
    EXPECT_EQ(ink, 0);  // without a window system layouts are made and nothing is shown
#endif
    Write_Png(GetParam() == Window_Axis::Up ? "axes_up.png" : "axes_down.png", picture);
}

TEST_P(Axes_Test, axis_lines_run_along_the_areas_left_and_lower_edge) {
#if !defined(_WIN32)
    GTEST_SKIP() << "nothing is shown without a window system";
#endif
    Draw(0, 255);
    const Window_Picture picture = window.Read();
    const Rect inner = Device(area.left, area.bottom, area.width, area.height);
    const std::uint32_t line = picture.At(inner.left - 1, inner.top + 1);
    EXPECT_NE(line, GROUND);
    for (int y = inner.top; y <= inner.Bottom(); y++) {
        EXPECT_EQ(picture.At(inner.left - 1, y), line);
    }
    for (int x = inner.left - 1; x < inner.Right(); x++) {
        EXPECT_EQ(picture.At(x, inner.Bottom()), line);
    }
}

TEST_P(Axes_Test, nothing_is_drawn_without_a_range_an_area_or_a_device_context) {
    const Window_Picture before = window.Read();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    HDC dc = Y_setup(window.Get(), "axes test");
    for (const auto& [from, to] : {std::pair{1.0F, 1.0F}, {2.0F, 1.0F}, {nan, 1.0F}, {0.0F, nan}}) {
        EXPECT_EQ(Plot_Window_Axes_X(dc, box, area, "x", from, to), 0);
        EXPECT_EQ(Plot_Window_Axes_Y(dc, box, area, "y", from, to), 0);
    }
    EXPECT_EQ(Plot_Window_Axes_X(nullptr, box, area, "x", 0, 1), 0);
    Plot_Area empty = area;
    empty.width = 0;
    EXPECT_EQ(Plot_Window_Axes_X(dc, box, empty, "x", 0, 1), 0);
    empty = area;
    empty.height = -3;
    EXPECT_EQ(Plot_Window_Axes_Y(dc, box, empty, "y", 0, 1), 0);
    Y_release(window.Get(), dc);
    EXPECT_EQ(window.Read(), before);
}

TEST_P(Axes_Test, titles_as_long_as_the_box_stay_inside) {
    for (int of_height = 70; of_height <= 160; of_height++) {
        window.Wipe();
        box.height = static_cast<short>(of_height);
        box.width = static_cast<short>(of_height + 60);
        box.y = 40;
        box.x = 40;
        area = Plot_Window_Area(box, "mnopqrstuvwx", "mnopqrstuvwx");
        HDC dc = Y_setup(window.Get(), "axes test");
        for (const char* title : {"Number of Pixels", "jjj Wavy fff", "mnop mnop mnop"}) {
            Plot_Window_Axes_X(dc, box, area, title, 0, 255);
            Plot_Window_Axes_Y(dc, box, area, title, 0, 12000);
        }
        Y_release(window.Get(), dc);
        const Window_Picture picture = window.Read();
        const Rect outer = Device(box.x, box.y, box.width, box.height);
        for (int y = 0; y < HEIGHT; y++) {
            for (int x = 0; x < WIDTH; x++) {
                ASSERT_TRUE(outer.Has_Point({x, y}) || picture.At(x, y) == Test_Window::MARKER)
                    << x << "," << y << " height " << of_height;
            }
        }
    }
}

TEST_P(Axes_Test, titles_of_any_font_and_length_stay_inside) {
    const Plot_Area whole = area;
    for (const char* name : {"", "Times New Roman", "Tahoma"}) {
        for (const char* weight : {"", "bold"}) {
            for (const unsigned short scale : std::initializer_list<unsigned short>{0, 7, 9, 11, 16, 24, 40}) {
                window.Wipe();
                box.x = 60;
                box.y = 60;
                box.width = 200;
                box.height = 120;
                box.font_name = name;
                box.font_weight = weight;
                box.font_scale = scale;
                area = {box.x + whole.left / 2, box.y + 30, 150, 80};
                HDC dc = Y_setup(window.Get(), "axes test");
                for (int length = 1; length <= 40; length++) {
                    for (const char letter : {'W', 'j', 'f', '/'}) {
                        const std::string title(static_cast<std::size_t>(length), letter);
                        Plot_Window_Axes_X(dc, box, area, title.c_str(), -4.5F, 31);
                        Plot_Window_Axes_Y(dc, box, area, title.c_str(), 0, 12000);
                    }
                }
                Y_release(window.Get(), dc);
                const Window_Picture picture = window.Read();
                const Rect outer = Device(box.x, box.y, box.width, box.height);
                int outside = 0;
                for (int y = 0; y < HEIGHT; y++) {
                    for (int x = 0; x < WIDTH; x++) {
                        outside += !outer.Has_Point({x, y}) && picture.At(x, y) != Test_Window::MARKER ? 1 : 0;
                    }
                }
                EXPECT_EQ(outside, 0) << name << " " << weight << " " << scale;
            }
        }
    }
}

TEST_P(Axes_Test, missing_titles_are_allowed) {
    HDC dc = Y_setup(window.Get(), "axes test");
    EXPECT_EQ(Plot_Window_Axes_X(dc, box, area, nullptr, 0, 1), 1);
    EXPECT_EQ(Plot_Window_Axes_Y(dc, box, area, "", 0, 1), 1);
    Y_release(window.Get(), dc);
}

INSTANTIATE_TEST_SUITE_P(Both_Axes, Axes_Test, testing::Values(Window_Axis::Up, Window_Axis::Down),
                         [](const auto& axis) { return axis.param == Window_Axis::Up ? "Up" : "Down"; });
