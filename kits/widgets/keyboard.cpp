// Key messages to key codes. The numbers of the messages and keys are those of Windows, named here so that the
// translation needs no window system.
#include "host/kit_widgets.h"
#include "kits/common/text_conversion.h"
#include "kits/widgets/device.h"

namespace {

constexpr unsigned int MESSAGE_KEY_DOWN = 0x0100;
constexpr unsigned int MESSAGE_CHARACTER = 0x0102;
constexpr unsigned int MESSAGE_SYSTEM_KEY_DOWN = 0x0104;

constexpr int VIRTUAL_PAGE_UP = 0x21;  // Page Up, Page Down, End, Home and the arrows follow one another
constexpr int VIRTUAL_DOWN = 0x28;
constexpr int VIRTUAL_INSERT = 0x2D;
constexpr int VIRTUAL_DELETE = 0x2E;
constexpr int VIRTUAL_F1 = 0x70;
constexpr int VIRTUAL_F24 = 0x87;
constexpr std::uintptr_t CONTROL_BACKSPACE = 0x7F;  // the character that Ctrl+Backspace makes

bool Has_No_Character(int key) {
    return (key >= VIRTUAL_PAGE_UP && key <= VIRTUAL_DOWN) || key == VIRTUAL_INSERT || key == VIRTUAL_DELETE ||
           (key >= VIRTUAL_F1 && key <= VIRTUAL_F24);
}

int Special_Key(unsigned int message, std::uintptr_t wparam) {
    if (message != MESSAGE_KEY_DOWN && message != MESSAGE_SYSTEM_KEY_DOWN) {
        return 0;
    }
    return wparam <= 0xFF && Has_No_Character(static_cast<int>(wparam)) ? KEY_SPECIAL + static_cast<int>(wparam) : 0;
}

int Character(std::uintptr_t code) {
    return code == CONTROL_BACKSPACE ? KEY_BACKSPACE : code <= 0xFF ? static_cast<int>(code) : 0;
}

/** A number of UTF-16: the byte where the code page has one for the character, else the number itself. The halves of a
 * pair are two key codes, and none where the code page is not UTF-8: no other one has such characters. */
int Wide_Character(std::uintptr_t code) {
    constexpr std::uintptr_t first_beyond_ascii = 0x80;
    if (code < first_beyond_ascii) {
        return Character(code);
    }
    const bool control = code < 0xA0;
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    const bool taken_for_a_key = code >= KEY_SPECIAL && code <= KEY_SPECIAL + 0xFF;
    if (control || taken_for_a_key || code > 0xFFFF) {
        return 0;
    }
    if (surrogate) {
        return Code_Page_Is_Utf8() ? static_cast<int>(code) : 0;
    }
    const wchar_t unit = static_cast<wchar_t>(code);
    char bytes[BYTES_PER_CHARACTER] = {};
    const int count = Bytes_Of_Wide_Character(&unit, 1, bytes);
    const int byte = static_cast<unsigned char>(bytes[0]);
    if (count == 1) {
        return byte != '?' ? byte : 0;
    }
    return static_cast<int>(code);
}

}  // namespace

int Parse_Keyboard(HWND window, unsigned int message, std::uintptr_t wparam, std::intptr_t) {
    if (message != MESSAGE_CHARACTER) {
        return Special_Key(message, wparam);
    }
    return System_Window_Is_Wide(window) ? Wide_Character(wparam) : Character(wparam);
}

int Parse_Dialog(HWND, unsigned int message, std::uintptr_t wparam, std::intptr_t lparam) {
    if (message != MESSAGE_KEY_DOWN || wparam > 0xFF) {
        return Special_Key(message, wparam);
    }
    const int special = Special_Key(message, wparam);
    return special != 0
               ? special
               : Wide_Character(static_cast<std::uintptr_t>(System_Key_Character(static_cast<int>(wparam), lparam)));
}
