// The smallest host that shows a TAG panel: one window, the variables that the panel reads, and the events that it
// needs.
//
// Left click picks a TAG, right click renames one, the wheel scrolls. With --once the window is painted and the program
// ends: that is how it is tested.
#include <windows.h>
#include <windowsx.h>

#include <cstring>

#include "host/kit_dataset.h"
#include "host/kit_widgets.h"
#include "kits/dataset/dataset_host.h"
#include "kits/widgets/widgets_host.h"
#include "panels/tool_tag.h"

namespace {

constexpr int TAG_NB = 8;  // a multiple of four: only complete rows are shown
Tool_Tag* panel = nullptr;

// 1. Everything that the panel reads exists before its first Resize.
void Define_Variables() {
    Variable_Define_Scalar("$INTERFACE_BORDER_DIM", VARIABLE_SIGNED_16, 2);
    Variable_Define_Scalar("$INTERFACE_BUTTON_DIM_SML", VARIABLE_SIGNED_16, 26);
    Variable_Define_Scalar("$INTERFACE_CURSOR_DIM", VARIABLE_SIGNED_16, 14);
    Variable_Define_Scalar("$INTERFACE_SPACE_DIM", VARIABLE_SIGNED_16, 4);
    Variable_Define_Scalar("$TAG_NB", VARIABLE_UNSIGNED_16, TAG_NB);
    Variable_Define_Scalar("$TAG_CUR", VARIABLE_UNSIGNED_16, 1);
    for (const char* flags : {"$TAG_ENABLE", "$TAG_SELECT"}) {
        std::memset(Variable_Define_Array(flags, VARIABLE_UNSIGNED_8, TAG_NB), 1, TAG_NB);
    }
    Variable_Define_Array("$TAG_LOCK", VARIABLE_UNSIGNED_8, TAG_NB);
    Variable_Define_Array("$TAG_THRESHOLD_MIN", VARIABLE_FLOAT, TAG_NB);
    Variable_Define_Array("$TAG_LABEL", VARIABLE_TEXT, TAG_NB);
    Variable_Set_Array_Text("$TAG_LABEL", 0, "Background");
    Variable_Set_Array_Text("$TAG_LABEL", 1, "Muscle");
    auto* red = static_cast<unsigned short*>(Variable_Define_Array("$TAG_RED", VARIABLE_UNSIGNED_16, TAG_NB));
    auto* green = static_cast<unsigned short*>(Variable_Define_Array("$TAG_GRN", VARIABLE_UNSIGNED_16, TAG_NB));
    auto* blue = static_cast<unsigned short*>(Variable_Define_Array("$TAG_BLU", VARIABLE_UNSIGNED_16, TAG_NB));
    for (int tag = 1; tag < TAG_NB; ++tag) {
        red[tag] = static_cast<unsigned short>((tag & 1) != 0 ? 0xE000 : 0x3000);
        green[tag] = static_cast<unsigned short>((tag & 2) != 0 ? 0xC000 : 0x4000);
        blue[tag] = static_cast<unsigned short>((tag & 4) != 0 ? 0xE000 : 0x5000);
    }
}

// 2. A panel's own notice of a change comes back to it by Update, as every change of shared state does.
void On_Update(void* /*context*/, unsigned __int64 flags, void* /*a*/, void* /*b*/) {
    panel->Update(flags);
}

void Place(HWND window) {
    RECT client = {};
    ::GetClientRect(window, &client);
    Boxs box;
    box.style = STYLE_FRAMED_BOX | STYLE_SHOW_CHECK;
    box.width = static_cast<short>(client.right);
    box.height = static_cast<short>(client.bottom);
    box.color.red = box.color.green = box.color.blue = 70;
    box.border = 1;
    box.window = window;
    panel->Resize(&box);
    panel->Update(UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR);
}

// 3. The pointer globals hold the screen position of the event before the panel hears of it.
void Take_Pointer() {
    POINT pointer = {};
    ::GetCursorPos(&pointer);
    YCursor_X = pointer.x;
    YCursor_Y = pointer.y;
}

int Held_Buttons(WPARAM keys) {
    return ((keys & MK_LBUTTON) != 0 ? MOUSE_LEFT : 0) | ((keys & MK_MBUTTON) != 0 ? MOUSE_MIDDLE : 0) |
           ((keys & MK_RBUTTON) != 0 ? MOUSE_RIGHT : 0);
}

void Click(int up_down) {
    // 4. The panel answers with the picked TAG; the host stores it and announces it.
    const int picked = panel->Click(up_down);
    if (picked >= 0) {
        Variable_Set("$TAG_CUR", picked);
        panel->Update(UPDATE_TAG_CUR);
    }
}

LRESULT CALLBACK Window_Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (panel == nullptr) {
        return ::DefWindowProcA(window, message, wparam, lparam);
    }
    Take_Pointer();
    switch (message) {
        case WM_SIZE:
            Place(window);
            ::InvalidateRect(window, nullptr, FALSE);
            return 0;
        case WM_PAINT:
            Window_Buffer_Begin(window);
            panel->Draw();
            Window_Buffer_End(window);
            ::ValidateRect(window, nullptr);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_LBUTTONDOWN:
        case WM_RBUTTONDOWN:
            Click(MOUSE_PRESS | Held_Buttons(wparam));
            return 0;
        case WM_LBUTTONUP:
        case WM_RBUTTONUP:
            Click(Held_Buttons(wparam));
            return 0;
        case WM_MOUSEMOVE: {
            TRACKMOUSEEVENT leave = {sizeof leave, TME_LEAVE, window, 0};
            ::TrackMouseEvent(&leave);
            const int held = Held_Buttons(wparam);
            panel->Motion(held != 0 ? held | MOUSE_DRAG : 0);
            return 0;
        }
        case WM_MOUSELEAVE:
            panel->Leave();
            return 0;
        case WM_MOUSEWHEEL:
            panel->Scroll(GET_WHEEL_DELTA_WPARAM(wparam) / WHEEL_DELTA);
            return 0;
        case WM_CHAR:
        case WM_KEYDOWN:
            if (const int key = Parse_Keyboard(window, message, wparam, lparam); key != 0) {
                panel->Keyboard(key);
            }
            return 0;
        case WM_DESTROY:
            ::PostQuitMessage(0);
            return 0;
        default:
            return ::DefWindowProcA(window, message, wparam, lparam);
    }
}

