// The pop-up window of a drop list: its own window, mouse capture and message loop.
#include <windows.h>

#include <algorithm>
#include <array>

#include "base/wheel_remainder.h"
#include "kits/widgets/painter.h"
#include "kits/widgets/select_drop_list.h"
#include "kits/widgets/widgets_host.h"

namespace {

constexpr wchar_t CLASS_NAME[] = L"Kit_Widgets_Drop_List";
constexpr int ROW_PADDING = 4;        ///< pixels between captions
constexpr UINT_PTR WATCH_TIMER = 1;   ///< looks whether the application is still in front
constexpr UINT WATCH_INTERVAL = 100;  ///< milliseconds

HINSTANCE Own_Module() {
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         CLASS_NAME, &module);
    return module;
}

bool Foreground_Is_Own() {
    DWORD process = 0;
    const HWND front = ::GetForegroundWindow();
    if (front == nullptr) {
        return true;  // between two activations
    }
    ::GetWindowThreadProcessId(front, &process);
    return process == ::GetCurrentProcessId();
}

/** The window of one open list. Lives on the stack of Drop_List_Show. */
class Drop_Window {
  public:
    Drop_Window(const Drop_List_Request& list_request, const Rect& screen, int row_height)
        : request(list_request), list(list_request, screen, row_height), module(Own_Module()) {
        WNDCLASSW window_class = {};
        window_class.lpfnWndProc = Procedure;
        window_class.hInstance = module;
        window_class.hCursor = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // the arrow
        window_class.lpszClassName = CLASS_NAME;
        window_class.style = CS_DROPSHADOW;
        ::RegisterClassW(&window_class);
        const Rect area = list.Area();
        POINT corner = {area.left, area.top};
        ::ClientToScreen(request.window, &corner);
        window = ::CreateWindowExW(WS_EX_NOACTIVATE | WS_EX_TOOLWINDOW | WS_EX_TOPMOST, CLASS_NAME, L"", WS_POPUP,
                                   corner.x, corner.y, area.width, area.height, request.window, nullptr, module, this);
        if (window != nullptr) {
            Window_Axis_Set(window, Window_Axis::Down);
            front_at_start = Foreground_Is_Own();
            ::ShowWindow(window, SW_SHOWNOACTIVATE);
            ::SetCapture(window);
            ::SetTimer(window, WATCH_TIMER, WATCH_INTERVAL, nullptr);
        }
    }
    ~Drop_Window() {
        if (window != nullptr) {
            const HWND closing = window;
            window = nullptr;
            ::DestroyWindow(closing);
        }
        ::UnregisterClassW(CLASS_NAME, module);
    }
    Drop_Window(const Drop_Window&) = delete;
    Drop_Window& operator=(const Drop_Window&) = delete;

    int Run() {
        while (window != nullptr && list.Now() == Drop_List::State::Open) {
            MSG message;
            const BOOL got = ::GetMessageW(&message, nullptr, 0, 0);
            if (got <= 0) {
                if (got == 0) {  // the application ends: hand the news on to its own loop
                    ::PostQuitMessage(static_cast<int>(message.wParam));
                }
                break;
            }
            if (Input(message)) {
                Repaint();
                continue;
            }
            ::TranslateMessage(&message);
            ::DispatchMessageW(&message);
        }
        return list.Picked();
    }

  private:
    /** Keys and the wheel go to whoever has the focus; while the list is open they are the list's. */
    bool Input(const MSG& message) {
        switch (message.message) {
            case WM_KEYDOWN:
            case WM_SYSKEYDOWN:
                Key(message);
                return true;
            case WM_CHAR:
                list.Key(message.wParam <= 0xFF ? static_cast<int>(message.wParam) : 0);
                return true;
            case WM_KEYUP:
            case WM_SYSKEYUP:
            case WM_SYSCHAR:
                return true;
            case WM_MOUSEWHEEL:
                Wheel(static_cast<short>(HIWORD(message.wParam)));
                return true;
            default:
                return false;
        }
    }

