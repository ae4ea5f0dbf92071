#include "workbench/choice_dialog.h"

#include <algorithm>
#include <cstddef>

#include "workbench/dialog_template.h"
#include "workbench/model/text_fold.h"

namespace workbench {

namespace {

constexpr int ID_WAY_0 = 200;
constexpr short WIDTH = 300;  // dialog units
constexpr short MARGIN = 8;
constexpr short LINE_HEIGHT = 8;
constexpr short BUTTON_HEIGHT = 14;
constexpr short BUTTON_GAP = 3;
constexpr int LETTERS = 66;  // of a row, that surely fit
constexpr std::ptrdiff_t LINES_MOST = 30;

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

}  // namespace

int Choice_Ask(HWND owner, const std::wstring& title, const std::wstring& text, const std::vector<std::wstring>& ways) {
    // The system would cut a path that is longer than a row.
    const std::wstring folded = Text_Folded(text, LETTERS);
    const auto lines = std::min<std::ptrdiff_t>(std::ranges::count(folded, L'\n') + 1, LINES_MOST);
    const auto text_height = static_cast<short>(lines * LINE_HEIGHT);
    const auto ways_top = static_cast<short>(2 * MARGIN + text_height);
    const auto step = static_cast<short>(BUTTON_HEIGHT + BUTTON_GAP);
    Dialog_Template dialog(title, WIDTH,
                           static_cast<short>(ways_top + static_cast<short>(ways.size()) * step + MARGIN));
    dialog.Add(DIALOG_STATIC, SS_LEFT | SS_NOPREFIX, MARGIN, MARGIN, WIDTH - 2 * MARGIN, text_height, 0xFFFF, folded);
    for (std::size_t at = 0; at < ways.size(); ++at) {
        dialog.Add(DIALOG_BUTTON, (at == 0 ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON) | WS_TABSTOP, MARGIN,
                   static_cast<short>(ways_top + static_cast<short>(at) * step), WIDTH - 2 * MARGIN, BUTTON_HEIGHT,
                   static_cast<WORD>(ID_WAY_0 + static_cast<int>(at)), ways[at]);
    }
    const INT_PTR result = dialog.Run(owner, &Procedure);
    return result >= ID_WAY_0 ? static_cast<int>(result) - ID_WAY_0 : -1;
}

}  // namespace workbench
