#include "workbench/enlarged_keyboard.h"

#include <vector>

#include "kits/widgets/shown_widgets.h"
#include "kits/widgets/widgets_host.h"
#include "workbench/enlarged_window.h"
#include "workbench/model/enlarged_keys.h"

namespace workbench {

namespace {

/** Alt is part of another message; with Ctrl, letters are other characters. */
bool Is_Ctrl() {
    return ::GetKeyState(VK_CONTROL) < 0;
}

/** The controls as they are painted now. Watched for this moment only, so that other painting costs nothing more. */
std::vector<Shown_Widget> Controls(HWND window) {
    Window_Widgets_Watch(window, true);
    ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    std::vector<Shown_Widget> controls(static_cast<std::size_t>(Window_Widget_Nb(window)));
    for (std::size_t at = 0; at < controls.size(); ++at) {
        Window_Widget_Get(window, static_cast<int>(at), &controls[at]);
    }
    Window_Widgets_Watch(window, false);
    std::erase_if(controls, [](const Shown_Widget& widget) { return widget.is_inactive; });
    return controls;
}

void Do(HWND window, const Enlarged_Act& act) {
    POINT point = {act.x, act.y};
    const LPARAM in_client = MAKELPARAM(static_cast<WORD>(point.x), static_cast<WORD>(point.y));
    switch (act.kind) {
        case Enlarged_Act::Kind::Wheel:
            ::ClientToScreen(window, &point);
            ::SendMessageW(window, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(act.notches * WHEEL_DELTA)),
                           MAKELPARAM(static_cast<WORD>(point.x), static_cast<WORD>(point.y)));
            break;
        case Enlarged_Act::Kind::Press:
            ::SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, in_client);
            ::SendMessageW(window, WM_LBUTTONUP, 0, in_client);
            ::SendMessageW(window, WM_MOUSELEAVE, 0, 0);
            break;
        case Enlarged_Act::Kind::Close:
            ::SendMessageW(window, WM_CLOSE, 0, 0);
            break;
    }
}

}  // namespace

bool Enlarged_Key_Dispatch(const MSG& message) {
    if ((message.message != WM_KEYDOWN && message.message != WM_CHAR) || !Is_Enlarged_Window(message.hwnd) ||
        Is_Ctrl()) {
        return false;
    }
    const int key = Parse_Keyboard(message.hwnd, message.message, message.wParam, message.lParam);
    if (key == 0) {
        return false;
    }
    const std::vector<Shown_Widget> shown = Controls(message.hwnd);
    std::vector<Enlarged_Control> controls;
    for (const Shown_Widget& widget : shown) {
        if (widget.name[0] != 0) {
            controls.push_back({widget.name, widget.left, widget.top, widget.width, widget.height});
        }
    }
    RECT client = {};
    ::GetClientRect(message.hwnd, &client);
    const std::vector<Enlarged_Act> acts = Enlarged_Key_Acts(key, {client.right, client.bottom, controls});
    if (acts.empty()) {
        return false;
    }
    // Only the last of several looks is shown.
    const bool is_collected = acts.size() > 1;
    if (is_collected) {
        Window_Buffer_Begin(message.hwnd);
    }
    for (const Enlarged_Act& act : acts) {
        Do(message.hwnd, act);
    }
    if (is_collected) {
        Window_Buffer_End(message.hwnd);
    }
    return true;
}

}  // namespace workbench
