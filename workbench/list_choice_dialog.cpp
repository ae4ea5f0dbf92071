#include "workbench/list_choice_dialog.h"

#include "workbench/dialog_template.h"

namespace workbench {

namespace {

constexpr int id_list = 100;
constexpr short width = 240;  // dialog units
constexpr short height = 260;
constexpr short margin = 7;
constexpr short label_height = 18;
constexpr short button_width = 60;
constexpr short button_height = 14;

struct Shown_List {
    const std::vector<std::wstring>& lines;
    int chosen;
};

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongPtrW(dialog, GWLP_USERDATA, lparam);
        const auto* shown = reinterpret_cast<const Shown_List*>(lparam);
        for (const std::wstring& line : shown->lines) {
            ::SendDlgItemMessageW(dialog, id_list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
        }
        ::SendDlgItemMessageW(dialog, id_list, LB_SETCURSEL, static_cast<WPARAM>(shown->chosen), 0);
        ::SetFocus(::GetDlgItem(dialog, id_list));
        return FALSE;
    }
    if (message != WM_COMMAND) {
        return FALSE;
    }
    const int id = LOWORD(wparam);
    const bool is_taken = id == IDOK || (id == id_list && HIWORD(wparam) == LBN_DBLCLK);
    if (is_taken) {
        auto* shown = reinterpret_cast<Shown_List*>(::GetWindowLongPtrW(dialog, GWLP_USERDATA));
        shown->chosen = static_cast<int>(::SendDlgItemMessageW(dialog, id_list, LB_GETCURSEL, 0, 0));
    }
    if (is_taken || id == IDCANCEL) {
        ::EndDialog(dialog, is_taken ? IDOK : IDCANCEL);
        return TRUE;
    }
    return FALSE;
}

}  // namespace

int List_Choice_Ask(HWND owner, const std::wstring& title, const std::wstring& label,
                    const std::vector<std::wstring>& lines, int current) {
    Dialog_Template dialog(title, width, height);
    const short list_top = 2 * margin + label_height;
    const short buttons_top = height - margin - button_height;
    dialog.Add(DIALOG_STATIC, SS_LEFT | SS_NOPREFIX, margin, margin, width - 2 * margin, label_height, 0xFFFF, label);
    dialog.Add(DIALOG_LIST, WS_BORDER | WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT, margin, list_top,
               width - 2 * margin, buttons_top - list_top - margin, id_list, L"");
    dialog.Add(DIALOG_BUTTON, BS_DEFPUSHBUTTON | WS_TABSTOP, width - 2 * (margin + button_width), buttons_top,
               button_width, button_height, IDOK, L"&Go there");
    dialog.Add(DIALOG_BUTTON, BS_PUSHBUTTON | WS_TABSTOP, width - margin - button_width, buttons_top, button_width,
               button_height, IDCANCEL, L"&Close");
    Shown_List shown = {lines, current};
    const INT_PTR result = ::DialogBoxIndirectParamW(::GetModuleHandleW(nullptr), dialog.Finish(), owner, &Procedure,
                                                     reinterpret_cast<LPARAM>(&shown));
    return result == IDOK ? shown.chosen : -1;
}

}  // namespace workbench
