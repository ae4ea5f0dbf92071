#include "tests/support/headless_windows.h"

#include "base/gdi_handles.h"

#include <imm.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "host/kit_widgets.h"
#include "kits/widgets/device.h"
#include "kits/widgets/headless_windows.h"
#include "kits/widgets/surface.h"

namespace {

constexpr int CHARACTER_WIDTH = 7;  // pixels
constexpr int CHARACTER_HEIGHT = 13;
constexpr int CHARACTER_ASCENT = 10;
constexpr std::size_t KIT_FONTS_BELOW = std::size_t{1} << 20U;  // numbers that the kit gives fonts

void Insist(bool is_so, const char* otherwise) {
    if (!is_so) {
        std::fprintf(stderr, "headless windows: %s\n", otherwise);
        std::abort();
    }
}

// ---- objects

enum class Kind { Pen, Brush, Font, Bitmap, Region };
constexpr std::size_t KIND_NB = 5;

struct Object {
    Kind kind;
    int selected_nb = 0;
    std::vector<std::uint32_t> pixels;
};

std::set<const void*>& Living() {
    static auto& living = *new std::set<const void*>;
    return living;
}

template <class Handle>
Handle Made(Kind kind) {
    auto* const object = new Object{kind, 0, {}};
    Living().insert(object);
    return reinterpret_cast<Handle>(object);
}

Object* Stock(Kind kind) {
    static std::array<Object, KIND_NB> stock = {
        {{Kind::Pen, 0, {}}, {Kind::Brush, 0, {}}, {Kind::Font, 0, {}}, {Kind::Bitmap, 0, {}}, {Kind::Region, 0, {}}}};
    return &stock[static_cast<std::size_t>(kind)];
}

bool Is_Stock(const Object* object) {
    return object == Stock(object->kind);
}

/** Fonts of the kit are numbers. */
Object* Object_Of(HGDIOBJ handle) {
    if (reinterpret_cast<std::uintptr_t>(handle) < KIT_FONTS_BELOW) {
        return Stock(Kind::Font);
    }
    auto* const object = static_cast<Object*>(handle);
    Insist(object == Stock(Kind::Pen) || object == Stock(Kind::Brush) || object == Stock(Kind::Font) ||
               object == Stock(Kind::Bitmap) || object == Stock(Kind::Region) || Living().contains(object),
           "an object that is no more");
    return object;
}

// ---- device contexts

struct Dc_State {
    bool is_device = false;  // units of the device, else of the window's axis
    bool is_cut = false;
    int rop = R2_COPYPEN;
    std::array<HGDIOBJ, KIND_NB> selected = {Stock(Kind::Pen), Stock(Kind::Brush), Stock(Kind::Font),
                                             Stock(Kind::Bitmap), Stock(Kind::Region)};
};

struct Dc {
    bool is_memory = false;
    Dc_State now;
    std::vector<Dc_State> saved;
};

Dc& Dc_Of(HDC handle) {
    static auto& contexts = *new std::map<HDC, Dc>;  // objects that live to the end of the program ask for them
    Insist(handle != nullptr, "no device context");
    return contexts[handle];
}

void Select(Dc& dc, std::size_t slot, HGDIOBJ object) {
    --Object_Of(dc.now.selected[slot])->selected_nb;
    ++Object_Of(object)->selected_nb;
    dc.now.selected[slot] = object;
}

void Points_Convert(HDC handle, POINT* point, int nb) {
    if (const Dc& dc = Dc_Of(handle); dc.is_memory || dc.now.is_device) {
        return;
    }
    for (int i = 0; i < nb; ++i) {
        const Point device = Dc_To_Device(handle, {point[i].x, point[i].y});
        point[i] = {device.x, device.y};
    }
}

// ---- windows

struct Made_Window {
    WNDPROC procedure = nullptr;
    bool is_ending = false;
};

struct System {
    std::map<HWND, Made_Window> windows;
    std::deque<MSG> posted;
    WNDPROC class_procedure = nullptr;
    HBRUSH class_brush = nullptr;
    HWND capture = nullptr;
    bool allows_windows = true;
    std::function<bool(Headless_Message&)> dialog_next;
    HWND dialog = nullptr;
    bool dialog_ended = false;
    INT_PTR dialog_result = 0;
};

System& The_System() {
    static System system;
    return system;
}

/** The first posted message that a filter lets through. */
BOOL Posted_Take(MSG* message, HWND window, UINT first, UINT last, UINT remove) {
    std::deque<MSG>& posted = The_System().posted;
    const auto found = std::find_if(posted.begin(), posted.end(), [&](const MSG& waiting) {
        return waiting.hwnd == window && waiting.message >= first && waiting.message <= last;
    });
    if (found == posted.end()) {
        return FALSE;
    }
    *message = *found;
    if ((remove & PM_REMOVE) != 0) {
        posted.erase(found);
    }
    return TRUE;
}

void Posted_Forget(HWND window) {
    std::erase_if(The_System().posted, [window](const MSG& waiting) { return waiting.hwnd == window; });
}

// Windows' 64-bit integer type has another name here: the same function, of another type.
[[clang::no_sanitize("function")]] LRESULT Sent(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const auto found = The_System().windows.find(window);
    return found != The_System().windows.end() ? found->second.procedure(window, message, wparam, lparam) : 0;
}

}  // namespace

