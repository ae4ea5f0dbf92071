#include <gtest/gtest.h>

#include <string>

#include "host/kit_widgets.h"
#include "kits/widgets/theme.h"
#include "tests/kits/widgets/other_code_page.h"
#include "tests/kits/widgets/test_window.h"

TEST(Tools, set_name_formats_and_cuts_at_the_field) {
#if defined(_WIN32)
    const Other_Code_Page utf8(PAGE_UTF8);
#endif
    Tools tool;
    tool.Set_Name("%s %d of %d", "Frame", 3, 12);
    EXPECT_EQ(std::string(tool.name), "Frame 3 of 12");
    tool.Set_Name("%s", std::string(500, 'x').c_str());
    EXPECT_EQ(std::string(tool.name), std::string(TOOLS_NAME_SIZE - 1, 'x'));
    tool.Set_Name("%s%s", std::string(TOOLS_NAME_SIZE - 2, 'x').c_str(), "\xE2\x82\xAC");
    EXPECT_EQ(std::string(tool.name), std::string(TOOLS_NAME_SIZE - 2, 'x'));
}

TEST(Tools, set_name_may_read_the_caption_that_it_replaces) {
    Tools tool;
    tool.Set_Name("abc");
    tool.Set_Name("%s-%s", tool.name, tool.name);
    EXPECT_EQ(std::string(tool.name), "abc-abc");
}

TEST(Tools, set_color_keeps_the_fourth_component) {
    Tools tool;
    tool.color.fourth = 77;
    tool.Set_Color(1, 2, 3);
    EXPECT_EQ(tool.color.fourth, 77);
    EXPECT_EQ(tool.color.get(), 0x030201UL);
}

TEST(Tools, colors_use_the_low_byte_of_each_component) {
    const Colors color{0x1FF, 0x200, 0x1AB, 9};
    EXPECT_EQ(color.get(), 0xAB00FFUL);
}

TEST(Tools, clear_fills_exactly_the_rectangle) {
    const Test_Window window(60, 50, Window_Axis::Up);
    Tools tool;
    tool.x = 10;
    tool.y = 5;
    tool.width = 20;
    tool.height = 8;
    tool.window = window.Get();
    tool.Set_Color(10, 20, 30);
    Widget_Counters_Reset();
    tool.Clear();
    Window_Picture picture = window.Read();
    const Rect device = {10, 37, 20, 8};
    for (int y = 0; y < 50; y++) {
        for (int x = 0; x < 60; x++) {
            ASSERT_EQ(picture.At(x, y), device.Has_Point({x, y}) ? 0x0A141EU : Test_Window::MARKER);
        }
    }
    tool.Clear(Colors{255, 0, 0, 0});
    picture = window.Read();
    EXPECT_EQ(picture.At(10, 37), 0xFF0000U);
    EXPECT_EQ(Widget_Counters_Get().clears, 2U);
}

TEST(Tools, cadre_draws_lines_only) {
    const Test_Window window(60, 50, Window_Axis::Down);
    Tools tool;
    tool.x = 10;
    tool.y = 5;
    tool.width = 20;
    tool.height = 8;
    tool.window = window.Get();
    tool.Cadre();
    const Window_Picture picture = window.Read();
    EXPECT_EQ(picture.At(11, 6), Test_Window::MARKER);
    EXPECT_NE(picture.At(10, 5), Test_Window::MARKER);
    EXPECT_NE(picture.At(29, 12), Test_Window::MARKER);
    EXPECT_EQ(picture.At(30, 13), Test_Window::MARKER);
}

TEST(Tools, fill_select_fills_with_the_accent) {
    const Test_Window window(60, 50, Window_Axis::Down);
    Tools tool;
    tool.width = 20;
    tool.height = 8;
    tool.window = window.Get();
    tool.Fill_Select();
    EXPECT_EQ(window.Read().At(19, 7), Theme_Now().accent);
    EXPECT_EQ(window.Read().At(20, 7), Test_Window::MARKER);
    tool.Text(nullptr);
    EXPECT_EQ(window.Read().At(19, 7), Theme_Now().accent);
    tool.Set_Color(5, 5, 5);
    tool.Text("");
    EXPECT_EQ(window.Read().At(19, 7), 0x050505U);
}

TEST(Tools, free_forgets_the_window_and_init_gives_it_back) {
    const Test_Window window(60, 50, Window_Axis::Down);
    Boxs box;
    box.width = box.height = 5;
    box.Init(window.Get());
    box.Free();
    EXPECT_EQ(box.window, nullptr);
    box.Draw();
    EXPECT_EQ(box.Init(window.Get()), 1);
    EXPECT_EQ(box.Init(nullptr), 1);
    EXPECT_EQ(box.window, window.Get());
}

TEST(Tools, take_look_copies_what_panels_hand_on) {
    Boxs host;
    host.font_name = "Arial";
    host.font_weight = "bold";
    host.font_scale = 15;
    host.border = 3;
    host.style = 77;
    host.x = 9;
    host.color = {1, 2, 3, 4};
    host.window = reinterpret_cast<HWND>(std::uintptr_t{16});
    Buttons button;
    button.Take_Look(host);
    EXPECT_STREQ(button.font_name, "Arial");
    EXPECT_STREQ(button.font_weight, "bold");
    EXPECT_EQ(button.font_scale, 15);
    EXPECT_EQ(button.border, 3);
    EXPECT_EQ(button.color.fourth, 4);
    EXPECT_EQ(button.window, host.window);
    EXPECT_EQ(button.style, 0U);
    EXPECT_EQ(button.x, 0);
}
