/** The enlarged histogram window, opened by a panel's button, and what a test sends to it. */
#pragma once

#include "base/gdi_handles.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "histogram/tool_histo_blow.h"
#include "histogram/tool_histo_peak.h"
#include "tests/histogram/histo_stage.h"

/** Pens and fingers that the test moves. */
struct Test_Pointers {
    Pen_State pen;
    bool pen_known = false;
    std::vector<Touch_Point> fingers;

    static int Pen(void* context, unsigned int /*pointer*/, Pen_State* state) {
        const auto& self = *static_cast<Test_Pointers*>(context);
        *state = self.pen;
        return self.pen_known ? 1 : 0;
    }
    static int Touch(void* context, std::uintptr_t /*wparam*/, std::intptr_t /*lparam*/, Touch_Point* point, int most) {
        const auto& self = *static_cast<Test_Pointers*>(context);
        int nb = 0;
        for (; nb < most && nb < static_cast<int>(self.fingers.size()); ++nb) {
            point[nb] = self.fingers[static_cast<std::size_t>(nb)];
        }
        return nb;
    }
};

class Blow_Stage : public testing::Test {
  protected:
    static constexpr int CLIENT_WIDTH = 800;
    static constexpr int CLIENT_HEIGHT = 400;
    static constexpr int SPACE_PIXELS = 4;
    static constexpr int BUTTON_HEIGHT = 30;
    static constexpr UINT DATA = 0x400;
    static constexpr UINT CURSOR = 0x401;

    Blow_Stage() {
        Variable_Define_Scalar("$INTERFACE_SPACE_DIM", VARIABLE_SIGNED_16, SPACE_PIXELS);
        Variable_Define_Scalar("$INTERFACE_BORDER_DIM", VARIABLE_SIGNED_16, 2);
        Variable_Define_Scalar("$INTERFACE_BUTTON_DIM_BIG", VARIABLE_SIGNED_16, BUTTON_HEIGHT);
        Variable_Define_Scalar("$INTERFACE_TOOL_FONT_SCALE", VARIABLE_SIGNED_16, 13);
        Variable_Define_Scalar("$INTERFACE_TITLE_FONT_SCALE", VARIABLE_SIGNED_16, 15);
        Variable_Define_Text("$INTERFACE_TOOL_FONT_NAME", "Arial");
        held = 0;
        Input_Source input;
        input.button = [](int button) { return (held & Bit_Of(button)) != 0 ? 1 : 0; };
        Input_Source_Set(input);
        const Pointer_System system{Test_Pointers::Pen, Test_Pointers::Touch, &pointers};
        Pointer_System_Set(&system);
        panel.emplace();
        stage.Lay_Out(*panel);
        histo_blow.display_cursor = histo_blow.display_tag = histo_blow.display_peak = 0;
        histo_blow.wheel = {};
    }
    ~Blow_Stage() override {
        panel.reset();
        Flag_Trace = 0;
        Pointer_System_Set(nullptr);
        Input_Source_Set({});
    }

