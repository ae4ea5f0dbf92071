// The enlarged window's messages: which handler gets what.
#include "base/gdi_handles.h"

#include <windowsx.h>

#include "histogram/tool_histo_blow.h"
#include "histogram/tool_histo_window.h"
#include "host/kit_common.h"
#include "host/kit_dataset.h"
#include "host/kit_widgets.h"
#include "kits/widgets/widgets_host.h"

namespace {

constexpr int MESSAGE_TRACE_LEVEL = 8;
constexpr int PEN_FRAME_EXTRA = 4;  // pixels added to a frame's width, as the pen conversion has always had it
constexpr int POSITION_MAX = 32767;

/** A position in the window, y counted upward. */
struct Position {
    int x = 0;
    int y = 0;
};

Position Position_Of_Client(int x, int y) {
    return {x, histo_blow.height - y - 1};
}

/** The pointer globals in the window; what is left of or below it counts as 0. */
Position Position_Of_Cursor(HWND window) {
    Position position;
    if (!Window_Pointer(window, &position.x, &position.y)) {
        return {};
    }
    const auto kept = [](int value) { return value < 0 || value > POSITION_MAX ? 0 : value; };
    return {kept(position.x), kept(position.y)};
}

void Cursor_Set(int screen_x, int screen_y) {
    YCursor_X = screen_x;
    YCursor_Y = screen_y;
}

/** The position of a mouse message; the widgets get it through the pointer globals. */
Position Mouse_Position(HWND window, LPARAM lparam) {
    const POINT client = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    POINT screen = client;
    ::ClientToScreen(window, &screen);
    Cursor_Set(screen.x, screen.y);
    return Position_Of_Client(client.x, client.y);
}

/** A pen's position by the window's rectangle and the frame read at creation. */
Position Pen_Position(HWND window, const Pointer_Record& pen) {
    Cursor_Set(pen.x, pen.y);
    RECT rectangle = {};
    ::GetWindowRect(window, &rectangle);
    return Position_Of_Client(pen.x - rectangle.left - histo_blow.frame_width,
                              pen.y - rectangle.top - histo_blow.caption_height - histo_blow.frame_height);
}

int Held_Buttons() {
    return (getbutton(1) != 0 ? MOUSE_LEFT : 0) | (getbutton(4) != 0 ? MOUSE_MIDDLE : 0) |
           (getbutton(2) != 0 ? MOUSE_RIGHT : 0);
}

/** Drops the pending messages of one kind: their news is older than what is handled now, or is part of it. */
void Pending_Drop(HWND window, UINT message) {
    MSG dropped;
    while (::PeekMessageA(&dropped, window, message, message, PM_REMOVE) != 0) {
        if (dropped.message == WM_QUIT) {  // comes through every filter
            ::PostQuitMessage(static_cast<int>(dropped.wParam));
            return;
        }
    }
}

void On_Create(HWND window) {
    Histo_Blow_Begin(window);
    RECT client = {};
    ::GetClientRect(window, &client);
    Histo_Blow_Resize(window, client.right, client.bottom);
    ::EnableWindow(window, TRUE);
    ::ShowWindow(window, SW_SHOW);
    histo_blow.frame_width = ::GetSystemMetrics(SM_CXFRAME) + PEN_FRAME_EXTRA;
    histo_blow.caption_height = ::GetSystemMetrics(SM_CYCAPTION);
    histo_blow.frame_height = ::GetSystemMetrics(SM_CYFRAME) + PEN_FRAME_EXTRA;
}

/** Only the rim beside the plot box: the box is painted at once from a back buffer and must not flicker. */
void On_Erase(HWND window, HDC dc) {
    RECT client = {};
    ::GetClientRect(window, &client);
    const Boxs& plot = histo_blow.plot;
    const LONG top = client.bottom - plot.y - plot.height;  // rows above the box
    const RECT rim[] = {{0, 0, client.right, top},
                        {0, client.bottom - plot.y, client.right, client.bottom},
                        {0, 0, plot.x, client.bottom},
                        {plot.x + plot.width, 0, client.right, client.bottom}};
    const auto brush = reinterpret_cast<HBRUSH>(::GetClassLongPtrA(window, GCLP_HBRBACKGROUND));
    for (const RECT& part : rim) {
        ::FillRect(dc, &part, brush);
    }
}

void On_Paint(HWND window) {
    const Paint_DC paint(window);
    Histo_Blow_Draw();
}

void On_Key(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const int key = Parse_Keyboard(window, message, wparam, lparam);
    if (key == 0) {
        return;
    }
    POINT cursor = {};
    ::GetCursorPos(&cursor);
    Cursor_Set(cursor.x, cursor.y);
    const Position at = Position_Of_Cursor(window);
    Histo_Blow_Key(key, at.x, at.y);
}

void On_Mouse_Move(HWND window, LPARAM lparam) {
    const Position at = Mouse_Position(window, lparam);
    const int held = Held_Buttons();
    Histo_Blow_Motion(held != 0 ? held | MOUSE_DRAG : 0, at.x, at.y);
    if (histo_blow.window == window) {
        TRACKMOUSEEVENT leave = {sizeof leave, TME_LEAVE, window, 0};
        ::TrackMouseEvent(&leave);
    }
}

void On_Button_Down(HWND window, LPARAM lparam) {
    const Position at = Mouse_Position(window, lparam);
    Histo_Blow_Click(MOUSE_PRESS | Held_Buttons(), at.x, at.y);
    // A rectangle also ends when the button is released outside the window.
    if (histo_blow.window == window && histo_blow.dragging) {
        ::SetCapture(window);
    }
}

/** True while the window gives the mouse back itself. */
bool giving_back = false;

void On_Button_Up(HWND window, LPARAM lparam) {
    if (::GetCapture() == window) {
        giving_back = true;
        ::ReleaseCapture();
        giving_back = false;
    }
    const Position at = Mouse_Position(window, lparam);
    Histo_Blow_Click(Held_Buttons(), at.x, at.y);
}

/** Somebody else has taken the mouse: the release will not come here. A second press takes it once more for the window
 * itself, which loses nothing. */
void On_Capture_Lost(HWND window, LPARAM lparam) {
    if (!giving_back && reinterpret_cast<HWND>(lparam) != window) {
        Histo_Blow_Drag_Drop();
    }
}

void On_Wheel(HWND window, WPARAM wparam, LPARAM lparam) {
    const int notches = histo_blow.wheel.Add(GET_WHEEL_DELTA_WPARAM(wparam));
    if (notches == 0) {
        return;
    }
    Cursor_Set(GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam));  // on the screen, unlike other mouse messages
    const Position at = Position_Of_Cursor(window);
    Histo_Blow_Scroll(notches, at.x, at.y);
}

