#include "workbench/enlarged_wheel.h"

#include "workbench/enlarged_window.h"
#include "workbench/model/wheel_notches.h"

namespace workbench {

bool Enlarged_Wheel_Dispatch(const MSG& message, bool is_turned) {
    if (message.message != WM_MOUSEWHEEL || !Is_Enlarged_Window(message.hwnd)) {
        return false;
    }
    for (const int delta : Wheel_Notches(GET_WHEEL_DELTA_WPARAM(message.wParam), is_turned)) {
        MSG notch = message;
        notch.wParam = MAKEWPARAM(GET_KEYSTATE_WPARAM(message.wParam), static_cast<WORD>(delta));
        ::DispatchMessageW(&notch);
    }
    return true;
}

}  // namespace workbench