    void Key(const MSG& message) {
        const int special = Parse_Keyboard(message.hwnd, WM_KEYDOWN, message.wParam, message.lParam);
        if (special != 0) {
            list.Key(special);
        } else if (message.message == WM_SYSKEYDOWN) {
            list.Close();  // Alt and its combinations
        } else {
            ::TranslateMessage(&message);  // its character follows
        }
    }

    void Wheel(int delta) { list.Wheel(wheel.Add(delta)); }

    void Repaint() const {
        if (window != nullptr) {
            ::InvalidateRect(window, nullptr, FALSE);
        }
    }

    void Paint() const {
        ::ValidateRect(window, nullptr);
        Painter painter(window, Rect{0, 0, list.Area().width, list.Area().height});
        if (painter) {
            list.Paint(painter.Picture());
        }
    }

    void Watch() {
        const bool front = Foreground_Is_Own();
        if ((front_at_start && !front) || ::IsWindowVisible(request.window) == 0) {
            list.Close();
        }
    }

    LRESULT Handle(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
        const Point point{static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))};
        constexpr WPARAM any_button = MK_LBUTTON | MK_MBUTTON | MK_RBUTTON;
        switch (message) {
            case WM_LBUTTONDOWN:
            case WM_RBUTTONDOWN:
            case WM_MBUTTONDOWN:
                list.Press(point);
                Repaint();
                return 0;
            case WM_MOUSEMOVE:
                list.Motion(point, (wparam & any_button) != 0);
                Repaint();
                return 0;
            case WM_LBUTTONUP:
            case WM_RBUTTONUP:
            case WM_MBUTTONUP:
                list.Release(point);
                Repaint();
                return 0;
            case WM_CAPTURECHANGED:
            case WM_CANCELMODE:
                list.Close();
                return 0;
            case WM_TIMER:
                Watch();
                return 0;
            case WM_PAINT:
                Paint();
                return 0;
            case WM_ERASEBKGND:
                return 1;
            case WM_MOUSEACTIVATE:
                return MA_NOACTIVATE;
            case WM_NCDESTROY:  // also when the panel's window takes its pop-up down with it
                Window_Forget(handle);
                window = nullptr;
                list.Close();
                return 0;
            default:
                return ::DefWindowProcW(handle, message, wparam, lparam);
        }
    }

    static LRESULT CALLBACK Procedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
        if (message == WM_NCCREATE) {
            const auto* creation = reinterpret_cast<const CREATESTRUCTW*>(lparam);
            ::SetWindowLongPtrW(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
        }
        auto* self = reinterpret_cast<Drop_Window*>(::GetWindowLongPtrW(handle, GWLP_USERDATA));
        if (self == nullptr) {
            return ::DefWindowProcW(handle, message, wparam, lparam);
        }
        try {
            return self->Handle(handle, message, wparam, lparam);
        } catch (...) {  // no memory for a picture or a typed text: the list goes on without
            return 0;
        }
    }

    const Drop_List_Request& request;
    Drop_List list;
    HINSTANCE module;
    HWND window = nullptr;
    Wheel_Remainder wheel;
    bool front_at_start = true;
};

/** The monitor's work area in client coordinates of the window. */
Rect Screen_Of(HWND window, const Rect& field) {
    POINT corner = {field.left, field.Bottom()};
    ::ClientToScreen(window, &corner);
    MONITORINFO info = {};
    info.cbSize = sizeof(info);
    if (::GetMonitorInfoW(::MonitorFromPoint(corner, MONITOR_DEFAULTTONEAREST), &info) == 0) {
        return {field.left, field.Bottom(), field.width, 0};
    }
    POINT origin = {info.rcWork.left, info.rcWork.top};
    ::ScreenToClient(window, &origin);
    return {origin.x, origin.y, info.rcWork.right - info.rcWork.left, info.rcWork.bottom - info.rcWork.top};
}

}  // namespace

int Drop_List_Show(const Drop_List_Request& request) {
    if (::IsWindow(request.window) == 0) {
        return DROP_LIST_NONE;
    }
    const int row_height = Text_Height(Widget_Font(request.look)) + ROW_PADDING;
    return Drop_Window(request, Screen_Of(request.window, request.field), row_height).Run();
}
