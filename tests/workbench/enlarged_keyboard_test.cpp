#include "workbench/enlarged_keyboard.h"

#include "tests/histogram/blow_stage.h"

using namespace workbench;

namespace {

class Enlarged_Keyboard : public Blow_Stage {
  protected:
    static bool Character(char letter) { return Dispatch(WM_CHAR, static_cast<WPARAM>(letter)); }
    static bool Key(int virtual_key) { return Dispatch(WM_KEYDOWN, static_cast<WPARAM>(virtual_key)); }
    static bool Dispatch(UINT message, WPARAM wparam) {
        MSG key = {};
        key.hwnd = Window();
        key.message = message;
        key.wParam = wparam;
        return Enlarged_Key_Dispatch(key);
    }
    static float Size_X() { return View().Visible_X().end - View().Visible_X().start; }
    static float Size_Y() { return View().Visible_Y().end - View().Visible_Y().start; }
    static const Blow_View& View() { return histo_blow.view; }
    /** A list that opens gets Down and Enter. */
    static void Answer_List() {
        ::PostThreadMessageA(::GetCurrentThreadId(), WM_KEYDOWN, VK_DOWN, 0);
        ::PostThreadMessageA(::GetCurrentThreadId(), WM_CHAR, KEY_ENTER, 0);
    }
};

TEST_F(Enlarged_Keyboard, plus_zooms_in_and_minus_out) {
    Open();
    const float size_x = Size_X();
    const float size_y = Size_Y();
    const float foot = View().Visible_Y().start;
    EXPECT_TRUE(Character('+'));
    EXPECT_FLOAT_EQ(View().Visible_Y().start, foot) << "the counts stay in view";
    EXPECT_NEAR(Size_X(), 0.8F * size_x, 0.01F * size_x);
    EXPECT_NEAR(Size_Y(), 0.8F * size_y, 0.01F * size_y);
    EXPECT_TRUE(Character('+'));
    EXPECT_NEAR(Size_X(), 0.64F * size_x, 0.01F * size_x);
    EXPECT_TRUE(Character('-'));
    EXPECT_NEAR(Size_X(), 0.8F * size_x, 0.01F * size_x);
    EXPECT_TRUE(Character('-'));
    EXPECT_TRUE(Character('-'));
    EXPECT_NEAR(Size_X(), size_x, 0.001F * size_x) << "no wider than all data";
    EXPECT_NEAR(Size_Y(), size_y, 0.001F * size_y);
}

TEST_F(Enlarged_Keyboard, zooming_keeps_the_middle_wherever_the_window_is) {
    Open();
    ::SetWindowPos(Window(), nullptr, 300, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    const float size = Size_X();
    const float start = View().Visible_X().start;
    EXPECT_TRUE(Character('+'));
    EXPECT_NEAR(View().Visible_X().start - start, 0.1F * size, 0.02F * size);
}

TEST_F(Enlarged_Keyboard, arrows_move_the_zoomed_view) {
    Open();
    Zoom_Middle();
    const Blow_Range x = View().Visible_X();
    const Blow_Range y = View().Visible_Y();
    const auto step = [&](int key) {
        EXPECT_TRUE(Key(key));
        return std::pair(View().Visible_X().start, View().Visible_Y().start);
    };
    const float tenth_x = 0.1F * Size_X() * CLIENT_WIDTH / static_cast<float>(histo_blow.area.width);
    const float tenth_y = 0.1F * Size_Y() * CLIENT_HEIGHT / static_cast<float>(histo_blow.area.height);
    const auto right = step(VK_RIGHT);
    EXPECT_NEAR(right.first, x.start + tenth_x, 0.1F * tenth_x);
    EXPECT_NEAR(right.second, y.start, 0.01F * tenth_y);
    EXPECT_NEAR(step(VK_LEFT).first, x.start, 0.01F * tenth_x);
    const auto up = step(VK_UP);
    EXPECT_NEAR(up.first, x.start, 0.01F * tenth_x);
    EXPECT_NEAR(up.second, y.start + tenth_y, 0.1F * tenth_y);
    EXPECT_NEAR(step(VK_DOWN).second, y.start, 0.01F * tenth_y);
    EXPECT_NEAR(Size_X(), x.end - x.start, 0.001F * tenth_x) << "moving does not zoom";
    EXPECT_NEAR(Size_Y(), y.end - y.start, 0.001F * tenth_y);
}

TEST_F(Enlarged_Keyboard, moving_ends_where_the_data_end) {
    Open();
    Zoom_Middle();
    const float size = Size_X();
    for (int step = 0; step < 40; ++step) {
        Key(VK_RIGHT);
    }
    EXPECT_NEAR(View().Visible_X().end, View().X().full.end, 0.01F * size);
    EXPECT_NEAR(Size_X(), size, 0.01F * size);
}

TEST_F(Enlarged_Keyboard, home_resets_the_zoom_and_leaves_no_drag) {
    Open();
    Zoom_Middle();
    ASSERT_TRUE(View().Is_Zoomed());
    EXPECT_TRUE(Key(VK_HOME));
    EXPECT_FALSE(View().Is_Zoomed());
    EXPECT_FALSE(histo_blow.dragging);
    EXPECT_NE(::GetCapture(), Window());
}

TEST_F(Enlarged_Keyboard, a_letter_opens_a_list_where_keys_pick) {
    Open();
    ASSERT_EQ(histo_blow.display_tag, 0);
    Answer_List();
    EXPECT_TRUE(Character('t'));
    EXPECT_EQ(histo_blow.display_tag, 1);
    EXPECT_FALSE(histo_blow.dragging);
}

TEST_F(Enlarged_Keyboard, a_control_that_has_gone_is_not_pressed) {
    Open();
    EXPECT_FALSE(Character('p')) << "without peaks there is no such list";
    Peaks_Give(*panel, PEAK_GAUSS, 1);
    Send(DATA);
    Settle();
    Answer_List();
    EXPECT_TRUE(Character('p'));
    EXPECT_EQ(histo_blow.display_peak, 1);
    panel->data->Peaks_Free();
    Send(DATA);
    Settle();
    EXPECT_FALSE(Character('p'));
    EXPECT_FALSE(View().Is_Zoomed());
}

TEST_F(Enlarged_Keyboard, the_keys_follow_the_windows_size) {
    Open();
    EXPECT_TRUE(Character('+'));
    Client_Size_Set(300, 300);
    Settle();
    EXPECT_TRUE(View().Is_Zoomed());
    EXPECT_TRUE(Key(VK_HOME));
    EXPECT_FALSE(View().Is_Zoomed());
}

TEST_F(Enlarged_Keyboard, escape_closes_the_window) {
    Open();
    EXPECT_TRUE(Character(VK_ESCAPE));
    EXPECT_EQ(Window(), nullptr);
}

TEST_F(Enlarged_Keyboard, other_keys_and_other_windows_are_left_alone) {
    Open();
    EXPECT_FALSE(Character('x'));
    EXPECT_FALSE(Key(VK_F4));
    EXPECT_FALSE(Dispatch(WM_KEYUP, VK_HOME));
    MSG elsewhere = {};
    elsewhere.hwnd = stage.Window();
    elsewhere.message = WM_CHAR;
    elsewhere.wParam = '+';
    EXPECT_FALSE(Enlarged_Key_Dispatch(elsewhere));
    elsewhere.hwnd = nullptr;
    EXPECT_FALSE(Enlarged_Key_Dispatch(elsewhere));
    EXPECT_FALSE(View().Is_Zoomed());
}

}  // namespace
