// Pens and fingers in the enlarged window.
#include <cmath>

#include "tests/histogram/blow_stage.h"
#include "tests/support/import_hook.h"

namespace {

class Blow_Pointer : public Blow_Stage {
  protected:
    Blow_Pointer() { Open(); }

    /** The pen on a position of the window as the window takes it from the screen. */
    void Pen_At(int x, int y) {
        RECT outer = {};
        ::GetWindowRect(Window(), &outer);
        pointers.pen_known = true;
        pointers.pen.x = outer.left + histo_blow.frame_width + x;
        pointers.pen.y = outer.top + histo_blow.caption_height + histo_blow.frame_height + histo_blow.height - 1 - y;
    }
    void Pen_Down(int x, int y) {
        Pen_At(x, y);
        pointers.pen.contact = true;
        Send(WM_POINTERDOWN, 1);
    }
    void Pen_Move(int x, int y) {
        Pen_At(x, y);
        Send(WM_POINTERUPDATE, 1);
    }
    void Pen_Up(int x, int y) {
        Pen_At(x, y);
        pointers.pen.contact = false;
        Send(WM_POINTERUP, 1);
    }
    void Fingers(float x0, float y0, float x1, float y1) {
        pointers.fingers = {{1, x0, y0, true}, {2, x1, y1, true}};
        Send(WM_TOUCH, 2, 0);
    }
};

using Lines_Of = std::vector<std::string>;

/** What another host's pen service yields. */
Pointer_Record other_pen;
const Pointer_Record* Other_Pen(HWND, unsigned int, std::uintptr_t, std::intptr_t) {
    return &other_pen;
}

}  // namespace

TEST_F(Blow_Pointer, a_pen_drags_a_zoom_rectangle) {
    const Pixel_Rectangle area = histo_blow.area;
    Pen_Down(area.x + 50, area.y + 20);
    EXPECT_TRUE(histo_blow.dragging);
    EXPECT_EQ(histo_blow.drag.x_start, area.x + 50);
    EXPECT_EQ(histo_blow.drag.y_start, area.y + 20);
    Pen_Move(area.x + 250, area.y + 120);
    EXPECT_EQ(histo_blow.drag.x_end, area.x + 250);
    EXPECT_EQ(histo_blow.drag.y_end, area.y + 120);
    EXPECT_EQ(YCursor_X, pointers.pen.x) << "the widgets follow the pen";
    EXPECT_EQ(YCursor_Y, pointers.pen.y);
    Pen_Up(area.x + 250, area.y + 120);
    EXPECT_FALSE(histo_blow.dragging);
    EXPECT_TRUE(histo_blow.view.Is_Zoomed());
}

TEST_F(Blow_Pointer, pen_messages_carry_their_buttons) {
    Flag_Trace = 4;
    pointers.pen.barrel = true;
    Pen_Down(200, 100);
    EXPECT_EQ(Lines("Histo_Blow_Click"), Lines_Of{"14 Mode Histo: Histo_Blow_Click(up_down=00000042)"});
    Pen_Up(200, 100);
    EXPECT_EQ(Lines("Histo_Blow_Click"), Lines_Of{"14 Mode Histo: Histo_Blow_Click(up_down=00000000)"});
    pointers.pen.eraser = true;
    Pen_Down(200, 100);
    EXPECT_EQ(Lines("Histo_Blow_Click"), Lines_Of{"14 Mode Histo: Histo_Blow_Click(up_down=00000022)"});
}

TEST_F(Blow_Pointer, a_pen_that_goes_down_is_no_drag_whatever_its_host_says) {
    Import_Hook hook;
    for (const char* dll : {"Kit_Dataset.dll", "Kit_Widgets.dll", "Kit_Common.dll"}) {
        for (const std::string& name : Import_Names("", dll)) {
            if (name.find("Fct_Pointer_Pen") != std::string::npos) {
                hook = Import_Hook("", dll, name.c_str(), reinterpret_cast<void*>(&Other_Pen));
            }
        }
    }
    ASSERT_TRUE(hook.Is_Set());
    Flag_Trace = 4;
    other_pen.buttons = MOUSE_DRAG | MOUSE_LEFT;
    Send(WM_POINTERDOWN, 1);
    EXPECT_EQ(Lines("Histo_Blow_Click"), Lines_Of{"14 Mode Histo: Histo_Blow_Click(up_down=00000012)"});
    Send(WM_POINTERUP, 1);
    EXPECT_EQ(Lines("Histo_Blow_Click"), Lines_Of{"14 Mode Histo: Histo_Blow_Click(up_down=00000011)"});
    Send(WM_POINTERUPDATE, 1);
    EXPECT_EQ(Lines("Histo_Blow_Motion").size(), 2U);
}

TEST_F(Blow_Pointer, pending_pen_updates_are_dropped_and_the_newest_state_counts) {
    Pen_Down(200, 100);
    for (int i = 0; i < 5; ++i) {
        ::PostMessageA(Window(), WM_POINTERUPDATE, 1, 0);
    }
    ::PostMessageA(Window(), CURSOR, 0, 0);
    stage.Take_Messages();
    Pen_Move(300, 150);
    EXPECT_EQ(Lines("Histo_Blow_Motion").size(), 1U);
    EXPECT_EQ(Pending(WM_POINTERUPDATE), 0);
    EXPECT_EQ(Pending(CURSOR), 1) << "other messages stay";
    EXPECT_EQ(histo_blow.drag.x_end, 300);
}

