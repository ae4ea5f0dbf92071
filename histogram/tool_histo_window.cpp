// The enlarged window's class, handle and life. What it shows and how it answers stands in tool_histo_blow.*.
#include "histogram/tool_histo_window.h"

#include "base/gdi_handles.h"

#include "histogram/tool_histo.h"
#include "histogram/tool_histo_blow.h"

namespace {

constexpr const char* CLASS_NAME = "Histogram";
constexpr const char* WINDOW_TITLE = "Histogram Graph";
constexpr const char* ICON_NAME = "MAINICON";
constexpr COLORREF BACKGROUND = 0xAAAAAA;
constexpr DWORD EXTENDED_STYLE = 0x10;  // accepts dropped files
constexpr int FIRST_WIDTH = 800;        // pixels
constexpr int FIRST_HEIGHT = 400;       // pixels

// One window for all panels of the process.
int panel_nb = 0;
Gdi_Brush background;
HINSTANCE class_instance = nullptr;

HINSTANCE Own_Instance() {
    HMODULE module = nullptr;
    ::GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<LPCSTR>(&Own_Instance), &module);
    return module;
}

/** The instance of the active window's module; without an active window this module's own. */
HINSTANCE Host_Instance() {
    HWND active = ::GetActiveWindow();
    auto* instance =
        active != nullptr ? reinterpret_cast<HINSTANCE>(::GetWindowLongPtrA(active, GWLP_HINSTANCE)) : nullptr;
    return instance != nullptr ? instance : Own_Instance();
}

}  // namespace

void Histo_Window_Panel_Born() {
    if (panel_nb++ > 0) {
        return;
    }
    background = Gdi_Brush(::CreateSolidBrush(BACKGROUND));
    class_instance = Host_Instance();
    WNDCLASSA window_class = {};
    window_class.style = CS_HREDRAW | CS_VREDRAW;
    window_class.lpfnWndProc = WndProc_Histo_Blow;
    window_class.hInstance = class_instance;
    window_class.hIcon = ::LoadIconA(class_instance, ICON_NAME);
    window_class.hCursor = ::LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // the standard arrow
    window_class.hbrBackground = background.Get();
    window_class.lpszClassName = CLASS_NAME;
    ::RegisterClassA(&window_class);
}

void Histo_Window_Panel_Gone(const Tool_Histo* panel) {
    if (histo_blow.panel == panel) {
        histo_blow.panel = nullptr;
    }
    if (histo_blow.window != nullptr) {
        ::DestroyWindow(histo_blow.window);
    }
    if (--panel_nb > 0) {
        return;
    }
    // While the class lives it paints with the brush, so the two go together: the system deletes a class's brush with
    // it.
    if (::UnregisterClassA(CLASS_NAME, class_instance) != 0) {
        static_cast<void>(background.Give_Away());
    }
    background.Reset();
}

bool Histo_Window_Exists() {
    return histo_blow.window != nullptr;
}

void Histo_Window_Open(Tool_Histo& panel) {
    if (histo_blow.window != nullptr) {
        // Each of these tells other windows, which may close this one.
        const HWND window = histo_blow.window;
        ::EnableWindow(window, TRUE);
        ::ShowWindow(window, ::IsIconic(window) != 0 ? SW_RESTORE : SW_SHOW);
        ::SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
        return;
    }
    histo_blow.panel = &panel;
    // Messages arrive before the creating call returns, so the window procedure stores the handle itself; it has
    // dropped it again when the panel or the window went meanwhile.
    const HWND window =
        ::CreateWindowExA(EXTENDED_STYLE, CLASS_NAME, WINDOW_TITLE, WS_VISIBLE | WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                          CW_USEDEFAULT, FIRST_WIDTH, FIRST_HEIGHT, nullptr, nullptr, class_instance, nullptr);
    if (window == nullptr && histo_blow.window == nullptr) {
        histo_blow.panel = nullptr;
    }
    if (window == nullptr || histo_blow.window != window) {
        return;
    }
    Histo_Blow_Touch_Register(window);
    ::EnableWindow(window, TRUE);
    ::BringWindowToTop(window);
}

void Histo_Window_Notify(unsigned int message) {
    if (histo_blow.window != nullptr) {
        ::PostMessageA(histo_blow.window, message, 0, 0);
    }
}
