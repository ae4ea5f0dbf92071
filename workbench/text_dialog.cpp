#include "workbench/text_dialog.h"

#include "workbench/dialog_template.h"

namespace workbench {

namespace {

constexpr int id_text = 100;
constexpr int id_choice_0 = 200;
constexpr short width = 380;  // dialog units
constexpr short height = 260;
constexpr short margin = 7;
constexpr short button_width = 80;
constexpr short button_height = 14;

struct Shown_Text {
    const std::wstring& text;
    HFONT font;
};

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        const auto* shown = reinterpret_cast<const Shown_Text*>(lparam);
        ::SendDlgItemMessageW(dialog, id_text, WM_SETFONT, reinterpret_cast<WPARAM>(shown->font), FALSE);
        ::SetDlgItemTextW(dialog, id_text, shown->text.c_str());
        ::SetFocus(::GetDlgItem(dialog, id_text));
        ::SendDlgItemMessageW(dialog, id_text, EM_SETSEL, 0, 0);
        return FALSE;
    }
    if (message != WM_COMMAND) {
        return FALSE;
    }
    const int id = LOWORD(wparam);
    if (id == IDOK || id == IDCANCEL || id >= id_choice_0) {
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
              const std::vector<std::wstring>& choices) {
    Dialog_Template dialog(title, width, height);
    // A field is called by the label before it, also by one without extent.
    dialog.Add(DIALOG_STATIC, SS_LEFT, 0, 0, 0, 0, 0xFFFF, title);
    dialog.Add(DIALOG_EDIT, WS_BORDER | WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_READONLY, margin, margin,
               width - 2 * margin, height - 3 * margin - button_height, id_text, L"");
    short x = width - margin - button_width;
    const short y = height - margin - button_height;
    dialog.Add(DIALOG_BUTTON, BS_DEFPUSHBUTTON | WS_TABSTOP, x, y, button_width, button_height, IDOK, L"&Close");
    for (std::size_t at = choices.size(); at > 0; --at) {
        x = static_cast<short>(x - button_width - margin);
        dialog.Add(DIALOG_BUTTON, BS_PUSHBUTTON | WS_TABSTOP, x, y, button_width, button_height,
                   static_cast<WORD>(id_choice_0 + static_cast<int>(at) - 1), choices[at - 1]);
    }
    const std::wstring text = Field_Text(lines);
    const Shown_Text shown = {text, font};
    const INT_PTR result = ::DialogBoxIndirectParamW(::GetModuleHandleW(nullptr), dialog.Finish(), owner, &Procedure,
                                                     reinterpret_cast<LPARAM>(&shown));
    return result >= id_choice_0 ? static_cast<int>(result) - id_choice_0 : -1;
}

}  // namespace workbench
