#include "workbench/choice_dialog.h"

#include <algorithm>

#include "workbench/dialog_template.h"

namespace workbench {

namespace {

constexpr int id_way_0 = 200;
constexpr short width = 300;  // dialog units
constexpr short margin = 8;
constexpr short line_height = 8;
constexpr short button_height = 14;
constexpr short button_gap = 3;
constexpr std::size_t line_letters = 66;  // that surely fit

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    if (message == WM_INITDIALOG) {
        return TRUE;
    }
    const int id = LOWORD(wparam);
    if (message == WM_COMMAND && (id == IDCANCEL || id >= id_way_0)) {
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
        lines += 1 + (end - at) / line_letters;
        at = end + 1;
    }
    return static_cast<short>(std::min<std::size_t>(lines, 30));
}

}  // namespace

int Choice_Ask(HWND owner, const std::wstring& title, const std::wstring& text, const std::vector<std::wstring>& ways) {
    const auto text_height = static_cast<short>(Line_Nb(text) * line_height);
    const auto ways_top = static_cast<short>(2 * margin + text_height);
    const auto step = static_cast<short>(button_height + button_gap);
    Dialog_Template dialog(title, width,
                           static_cast<short>(ways_top + static_cast<short>(ways.size()) * step + margin));
    dialog.Add(DIALOG_STATIC, SS_LEFT | SS_NOPREFIX, margin, margin, width - 2 * margin, text_height, 0xFFFF, text);
    for (std::size_t at = 0; at < ways.size(); ++at) {
        dialog.Add(DIALOG_BUTTON, (at == 0 ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON) | WS_TABSTOP, margin,
                   static_cast<short>(ways_top + static_cast<short>(at) * step), width - 2 * margin, button_height,
                   static_cast<WORD>(id_way_0 + static_cast<int>(at)), ways[at]);
    }
    const INT_PTR result =
        ::DialogBoxIndirectParamW(::GetModuleHandleW(nullptr), dialog.Finish(), owner, &Procedure, 0);
    return result >= id_way_0 ? static_cast<int>(result) - id_way_0 : -1;
}

}  // namespace workbench
