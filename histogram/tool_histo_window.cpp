// The enlarged window's class, handle and life. What it shows and how it answers stands in tool_histo_blow.*.
#include "histogram/tool_histo_window.h"

#include "base/gdi_handles.h"

#include "histogram/blow_place.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_blow.h"
#include "histogram/tool_histo_export.h"
#include "panels/protocol/host_variables.h"

namespace {

constexpr const char* CLASS_NAME = "Histogram";
constexpr const char* WINDOW_TITLE = "Histogram Graph";
constexpr const char* ICON_NAME = "MAINICON";
constexpr COLORREF BACKGROUND = 0xAAAAAA;
constexpr DWORD EXTENDED_STYLE = 0x10;  // accepts dropped files

// Both may be missing: the window then has no owner, and stands where the system puts it.
constexpr const char* OWNER_VARIABLE = "$HISTO_WINDOW_OWNER";
constexpr const char* PLACE_VARIABLE = "$HISTO_WINDOW_PLACE";
constexpr int PLACE_NUMBERS = 4;  // left, top, width, height

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

Blow_Place Place_Of_Box(const RECT& box) {
    return {box.left, box.top, box.right - box.left, box.bottom - box.top};
}

/** The window that the host names, while it lives. */
HWND Owner() {
    auto* owner = Host_Pointer<HWND__>(OWNER_VARIABLE);
    return owner != nullptr && ::IsWindow(owner) != 0 ? owner : nullptr;
}

/** The host's four numbers, null when there are none. */
std::int32_t* Kept_Place() {
    int nb = 0;
    unsigned short type = VARIABLE_NONE;
    void* first = Fct_Variable_Value(PLACE_VARIABLE, &nb, &type, nullptr);
    return nb >= PLACE_NUMBERS && type == VARIABLE_SIGNED_32 ? static_cast<std::int32_t*>(first) : nullptr;
}

/** The screen that most of a box lies on or is nearest to, without its bars. */
Blow_Place Screen_Of(const Blow_Place& place) {
    const RECT box = {place.left, place.top, place.left + place.width, place.top + place.height};
    MONITORINFO screen = {};
    screen.cbSize = sizeof screen;
    return ::GetMonitorInfoA(::MonitorFromRect(&box, MONITOR_DEFAULTTONEAREST), &screen) != 0
               ? Place_Of_Box(screen.rcWork)
               : Blow_Place{};
}

/** Where the window stood last, or beside its owner; without both, no place. */
Blow_Place Place_To_Open(HWND owner) {
    const std::int32_t* kept = Kept_Place();
    const Blow_Place last = kept != nullptr ? Blow_Place{kept[0], kept[1], kept[2], kept[3]} : Blow_Place{};
    RECT box = {};
    const bool has_owner = owner != nullptr && ::GetWindowRect(owner, &box) != 0;
    if (!last.Is_Place() && !has_owner) {
        return {};
    }
    const Blow_Place stands = last.Is_Place() ? last : Place_Of_Box(box);
    const Blow_Place screen = Screen_Of(stands);
    if (!screen.Is_Place()) {
        return {};
    }
    return last.Is_Place() ? Blow_Place_Inside(last, screen) : Blow_Place_Beside(stands, screen);
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
    Histo_Export_Panel_Gone(panel);
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

bool Has_Histo_Window() {
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
    const HWND owner = Owner();
    Blow_Place place = Place_To_Open(owner);
    if (!place.Is_Place()) {
        place = {CW_USEDEFAULT, CW_USEDEFAULT, BLOW_FIRST_WIDTH, BLOW_FIRST_HEIGHT};
    }
    const HWND window =
        ::CreateWindowExA(EXTENDED_STYLE, CLASS_NAME, WINDOW_TITLE, WS_VISIBLE | WS_OVERLAPPEDWINDOW, place.left,
                          place.top, place.width, place.height, owner, nullptr, class_instance, nullptr);
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

void Histo_Window_Place_Keep() {
    const HWND window = histo_blow.window;
    RECT box = {};
    std::int32_t* kept = Kept_Place();
    if (kept == nullptr || ::IsIconic(window) != 0 || ::IsZoomed(window) != 0 || ::GetWindowRect(window, &box) == 0) {
        return;
    }
    const Blow_Place place = Place_Of_Box(box);
    if (place.Is_Place()) {
        kept[0] = place.left;
        kept[1] = place.top;
        kept[2] = place.width;
        kept[3] = place.height;
    }
}

void Histo_Window_Notify(unsigned int message) {
    if (histo_blow.window != nullptr) {
        ::PostMessageA(histo_blow.window, message, 0, 0);
    }
}
