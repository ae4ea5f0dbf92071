#include "workbench/status_line.h"

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
    if (text.right > text.left) {
        Draw_Line(paint.Dc(), text, message_text, look.Font(), look.text_grey, DT_LEFT);
    }
    return 0;
}
