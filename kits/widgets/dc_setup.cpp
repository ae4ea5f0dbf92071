// Device contexts that panels draw with: Y_setup, Y_release and fonts made for them.
#include <cstdio>
#include <new>
#include <vector>

#include "host/kit_common.h"
#include "host/kit_widgets.h"
#include "kits/common/contract.h"
#include "kits/widgets/device.h"
#include "kits/widgets/widgets_host.h"
#include "kits/widgets/window_state.h"

HWND Y_Window = nullptr;
HDC Y_DC = nullptr;

namespace {

/** One running set-up and what the globals were before it. */
struct Running {
    HWND window = nullptr;
    char label[48] = {};  // the beginning, kept only while the contract is checked
    Axis_DC dc;
    HWND window_before = nullptr;
    HDC dc_before = nullptr;
};

std::vector<Running>& Stack() {
    static std::vector<Running> stack;
    return stack;
}

bool Begin(HWND window, const char* label) {
    Size client;
    if (!Window_Client_Size(window, &client)) {
        return false;
    }
    try {
        Stack().reserve(Stack().size() + 1);
        Running running;
        running.window = window;
        if (Contract_Checks()) {
            std::snprintf(running.label, sizeof running.label, "%s", label != nullptr ? label : "");
        }
        Window_Drawn_Note(window);
        running.window_before = Y_Window;
        running.dc_before = Y_DC;
        const bool up = Window_Axis_Get(window) == Window_Axis::Up;
        if (!running.dc.Begin(window, Window_Buffer_DC(window), client.height, up)) {
            return false;
        }
        Stack().push_back(std::move(running));
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

}  // namespace

HDC Y_setup(HWND window, const char* label) {
    if (!Begin(window, label)) {
        Error_Fct(hwnd, TRACE_LEVEL, "Y_setup(%s) GetDC failed", label != nullptr ? label : "");
        return nullptr;
    }
    Y_Window = window;
    Y_DC = Stack().back().dc.Get();
    return Y_DC;
}

int Y_release(HWND window, HDC dc) {
    const bool innermost =
        !Stack().empty() && Stack().back().window == window && Stack().back().dc.Get() == dc && dc != nullptr;
    bool released = false;
    if (innermost) {
        Running running = std::move(Stack().back());
        Stack().pop_back();
        Y_Window = running.window_before;
        Y_DC = running.dc_before;
        released = running.dc.End();
    }
    if (!released) {
        Error_Fct(hwnd, TRACE_LEVEL, "Y_release() Failed!");
    }
    return released ? 1 : 0;
}

HFONT Y_Create_Font(HWND window, const char* font_name, const char* style, int size) {
    constexpr int size_max = 1000;  // pixels
    if (size <= 0 || size > size_max) {
        return nullptr;
    }
    constexpr char bold[] = "bold";
    const char* letter = bold;
    for (const char* given = style; given != nullptr && *given != 0 && *letter != 0; given++) {
        letter = (*given | 0x20) == *letter ? letter + 1 : bold;
    }
    return System_Font_Create(window, font_name, *letter == 0, size);
}

void Contract_Check_Drawing() {
    for (const Running& running : Stack()) {
        Contract_Report(CONTRACT_DC, running.label);
    }
    if (Wait_Cursor_Depth() > 0) {
        Contract_Report(CONTRACT_WAIT_CURSOR, "set and not reset");
    }
    if (hwnd == nullptr) {
        Contract_Report(CONTRACT_MAIN_WINDOW, "hwnd of host/kit_common.h");
    }
    Contract_Check_Axes();
}