HWND Make_Window() {
    WNDCLASSA window_class = {};
    window_class.lpfnWndProc = Window_Procedure;
    window_class.hInstance = ::GetModuleHandleA(nullptr);
    window_class.hCursor = ::LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));
    window_class.lpszClassName = "Minimal_Host";
    ::RegisterClassA(&window_class);
    return ::CreateWindowExA(0, "Minimal_Host", "TAGs", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, 420, 160,
                             nullptr, nullptr, window_class.hInstance, nullptr);
}

/** True when the window has a pixel in TAG 1's colour. */
bool Shows_Tag_Colors(HWND window) {
    HDC dc = Y_setup(window, "Shows_Tag_Colors");
    RECT client = {};
    ::GetClientRect(window, &client);
    bool found = false;
    if (dc == nullptr) {
        return false;
    }
    for (int y = 0; y < client.bottom && !found; y += 2) {
        for (int x = 0; x < client.right && !found; x += 2) {
            found = ::GetPixel(dc, x, y) == RGB(0xE0, 0x40, 0x50);
        }
    }
    Y_release(window, dc);
    return found;
}

}  // namespace

int main(int argc, char** argv) {
    Define_Variables();
    HWND window = Make_Window();
    Window_Axis_Set(window,
                    Window_Axis::Down);  // 5. TAG, marker and histogram panels live in windows whose y grows downwards
    Tool_Tag tag_panel;
    panel = &tag_panel;
    Request_Listener listener;
    listener.update = On_Update;
    Request_Listener_Set(listener);
    Place(window);
    ::ShowWindow(window, SW_SHOW);
    ::UpdateWindow(window);
    bool shown = true;
    if (argc > 1 && std::strcmp(argv[1], "--once") == 0) {
        shown = Shows_Tag_Colors(window);
        ::DestroyWindow(window);
    }
    MSG message = {};
    while (::GetMessageA(&message, nullptr, 0, 0) > 0) {
        ::TranslateMessage(&message);
        ::DispatchMessageA(&message);
    }
    panel = nullptr;
    return shown ? 0 : 1;
}
