// Held buttons and keys, the clipboard, wait cursors, and the counters of what was painted.
#include <algorithm>

#include "host/kit_common.h"
#include "kits/common/contract.h"
#include "kits/widgets/device.h"
#include "kits/widgets/painter.h"
#include "kits/widgets/widgets_host.h"

int YCursor_X = 0;
int YCursor_Y = 0;

namespace {
Input_Source input_source;
int key_being_handled = 0;
Widget_Counters counters;
int wait_depth = 0;
}  // namespace

void Input_Source_Set(const Input_Source& source) {
    input_source = source;
}

bool Input_Button_Held(int button) {
    return input_source.button != nullptr ? input_source.button(button) != 0 : System_Button_Held(button);
}

bool Input_Key_Held(int virtual_key) {
    return input_source.key != nullptr ? input_source.key(virtual_key) != 0 : System_Key_Held(virtual_key);
}

int Input_Clipboard_Get(char* out, int size) {
    if (out == nullptr || size <= 0) {
        return 0;
    }
    return input_source.clipboard_get != nullptr ? input_source.clipboard_get(out, size)
                                                 : System_Clipboard_Get(out, size);
}

int Input_Clipboard_Set(const char* text) {
    return input_source.clipboard_set != nullptr ? input_source.clipboard_set(text) : System_Clipboard_Set(text);
}

int getbutton(int button) {
    return Input_Button_Held(button) ? 1 : 0;
}
int getkey(int virtual_key) {
    return Input_Key_Held(virtual_key) ? 1 : 0;
}

void Key_In_Hand_Set(int key) {
    key_being_handled = key;
}
int Key_In_Hand() {
    return key_being_handled;
}

// ---- counters

void Count_Init() {
    counters.inits++;
}
void Count_Draw() {
    counters.draws++;
}
void Count_Adjust() {
    counters.adjusts++;
}
void Count_Clear() {
    counters.clears++;
}
Widget_Counters Widget_Counters_Get() {
    return counters;
}
void Widget_Counters_Reset() {
    counters = {};
}

// ---- wait cursor

void Set_Curs_Wait(HWND window) {
    if (wait_depth++ == 0) {
        System_Wait_Cursor(window != nullptr ? window : hwnd, true);
    }
}

void Reset_Curs_Wait(HWND window) {
    if (wait_depth == 0) {
        Contract_Report(CONTRACT_WAIT_CURSOR, "reset and not set");
    } else if (--wait_depth == 0) {
        System_Wait_Cursor(window != nullptr ? window : hwnd, false);
    }
}

int Wait_Cursor_Depth() {
    return wait_depth;
}