TEST_F(Blow_Pointer, pointers_that_are_no_pens_get_default_handling) {
    pointers.pen_known = false;
    ::PostMessageA(Window(), WM_POINTERUPDATE, 1, 0);
    stage.Take_Messages();
    Send(WM_POINTERDOWN, 1);
    Send(WM_POINTERUPDATE, 1);
    Send(WM_POINTERUP, 1);
    EXPECT_FALSE(histo_blow.dragging);
    EXPECT_EQ(Lines("Histo_Blow").size(), 0U);
    EXPECT_EQ(Pending(WM_POINTERUPDATE), 1);
}

TEST_F(Blow_Pointer, a_quit_that_waits_is_not_swallowed) {
    Pen_Down(200, 100);
    ::PostQuitMessage(7);
    Pen_Move(220, 110);
    MSG message = {};
    ASSERT_NE(::PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE), 0);
    EXPECT_EQ(message.wParam, 7U);
}

TEST_F(Blow_Pointer, two_fingers_that_part_zoom_in_and_drop_pending_mouse_moves) {
    Zoom_Middle();
    const float scale_x = histo_blow.view.X().at.scale;
    const float scale_y = histo_blow.view.Y().at.scale;
    const float origin_x = histo_blow.view.X().at.origin;
    Fingers(200, 200, 400, 300);
    EXPECT_EQ(histo_blow.view.X().at.scale, scale_x) << "two fingers have just come down";
    Mark_Set();
    ::PostMessageA(Window(), WM_MOUSEMOVE, 0, Client_Place(10, 10));
    Fingers(195, 200, 405, 300);
    EXPECT_EQ(Pending(WM_MOUSEMOVE), 0);
    EXPECT_TRUE(Mark_Gone());
    EXPECT_NEAR(histo_blow.view.X().at.scale, scale_x / 1.05F, 1e-4F * scale_x);
    EXPECT_EQ(histo_blow.view.Y().at.scale, scale_y);
    EXPECT_EQ(histo_blow.view.X().at.origin, origin_x) << "their middle has not moved";
    ::PostMessageA(Window(), WM_MOUSEMOVE, 0, Client_Place(10, 10));
    pointers.fingers = {{1, 190, 200, true}, {2, 405, 300, false}};
    Send(WM_TOUCH, 2, 0);
    EXPECT_EQ(Pending(WM_MOUSEMOVE), 1) << "one finger is no gesture";
}

TEST_F(Blow_Pointer, two_fingers_that_move_together_pan) {
    Zoom_Middle();
    const float scale_x = histo_blow.view.X().at.scale;
    const float scale_y = histo_blow.view.Y().at.scale;
    const float origin_x = histo_blow.view.X().at.origin;
    const float origin_y = histo_blow.view.Y().at.origin;
    Fingers(200, 200, 400, 300);
    Fingers(210, 206, 410, 306);
    EXPECT_NEAR(histo_blow.view.X().at.origin, origin_x - 10.0F * scale_x, 1e-3F * scale_x);
    EXPECT_NEAR(histo_blow.view.Y().at.origin, origin_y + 6.0F * scale_y, 1e-3F * scale_y)
        << "fingers go down the screen";
    EXPECT_EQ(histo_blow.view.X().at.scale, scale_x);
}

TEST_F(Blow_Pointer, gestures_beyond_their_limits_are_ignored) {
    Zoom_Middle();
    const float scale = histo_blow.view.X().at.scale;
    const float origin = histo_blow.view.X().at.origin;
    for (const float factor : {0.05F, 0.0F, -1.0F, 1.101F, 20.0F, std::nanf("")}) {
        EXPECT_EQ(Histo_Blow_Pinch({factor, 1.0F, 9.0F, 9.0F}), 0) << factor;
        EXPECT_EQ(Histo_Blow_Pinch({1.0F, factor, 9.0F, 9.0F}), 0) << factor;
    }
    EXPECT_EQ(histo_blow.view.X().at.scale, scale);
    EXPECT_EQ(histo_blow.view.X().at.origin, origin);
    EXPECT_EQ(Histo_Blow_Pinch({1.1F, 0.09F, 0.0F, 0.0F}), 1);
    EXPECT_FLOAT_EQ(histo_blow.view.X().at.scale, scale / 1.1F);
}

TEST_F(Blow_Pointer, a_pinch_pans_no_further_than_the_data) {
    Zoom_Middle();
    for (int i = 0; i < 100; ++i) {
        Histo_Blow_Pinch({1.0F, 1.0F, -100.0F, 100.0F});
    }
    const Blow_View& view = histo_blow.view;
    EXPECT_FLOAT_EQ(view.X().at.origin,
                    view.X().full.end - static_cast<float>(histo_blow.area.width) * view.X().at.scale);
    EXPECT_FLOAT_EQ(view.Y().at.origin,
                    view.Y().full.end - static_cast<float>(histo_blow.area.height) * view.Y().at.scale);
    for (int i = 0; i < 100; ++i) {
        Histo_Blow_Pinch({1.0F, 1.0F, 100.0F, -100.0F});
    }
    EXPECT_EQ(view.X().at.origin, view.X().full.start);
    EXPECT_EQ(view.Y().at.origin, view.Y().full.start);
}
