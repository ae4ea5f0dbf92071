#include "kits/dataset/gesture.h"
#include "kits/dataset/pointer_system.h"

namespace {

// Numbers of the window messages, the same on every Windows.
constexpr unsigned int MESSAGE_TOUCH = 0x0240;
constexpr unsigned int MESSAGE_POINTER_UPDATE = 0x0245;
constexpr unsigned int MESSAGE_POINTER_DOWN = 0x0246;
constexpr unsigned int MESSAGE_POINTER_UP = 0x0247;
constexpr std::uintptr_t POINTER_NUMBER_MASK = 0xFFFF;

// Button bits of the mouse event codes.
constexpr int BUTTON_LEFT = 0x10;
constexpr int BUTTON_MIDDLE = 0x20;
constexpr int BUTTON_RIGHT = 0x40;

Pointer_System& Source() {
    static Pointer_System source = System_Pointer_System();
    return source;
}

Two_Finger_Gesture gesture;
HWND gesture_window = nullptr;

/** The tip is the left button, with the barrel button held the right one; the eraser is the middle one. */
int Buttons_Of(const Pen_State& pen) {
    if (!pen.contact) {
        return 0;
    }
    if (pen.eraser) {
        return BUTTON_MIDDLE;
    }
    return pen.barrel ? BUTTON_RIGHT : BUTTON_LEFT;
}

}  // namespace

void Pointer_System_Set(const Pointer_System* system) {
    Source() = system != nullptr ? *system : System_Pointer_System();
    gesture.Reset();
}

const Pointer_Record* Fct_Pointer_Pen(HWND /*window*/, unsigned int message, std::uintptr_t wparam,
                                      std::intptr_t /*lparam*/) {
    static Pointer_Record record;
    if (message != MESSAGE_POINTER_UPDATE && message != MESSAGE_POINTER_DOWN && message != MESSAGE_POINTER_UP) {
        return nullptr;
    }
    const Pointer_System source = Source();
    Pen_State pen;
    if (source.pen == nullptr ||
        source.pen(source.context, static_cast<unsigned int>(wparam & POINTER_NUMBER_MASK), &pen) == 0) {
        return nullptr;
    }
    record = {pen.x, pen.y, Buttons_Of(pen)};
    return &record;
}

const Gesture_Record* Fct_Pointer_Touch(HWND window, unsigned int message, std::uintptr_t wparam,
                                        std::intptr_t lparam) {
    static Gesture_Record record;
    const Pointer_System source = Source();
    if (message != MESSAGE_TOUCH || source.touch == nullptr) {
        return nullptr;
    }
    if (window != gesture_window) {
        gesture.Reset();
        gesture_window = window;
    }
    Touch_Point points[TOUCH_POINTS_MAX];
    const int nb = source.touch(source.context, wparam, lparam, points, TOUCH_POINTS_MAX);
    const auto change = gesture.Follow(points, nb);
    if (!change) {
        return nullptr;
    }
    record = *change;
    return &record;
}
