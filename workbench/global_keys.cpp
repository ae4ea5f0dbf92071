#include "workbench/global_keys.h"

#include <string_view>

#include "host/kit_widgets.h"

namespace workbench {

namespace {

/** A field with text, or a list beside one: keys are its own. */
bool Is_Field(HWND window) {
    wchar_t name[16] = {};
    ::GetClassNameW(window, name, 16);
    const std::wstring_view of_class = name;
    return of_class == L"Edit" || of_class == L"ComboBox" || of_class == L"ListBox";
}

}  // namespace

int Global_Key_Code(WPARAM key, bool is_control, bool is_alt, bool is_field) {
    if (is_alt) {
        return 0;
    }
    if (key >= VK_F1 && key <= VK_F12 && key != VK_F10 && !is_control) {  // F10 opens the menu
        return KEY_SPECIAL + static_cast<int>(key);
    }
    if (!is_control || key < 'A' || key > 'Z') {
        return 0;
    }
    // Backspace, Tab, line feed and Enter have the codes of these letters.
    constexpr std::string_view other_keys = "HIJM";
    constexpr std::string_view copying = "ACVX";
    constexpr std::string_view undoing = "YZ";
    constexpr auto none = std::string_view::npos;
    const char letter = static_cast<char>(key);
    const bool is_own =
        other_keys.find(letter) != none || copying.find(letter) != none || (is_field && undoing.find(letter) != none);
    return is_own ? 0 : letter - 'A' + 1;
}

bool Global_Key_Dispatch(const MSG& message, HWND main_window, const std::function<bool(int)>& take) {
    const bool is_down = message.message == WM_KEYDOWN;
    if ((!is_down && message.message != WM_CHAR) || message.hwnd == main_window || main_window == nullptr) {
        return false;
    }
    const HWND root = ::GetAncestor(message.hwnd, GA_ROOT);
    if (is_down && message.wParam == VK_ESCAPE && root != main_window && root != nullptr) {
        ::PostMessageW(root, WM_CLOSE, 0, 0);
        return true;
    }
    const bool is_field = Is_Field(message.hwnd);
    if (is_down) {
        const int code =
            Global_Key_Code(message.wParam, ::GetKeyState(VK_CONTROL) < 0, ::GetKeyState(VK_MENU) < 0, is_field);
        return code != 0 && take(code);
    }
    // Without a field a character is nobody else's; Space and Enter press what has the keyboard.
    const int code = is_field ? 0 : Parse_Keyboard(message.hwnd, message.message, message.wParam, message.lParam);
    return code > ' ' && take(code);
}

}  // namespace workbench
