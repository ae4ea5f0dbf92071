#include "workbench/window_places.h"

#include "workbench/model/window_beside.h"

namespace workbench {

namespace {

Window_Place Place_Of_Box(const RECT& box) {
    return {box.left, box.top, box.right - box.left, box.bottom - box.top, false};
}

}  // namespace

Window_Place Place_Of(HWND window) {
    WINDOWPLACEMENT place = {};
    place.length = sizeof place;
    if (window == nullptr || ::GetWindowPlacement(window, &place) == 0) {
        return {};
    }
    Window_Place own = Place_Of_Box(place.rcNormalPosition);
    own.is_maximized = place.showCmd == SW_SHOWMAXIMIZED || (place.flags & WPF_RESTORETOMAXIMIZED) != 0;
    return own;
}

Window_Place Screen_Of(HWND window) {
    MONITORINFO screen = {};
    screen.cbSize = sizeof screen;
    if (::GetMonitorInfoW(::MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY), &screen) == 0) {
        RECT work = {};
        ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
        return Place_Of_Box(work);
    }
    return Place_Of_Box(screen.rcWork);
}

void Place_Beside(HWND window, HWND owner, int tools, const Window_Place& last, int width, int height) {
    if (last.width > 0) {
        ::SetWindowPos(window, nullptr, last.left, last.top, last.width, last.height, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    // The screen is that of the place where it stood last, or of its owner.
    const Window_Place area = Screen_Of(last.width > 0 ? window : owner);
    RECT box = {area.left, area.top, area.left, area.top};
    if (owner != nullptr) {
        ::GetWindowRect(owner, &box);
    }
    const Window_Place place =
        last.width > 0 ? Place_Inside(last, area) : Window_Beside(Place_Of_Box(box), tools, width, height, area);
    ::SetWindowPos(window, nullptr, place.left, place.top, place.width, place.height, SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace workbench
