#include "workbench/enlarged_wheel.h"

#include <cwchar>

#include "workbench/model/wheel_notches.h"

namespace {

constexpr const wchar_t* class_name = L"Histogram";  // of the panels' module

bool Is_Enlarged(HWND window) {
    wchar_t name[32] = {};
    return window != nullptr && ::GetClassNameW(window, name, 32) > 0 && std::wcscmp(name, class_name) == 0;
}

}  // namespace

bool Enlarged_Wheel_Dispatch(const MSG& message, bool is_turned) {
    if (message.message != WM_MOUSEWHEEL || !Is_Enlarged(message.hwnd)) {
        return false;
    }
    for (const int delta : Wheel_Notches(GET_WHEEL_DELTA_WPARAM(message.wParam), is_turned)) {
        MSG notch = message;
        notch.wParam = MAKEWPARAM(GET_KEYSTATE_WPARAM(message.wParam), static_cast<WORD>(delta));
        ::DispatchMessageW(&notch);
    }
    return true;
}