/** @return false when the message is not a pen's */
bool On_Pen(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const Pointer_Record* record = Fct_Pointer_Pen(window, message, wparam, lparam);
    if (record == nullptr) {
        return false;
    }
    const Pointer_Record pen = *record;
    if (message == WM_POINTERUPDATE) {
        Pending_Drop(window, WM_POINTERUPDATE);
        if (histo_blow.window == window) {
            const Position at = Pen_Position(window, pen);
            Histo_Blow_Motion(pen.buttons != 0 ? pen.buttons | MOUSE_DRAG : 0, at.x, at.y);
        }
        return true;
    }
    int up_down = (message == WM_POINTERDOWN ? MOUSE_PRESS : 0) | pen.buttons;
    constexpr int both = MOUSE_PRESS | MOUSE_DRAG;
    if ((up_down & both) == both) {
        up_down &= ~MOUSE_DRAG;
    }
    const Position at = Pen_Position(window, pen);
    Histo_Blow_Click(up_down, at.x, at.y);
    return true;
}

/** @return false when there is no gesture yet */
bool On_Touch(HWND window, WPARAM wparam, LPARAM lparam) {
    const Gesture_Record* record = Fct_Pointer_Touch(window, WM_TOUCH, wparam, lparam);
    if (record == nullptr) {
        return false;
    }
    const Gesture_Record gesture = *record;
    // The system makes mouse messages of the first finger.
    Pending_Drop(window, WM_MOUSEMOVE);
    if (histo_blow.window == window) {
        Histo_Blow_Pinch(gesture);
    }
    return true;
}