void Headless_Dialog_Set(std::function<bool(Headless_Message&)> next) {
    The_System().dialog_next = std::move(next);
}

void Headless_Windows_Allow(bool allow) {
    The_System().allows_windows = allow;
}

std::size_t Headless_Objects_Living() {
    return Living().size();
}

void Headless_Message_Send(HWND window, const Headless_Message& message) {
    if (message.message == WM_SIZE) {
        Headless_Window_Resize(window, LOWORD(message.lparam), HIWORD(message.lparam));
    }
    Sent(window, message.message, message.wparam, message.lparam);
}

void Headless_Messages_Deliver() {
    std::deque<MSG>& posted = The_System().posted;
    while (!posted.empty()) {
        const MSG message = posted.front();
        posted.pop_front();
        Sent(message.hwnd, message.message, message.wParam, message.lParam);
    }
}

// ---- drawing: objects

HPEN WINAPI CreatePen(INT, INT, COLORREF) {
    return Made<HPEN>(Kind::Pen);
}
HBRUSH WINAPI CreateSolidBrush(COLORREF) {
    return Made<HBRUSH>(Kind::Brush);
}
HBRUSH WINAPI CreateDIBPatternBrushPt(const void* pattern, UINT) {
    Insist(pattern != nullptr, "no pattern");
    return Made<HBRUSH>(Kind::Brush);
}
HRGN WINAPI CreateRectRgn(INT, INT, INT, INT) {
    return Made<HRGN>(Kind::Region);
}
HRGN WINAPI CreateRectRgnIndirect(const RECT*) {
    return Made<HRGN>(Kind::Region);
}
HGDIOBJ WINAPI GetStockObject(INT index) {
    const bool is_pen = index == BLACK_PEN || index == WHITE_PEN || index == NULL_PEN;
    return Stock(is_pen ? Kind::Pen : index <= NULL_BRUSH ? Kind::Brush : Kind::Font);
}
HBITMAP WINAPI CreateDIBSection(HDC, const BITMAPINFO* info, UINT, void** bits, HANDLE, DWORD) {
    auto* const bitmap = Made<HBITMAP>(Kind::Bitmap);
    auto& pixels = reinterpret_cast<Object*>(bitmap)->pixels;
    pixels.resize(static_cast<std::size_t>(info->bmiHeader.biWidth) *
                  static_cast<std::size_t>(std::abs(info->bmiHeader.biHeight)));
    *bits = pixels.data();
    return bitmap;
}
BOOL WINAPI DeleteObject(HGDIOBJ handle) {
    Object* const object = Object_Of(handle);
    if (Is_Stock(object)) {
        return TRUE;
    }
    Insist(object->selected_nb == 0, "an object is deleted while it is selected");
    Living().erase(object);
    delete object;
    return TRUE;
}

// ---- drawing: device contexts

