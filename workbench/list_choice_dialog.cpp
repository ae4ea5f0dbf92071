#include "workbench/list_choice_dialog.h"

#include "workbench/dialog_template.h"

namespace workbench {

namespace {

constexpr int ID_LIST = 100;
constexpr short WIDTH = 240;  // dialog units
constexpr short HEIGHT = 260;
constexpr short MARGIN = 7;
constexpr short LABEL_HEIGHT = 18;
constexpr short BUTTON_WIDTH = 60;
constexpr short BUTTON_HEIGHT = 14;

struct Shown_List {
    const std::vector<std::wstring>& lines;
    std::vector<int> chosen;  ///< one line, or those marked of a list that lets mark several
    bool has_several = false;
};

void Lines_Mark(HWND dialog, const Shown_List& shown) {
    const int first = shown.chosen.front();
    if (shown.has_several) {
        ::SendDlgItemMessageW(dialog, ID_LIST, LB_SETSEL, TRUE, first);
        ::SendDlgItemMessageW(dialog, ID_LIST, LB_SETCARETINDEX, static_cast<WPARAM>(first), FALSE);
    } else {
        ::SendDlgItemMessageW(dialog, ID_LIST, LB_SETCURSEL, static_cast<WPARAM>(first), 0);
    }
}

void Lines_Take(HWND dialog, Shown_List& shown) {
    if (!shown.has_several) {
        shown.chosen = {static_cast<int>(::SendDlgItemMessageW(dialog, ID_LIST, LB_GETCURSEL, 0, 0))};
        return;
    }
    shown.chosen.assign(shown.lines.size(), 0);
    const LRESULT count = ::SendDlgItemMessageW(dialog, ID_LIST, LB_GETSELITEMS, shown.chosen.size(),
                                                reinterpret_cast<LPARAM>(shown.chosen.data()));
    shown.chosen.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongPtrW(dialog, GWLP_USERDATA, lparam);
        const auto* shown = reinterpret_cast<const Shown_List*>(lparam);
        for (const std::wstring& line : shown->lines) {
            ::SendDlgItemMessageW(dialog, ID_LIST, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
        }
        Lines_Mark(dialog, *shown);
        ::SetFocus(::GetDlgItem(dialog, ID_LIST));
        return FALSE;
    }
    if (message != WM_COMMAND) {
        return FALSE;
    }
    const int id = LOWORD(wparam);
    const bool is_taken = id == IDOK || (id == ID_LIST && HIWORD(wparam) == LBN_DBLCLK);
    if (is_taken) {
        Lines_Take(dialog, *reinterpret_cast<Shown_List*>(::GetWindowLongPtrW(dialog, GWLP_USERDATA)));
    }
    if (is_taken || id == IDCANCEL) {
        ::EndDialog(dialog, is_taken ? IDOK : IDCANCEL);
        return TRUE;
    }
    return FALSE;
}

/** @return whether lines were taken */
bool List_Run(HWND owner, const std::wstring& title, const std::wstring& label, const wchar_t* accept,
              Shown_List& shown) {
    Dialog_Template dialog(title, WIDTH, HEIGHT);
    const short list_top = 2 * MARGIN + LABEL_HEIGHT;
    const short buttons_top = HEIGHT - MARGIN - BUTTON_HEIGHT;
    const DWORD several = shown.has_several ? LBS_EXTENDEDSEL : 0;
    dialog.Add(DIALOG_STATIC, SS_LEFT | SS_NOPREFIX, MARGIN, MARGIN, WIDTH - 2 * MARGIN, LABEL_HEIGHT, 0xFFFF, label);
    dialog.Add(DIALOG_LIST, WS_BORDER | WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | several, MARGIN,
               list_top, WIDTH - 2 * MARGIN, buttons_top - list_top - MARGIN, ID_LIST, L"");
    dialog.Add(DIALOG_BUTTON, BS_DEFPUSHBUTTON | WS_TABSTOP, WIDTH - 2 * (MARGIN + BUTTON_WIDTH), buttons_top,
               BUTTON_WIDTH, BUTTON_HEIGHT, IDOK, accept);
    dialog.Add(DIALOG_BUTTON, BS_PUSHBUTTON | WS_TABSTOP, WIDTH - MARGIN - BUTTON_WIDTH, buttons_top, BUTTON_WIDTH,
               BUTTON_HEIGHT, IDCANCEL, L"&Close");
    return dialog.Run(owner, &Procedure, reinterpret_cast<LPARAM>(&shown)) == IDOK;
}

}  // namespace

int List_Choice_Ask(HWND owner, const std::wstring& title, const std::wstring& label,
                    const std::vector<std::wstring>& lines, int current, const wchar_t* accept) {
    Shown_List shown = {lines, {current}};
    return List_Run(owner, title, label, accept, shown) ? shown.chosen.front() : -1;
}

std::vector<int> List_Choices_Ask(HWND owner, const std::wstring& title, const std::wstring& label,
                                  const std::vector<std::wstring>& lines, const wchar_t* accept) {
    Shown_List shown = {lines, {0}, true};
    return List_Run(owner, title, label, accept, shown) ? shown.chosen : std::vector<int>();
}

}  // namespace workbench
