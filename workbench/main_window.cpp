#include "workbench/main_window.h"

#include <shellapi.h>
#include <windowsx.h>

#include "host/kit_widgets.h"
#include "workbench/menu_bar.h"

namespace workbench {

namespace {

constexpr LONG LEAST_WIDTH = 640;
constexpr LONG LEAST_HEIGHT = 420;
constexpr UINT MESSAGE_DPI_CHANGED = 0x02E0;  // WM_DPICHANGED, unknown to older headers
constexpr UINT MESSAGE_DELIVER = WM_APP + 7;

}  // namespace

bool Main_Window::Make() {
    if (!Create(nullptr, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, L"Workbench", Menu_Make())) {
        return false;
    }
    ::DragAcceptFiles(Handle(), TRUE);
    is_made = true;
    return true;
}

void Main_Window::Deliver_Soon() const {
    if (is_made) {
        ::PostMessageW(Handle(), MESSAGE_DELIVER, 0, 0);
    }
}

void Main_Window::Drop(WPARAM handle) {
    const auto drop = reinterpret_cast<HDROP>(handle);
    std::wstring path(::DragQueryFileW(drop, 0, nullptr, 0) + 1U, L' ');
    path.resize(::DragQueryFileW(drop, 0, path.data(), static_cast<UINT>(path.size())));
    ::DragFinish(drop);
    user.Files_Dropped(path);
}

LRESULT Main_Window::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_SIZE:
            if (is_made && wparam != SIZE_MINIMIZED) {
                user.Lay_Out();
            }
            return 0;
        case WM_GETMINMAXINFO: {
            auto* limits = reinterpret_cast<MINMAXINFO*>(lparam);
            limits->ptMinTrackSize = {LEAST_WIDTH, LEAST_HEIGHT};
            return 0;
        }
        case WM_ERASEBKGND: {
            // Nothing is seen of it but the lines between the views of the image.
            const RECT client = Client();
            ::FillRect(reinterpret_cast<HDC>(wparam), &client, static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH)));
            return 1;
        }
        case WM_COMMAND:
            if (const auto call = Command_Of_Menu(LOWORD(wparam))) {
                user.Execute(*call);
            }
            return 0;
        case WM_INITMENUPOPUP:
            user.Menu_Refresh(reinterpret_cast<HMENU>(wparam));
            return 0;
        case WM_CHAR:
        case WM_KEYDOWN:
            if (const int key = Parse_Keyboard(Handle(), message, wparam, lparam); key != 0) {
                user.Key(key);
            }
            return 0;
        case WM_MOUSEWHEEL:
            user.Wheel({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}, GET_WHEEL_DELTA_WPARAM(wparam),
                       (GET_KEYSTATE_WPARAM(wparam) & MK_CONTROL) != 0);
            return 0;
        case MESSAGE_DELIVER:
            user.Deliver();
            return 0;
        case WM_DROPFILES:
            Drop(wparam);
            return 0;
        case MESSAGE_DPI_CHANGED: {
            const auto* place = reinterpret_cast<const RECT*>(lparam);
            user.Dpi_Changed(LOWORD(wparam));
            Place(*place);
            return 0;
        }
        case WM_CLOSE:
            if (user.May_Close()) {
                ::DestroyWindow(Handle());
            }
            return 0;
        case WM_QUERYENDSESSION:
            return user.May_Close() ? TRUE : FALSE;
        case WM_DESTROY:
            ::PostQuitMessage(0);
            return 0;
        default:
            return Window_Base::On_Message(message, wparam, lparam);
    }
}

}  // namespace workbench