HDC WINAPI CreateCompatibleDC(HDC) {
    auto* const dc = Made<HDC>(Kind::Bitmap);
    Dc_Of(dc) = {};
    Dc_Of(dc).is_memory = true;
    return dc;
}
BOOL WINAPI DeleteDC(HDC dc) {
    Insist(Dc_Of(dc).is_memory, "only a device context in memory is deleted");
    for (std::size_t slot = 0; slot < KIND_NB; ++slot) {
        Select(Dc_Of(dc), slot, Dc_State{}.selected[slot]);
    }
    Dc_Of(dc) = {};
    return DeleteObject(reinterpret_cast<HGDIOBJ>(dc));
}
HGDIOBJ WINAPI SelectObject(HDC handle, HGDIOBJ object) {
    Dc& dc = Dc_Of(handle);
    const auto slot = static_cast<std::size_t>(Object_Of(object)->kind);
    const HGDIOBJ before = dc.now.selected[slot];
    Select(dc, slot, object);
    return before;
}
INT WINAPI SaveDC(HDC handle) {
    Dc& dc = Dc_Of(handle);
    dc.saved.push_back(dc.now);
    return static_cast<INT>(dc.saved.size());
}
BOOL WINAPI RestoreDC(HDC handle, INT level) {
    Dc& dc = Dc_Of(handle);
    Insist(level >= 1 && level <= static_cast<INT>(dc.saved.size()), "a state that was not saved");
    const Dc_State state = dc.saved[static_cast<std::size_t>(level) - 1];
    dc.saved.resize(static_cast<std::size_t>(level) - 1);
    for (std::size_t slot = 0; slot < KIND_NB; ++slot) {
        Select(dc, slot, state.selected[slot]);
    }
    dc.now = state;
    return TRUE;
}
INT WINAPI SelectClipRgn(HDC dc, HRGN region) {
    if (region != nullptr) {
        Object_Of(region);
    }
    Dc_Of(dc).now.is_cut = region != nullptr;
    return SIMPLEREGION;
}
INT WINAPI GetClipRgn(HDC dc, HRGN region) {
    Object_Of(region);
    return Dc_Of(dc).now.is_cut ? 1 : 0;
}
INT WINAPI SetROP2(HDC dc, INT operation) {
    return std::exchange(Dc_Of(dc).now.rop, operation);
}
INT WINAPI SetMapMode(HDC dc, INT) {
    Dc_Of(dc).now.is_device = true;
    return MM_TEXT;
}
BOOL WINAPI SetWindowOrgEx(HDC, INT, INT, POINT*) {
    return TRUE;
}
BOOL WINAPI SetViewportOrgEx(HDC, INT, INT, POINT*) {
    return TRUE;
}
BOOL WINAPI LPtoDP(HDC dc, POINT* point, INT nb) {
    Points_Convert(dc, point, nb);
    return TRUE;
}
BOOL WINAPI DPtoLP(HDC dc, POINT* point, INT nb) {
    Points_Convert(dc, point, nb);  // its own inverse
    return TRUE;
}
INT WINAPI SetBkMode(HDC, INT) {
    return OPAQUE;
}
UINT WINAPI SetTextAlign(HDC, UINT) {
    return TA_LEFT;
}
COLORREF WINAPI SetTextColor(HDC, COLORREF) {
    return 0;
}

// ---- drawing: figures. What they are given is read, so that the sanitizers see it.

