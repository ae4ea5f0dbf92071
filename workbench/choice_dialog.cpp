#include "workbench/choice_dialog.h"

#include <algorithm>

#include "workbench/dialog_template.h"

namespace workbench {

namespace {

constexpr int ID_WAY_0 = 200;
constexpr short WIDTH = 300;  // dialog units
constexpr short MARGIN = 8;
constexpr short LINE_HEIGHT = 8;
constexpr short BUTTON_HEIGHT = 14;
constexpr short BUTTON_GAP = 3;
constexpr std::size_t LINE_LETTERS = 66;  // that surely fit

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    if (message == WM_INITDIALOG) {
        return TRUE;
    }
    const int id = LOWORD(wparam);
    if (message == WM_COMMAND && (id == IDCANCEL || id >= ID_WAY_0)) {
        ::EndDialog(dialog, id);
        return TRUE;
    }
    return FALSE;
}

/** Lines that a text takes when it is broken between words. */
short Line_Nb(const std::wstring& text) {
    std::size_t lines = 0;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(L'\n', at), text.size());
        lines += 1 + (end - at) / LINE_LETTERS;
        at = end + 1;
    }
    return static_cast<short>(std::min<std::size_t>(lines, 30));
}

}  // namespace

int Choice_Ask(HWND owner, const std::wstring& title, const std::wstring& text, const std::vector<std::wstring>& ways) {
    const auto text_height = static_cast<short>(Line_Nb(text) * LINE_HEIGHT);
    const auto ways_top = static_cast<short>(2 * MARGIN + text_height);
    const auto step = static_cast<short>(BUTTON_HEIGHT + BUTTON_GAP);
    Dialog_Template dialog(title, WIDTH,
                           static_cast<short>(ways_top + static_cast<short>(ways.size()) * step + MARGIN));
    dialog.Add(DIALOG_STATIC, SS_LEFT | SS_NOPREFIX, MARGIN, MARGIN, WIDTH - 2 * MARGIN, text_height, 0xFFFF, text);
    for (std::size_t at = 0; at < ways.size(); ++at) {
        dialog.Add(DIALOG_BUTTON, (at == 0 ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON) | WS_TABSTOP, MARGIN,
                   static_cast<short>(ways_top + static_cast<short>(at) * step), WIDTH - 2 * MARGIN, BUTTON_HEIGHT,
                   static_cast<WORD>(ID_WAY_0 + static_cast<int>(at)), ways[at]);
    }
    const INT_PTR result =
        ::DialogBoxIndirectParamW(::GetModuleHandleW(nullptr), dialog.Finish(), owner, &Procedure, 0);
    return result >= ID_WAY_0 ? static_cast<int>(result) - ID_WAY_0 : -1;
}

}  // namespace workbench
