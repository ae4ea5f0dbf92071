#include "workbench/table_view.h"

#include <algorithm>

namespace workbench {

namespace {

constexpr int WHEEL_LINES = 3;  // of a notch

}  // namespace

bool Table_View::Make(HWND parent) {
    if (!Create(parent, WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, L"Statistics")) {
        return false;
    }
    lines = Lines_Make(Handle(), &label);
    if (label == nullptr || lines == nullptr) {
        return false;
    }
    row_choice.Watch(lines);
    Fonts_Set();
    return true;
}

void Table_View::Text_Set(const std::wstring& table_title, const std::wstring& text) {
    title = table_title;
    ::SetWindowTextW(label, title.c_str());
    Lines_Set(lines, text);
    Invalidate();
}

void Table_View::Wheel(int delta) {
    ::SendMessageW(lines, EM_LINESCROLL, 0, static_cast<LPARAM>(-wheel.Add(delta) * WHEEL_LINES));
}

int Table_View::Title_Height() const {
    return look.Px(24);
}

void Table_View::Lay_Out() const {
    const RECT client = Client();
    const int margin = look.Px(8);
    ::SetWindowPos(lines, nullptr, margin, Title_Height(), std::max<LONG>(client.right - margin, 0),
                   std::max<LONG>(client.bottom - Title_Height(), 0), SWP_NOZORDER | SWP_NOACTIVATE);
}

void Table_View::Fonts_Set() {
    if (font_set != look.Fixed()) {
        font_set = look.Fixed();
        ::SendMessageW(lines, WM_SETFONT, reinterpret_cast<WPARAM>(font_set), TRUE);
    }
}

LRESULT Table_View::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_SIZE:
            Fonts_Set();
            Lay_Out();
            return 0;
        case WM_PAINT: {
            Fonts_Set();  // the look may be another one
            const Buffered_Paint paint(Handle());
            RECT area = paint.Client();
            area.bottom = Title_Height();
            Fill(paint.Dc(), paint.Client(), look.ground);
            Fill(paint.Dc(), area, look.heading);
            area.left += look.Px(8);
            Draw_Line(paint.Dc(), area, title, look.Bold(), look.text, DT_LEFT);
            return 0;
        }
        case WM_ERASEBKGND:
            return 1;
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
