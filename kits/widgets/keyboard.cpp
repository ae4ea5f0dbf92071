// Key messages to key codes. The numbers of the messages and keys are those of Windows, named here so that the
// translation needs no window system.
#include "host/kit_widgets.h"
#include "kits/common/text_conversion.h"
#include "kits/widgets/device.h"

namespace {

constexpr unsigned int message_key_down = 0x0100;
constexpr unsigned int message_character = 0x0102;
constexpr unsigned int message_system_key_down = 0x0104;

constexpr int key_page_up = 0x21;  // Page Up, Page Down, End, Home and the arrows follow one another
constexpr int key_down = 0x28;
constexpr int key_insert = 0x2D;
constexpr int key_delete = 0x2E;
constexpr int key_f1 = 0x70;
constexpr int key_f24 = 0x87;
constexpr std::uintptr_t control_backspace = 0x7F;  // the character that Ctrl+Backspace makes

bool Has_No_Character(int key) {
    return (key >= key_page_up && key <= key_down) || key == key_insert || key == key_delete ||
           (key >= key_f1 && key <= key_f24);
}

int Special_Key(unsigned int message, std::uintptr_t wparam) {
    if (message != message_key_down && message != message_system_key_down) {
        return 0;
    }
    return wparam <= 0xFF && Has_No_Character(static_cast<int>(wparam)) ? KEY_SPECIAL + static_cast<int>(wparam) : 0;
}

int Character(std::uintptr_t code) {
    return code == control_backspace ? KEY_BACKSPACE : code <= 0xFF ? static_cast<int>(code) : 0;
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
    if (message != message_character) {
        return Special_Key(message, wparam);
    }
    return System_Window_Is_Wide(window) ? Wide_Character(wparam) : Character(wparam);
}

int Parse_Dialog(HWND, unsigned int message, std::uintptr_t wparam, std::intptr_t lparam) {
    if (message != message_key_down || wparam > 0xFF) {
        return Special_Key(message, wparam);
    }
    const int special = Special_Key(message, wparam);
    return special != 0
               ? special
               : Wide_Character(static_cast<std::uintptr_t>(System_Key_Character(static_cast<int>(wparam), lparam)));
}
