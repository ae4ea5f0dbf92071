#include "workbench/dialog_template.h"

#include <cstring>

#include "workbench/window_theme.h"

namespace workbench {

namespace {

struct Running {
    DLGPROC procedure = nullptr;
    LPARAM data = 0;
};

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongPtrW(dialog, DWLP_USER, lparam);
        Frame_Theme_Follow(dialog);
        lparam = reinterpret_cast<const Running*>(lparam)->data;
    }
    const auto* running = reinterpret_cast<const Running*>(::GetWindowLongPtrW(dialog, DWLP_USER));
    if (running == nullptr) {
        return FALSE;  // before WM_INITDIALOG
    }
    const HBRUSH ground = Prompt_Ground(message, wparam);
    return ground != nullptr ? reinterpret_cast<INT_PTR>(ground) : running->procedure(dialog, message, wparam, lparam);
}

}  // namespace

Dialog_Template::Dialog_Template(const std::wstring& title, short width, short height) {
    DLGTEMPLATE head = {};
    head.style = DS_SETFONT | DS_MODALFRAME | DS_CENTER | WS_POPUP | WS_CAPTION | WS_SYSMENU;
    head.cx = width;
    head.cy = height;
    Put(&head, sizeof head);
    words.insert(words.end(), {0, 0});  // no menu, the system's class
    Put_Text(title);
    words.push_back(9);  // size of the font, points
    Put_Text(L"MS Shell Dlg");
}

void Dialog_Template::Add(WORD window_class, DWORD style, short x, short y, short width, short height, WORD id,
                          const std::wstring& text) {
    if (words.size() % 2 != 0) {
        words.push_back(0);
    }
    DLGITEMTEMPLATE item = {};
    item.style = style | WS_CHILD | WS_VISIBLE;
    item.x = x;
    item.y = y;
    item.cx = width;
    item.cy = height;
    item.id = id;
    Put(&item, sizeof item);
    words.insert(words.end(), {0xFFFF, window_class});
    Put_Text(text);
    words.push_back(0);  // no creation data
    ++count;
}

INT_PTR Dialog_Template::Run(HWND owner, DLGPROC procedure, LPARAM data) {
    const Running running = {procedure, data};
    return ::DialogBoxIndirectParamW(::GetModuleHandleW(nullptr), Finish(), owner, &Procedure,
                                     reinterpret_cast<LPARAM>(&running));
}

const DLGTEMPLATE* Dialog_Template::Finish() {
    auto* head = reinterpret_cast<DLGTEMPLATE*>(words.data());
    head->cdit = count;
    return head;
}

void Dialog_Template::Put(const void* bytes, std::size_t size) {
    const std::size_t at = words.size();
    words.resize(at + size / sizeof(WORD));
    std::memcpy(words.data() + at, bytes, size);
}

void Dialog_Template::Put_Text(const std::wstring& text) {
    for (const wchar_t unit : text) {
        words.push_back(static_cast<WORD>(unit));
    }
    words.push_back(0);
}

}  // namespace workbench
