#include "workbench/panel_host.h"

#include <oleacc.h>

#include <algorithm>
#include <iterator>

#include "kits/widgets/shown_widgets.h"
#include "workbench/name_tip.h"

namespace workbench {

namespace {

constexpr int FACE_FONT_MOST = 15;  // pixels; the rows of such panels are 18 pixels high on every screen

}  // namespace

Panel_Host::Panel_Host(Hosted_Panel& hosted, const Look& shared_look, std::function<void(int, int)> on_click)
    : panel(hosted), look(shared_look), core(hosted, std::move(on_click)) {
    // What Resize does not read: marks, greying, frames, masks.
    core.after_resize = UPDATE_ALL | UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR |
                        UPDATE_BRUSH | UPDATE_FRAME_CUR;
}

Panel_Host::~Panel_Host() {
    Name_Tip_Forget(Handle());
}

bool Panel_Host::Make(HWND parent, Window_Axis axis) {
    if (!Create(parent, WS_CHILD | WS_CLIPSIBLINGS, L"")) {
        return false;
    }
    core.Attach(Handle(), axis);
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
            Refresh();
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
    Boxs& box = core.look;
    box.style = STYLE_FRAMED_BOX | STYLE_SHOW_CHECK;
    box.color.red = look.panel[0];
    box.color.green = look.panel[1];
    box.color.blue = look.panel[2];
    box.font_scale = 0;
    if (face_grey != 0) {
        box.Set_Color(static_cast<unsigned char>(face_grey), static_cast<unsigned char>(face_grey),
                      static_cast<unsigned char>(face_grey));
        box.font_scale = static_cast<short>(std::min(look.Px(face_font), FACE_FONT_MOST));
    }
    box.border = 1;
    core.ground.red = GetRValue(look.ground);
    core.ground.green = GetGValue(look.ground);
    core.ground.blue = GetBValue(look.ground);
    core.Lay_Out();
}

LRESULT Panel_Host::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_SIZE:
            Lay_Out();
            return 0;
        case WM_DESTROY:  // with its parent, maybe long before this object
            Name_Tip_Forget(Handle());
            core.Detach();
            return 0;
        case WM_LBUTTONDOWN:
        case WM_MBUTTONDOWN:
        case WM_RBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_RBUTTONDBLCLK:
        case WM_MOUSELEAVE:
            Name_Tip_Hide();
            break;
        case WM_MOUSEMOVE:
            Name_Tip_Follow(Handle(), {static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))});
            break;
        default:
            break;
    }
    LRESULT answer = 0;
    return core.Message(message, wparam, lparam, &answer) ? answer : Window_Base::On_Message(message, wparam, lparam);
}

}  // namespace workbench
