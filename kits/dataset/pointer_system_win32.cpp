#include <windows.h>

#include <algorithm>

#include "kits/dataset/pointer_system.h"

namespace {

constexpr float TOUCH_UNITS_PER_PIXEL = 100.0F;

/** Operations that older systems lack. */
struct User_Operations {
    BOOL(WINAPI* get_pointer_type)(UINT32, POINTER_INPUT_TYPE*) = nullptr;
    BOOL(WINAPI* get_pointer_pen_info)(UINT32, POINTER_PEN_INFO*) = nullptr;
    BOOL(WINAPI* get_touch_input_info)(HTOUCHINPUT, UINT, PTOUCHINPUT, int) = nullptr;
    BOOL(WINAPI* close_touch_input_handle)(HTOUCHINPUT) = nullptr;

    User_Operations() {
        const HMODULE user = ::GetModuleHandleA("user32.dll");
        Load(user, "GetPointerType", get_pointer_type);
        Load(user, "GetPointerPenInfo", get_pointer_pen_info);
        Load(user, "GetTouchInputInfo", get_touch_input_info);
        Load(user, "CloseTouchInputHandle", close_touch_input_handle);
    }

  private:
    template <typename Operation>
    static void Load(HMODULE module, const char* name, Operation& operation) {
        if (module != nullptr) {
            operation = reinterpret_cast<Operation>(reinterpret_cast<void (*)()>(::GetProcAddress(module, name)));
        }
    }
};

const User_Operations& User() {
    static const User_Operations operations;
    return operations;
}

int System_Pen(void* /*context*/, unsigned int pointer, Pen_State* state) {
    POINTER_INPUT_TYPE type = 0;
    if (User().get_pointer_type == nullptr || User().get_pointer_pen_info == nullptr ||
        User().get_pointer_type(pointer, &type) == FALSE || type != PT_PEN) {
        return 0;
    }
    POINTER_PEN_INFO info = {};
    if (User().get_pointer_pen_info(pointer, &info) == FALSE) {
        return 0;
    }
    state->x = static_cast<int>(info.pointerInfo.ptPixelLocation.x);
    state->y = static_cast<int>(info.pointerInfo.ptPixelLocation.y);
    state->contact = (info.pointerInfo.pointerFlags & POINTER_FLAG_INCONTACT) != 0;
    state->barrel = (info.penFlags & PEN_FLAG_BARREL) != 0;
    state->eraser = (info.penFlags & (PEN_FLAG_INVERTED | PEN_FLAG_ERASER)) != 0;
    return 1;
}

int System_Touch(void* /*context*/, std::uintptr_t wparam, std::intptr_t lparam, Touch_Point* point, int most) {
    if (User().get_touch_input_info == nullptr || User().close_touch_input_handle == nullptr) {
        return 0;
    }
    const auto handle = reinterpret_cast<HTOUCHINPUT>(lparam);
    TOUCHINPUT inputs[TOUCH_POINTS_MAX] = {};
    const int nb = std::min({static_cast<int>(LOWORD(wparam)), TOUCH_POINTS_MAX, most});
    const bool read =
        nb > 0 && User().get_touch_input_info(handle, static_cast<UINT>(nb), inputs, sizeof(TOUCHINPUT)) != FALSE;
    // The message is answered here, so its handle is closed here, read or not; the default procedure would only find it
    // closed.
    User().close_touch_input_handle(handle);
    if (!read) {
        return 0;
    }
    for (int i = 0; i < nb; ++i) {
        point[i].finger = inputs[i].dwID;
        point[i].x = static_cast<float>(inputs[i].x) / TOUCH_UNITS_PER_PIXEL;
        point[i].y = static_cast<float>(inputs[i].y) / TOUCH_UNITS_PER_PIXEL;
        point[i].down = (inputs[i].dwFlags & TOUCHEVENTF_UP) == 0;
    }
    return nb;
}

}  // namespace

Pointer_System System_Pointer_System() {
    return {System_Pen, System_Touch, nullptr};
}
