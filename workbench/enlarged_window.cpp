#include "workbench/enlarged_window.h"

#include <cwchar>

#include "kits/dataset/dataset_host.h"

namespace workbench {

namespace {

constexpr const wchar_t* CLASS_NAME = L"Histogram";  // of the panels' module
constexpr const char* PLACE = "$HISTO_WINDOW_PLACE";
constexpr int PLACE_NUMBERS = 4;

}  // namespace

bool Is_Enlarged_Window(HWND window) {
    wchar_t name[32] = {};
    return window != nullptr && ::GetClassNameW(window, name, 32) > 0 && std::wcscmp(name, CLASS_NAME) == 0;
}

void Enlarged_Place_Set(HWND owner, const Window_Place& last) {
    Variable_Define_Pointer("$HISTO_WINDOW_OWNER", owner);
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