BOOL WINAPI MoveToEx(HDC dc, INT, INT, POINT*) {
    Dc_Of(dc);
    return TRUE;
}
BOOL WINAPI LineTo(HDC dc, INT, INT) {
    Object_Of(Dc_Of(dc).now.selected[static_cast<std::size_t>(Kind::Pen)]);
    return TRUE;
}
BOOL WINAPI Polyline(HDC dc, const POINT* point, INT nb) {
    const std::vector<POINT> read(point, point + nb);
    return LineTo(dc, read.back().x, read.back().y);
}
BOOL WINAPI Polygon(HDC dc, const POINT* point, INT nb) {
    return Polyline(dc, point, nb);
}
BOOL WINAPI PolyPolyline(HDC dc, const POINT* point, const DWORD* count, DWORD nb) {
    for (DWORD i = 0; i < nb; ++i) {
        Polyline(dc, point, static_cast<INT>(count[i]));
        point += count[i];
    }
    return TRUE;
}
BOOL WINAPI Ellipse(HDC dc, INT, INT, INT, INT) {
    return LineTo(dc, 0, 0);
}
INT WINAPI FillRect(HDC dc, const RECT*, HBRUSH brush) {
    Dc_Of(dc);
    Object_Of(brush);
    return 1;
}
BOOL WINAPI PatBlt(HDC dc, INT, INT, INT, INT, DWORD) {
    Object_Of(Dc_Of(dc).now.selected[static_cast<std::size_t>(Kind::Brush)]);
    return TRUE;
}
BOOL WINAPI BitBlt(HDC dc, INT, INT, INT, INT, HDC from, INT, INT, DWORD) {
    Dc_Of(dc);
    Insist(Dc_Of(from).is_memory, "a picture is copied from a device context that has none");
    return TRUE;
}
INT WINAPI SetDIBitsToDevice(HDC dc, INT, INT, DWORD width, DWORD height, INT, INT, UINT, UINT lines, const void* bits,
                             const BITMAPINFO* info, UINT) {
    Dc_Of(dc);
    const auto nb = static_cast<std::size_t>(width) * height;
    Insist(
        info->bmiHeader.biWidth == static_cast<LONG>(width) && info->bmiHeader.biHeight == -static_cast<LONG>(height),
        "pixels are shown that are not as many as their picture has");
    const auto* pixels = static_cast<const std::uint32_t*>(bits);
    const std::vector<std::uint32_t> read(pixels, pixels + nb);
    return static_cast<INT>(lines);
}
BOOL WINAPI GdiFlush() {
    return TRUE;
}
BOOL WINAPI SetRect(RECT* rect, INT left, INT top, INT right, INT bottom) {
    *rect = {left, top, right, bottom};
    return TRUE;
}

// ---- drawing: texts

BOOL WINAPI GetTextExtentPoint32A(HDC dc, const char* text, INT length, SIZE* size) {
    Dc_Of(dc);
    const std::vector<char> read(text, text + length);
    *size = {static_cast<int>(read.size()) * CHARACTER_WIDTH, CHARACTER_HEIGHT};
    return TRUE;
}
BOOL WINAPI GetTextMetricsA(HDC, TEXTMETRICA* metrics) {
    *metrics = {};
    metrics->tmHeight = CHARACTER_HEIGHT;
    metrics->tmAscent = CHARACTER_ASCENT;
    metrics->tmAveCharWidth = CHARACTER_WIDTH;
    metrics->tmMaxCharWidth = 2 * CHARACTER_WIDTH;
    return TRUE;
}
BOOL WINAPI TextOutA(HDC dc, INT, INT, const char* text, INT length) {
    SIZE size;
    return GetTextExtentPoint32A(dc, text, length, &size);
}
BOOL WINAPI ExtTextOutW(HDC dc, INT, INT, UINT, const RECT*, const WCHAR* text, UINT length, const INT*) {
    Dc_Of(dc);
    const std::vector<WCHAR> read(text, text + length);
    return TRUE;
}
INT WINAPI DrawTextA(HDC dc, const char* text, INT length, RECT*, UINT) {
    SIZE size;
    GetTextExtentPoint32A(dc, text, length < 0 ? static_cast<INT>(std::strlen(text)) : length, &size);
    return size.cy;
}

// ---- windows

