#include "histogram/tool_histo_blow.h"

#include "win32/gdi_handles.h"

#include "histogram/tool_histo.h"

Histo_Blow_State histo_blow;

std::intptr_t __stdcall WndProc_Histo_Blow(HWND window, unsigned int message, std::uintptr_t wparam,
                                           std::intptr_t lparam) {
    switch (message) {
        case WM_CREATE:
            histo_blow.window = window;
            return 0;
        case WM_DESTROY: {
            // The handle goes first, so that the panel draws its button released.
            histo_blow.window = nullptr;
            Tool_Histo* panel = histo_blow.panel;
            histo_blow.panel = nullptr;
            if (panel != nullptr) {
                panel->Draw();
            }
            return 0;
        }
        case WM_CLOSE:
            ::DestroyWindow(window);
            return 0;
        default:
            return ::DefWindowProcA(window, message, wparam, lparam);
    }
}

void Histo_Blow_Touch_Register(HWND window) {
    // Looked up at run time: not every system that runs the module has it.
    using Register_Fct = BOOL(WINAPI*)(HWND, ULONG);
    const HMODULE user = ::GetModuleHandleA("user32.dll");
    const auto address =
        reinterpret_cast<void (*)()>(user != nullptr ? ::GetProcAddress(user, "RegisterTouchWindow") : nullptr);
    if (address != nullptr) {
        reinterpret_cast<Register_Fct>(address)(window, 0);
    }
}
