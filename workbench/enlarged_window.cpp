#include "workbench/enlarged_window.h"

#include <cwchar>

namespace workbench {

namespace {

constexpr const wchar_t* class_name = L"Histogram";  // of the panels' module

}  // namespace

bool Is_Enlarged_Window(HWND window) {
    wchar_t name[32] = {};
    return window != nullptr && ::GetClassNameW(window, name, 32) > 0 && std::wcscmp(name, class_name) == 0;
}

}  // namespace workbench
