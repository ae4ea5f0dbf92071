#include "workbench/global_keys.h"

#include "host/kit_widgets.h"

namespace workbench {

int Global_Key_Code(WPARAM key, bool is_control, bool is_alt) {
    if (is_alt) {
        return 0;
    }
    if (key >= VK_F1 && key <= VK_F12 && key != VK_F10 && !is_control) {  // F10 opens the menu
        return KEY_SPECIAL + static_cast<int>(key);
    }
    return is_control && (key == 'Q' || key == 'S') ? static_cast<int>(key) - 'A' + 1 : 0;
}

bool Global_Key_Dispatch(const MSG& message, HWND main_window, const std::function<void(int)>& take) {
    if (message.message != WM_KEYDOWN || message.hwnd == main_window || main_window == nullptr) {
        return false;
    }
    const HWND root = ::GetAncestor(message.hwnd, GA_ROOT);
    if (message.wParam == VK_ESCAPE && root != main_window && root != nullptr) {
        ::PostMessageW(root, WM_CLOSE, 0, 0);
        return true;
    }
    const int code = Global_Key_Code(message.wParam, ::GetKeyState(VK_CONTROL) < 0, ::GetKeyState(VK_MENU) < 0);
    if (code != 0) {
        take(code);
    }
    return code != 0;
}

}  // namespace workbench
