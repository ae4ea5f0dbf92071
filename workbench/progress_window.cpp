#include "workbench/progress_window.h"

#include <windowsx.h>

#include <oleacc.h>

#include <algorithm>

#include "workbench/accessible.h"

namespace workbench {

namespace {

constexpr int WIDTH = 420;  // pixels at 96 dots per inch
constexpr int HEIGHT = 130;
constexpr DWORD PATIENCE = 300;  // milliseconds without a window: short actions show none

}  // namespace

Progress_Window::Progress_Window(const Look& shared_look, HWND owner_window, const std::wstring& action)
    : look(shared_look), owner(owner_window), what(action) {
    constexpr DWORD style = WS_POPUP | WS_CAPTION | WS_SYSMENU;
    if (!Create(owner, style, L"Please wait")) {
        return;
    }
    RECT frame = {};
    ::GetWindowRect(owner, &frame);
    RECT size = {0, 0, look.Px(WIDTH), look.Px(HEIGHT)};
    ::AdjustWindowRect(&size, style, FALSE);
    const int x = (frame.left + frame.right - (size.right - size.left)) / 2;
    const int y = (frame.top + frame.bottom - (size.bottom - size.top)) / 2;
    start = ::GetTickCount();
    Accessible_Source source;
    source.role = ROLE_SYSTEM_DIALOG;
    source.name = [this] { return what; };
    source.value = [this] { return std::to_wstring(static_cast<int>(100.0 * share)) + L" %  " + detail; };
    source.parts = [this] {
        return std::vector<Accessible_Part>{{L"Cancel", L"", ROLE_SYSTEM_PUSHBUTTON, 0, Button_Box(), 0}};
    };
    Accessible_Set(std::move(source));
    ::SetWindowPos(Handle(), nullptr, x, y, size.right - size.left, size.bottom - size.top, SWP_NOZORDER);
}

Progress_Window::~Progress_Window() {
    if (Handle() != nullptr && Is_Shown()) {
        ::EnableWindow(owner, TRUE);  // before this window goes, or another program's window would come to the front
        ::SetForegroundWindow(owner);
        ::SetFocus(::IsWindow(had_keys) != 0 ? had_keys : owner);
    }
}

bool Progress_Window::Step(double done, const std::wstring& text) {
    share = std::clamp(done, 0.0, 1.0);
    detail = text;
    if (!Is_Shown()) {
        if (::GetTickCount() - start < PATIENCE) {
            return true;  // nobody is answered yet, so nothing can happen beside the action
        }
        had_keys = ::GetFocus();
        ::EnableWindow(owner, FALSE);
        ::ShowWindow(Handle(), SW_SHOW);
    }
    Invalidate();
    MSG message = {};
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        if (message.message == WM_QUIT) {
            ::PostQuitMessage(static_cast<int>(message.wParam));
            is_cancelled = true;
            break;
        }
        if (message.message == WM_KEYDOWN && message.wParam == VK_ESCAPE) {
            is_cancelled = true;
        }
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
    return !is_cancelled;
}

RECT Progress_Window::Button_Box() const {
    const RECT client = Client();
    return {client.right - look.Px(112), client.bottom - look.Px(42), client.right - look.Px(16),
            client.bottom - look.Px(14)};
}

void Progress_Window::Paint() {
    const Buffered_Paint paint(Handle());
    const HDC dc = paint.Dc();
    const RECT client = paint.Client();
    Fill(dc, client, look.ground);
    const int left = look.Px(16);
    const int right = client.right - look.Px(16);
    Draw_Line(dc, {left, look.Px(10), right, look.Px(34)}, what, look.Bold(), look.text, DT_LEFT);
    RECT bar = {left, look.Px(40), right, look.Px(52)};
    Fill(dc, bar, look.image_ground);
    bar.right = bar.left + static_cast<LONG>((bar.right - bar.left) * share);
    Fill(dc, bar, look.accent);
    const RECT button = Button_Box();
    Draw_Line(dc, {left, button.top, button.left - look.Px(8), button.bottom}, detail, look.Font(), look.text_grey,
              DT_LEFT);
    Fill(dc, button, look.heading_hover);
    Draw_Line(dc, button, L"Cancel", look.Font(), look.text, DT_CENTER);
}

LRESULT Progress_Window::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    const POINT point = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    const RECT button = Button_Box();
    switch (message) {
        case WM_PAINT:
            Paint();
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_CLOSE:
            is_cancelled = true;
            return 0;
        case WM_LBUTTONUP:
            is_cancelled = is_cancelled || ::PtInRect(&button, point) != 0;
            return 0;
        default:
            return Window_Base::On_Message(message, wparam, lparam);
    }
}

}  // namespace workbench