    /** A record of 100 bins of 2 grey levels from 10, with a hill. */
    void Give_Record(Tool_Histo& to) const {
        std::vector<std::uint32_t> counts;
        for (int bin = 0; bin < 100; ++bin) {
            counts.push_back(static_cast<std::uint32_t>(1000 - 10 * (bin < 50 ? 50 - bin : bin - 50)));
        }
        Histo_Record_Give(to, {10.0F, 2.0F}, counts);
    }
    /** Opens the window with data and a client area of a known size. */
    void Open() {
        Give_Record(*panel);
        Press_Blow(*panel);
        Client_Size_Set(CLIENT_WIDTH, CLIENT_HEIGHT);
        Settle();
    }
    void Press_Blow(Tool_Histo& on) const {
        stage.Point_Row(262, 70);
        on.Click(MOUSE_PRESS | MOUSE_LEFT);
    }
    static void Client_Size_Set(int client_width, int client_height) {
        RECT outer = {0, 0, client_width, client_height};
        ::AdjustWindowRectEx(&outer, WS_OVERLAPPEDWINDOW, FALSE, 0x10);
        ::SetWindowPos(Window(), nullptr, 0, 0, outer.right - outer.left, outer.bottom - outer.top,
                       SWP_NOMOVE | SWP_NOZORDER);
    }
    /** Handles every pending message of the window; paints it. */
    void Settle() {
        MSG message;
        while (histo_blow.window != nullptr && ::PeekMessageA(&message, Window(), 0, 0, PM_REMOVE) != 0) {
            ::DispatchMessageA(&message);
        }
        ::UpdateWindow(Window());
        stage.Take_Messages();
    }
    static HWND Window() { return histo_blow.window; }
    static LRESULT Send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) {
        return ::SendMessageA(Window(), message, wparam, lparam);
    }
    /** The parameter of a mouse message for a position with y counted upward. */
    static LPARAM Client_Place(int x, int y) {
        return MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(histo_blow.height - 1 - y));
    }
    static LPARAM Screen_Place(int x, int y) {
        POINT point = {x, histo_blow.height - 1 - y};
        ::ClientToScreen(Window(), &point);
        return MAKELPARAM(static_cast<WORD>(point.x), static_cast<WORD>(point.y));
    }
    static void Press(int x, int y) {
        held |= MOUSE_LEFT;
        Send(WM_LBUTTONDOWN, MK_LBUTTON, Client_Place(x, y));
    }
    static void Move(int x, int y) { Send(WM_MOUSEMOVE, 0, Client_Place(x, y)); }
    static void Release(int x, int y) {
        held &= ~MOUSE_LEFT;
        Send(WM_LBUTTONUP, 0, Client_Place(x, y));
    }
    static void Drag(int x0, int y0, int x1, int y1) {
        Press(x0, y0);
        Move(x1, y1);
        Release(x1, y1);
    }
    static void Wheel(int delta, int x, int y) {
        Send(WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(delta)), Screen_Place(x, y));
    }
    /** A press and a release in a widget's middle, or at a distance from its right edge. */
    static void Click_On(const Tools& widget, int from_right = -1) {
        const int x = from_right < 0 ? widget.x + widget.width / 2 : widget.x + widget.width - 1 - from_right;
        const int y = widget.y + widget.height / 2;
        Press(x, y);
        Release(x, y);
    }
    /** To a selector's next and previous choice, by its arrows. */
    static void Next_On(const Selects& select) { Click_On(select, select.arrow / 2); }
    static void Previous_On(const Selects& select) { Click_On(select, select.arrow + select.arrow / 2); }
    /** A press there opens a selector's drop list, and returns when that is closed. */
    static LPARAM Field_Of(const Selects& select) {
        return Client_Place(select.x + select.width / 2, select.y + select.height / 2);
    }
    /** A zoomed view with room on every side, so that neither limits nor clamps act. */
    static void Zoom_Middle() {
        const Pixel_Rectangle& area = histo_blow.area;
        Drag(area.x + area.width / 3, area.y + area.height / 3, area.x + 2 * area.width / 3,
             area.y + 2 * area.height / 3);
    }
    /** A mark on the plot box's corner pixel that every repaint removes. */
    static void Mark_Set() {
        const Window_DC dc(Window());
        ::SetPixel(dc.Get(), 5, histo_blow.height - 5, RGB(0x12, 0x34, 0x56));
    }
    static bool Mark_Gone() {
        const Window_DC dc(Window());
        return ::GetPixel(dc.Get(), 5, histo_blow.height - 5) != RGB(0x12, 0x34, 0x56);
    }
    /** "level text" of the messages since the last call that hold `part`. */
    std::vector<std::string> Lines(const std::string& part) {
        std::vector<std::string> lines;
        for (const std::string& line : stage.Take_Lines()) {
            if (line.find(part) != std::string::npos) {
                lines.push_back(line);
            }
        }
        return lines;
    }
    /** How many messages of a number wait for the window; takes them. */
    static int Pending(UINT number) {
        int nb = 0;
        MSG message;
        while (::PeekMessageA(&message, Window(), number, number, PM_REMOVE) != 0) {
            ++nb;
        }
        return nb;
    }
    static void Peaks_Give(Tool_Histo& to, std::uint8_t type, int nb) {
        to.data->Peaks_Free();
        Histo_Peak* tail = nullptr;
        for (int i = 0; i < nb; ++i) {
            Histo_Peak* peak = Peak_Make(type, type != PEAK_SEGMENT);
            (*peak->param)[PEAK_CENTRE] = 20.0 + 10.0 * i;
            (*peak->param)[1] = type == PEAK_SEGMENT ? 18.0 + 10.0 * i : 500.0;
            (*peak->param)[2] = type == PEAK_SEGMENT ? 22.0 + 10.0 * i : 3.0;
            Peak_Append(*to.data, tail, peak);
        }
    }

    inline static int held = 0;  ///< MOUSE_LEFT, MOUSE_MIDDLE, MOUSE_RIGHT
    Test_Pointers pointers;
    Histo_Scene scene;
    Histo_Stage stage{Window_Axis::Down};
    std::optional<Tool_Histo> panel;

  private:
    static int Bit_Of(int button) { return button == 1 ? MOUSE_LEFT : button == 4 ? MOUSE_MIDDLE : MOUSE_RIGHT; }
};
