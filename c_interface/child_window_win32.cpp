#include <windows.h>
#include <windowsx.h>

#include <algorithm>

#include "c_interface/panel.h"

namespace c_interface {

namespace {

constexpr wchar_t PANEL_CLASS[] = L"Kit_Panels_C_Panel";
constexpr wchar_t SETTLE_CLASS[] = L"Kit_Panels_C_Settle";
constexpr UINT SETTLE_MESSAGE = WM_APP + 1;

HWND settle_window = nullptr;
bool is_settle_posted = false;

kit_handle Handle_Of_Window(HWND window) {
    return static_cast<kit_handle>(::GetWindowLongPtrW(window, GWLP_USERDATA));
}

LRESULT CALLBACK Panel_Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const kit_handle handle = Handle_Of_Window(window);
    if (message == WM_NCDESTROY) {
        // The host's window has taken it along: the panel lives on without a window.
        if (Object* const object = Session::The().handles.Find(handle);
            object != nullptr && object->kind == Kind::Panel) {
            static_cast<Panel*>(object)->Window_Lost();
        } else {
            Window_Forget(window);
        }
    } else if (message == WM_ERASEBKGND) {
        return 1;
    } else if (int32_t used = 0;
               handle != 0 && kit_panel_message(handle, message, wparam, lparam, &used) == KIT_OK && used != 0) {
        return 0;
    }
    return ::DefWindowProcW(window, message, wparam, lparam);
}

LRESULT CALLBACK Settle_Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == SETTLE_MESSAGE) {
        is_settle_posted = false;
        kit_deliver();
        return 0;
    }
    return ::DefWindowProcW(window, message, wparam, lparam);
}

/** The module that this code is in, for its window classes. */
HINSTANCE Own_Module() {
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<LPCWSTR>(&Panel_Procedure), &module);
    return module;
}

void Class_Register(const wchar_t* name, WNDPROC procedure) {
    WNDCLASSW window_class = {};
    window_class.style = CS_DBLCLKS;
    window_class.lpfnWndProc = procedure;
    window_class.hInstance = Own_Module();
    window_class.hCursor = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
    window_class.lpszClassName = name;
    ::RegisterClassW(&window_class);  // a second time is refused and does no harm
}

std::uint32_t Held_Buttons(WPARAM keys) {
    return ((keys & MK_LBUTTON) != 0 ? KIT_BUTTON_LEFT : 0U) | ((keys & MK_MBUTTON) != 0 ? KIT_BUTTON_MIDDLE : 0U) |
           ((keys & MK_RBUTTON) != 0 ? KIT_BUTTON_RIGHT : 0U);
}

kit_input Input_At(std::uint32_t kind, POINT screen, WPARAM keys) {
    return {sizeof(kit_input), kind, screen.x, screen.y, Held_Buttons(keys), 0};
}

POINT Screen_Point(HWND window, LPARAM position) {
    POINT point = {GET_X_LPARAM(position), GET_Y_LPARAM(position)};
    ::ClientToScreen(window, &point);
    return point;
}

POINT Pointer_Place() {
    POINT point = {};
    ::GetCursorPos(&point);
    return point;
}

int Press(Panel& panel, LPARAM position, WPARAM keys) {
    ::SetCapture(panel.Window());  // a slider follows the pointer also outside
    if (panel.Is_Own_Window()) {
        ::SetFocus(panel.Window());
    }
    panel.Input(Input_At(KIT_INPUT_PRESS, Screen_Point(panel.Window(), position), keys));
    return 1;
}

int Release(Panel& panel, LPARAM position, WPARAM keys) {
    if (Held_Buttons(keys) == 0 && ::GetCapture() == panel.Window()) {
        ::ReleaseCapture();
    }
    panel.Input(Input_At(KIT_INPUT_RELEASE, Screen_Point(panel.Window(), position), keys));
    return 1;
}

int Motion(Panel& panel, LPARAM position, WPARAM keys) {
    TRACKMOUSEEVENT leave = {sizeof leave, TME_LEAVE, panel.Window(), 0};
    ::TrackMouseEvent(&leave);
    panel.Input(Input_At(KIT_INPUT_MOTION, Screen_Point(panel.Window(), position), keys));
    return 1;
}