ATOM WINAPI RegisterClassA(const WNDCLASSA* window_class) {
    The_System().class_procedure = window_class->lpfnWndProc;
    The_System().class_brush = window_class->hbrBackground;
    return 1;
}
BOOL WINAPI UnregisterClassA(const char*, HINSTANCE) {
    DeleteObject(std::exchange(The_System().class_brush, nullptr));
    The_System().class_procedure = nullptr;
    return TRUE;
}
HWND WINAPI CreateWindowExA(DWORD, const char*, const char*, DWORD, INT, INT, INT width, INT height, HWND, HMENU,
                            HINSTANCE, void*) {
    System& system = The_System();
    if (!system.allows_windows || system.class_procedure == nullptr) {
        return nullptr;
    }
    const HWND window = Headless_Window_Create(width, height);
    system.windows[window] = {system.class_procedure, false};
    Sent(window, WM_CREATE, 0, 0);
    Sent(window, WM_SIZE, SIZE_RESTORED, MAKELPARAM(width, height));
    return system.windows.contains(window) ? window : nullptr;
}
BOOL WINAPI DestroyWindow(HWND window) {
    System& system = The_System();
    if (window == system.dialog && window != nullptr) {
        system.dialog_ended = true;
        return TRUE;
    }
    const auto found = system.windows.find(window);
    if (found == system.windows.end() || std::exchange(found->second.is_ending, true)) {
        return FALSE;
    }
    Sent(window, WM_DESTROY, 0, 0);
    system.windows.erase(window);
    Posted_Forget(window);
    Headless_Window_Destroy(window);
    return TRUE;
}
LRESULT WINAPI DefWindowProcA(HWND window, UINT message, WPARAM, LPARAM) {
    return message == WM_CLOSE ? static_cast<LRESULT>(DestroyWindow(window)) : 0;
}
BOOL WINAPI PostMessageA(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    MSG posted = {};
    posted.hwnd = window;
    posted.message = message;
    posted.wParam = wparam;
    posted.lParam = lparam;
    The_System().posted.push_back(posted);
    return TRUE;
}
BOOL WINAPI PeekMessageA(MSG* message, HWND window, UINT first, UINT last, UINT remove) {
    return Posted_Take(message, window, first, last, remove);
}
BOOL WINAPI PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT remove) {
    return Posted_Take(message, window, first, last, remove);
}
void WINAPI PostQuitMessage(INT) {}
HDC WINAPI BeginPaint(HWND, PAINTSTRUCT* paint) {
    *paint = {};
    paint->hdc = CreateCompatibleDC(nullptr);
    return paint->hdc;
}
BOOL WINAPI EndPaint(HWND, const PAINTSTRUCT* paint) {
    return DeleteDC(paint->hdc);
}
BOOL WINAPI InvalidateRect(HWND, const RECT*, BOOL) {
    return TRUE;
}
BOOL WINAPI GetClientRect(HWND window, RECT* rect) {
    Size size;
    *rect = {};
    if (!Window_Client_Size(window, &size)) {
        return FALSE;
    }
    rect->right = size.width;
    rect->bottom = size.height;
    return TRUE;
}
BOOL WINAPI GetWindowRect(HWND window, RECT* rect) {
    return GetClientRect(window, rect);
}
BOOL WINAPI ScreenToClient(HWND window, POINT* point) {
    Point client;
    if (!Window_From_Screen(window, {point->x, point->y}, &client)) {
        return FALSE;
    }
    *point = {client.x, client.y};
    return TRUE;
}
BOOL WINAPI ClientToScreen(HWND window, POINT* point) {
    Point screen;
    if (!Window_To_Screen(window, {point->x, point->y}, &screen)) {
        return FALSE;
    }
    *point = {screen.x, screen.y};
    return TRUE;
}
BOOL WINAPI GetCursorPos(POINT* point) {
    *point = {YCursor_X, YCursor_Y};
    return TRUE;
}
HWND WINAPI SetCapture(HWND window) {
    return std::exchange(The_System().capture, window);
}
HWND WINAPI GetCapture() {
    return The_System().capture;
}
BOOL WINAPI ReleaseCapture() {
    if (const HWND window = std::exchange(The_System().capture, nullptr); window != nullptr) {
        Sent(window, WM_CAPTURECHANGED, 0, 0);
    }
    return TRUE;
}
BOOL WINAPI EnableWindow(HWND, BOOL) {
    return FALSE;
}
BOOL WINAPI ShowWindow(HWND, INT) {
    return TRUE;
}
BOOL WINAPI IsIconic(HWND) {
    return FALSE;
}
BOOL WINAPI IsZoomed(HWND) {
    return FALSE;
}
BOOL WINAPI IsWindow(HWND window) {
    Size size;
    return Window_Client_Size(window, &size) ? TRUE : FALSE;
}
HMONITOR WINAPI MonitorFromRect(const RECT*, DWORD) {
    return nullptr;
}
BOOL WINAPI GetMonitorInfoA(HMONITOR, MONITORINFO* screen) {
    screen->rcMonitor = screen->rcWork = {0, 0, 1024, 768};
    return TRUE;
}
BOOL WINAPI BringWindowToTop(HWND) {
    return TRUE;
}
BOOL WINAPI SetForegroundWindow(HWND) {
    return TRUE;
}
BOOL WINAPI SetWindowPos(HWND, HWND, INT, INT, INT, INT, UINT) {
    return TRUE;
}
BOOL WINAPI TrackMouseEvent(TRACKMOUSEEVENT*) {
    return TRUE;
}
HWND WINAPI GetActiveWindow() {
    return nullptr;
}
LONG_PTR WINAPI GetWindowLongPtrA(HWND, INT) {
    return 0;
}
ULONG_PTR WINAPI GetClassLongPtrA(HWND, INT) {
    return reinterpret_cast<ULONG_PTR>(The_System().class_brush);
}
INT WINAPI GetSystemMetrics(INT) {
    return 4;
}
HICON WINAPI LoadIconA(HINSTANCE, const char*) {
    return nullptr;
}
HCURSOR WINAPI LoadCursorA(HINSTANCE, const char*) {
    return nullptr;
}

