#include "kits/widgets/window_state.h"

#include <gtest/gtest.h>

#include <vector>

#include "host/kit_widgets.h"
#include "tests/kits/widgets/test_window.h"

namespace {

Boxs Red_Box(HWND window) {
    Boxs box;
    box.style = STYLE_FRAMED_BOX;
    box.x = 10;
    box.y = 10;
    box.width = 20;
    box.height = 20;
    box.Set_Color(255, 0, 0);
    box.Init(window);
    return box;
}

}  // namespace

TEST(Window_Buffer, shows_everything_at_the_outer_end_only) {
    const Test_Window window(60, 50, Window_Axis::Down);
    Boxs box = Red_Box(window.Get());
    Window_Buffer_Begin(window.Get());
    Window_Buffer_Begin(window.Get());
    box.Draw();
    EXPECT_EQ(window.Read().At(15, 15), Test_Window::MARKER);
    Window_Buffer_End(window.Get());
    EXPECT_EQ(window.Read().At(15, 15), Test_Window::MARKER);
    Window_Buffer_End(window.Get());
    const Window_Picture shown = window.Read();
    EXPECT_EQ(shown.At(15, 15), 0xFF0000U);
    EXPECT_EQ(shown.At(5, 5), Test_Window::MARKER);
    window.Wipe();
    box.Draw();
    EXPECT_EQ(window.Read(), shown);
}

TEST(Window_Buffer, uneven_ends_are_harmless) {
    const Test_Window window(60, 50, Window_Axis::Down);
    Boxs box = Red_Box(window.Get());
    Window_Buffer_End(window.Get());
    Window_Buffer_End(nullptr);
    Window_Buffer_Begin(nullptr);
    box.Draw();
    EXPECT_EQ(window.Read().At(15, 15), 0xFF0000U);
}

TEST(Window_Buffer, collects_again_after_the_window_grew) {
    Test_Window window(60, 50, Window_Axis::Down);
    Boxs box = Red_Box(window.Get());
    Window_Buffer_Begin(window.Get());
    Window_Buffer_End(window.Get());
    window.Resize(120, 90);
    box.x = 95;
    box.y = 65;
    Window_Buffer_Begin(window.Get());
    box.Draw();
    Window_Buffer_End(window.Get());
    EXPECT_EQ(window.Read().At(100, 70), 0xFF0000U);
}

TEST(Window_Buffer, many_parts_are_all_shown) {
    const Test_Window window(60, 50, Window_Axis::Down);
    Boxs box = Red_Box(window.Get());
    box.width = box.height = 1;
    Window_Buffer_Begin(window.Get());
    for (short y = 0; y < 50; y++) {
        for (short x = 0; x < 60; x++) {
            box.x = x;
            box.y = y;
            box.Draw();
        }
    }
    Window_Buffer_End(window.Get());
    for (const std::uint32_t pixel : window.Read().pixels) {
        ASSERT_EQ(pixel, 0xFF0000U);
    }
}

TEST(Window_Read, reads_the_buffer_while_there_is_one_and_the_screen_otherwise) {
    const Test_Window window(60, 50, Window_Axis::Down);
    Boxs box = Red_Box(window.Get());
    std::uint32_t pixels[4] = {};
    ASSERT_TRUE(Window_Read(window.Get(), {9, 15, 2, 2}, pixels));
    EXPECT_EQ(pixels[1] & 0xFFFFFFU, Test_Window::MARKER);
    Window_Buffer_Begin(window.Get());
    box.Draw();
    ASSERT_TRUE(Window_Read(window.Get(), {9, 15, 2, 2}, pixels));
    EXPECT_EQ(pixels[0] & 0xFFFFFFU, Test_Window::MARKER);
    EXPECT_EQ(pixels[1] & 0xFFFFFFU, 0xFF0000U);
    Window_Buffer_End(window.Get());
    EXPECT_FALSE(Window_Read(window.Get(), {9, 15, 0, 2}, pixels));
    EXPECT_FALSE(Window_Read(nullptr, {9, 15, 2, 2}, pixels));
}

TEST(Window_Read, sees_what_was_painted_on_what_the_window_showed) {
    const Test_Window window(60, 50, Window_Axis::Down);
    Boxs large = Red_Box(window.Get());
    Boxs small = Red_Box(window.Get());
    small.x = 41;
    small.y = 33;
    small.width = small.height = 5;
    large.Draw();
    small.Draw();
    const Window_Picture expected = window.Read();
    // Painted in either order, above, below and beside each other.
    for (const bool is_large_first : {true, false}) {
        window.Wipe();
        Window_Buffer_Begin(window.Get());
        (is_large_first ? large : small).Draw();
        (is_large_first ? small : large).Draw();
        std::vector<std::uint32_t> pixels(60 * 50);
        ASSERT_TRUE(Window_Read(window.Get(), {0, 0, 60, 50}, pixels.data()));
        for (std::size_t i = 0; i < pixels.size(); i++) {
            ASSERT_EQ(pixels[i] & 0xFFFFFFU, expected.pixels[i]) << i % 60 << ", " << i / 60;
        }
        Window_Buffer_End(window.Get());
        EXPECT_EQ(window.Read(), expected);
    }
}

TEST(Window_Buffer, what_covers_the_window_is_shown_at_the_end_only_although_a_device_context_was_asked_for) {
    const Test_Window window(60, 50, Window_Axis::Down);
    Boxs box = Red_Box(window.Get());
    box.x = box.y = 0;
    box.width = 60;
    box.height = 50;
    Window_Buffer_Begin(window.Get());
    box.Draw();
    std::uint32_t pixel = 0;
    ASSERT_TRUE(Window_Read(window.Get(), {15, 15, 1, 1}, &pixel));
    EXPECT_EQ(pixel & 0xFFFFFFU, 0xFF0000U);
    EXPECT_EQ(window.Read().At(15, 15), Test_Window::MARKER);
    Window_Buffer_End(window.Get());
    EXPECT_EQ(window.Read().At(15, 15), 0xFF0000U);
}

TEST(Scratch_Picture, nested_ones_do_not_share_their_pixels) {
    Scratch_Picture outer(8, 8);
    outer.View().Fill(outer.View().Area(), 0x111111);
    {
        Scratch_Picture inner(16, 16);
        inner.View().Fill(inner.View().Area(), 0x222222);
    }
    EXPECT_EQ(outer.View().Pixel(7, 7), 0x111111U);
}

TEST(Scratch_Picture, empty_or_too_deep_has_no_pixels) {
    EXPECT_FALSE(Scratch_Picture(0, 5).Has_Pixels());
    const Scratch_Picture a(1, 1);
    const Scratch_Picture b(1, 1);
    const Scratch_Picture c(1, 1);
    const Scratch_Picture d(1, 1);
    EXPECT_TRUE(d.Has_Pixels());
    EXPECT_FALSE(Scratch_Picture(1, 1).Has_Pixels());
}