int Wheel(Panel& panel, LPARAM position, WPARAM keys) {
    const POINT screen = {GET_X_LPARAM(position), GET_Y_LPARAM(position)};
    kit_input input = Input_At(KIT_INPUT_WHEEL, screen, GET_KEYSTATE_WPARAM(keys));
    input.value = panel.Wheel_Notches(GET_WHEEL_DELTA_WPARAM(keys));
    if (input.value != 0) {
        panel.Input(input);
    }
    return 1;
}

int Key(Panel& panel, UINT message, WPARAM wparam, LPARAM lparam) {
    const int key = Parse_Keyboard(panel.Window(), message, wparam, lparam);
    if (key == 0) {
        return 0;
    }
    kit_input input = Input_At(KIT_INPUT_KEY, Pointer_Place(), 0);
    input.value = key;
    return panel.Input(input);
}

int Size(Panel& panel, LPARAM size) {
    if (panel.Is_Own_Window()) {
        panel.Lay_Out();
    } else if (LOWORD(size) > 0 && HIWORD(size) > 0) {
        panel.Place(0, 0, std::min<int>(LOWORD(size), 32767), std::min<int>(HIWORD(size), 32767));
    }
    ::InvalidateRect(panel.Window(), nullptr, FALSE);
    return 1;
}

}  // namespace

HWND Child_Window_Make(HWND parent, int x, int y, int width, int height, kit_handle handle) {
    Class_Register(PANEL_CLASS, Panel_Procedure);
    HWND window = ::CreateWindowExW(0, PANEL_CLASS, L"", WS_CHILD | WS_CLIPSIBLINGS, x, y, width, height, parent,
                                    nullptr, Own_Module(), nullptr);
    if (window != nullptr) {
        ::SetWindowLongPtrW(window, GWLP_USERDATA, static_cast<LONG_PTR>(handle));
        ::ShowWindow(window, SW_SHOWNA);
    }
    return window;
}

void Child_Window_End(HWND window) {
    ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    ::DestroyWindow(window);
}

void Child_Window_Hide(HWND window) {
    ::ShowWindow(window, SW_HIDE);
}

void Child_Window_Move(HWND window, int x, int y, int width, int height) {
    ::SetWindowPos(window, nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

bool Client_Size(HWND window, int* width, int* height) {
    RECT client = {};
    if (::GetClientRect(window, &client) == FALSE) {
        return false;
    }
    *width = client.right;
    *height = client.bottom;
    return true;
}

void Settle_Later() {
    if (settle_window == nullptr) {
        Class_Register(SETTLE_CLASS, Settle_Procedure);
        settle_window =
            ::CreateWindowExW(0, SETTLE_CLASS, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, Own_Module(), nullptr);
    }
    if (settle_window != nullptr && !is_settle_posted) {
        is_settle_posted = ::PostMessageW(settle_window, SETTLE_MESSAGE, 0, 0) != FALSE;
    }
}

void Settle_Later_End() {
    if (settle_window != nullptr) {
        ::DestroyWindow(settle_window);
    }
    settle_window = nullptr;
    is_settle_posted = false;
}

int Window_Message(Panel& panel, std::uint32_t message, std::uint64_t wparam, std::int64_t lparam) {
    switch (message) {
        case WM_SIZE:
            return Size(panel, lparam);
        case WM_PAINT:
            panel.Paint();
            ::ValidateRect(panel.Window(), nullptr);
            return 1;
        case WM_LBUTTONDOWN:
        case WM_MBUTTONDOWN:
        case WM_RBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_RBUTTONDBLCLK:
            return Press(panel, lparam, wparam);
        case WM_LBUTTONUP:
        case WM_MBUTTONUP:
        case WM_RBUTTONUP:
            return Release(panel, lparam, wparam);
        case WM_MOUSEMOVE:
            return Motion(panel, lparam, wparam);
        case WM_MOUSELEAVE:
            panel.Input(Input_At(KIT_INPUT_LEAVE, Pointer_Place(), 0));
            return 1;
        case WM_MOUSEWHEEL:
            return Wheel(panel, lparam, wparam);
        case WM_CHAR:
        case WM_KEYDOWN:
            return Key(panel, message, wparam, lparam);
        default:
            return 0;
    }
}

}  // namespace c_interface
