#include "workbench/panel_host.h"

#include <oleacc.h>

#include <algorithm>
#include <iterator>

#include "kits/widgets/shown_widgets.h"
#include "workbench/name_tip.h"

namespace workbench {

namespace {

constexpr int face_font_most = 15;   // pixels; the rows of such panels are 18 pixels high on every screen
constexpr int box_size_max = 32767;  // rectangles of panels are 16 bits wide

}  // namespace

Panel_Host::Panel_Host(Hosted_Panel& hosted, const Look& shared_look, std::function<void(int, int)> on_click)
    : panel(hosted), look(shared_look), clicked(std::move(on_click)) {}

Panel_Host::~Panel_Host() {
    Name_Tip_Forget(Handle());
    Window_Forget(Handle());
}

bool Panel_Host::Make(HWND parent, Window_Axis axis) {
    if (!Create(parent, WS_CHILD | WS_CLIPSIBLINGS, L"")) {
        return false;
    }
    Window_Axis_Set(Handle(), axis);
    return true;
}

void Panel_Host::Accessible_Names(const std::wstring& name, std::function<std::wstring(int)> part_name,
                                  std::function<std::vector<Accessible_Part>()> own_parts) {
    Accessible_Source source;
    source.role = ROLE_SYSTEM_GROUPING;
    source.name = [name] { return name; };
    source.parts = [this, part_name = std::move(part_name), own_parts = std::move(own_parts)] {
        if (!is_watched) {
            is_watched = true;
            Window_Widgets_Watch(Handle(), true);
            Paint();
        }
        std::vector<Accessible_Part> parts = Widget_Parts(Handle(), part_name);
        if (own_parts) {
            std::ranges::move(own_parts(), std::back_inserter(parts));
        }
        return parts;
    };
    Name_Tip_Set(Handle(), look, source.parts);
    Accessible_Set(std::move(source));
}

void Panel_Host::Lay_Out() {
    const RECT client = Client();
    if (client.right <= 0 || client.bottom <= 0) {
        return;
    }
    Boxs box;
    box.style = STYLE_FRAMED_BOX | STYLE_SHOW_CHECK;
    box.width = static_cast<short>(std::min<LONG>(client.right, box_size_max));
    box.height = static_cast<short>(std::min<LONG>(client.bottom, box_size_max));
    box.color.red = look.panel[0];
    box.color.green = look.panel[1];
    box.color.blue = look.panel[2];
    if (face_grey != 0) {
        box.Set_Color(static_cast<unsigned char>(face_grey), static_cast<unsigned char>(face_grey),
                      static_cast<unsigned char>(face_grey));
        box.font_scale = static_cast<short>(std::min(look.Px(face_font), face_font_most));
    }
    box.border = 1;
    box.window = Handle();
    Buffered([&] {
        Clear();
        panel.Resize(&box);
        is_laid_out = true;
        // What Resize does not read: marks, greying, frames, masks.
        panel.Update(UPDATE_ALL | UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR |
                     UPDATE_BRUSH | UPDATE_FRAME_CUR);
        panel.Draw();
    });
    Invalidate();
}

void Panel_Host::Clear() {
    // Panels do not paint between their parts.
    const RECT client = Client();
    Boxs ground;
    ground.width = static_cast<short>(std::min<LONG>(client.right, box_size_max));
    ground.height = static_cast<short>(std::min<LONG>(client.bottom, box_size_max));
    ground.Init(Handle());
    Colors color;
    color.red = GetRValue(look.ground);
    color.green = GetGValue(look.ground);
    color.blue = GetBValue(look.ground);
    ground.Clear(color);
}

void Panel_Host::Update(unsigned __int64 flags) {
    if (is_laid_out) {
        Buffered([&] { panel.Update(flags); });
    }
}

void Panel_Host::Wheel(int delta) {
    const int notches = wheel.Add(delta);
    if (notches != 0 && is_laid_out) {
        Buffered([&] { return panel.Scroll(notches); });
    }
}

bool Panel_Host::Key(int key) {
    if (!is_laid_out) {
        return false;
    }
    POINT pointer = {};
    ::GetCursorPos(&pointer);
    YCursor_X = pointer.x;
    YCursor_Y = pointer.y;
    Key_In_Hand_Set(key);
    const bool used = Buffered([&] { return panel.Keyboard(key); }) != 0;
    Key_In_Hand_Set(0);
    return used;
}

void Panel_Host::Click(LPARAM position, int up_down) {
    Pointer_Take(Handle(), position);
    const int result = Buffered([&] { return panel.Click(up_down); });
    clicked(result, up_down);
}

void Panel_Host::Paint() {
    if (is_laid_out) {
        Buffered([&] {
            Clear();
            panel.Draw();
        });
    }
    ::ValidateRect(Handle(), nullptr);
}

LRESULT Panel_Host::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_SIZE:
            Lay_Out();
            return 0;
        case WM_PAINT:
            Paint();
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_DESTROY:  // with its parent, maybe long before this object
            Name_Tip_Forget(Handle());
            return 0;
        case WM_LBUTTONDOWN:
        case WM_MBUTTONDOWN:
        case WM_RBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_RBUTTONDBLCLK:
            Name_Tip_Hide();
            ::SetCapture(Handle());  // a slider follows the pointer also outside
            Click(lparam, MOUSE_PRESS | Held_Buttons(wparam));
            return 0;
        case WM_LBUTTONUP:
        case WM_MBUTTONUP:
        case WM_RBUTTONUP:
            if (Held_Buttons(wparam) == 0 && ::GetCapture() == Handle()) {
                ::ReleaseCapture();
            }
            Click(lparam, Held_Buttons(wparam));
            return 0;
        case WM_MOUSEMOVE: {
            Watch_Leave(Handle());
            Name_Tip_Follow(Handle(), {static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))});
            Pointer_Take(Handle(), lparam);
            const int held = Held_Buttons(wparam);
            Buffered([&] { return panel.Motion(held != 0 ? held | MOUSE_DRAG : 0); });
            return 0;
        }
        case WM_MOUSELEAVE:
            Name_Tip_Hide();
            Buffered([&] { panel.Leave(); });
            return 0;
        default:
            return Window_Base::On_Message(message, wparam, lparam);
    }
}

}  // namespace workbench
