#include "workbench/prompt_dialog.h"

#include "workbench/dialog_template.h"

namespace workbench {

namespace {

constexpr int ID_ENTRY = 100;

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongPtrW(dialog, GWLP_USERDATA, lparam);
        const auto* answer = reinterpret_cast<std::wstring*>(lparam);
        ::SetDlgItemTextW(dialog, ID_ENTRY, answer->c_str());
        ::SendDlgItemMessageW(dialog, ID_ENTRY, EM_SETSEL, 0, -1);
        ::SetFocus(::GetDlgItem(dialog, ID_ENTRY));
        return FALSE;
    }
    if (message != WM_COMMAND) {
        return FALSE;
    }
    const int id = LOWORD(wparam);
    if (id == IDOK) {
        auto* answer = reinterpret_cast<std::wstring*>(::GetWindowLongPtrW(dialog, GWLP_USERDATA));
        wchar_t text[512] = {};
        ::GetDlgItemTextW(dialog, ID_ENTRY, text, 512);
        *answer = text;
    }
    if (id == IDOK || id == IDCANCEL) {
        ::EndDialog(dialog, id);
        return TRUE;
    }
    return FALSE;
}

}  // namespace

std::optional<std::wstring> Prompt(HWND owner, const std::wstring& title, const std::wstring& question,
                                   const std::wstring& start) {
    Dialog_Template dialog(title, 220, 66);
    dialog.Add(DIALOG_STATIC, SS_LEFT, 8, 7, 204, 10, 0xFFFF, question);
    dialog.Add(DIALOG_EDIT, WS_BORDER | WS_TABSTOP | ES_AUTOHSCROLL, 8, 20, 204, 13, ID_ENTRY, L"");
    dialog.Add(DIALOG_BUTTON, BS_DEFPUSHBUTTON | WS_TABSTOP, 108, 44, 50, 14, IDOK, L"OK");
    dialog.Add(DIALOG_BUTTON, BS_PUSHBUTTON | WS_TABSTOP, 162, 44, 50, 14, IDCANCEL, L"Cancel");
    std::wstring answer = start;
    const INT_PTR result = dialog.Run(owner, &Procedure, reinterpret_cast<LPARAM>(&answer));
    if (result != IDOK) {
        return std::nullopt;
    }
    return answer;
}

}  // namespace workbench
