#include "workbench/text_dialog.h"

#include "workbench/dialog_template.h"

namespace workbench {

namespace {

constexpr int ID_TEXT = 100;
constexpr int ID_CHOICE_0 = 200;
constexpr short WIDTH = 380;  // dialog units
constexpr short TABLE_WIDTH = 460;
constexpr short HEIGHT = 260;
constexpr short MARGIN = 7;
constexpr short BUTTON_WIDTH = 80;
constexpr short BUTTON_HEIGHT = 14;

struct Shown_Text {
    const std::wstring& text;
    HFONT font;
};

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        const auto* shown = reinterpret_cast<const Shown_Text*>(lparam);
        ::SendDlgItemMessageW(dialog, ID_TEXT, WM_SETFONT, reinterpret_cast<WPARAM>(shown->font), FALSE);
        ::SetDlgItemTextW(dialog, ID_TEXT, shown->text.c_str());
        ::SetFocus(::GetDlgItem(dialog, ID_TEXT));
        ::SendDlgItemMessageW(dialog, ID_TEXT, EM_SETSEL, 0, 0);
        return FALSE;
    }
    if (message != WM_COMMAND) {
        return FALSE;
    }
    const int id = LOWORD(wparam);
    if (id == IDOK || id == IDCANCEL || id >= ID_CHOICE_0) {
        ::EndDialog(dialog, id);
        return TRUE;
    }
    return FALSE;
}

/** Line ends as an edit field needs them. */
std::wstring Field_Text(const std::wstring& lines) {
    std::wstring text;
    for (const wchar_t unit : lines) {
        text += unit == L'\n' ? std::wstring(L"\r\n") : std::wstring(1, unit);
    }
    return text;
}

}  // namespace

int Text_Show(HWND owner, const std::wstring& title, const std::wstring& lines, HFONT font,
              const std::vector<std::wstring>& choices, Long_Lines long_lines) {
    const bool is_scrolled = long_lines == Long_Lines::Scrolled;
    const short width = is_scrolled ? TABLE_WIDTH : WIDTH;
    Dialog_Template dialog(title, width, HEIGHT);
    // A field is called by the label before it, also by one without extent.
    dialog.Add(DIALOG_STATIC, SS_LEFT, 0, 0, 0, 0, 0xFFFF, title);
    dialog.Add(DIALOG_EDIT,
               WS_BORDER | WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_READONLY |
                   (is_scrolled ? WS_HSCROLL | ES_AUTOHSCROLL : 0),
               MARGIN, MARGIN, width - 2 * MARGIN, HEIGHT - 3 * MARGIN - BUTTON_HEIGHT, ID_TEXT, L"");
    short x = width - MARGIN - BUTTON_WIDTH;
    const short y = HEIGHT - MARGIN - BUTTON_HEIGHT;
    dialog.Add(DIALOG_BUTTON, BS_DEFPUSHBUTTON | WS_TABSTOP, x, y, BUTTON_WIDTH, BUTTON_HEIGHT, IDOK, L"&Close");
    for (std::size_t at = choices.size(); at > 0; --at) {
        x = static_cast<short>(x - BUTTON_WIDTH - MARGIN);
        dialog.Add(DIALOG_BUTTON, BS_PUSHBUTTON | WS_TABSTOP, x, y, BUTTON_WIDTH, BUTTON_HEIGHT,
                   static_cast<WORD>(ID_CHOICE_0 + static_cast<int>(at) - 1), choices[at - 1]);
    }
    const std::wstring text = Field_Text(lines);
    const Shown_Text shown = {text, font};
    const INT_PTR result = dialog.Run(owner, &Procedure, reinterpret_cast<LPARAM>(&shown));
    return result >= ID_CHOICE_0 ? static_cast<int>(result) - ID_CHOICE_0 : -1;
}

}  // namespace workbench