/** Messages of pointer, wheel, pen and touch. @return true when handled */
bool Pointer_Message(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_MOUSEMOVE:
            On_Mouse_Move(window, lparam);
            return true;
        case WM_LBUTTONDOWN:
            On_Button_Down(window, lparam);
            return true;
        case WM_LBUTTONUP:
            On_Button_Up(window, lparam);
            return true;
        case WM_CAPTURECHANGED:
            On_Capture_Lost(window, lparam);
            return false;
        case WM_MOUSELEAVE:
            Histo_Blow_Controls_Leave();
            return true;
        case WM_MOUSEWHEEL:
            On_Wheel(window, wparam, lparam);
            return true;
        case WM_POINTERDOWN:
        case WM_POINTERUP:
        case WM_POINTERUPDATE:
            return On_Pen(window, message, wparam, lparam);
        case WM_TOUCH:
            return On_Touch(window, wparam, lparam);
        default:
            return false;
    }
}

/** Everything else that the window answers itself. @return true when handled */
bool Window_Message(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_CREATE:
            On_Create(window);
            return true;
        case WM_DESTROY:
            Histo_Blow_End();
            return true;
        case WM_SIZE:
            Histo_Blow_Resize(window, GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam));
            Histo_Window_Place_Keep();
            return true;
        case WM_MOVE:
            Histo_Window_Place_Keep();
            return false;
        case WM_KILLFOCUS:
            return true;
        case WM_PAINT:
            On_Paint(window);
            return true;
        case WM_CLOSE:
            ::DestroyWindow(window);
            return true;
        case WM_KEYDOWN:
        case WM_KEYUP:
        case WM_CHAR:
        case WM_SYSKEYDOWN:
            On_Key(window, message, wparam, lparam);
            return false;  // no key is taken: the system's own keys keep working
        case HISTO_WINDOW_DATA:
            // One redraw shows all news that has come so far.
            Pending_Drop(window, HISTO_WINDOW_DATA);
            Histo_Blow_Redraw();
            return true;
        case HISTO_WINDOW_CURSOR:
            Histo_Blow_Cursor();
            return true;
        default:
            return false;
    }
}

}  // namespace

std::intptr_t __stdcall WndProc_Histo_Blow(HWND window, unsigned int message, std::uintptr_t wparam,
                                           std::intptr_t lparam) {
    if (Flag_Trace >= MESSAGE_TRACE_LEVEL) {
        static char name[] = "WndProc_Histo_Blow";
        System_Message(MESSAGE_TRACE_LEVEL, name, window, message);
    }
    // A window that is not the one on show gets no more than default handling: before its creation is announced, and
    // after its end.
    const bool shown = window == histo_blow.window || message == WM_CREATE;
    if (shown && message == WM_ERASEBKGND && histo_blow.plot.width > 0) {
        On_Erase(window, reinterpret_cast<HDC>(wparam));
        return 1;
    }
    if (shown &&
        (Pointer_Message(window, message, wparam, lparam) || Window_Message(window, message, wparam, lparam))) {
        return 0;
    }
    return ::DefWindowProcA(window, message, wparam, lparam);
}

void Histo_Blow_Enable(HWND window, bool enabled) {
    // A window on top of all others would hide a dialog that belongs to another one.
    static bool was_topmost = false;
    const auto place = [window](HWND behind) {
        ::SetWindowPos(window, behind, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    };
    ::EnableWindow(window, enabled ? TRUE : FALSE);
    if (enabled) {
        if (was_topmost) {
            place(HWND_TOPMOST);
        }
        ::SetForegroundWindow(window);
        return;
    }
    was_topmost = (::GetWindowLongPtrA(window, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0;
    if (was_topmost) {
        place(HWND_NOTOPMOST);
    }
}

void Histo_Blow_Touch_Register(HWND window) {
    // Looked up at run time: not every system that runs the module has it.
    using Register_Fct = BOOL(WINAPI*)(HWND, ULONG);
    const HMODULE user = ::GetModuleHandleA("user32.dll");
    const auto address =
        reinterpret_cast<void (*)()>(user != nullptr ? ::GetProcAddress(user, "RegisterTouchWindow") : nullptr);
    if (address != nullptr) {
        reinterpret_cast<Register_Fct>(address)(window, 0);
    }
}
