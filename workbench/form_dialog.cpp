#include "workbench/form_dialog.h"

#include "workbench/dialog_template.h"

namespace workbench {

namespace {

constexpr int ID_LINE = 100;  // of the first line
constexpr int ID_WAY = 200;   // of the second button; the first is IDOK
constexpr short WIDTH = 280;  // dialog units
constexpr short MARGIN = 8;
constexpr short TEXT_HEIGHT = 28;
constexpr short LABEL_WIDTH = 106;
constexpr short LINE_HEIGHT = 13;
constexpr short LINE_STEP = 18;
constexpr short BUTTON_WIDTH = 56;
constexpr short BUTTON_HEIGHT = 14;
constexpr int TEXT_MOST = 512;

struct Shown_Form {
    std::vector<Form_Line>& lines;
    int way_nb;
};

/** @return -1: no button of the ways */
int Way_Of(int id, int way_nb) {
    const int way = id == IDOK ? 0 : id - ID_WAY + 1;
    return way == 0 || (way > 0 && way < way_nb) ? way : -1;
}

void Lines_Take(HWND dialog, std::vector<Form_Line>& lines) {
    int id = ID_LINE;
    for (Form_Line& line : lines) {
        wchar_t text[TEXT_MOST] = {};
        ::GetDlgItemTextW(dialog, id++, text, TEXT_MOST);
        line.value = text;
    }
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongPtrW(dialog, GWLP_USERDATA, lparam);
        int id = ID_LINE;
        for (const Form_Line& line : reinterpret_cast<Shown_Form*>(lparam)->lines) {
            ::SendDlgItemMessageW(dialog, id, EM_LIMITTEXT, TEXT_MOST - 1, 0);
            ::SetDlgItemTextW(dialog, id++, line.value.c_str());
        }
        ::SendDlgItemMessageW(dialog, ID_LINE, EM_SETSEL, 0, -1);
        ::SetFocus(::GetDlgItem(dialog, ID_LINE));
        return FALSE;
    }
    auto* shown = reinterpret_cast<Shown_Form*>(::GetWindowLongPtrW(dialog, GWLP_USERDATA));
    if (message != WM_COMMAND || shown == nullptr) {
        return FALSE;
    }
    const int id = LOWORD(wparam);
    const int way = Way_Of(id, shown->way_nb);
    if (way < 0 && id != IDCANCEL) {
        return FALSE;
    }
    Lines_Take(dialog, shown->lines);
    ::EndDialog(dialog, way);
    return TRUE;
}

}  // namespace

int Form_Ask(HWND owner, const std::wstring& title, const std::wstring& text, std::vector<Form_Line>& lines,
             const std::vector<std::wstring>& ways) {
    const auto lines_top = static_cast<short>(MARGIN + TEXT_HEIGHT + MARGIN / 2);
    const auto buttons_top = static_cast<short>(lines_top + LINE_STEP * static_cast<short>(lines.size()) + MARGIN / 2);
    const auto height = static_cast<short>(buttons_top + BUTTON_HEIGHT + MARGIN);
    Dialog_Template dialog(title, WIDTH, height);
    dialog.Add(DIALOG_STATIC, SS_LEFT | SS_NOPREFIX, MARGIN, MARGIN, WIDTH - 2 * MARGIN, TEXT_HEIGHT, 0xFFFF, text);
    short top = lines_top;
    WORD id = ID_LINE;
    for (const Form_Line& line : lines) {
        dialog.Add(DIALOG_STATIC, SS_LEFT, MARGIN, static_cast<short>(top + 2), LABEL_WIDTH, LINE_HEIGHT - 2, 0xFFFF,
                   line.label);
        dialog.Add(DIALOG_EDIT, WS_BORDER | WS_TABSTOP | ES_AUTOHSCROLL, MARGIN + LABEL_WIDTH, top,
                   WIDTH - 2 * MARGIN - LABEL_WIDTH, LINE_HEIGHT, id++, L"");
        top = static_cast<short>(top + LINE_STEP);
    }
    const auto button_nb = static_cast<short>(ways.size() + 1);
    auto left = static_cast<short>(WIDTH - MARGIN / 2 - button_nb * (BUTTON_WIDTH + MARGIN / 2));
    for (std::size_t way = 0; way < ways.size(); ++way) {
        dialog.Add(DIALOG_BUTTON, (way == 0 ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON) | WS_TABSTOP, left, buttons_top,
                   BUTTON_WIDTH, BUTTON_HEIGHT, way == 0 ? IDOK : static_cast<WORD>(ID_WAY + way - 1), ways[way]);
        left = static_cast<short>(left + BUTTON_WIDTH + MARGIN / 2);
    }
    dialog.Add(DIALOG_BUTTON, BS_PUSHBUTTON | WS_TABSTOP, left, buttons_top, BUTTON_WIDTH, BUTTON_HEIGHT, IDCANCEL,
               L"Close");
    Shown_Form shown = {lines, static_cast<int>(ways.size())};
    return static_cast<int>(dialog.Run(owner, &Procedure, reinterpret_cast<LPARAM>(&shown)));
}

}  // namespace workbench
