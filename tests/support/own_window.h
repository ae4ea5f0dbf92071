/** Windows of this program only: other tests run beside it on the same desktop and open windows of the same names. */
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

/** Which top-level windows are meant: class and title, an empty one meaning any. */
struct Own_Window_Search {
    std::wstring_view class_name;
    std::wstring_view title;
    int count = 0;         ///< how many there are
    HWND first = nullptr;  ///< the topmost of them
};

/** Counts this process's top-level windows of that class and title. Sends no message. */
inline Own_Window_Search Find_Own_Windows(std::wstring_view class_name, std::wstring_view title) {
    Own_Window_Search search{class_name, title};
    const auto look = [](HWND window, LPARAM pointer) -> BOOL {
        auto& wanted = *reinterpret_cast<Own_Window_Search*>(pointer);
        DWORD process = 0;
        ::GetWindowThreadProcessId(window, &process);
        if (process != ::GetCurrentProcessId()) {
            return TRUE;
        }
        wchar_t text[256] = {};
        const auto is = [&text](std::wstring_view expected) { return expected.empty() || expected == text; };
        ::GetClassNameW(window, text, 256);
        if (!is(wanted.class_name)) {
            return TRUE;
        }
        text[0] = L'\0';
        ::InternalGetWindowText(window, text, 256);
        if (is(wanted.title)) {
            ++wanted.count;
            wanted.first = wanted.first == nullptr ? window : wanted.first;
        }
        return TRUE;
    };
    ::EnumWindows(look, reinterpret_cast<LPARAM>(&search));
    return search;
}

/** The topmost of them; null when there is none. */
inline HWND Own_Window(std::wstring_view class_name, std::wstring_view title = {}) {
    return Find_Own_Windows(class_name, title).first;
}
