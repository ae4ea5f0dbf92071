#include "workbench/window_base.h"

#include <windowsx.h>

#include <exception>
#include <utility>

#include "host/kit_common.h"
#include "host/kit_widgets.h"
#include "workbench/accessible.h"
#include "workbench/automation_provider.h"
#include "workbench/window_theme.h"

namespace workbench {

namespace {

constexpr const wchar_t* CLASS_NAME = L"Workbench_Window";

void Register_Class() {
    static bool is_registered = false;
    if (is_registered) {
        return;
    }
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    description.style = CS_HREDRAW | CS_VREDRAW;  // what stands at the right or in the middle moves with the size
    description.hInstance = ::GetModuleHandleW(nullptr);
    description.hCursor = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
    description.hIcon = ::LoadIconW(description.hInstance, L"MAINICON");
    description.lpszClassName = CLASS_NAME;
    description.lpfnWndProc = ::DefWindowProcW;
    is_registered = ::RegisterClassExW(&description) != 0;
}

}  // namespace

Window_Base::~Window_Base() {
    if (own_handle != nullptr) {
        Automation_Forget(own_handle);
        ::SetWindowLongPtrW(own_handle, GWLP_USERDATA, 0);
        ::DestroyWindow(own_handle);
    }
}

bool Window_Base::Create(HWND parent, DWORD style, const wchar_t* title, HMENU menu) {
    Register_Class();
    own_handle = ::CreateWindowExW(0, CLASS_NAME, title, style, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                                   CW_USEDEFAULT, parent, menu, ::GetModuleHandleW(nullptr), nullptr);
    if (own_handle == nullptr) {
        return false;
    }
    Frame_Theme_Follow(own_handle);
    ::SetWindowLongPtrW(own_handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    ::SetWindowLongPtrW(own_handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Window_Base::Procedure));
    return true;
}

LRESULT CALLBACK Window_Base::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto* object = reinterpret_cast<Window_Base*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    if (object == nullptr) {
        return ::DefWindowProcW(window, message, wparam, lparam);
    }
    if (message == WM_NCDESTROY) {
        ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        object->own_handle = nullptr;
        return ::DefWindowProcW(window, message, wparam, lparam);
    }
    try {
        if (const auto answer = Accessible_Message(window, message, wparam, lparam, object->accessible)) {
            return *answer;
        }
        return object->On_Message(message, wparam, lparam);
    } catch (const std::exception& failure) {
        Failure_Tell(failure);
        return 0;
    }
}

void Failure_Tell(const std::exception& failure) {
    Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x05WARNING:\x02 The action was not finished: %s", failure.what());
}

LRESULT Window_Base::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    return ::DefWindowProcW(own_handle, message, wparam, lparam);
}

void Window_Base::Accessible_Set(Accessible_Source source) {
    accessible = std::make_shared<Accessible_Source>(std::move(source));
}

void Window_Base::Invalidate(const RECT* area) const {
    ::InvalidateRect(own_handle, area, FALSE);
}

void Window_Base::Place(const RECT& area) const {
    ::SetWindowPos(own_handle, nullptr, area.left, area.top, area.right - area.left, area.bottom - area.top,
                   SWP_NOZORDER | SWP_NOACTIVATE);
}

void Window_Base::Show(bool shown) const {
    ::ShowWindow(own_handle, shown ? SW_SHOWNA : SW_HIDE);
}

bool Window_Base::Is_Shown() const {
    return (::GetWindowLongPtrW(own_handle, GWL_STYLE) & WS_VISIBLE) != 0;
}

RECT Window_Base::Client() const {
    RECT client = {};
    ::GetClientRect(own_handle, &client);
    return client;
}

void Pointer_Take(HWND window, LPARAM client_position) {
    POINT pointer = {GET_X_LPARAM(client_position), GET_Y_LPARAM(client_position)};
    ::ClientToScreen(window, &pointer);
    YCursor_X = pointer.x;
    YCursor_Y = pointer.y;
}

int Held_Buttons(WPARAM keys) {
    return ((keys & MK_LBUTTON) != 0 ? MOUSE_LEFT : 0) | ((keys & MK_MBUTTON) != 0 ? MOUSE_MIDDLE : 0) |
           ((keys & MK_RBUTTON) != 0 ? MOUSE_RIGHT : 0);
}

void Watch_Leave(HWND window) {
    TRACKMOUSEEVENT leave = {sizeof leave, TME_LEAVE, window, 0};
    ::TrackMouseEvent(&leave);
}

}  // namespace workbench
