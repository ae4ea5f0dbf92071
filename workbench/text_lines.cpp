#include "workbench/text_lines.h"

#include <exception>

#include "workbench/window_base.h"

namespace workbench {

HWND Lines_Make(HWND parent, HWND* label) {
    // A field is called by the label before it, also by one that is not shown.
    *label = ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 0, 0, parent, nullptr, ::GetModuleHandleW(nullptr),
                               nullptr);
    const HWND lines =
        ::CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_READONLY,
                          0, 0, 10, 10, parent, nullptr, ::GetModuleHandleW(nullptr), nullptr);
    ::SendMessageW(lines, EM_SETLIMITTEXT, 0, 0);
    return lines;
}

void Lines_Set(HWND field, const std::wstring& text) {
    std::wstring shown;
    for (const wchar_t letter : text) {
        shown += letter == L'\n' ? L"\r\n" : std::wstring(1, letter);
    }
    const LRESULT first = ::SendMessageW(field, EM_GETFIRSTVISIBLELINE, 0, 0);
    ::SetWindowTextW(field, shown.c_str());
    ::SendMessageW(field, EM_LINESCROLL, 0, first);
}

Row_Choice::~Row_Choice() {
    if (field != nullptr) {
        ::SetWindowLongPtrW(field, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(own));
    }
}

void Row_Choice::Watch(HWND of_field) {
    field = of_field;
    ::SetWindowLongPtrW(field, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    own = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(field, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Row_Choice::Procedure)));
}

int Row_Choice::Line_Of(UINT message, WPARAM wparam, LPARAM lparam) const {
    if (message == WM_LBUTTONDBLCLK) {
        return HIWORD(::SendMessageW(field, EM_CHARFROMPOS, 0, lparam));
    }
    if (message == WM_KEYDOWN && wparam == VK_RETURN) {
        return static_cast<int>(::SendMessageW(field, EM_LINEFROMCHAR, static_cast<WPARAM>(-1), 0));
    }
    return -1;
}

LRESULT CALLBACK Row_Choice::Procedure(HWND field, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    auto* const choice = reinterpret_cast<Row_Choice*>(::GetWindowLongPtrW(field, GWLP_USERDATA));
    const WNDPROC own = choice->own;
    const HWND root = ::GetAncestor(field, GA_ROOT);
    if (message == WM_CHAR && wparam > ' ') {
        return ::SendMessageW(::GetAncestor(field, GA_ROOTOWNER), message, wparam, lparam);
    }
    if (message == WM_CHAR && wparam == VK_RETURN) {
        return 0;  // it would go to the next line
    }
    if (message == WM_KEYDOWN && wparam == VK_ESCAPE) {
        ::SetFocus(root);
        return 0;
    }
    if (message == WM_NCDESTROY) {
        choice->field = nullptr;
        ::SetWindowLongPtrW(field, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(own));
        return ::CallWindowProcW(own, field, message, wparam, lparam);
    }
    const LRESULT answer = ::CallWindowProcW(own, field, message, wparam, lparam);
    try {
        if (const int line = choice->Line_Of(message, wparam, lparam); line >= 0 && choice->chosen) {
            choice->chosen(line);
        }
    } catch (const std::exception& failure) {
        Failure_Tell(failure);
    }
    return answer;
}

}  // namespace workbench
