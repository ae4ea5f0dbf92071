#include "workbench/status_line.h"

#include <algorithm>

namespace workbench {

bool Status_Line::Make(HWND parent) {
    return Create(parent, WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, L"");
}

void Status_Line::Message_Set(const std::wstring& text) {
    if (message_text != text) {
        message_text = text;
        Invalidate();
    }
}

void Status_Line::Voxel_Set(const std::wstring& text) {
    if (voxel != text) {
        voxel = text;
        Invalidate();
    }
}

void Status_Line::Mark_Set(const std::wstring& text) {
    if (mark != text) {
        mark = text;
        Invalidate();
    }
}

int Status_Line::Draw_Mark(HDC dc, const RECT& room) const {
    const Selected_Object selected(dc, look.Bold());
    SIZE size = {};
    ::GetTextExtentPoint32W(dc, mark.c_str(), static_cast<int>(mark.size()), &size);
    const int width = std::min<int>(size.cx + look.Px(16), room.right - room.left);
    RECT box = {room.right - width, room.top + look.Px(3), room.right, room.bottom - look.Px(2)};
    Fill(dc, box, look.warning);
    ::InflateRect(&box, -look.Px(8), 0);
    Draw_Line(dc, box, mark, look.Bold(), look.warning_text, DT_LEFT);
    return width;
}

LRESULT Status_Line::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_ERASEBKGND) {
        return 1;
    }
    if (message != WM_PAINT) {
        return Window_Base::On_Message(message, wparam, lparam);
    }
    const Buffered_Paint paint(Handle());
    Fill(paint.Dc(), paint.Client(), look.ground);
    RECT line = paint.Client();
    line.bottom = line.top + 1;
    Fill(paint.Dc(), line, look.line);
    RECT text = paint.Client();
    text.left += look.Px(10);
    text.right -= look.Px(10);
    const int used = Draw_Line(paint.Dc(), text, voxel, look.Font(), look.text, DT_RIGHT);
    text.right -= used + look.Px(24);
    if (!mark.empty() && text.right > text.left) {
        text.right -= Draw_Mark(paint.Dc(), text) + look.Px(16);
    }
    if (text.right > text.left) {
        Draw_Line(paint.Dc(), text, message_text, look.Font(), look.text_grey, DT_LEFT);
    }
    return 0;
}

}  // namespace workbench
