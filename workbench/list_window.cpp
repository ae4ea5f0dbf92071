#include "workbench/list_window.h"

#include "workbench/window_places.h"

namespace workbench {

namespace {

constexpr int FIRST_WIDTH = 760;  // pixels at 96 dots per inch
constexpr int FIRST_TABLE_WIDTH = 880;
constexpr int FIRST_HEIGHT = 420;

}  // namespace

void List_Window::Open(HWND owner, const std::wstring& title, const std::wstring& text, List_Font font) {
    if (Handle() == nullptr) {
        if (!Create(owner, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, title.c_str())) {
            return;
        }
        lines = Lines_Make(Handle(), &label);
        row_choice.Watch(lines);
        Place_Beside(Handle(), owner, tools_width, place,
                     look.Px(font == List_Font::Fixed ? FIRST_TABLE_WIDTH : FIRST_WIDTH), look.Px(FIRST_HEIGHT));
    }
    ::SendMessageW(lines, WM_SETFONT, reinterpret_cast<WPARAM>(font == List_Font::Fixed ? look.Fixed() : look.Font()),
                   TRUE);
    Text_Set(title, text);
    ::ShowWindow(Handle(), SW_SHOWNORMAL);
    ::SetForegroundWindow(Handle());
}

void List_Window::Text_Set(const std::wstring& title, const std::wstring& text) {
    ::SetWindowTextW(Handle(), title.c_str());
    ::SetWindowTextW(label, title.c_str());
    Lines_Set(lines, text);
}

void List_Window::Place_Set(const Window_Place& last, int tools) {
    place = last;
    tools_width = tools;
}

Window_Place List_Window::Place_Now() const {
    return Handle() != nullptr ? Place_Of(Handle()) : place;
}

LRESULT List_Window::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_SIZE: {
            const RECT client = Client();
            ::SetWindowPos(lines, nullptr, 0, 0, client.right, client.bottom, SWP_NOZORDER | SWP_NOACTIVATE);
            return 0;
        }
        case WM_SETFOCUS:
            ::SetFocus(lines);
            return 0;
        case WM_DESTROY:
            place = Place_Of(Handle());
            return 0;
        case WM_CTLCOLORSTATIC:
            ::SetTextColor(reinterpret_cast<HDC>(wparam), look.text);
            ::SetBkColor(reinterpret_cast<HDC>(wparam), look.ground);
            ::SetDCBrushColor(reinterpret_cast<HDC>(wparam), look.ground);
            return reinterpret_cast<LRESULT>(::GetStockObject(DC_BRUSH));
        default:
            return Window_Base::On_Message(message, wparam, lparam);
    }
}

}  // namespace workbench
