#include "workbench/enlarged_window.h"

#include <cwchar>

#include "kits/dataset/dataset_host.h"
#include "workbench/model/window_beside.h"
#include "workbench/window_places.h"

namespace workbench {

namespace {

constexpr const wchar_t* CLASS_NAME = L"Histogram";  // of the panels' module
constexpr const char* PLACE = "$HISTO_WINDOW_PLACE";
constexpr int PLACE_NUMBERS = 4;
constexpr int FIRST_WIDTH = 800;  // pixels
constexpr int FIRST_HEIGHT = 400;

}  // namespace

bool Is_Enlarged_Window(HWND window) {
    wchar_t name[32] = {};
    return window != nullptr && ::GetClassNameW(window, name, 32) > 0 && std::wcscmp(name, CLASS_NAME) == 0;
}

// No "$HISTO_WINDOW_OWNER": with Wine the dialog of "Export", which belongs to the main window, leaves the input there
// when it ends, and a window that the main one owns does not get it back.
void Enlarged_Place_Set(HWND main, int tools, const Window_Place& kept) {
    Window_Place last = kept;
    RECT box = {};
    if (last.width <= 0 && ::GetWindowRect(main, &box) != 0) {
        last = Window_Beside({box.left, box.top, box.right - box.left, box.bottom - box.top, false}, tools, FIRST_WIDTH,
                             FIRST_HEIGHT, Screen_Of(main));
    }
    if (auto* place = static_cast<std::int32_t*>(Variable_Define_Array(PLACE, VARIABLE_SIGNED_32, PLACE_NUMBERS))) {
        place[0] = last.left;
        place[1] = last.top;
        place[2] = last.width;
        place[3] = last.height;
    }
}

Window_Place Enlarged_Place_Now() {
    int nb = 0;
    const auto* place = static_cast<std::int32_t*>(Variable_Array(PLACE, VARIABLE_SIGNED_32, &nb));
    return nb == PLACE_NUMBERS ? Window_Place{place[0], place[1], place[2], place[3], false} : Window_Place{};
}

}  // namespace workbench