// ---- dialogs

DWORD WINAPI GetDialogBaseUnits() {
    return MAKELONG(8, 16);
}
[[clang::no_sanitize("function")]] INT_PTR WINAPI DialogBoxIndirectParamA(HINSTANCE, const DLGTEMPLATE*, HWND,
                                                                          DLGPROC procedure, LPARAM parameter) {
    System& system = The_System();
    if (!system.allows_windows) {
        return -1;
    }
    constexpr int width = 320;
    constexpr int height = 160;
    const HWND window = Headless_Window_Create(width, height);
    system.dialog = window;
    system.dialog_ended = false;
    system.dialog_result = 0;
    procedure(window, WM_INITDIALOG, 0, parameter);
    for (Headless_Message next; !system.dialog_ended && system.dialog_next && system.dialog_next(next);) {
        if (next.message == WM_CHAR) {  // waits behind the key that makes it
            PostMessageA(window, WM_CHAR, next.wparam, 0);
            next = {WM_KEYDOWN, next.wparam, 0};
        }
        procedure(window, next.message, next.wparam, next.lparam);
    }
    procedure(window, WM_DESTROY, 0, 0);
    system.dialog = nullptr;
    Posted_Forget(window);
    Headless_Window_Destroy(window);
    return system.dialog_result;
}
BOOL WINAPI EndDialog(HWND, INT_PTR result) {
    The_System().dialog_ended = true;
    The_System().dialog_result = result;
    return TRUE;
}
HIMC WINAPI ImmGetContext(HWND) {
    return nullptr;
}
BOOL WINAPI ImmReleaseContext(HWND, HIMC) {
    return TRUE;
}
LONG WINAPI ImmGetCompositionStringW(HIMC, DWORD, void*, DWORD) {
    return 0;
}

// ---- texts, memory, modules

UINT WINAPI GetACP() {
    constexpr UINT western = 1252;
    return western;
}
BOOL WINAPI IsDBCSLeadByte(BYTE) {
    return FALSE;
}
INT WINAPI MultiByteToWideChar(UINT, DWORD, const char* text, INT, WCHAR* wide, INT size) {
    const auto length = static_cast<INT>(std::strlen(text)) + 1;
    if (length > size) {
        return 0;
    }
    std::transform(text, text + length, wide, [](char letter) { return static_cast<WCHAR>(letter & 0x7F); });
    return length;
}
INT WINAPI WideCharToMultiByte(UINT, DWORD, const WCHAR* wide, INT, char* text, INT, const char*, BOOL* replaced) {
    constexpr WCHAR last = 0xFF;
    *replaced = *wide > last ? TRUE : FALSE;
    *text = static_cast<char>(*wide);
    return 1;
}
HGLOBAL WINAPI GlobalAlloc(UINT, SIZE_T size) {
    return std::calloc(1, size);
}
HGLOBAL WINAPI GlobalFree(HGLOBAL block) {
    std::free(block);
    return nullptr;
}
void* WINAPI GlobalLock(HGLOBAL block) {
    return block;
}
BOOL WINAPI GlobalUnlock(HGLOBAL) {
    return TRUE;
}
HMODULE WINAPI GetModuleHandleA(const char*) {
    return nullptr;
}
BOOL WINAPI GetModuleHandleExA(DWORD, const char*, HMODULE* module) {
    *module = nullptr;
    return TRUE;
}
FARPROC WINAPI GetProcAddress(HMODULE, const char*) {
    return nullptr;
}
