#include "workbench/bands_dialog.h"

#include "workbench/dialog_template.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int ID_PEAKS = 100;
constexpr int ID_TAG = 101;
constexpr short WIDTH = 320;  // dialog units
constexpr short HEIGHT = 176;
constexpr short MARGIN = 7;
constexpr short LINE = 10;
constexpr short LIST_HEIGHT = 100;
constexpr short BUTTON_WIDTH = 60;
constexpr short BUTTON_HEIGHT = 14;

struct Asked {
    Band_Plan& plan;
    const Tag_Namer& namer;
};

std::wstring Peak_Line(const Asked& asked, const Band_Choice& choice) {
    const bool has_tag = choice.tag > 0;
    return Wide_Of_Utf8(Band_Choice_Text(choice, has_tag ? asked.namer.name(choice.tag) : std::string(),
                                         has_tag ? asked.namer.claimed(choice.tag) : Claimed_Levels{}));
}

LRESULT Send(HWND dialog, int id, UINT message, WPARAM wparam, LPARAM lparam) {
    return ::SendDlgItemMessageW(dialog, id, message, wparam, lparam);
}

LPARAM Text_Parameter(const std::wstring& text) {
    return reinterpret_cast<LPARAM>(text.c_str());
}

/** Writes all lines anew and marks the one that was marked. */
void Peaks_Fill(HWND dialog, const Asked& asked, LRESULT marked) {
    Send(dialog, ID_PEAKS, LB_RESETCONTENT, 0, 0);
    for (const Band_Choice& choice : asked.plan.Choices()) {
        Send(dialog, ID_PEAKS, LB_ADDSTRING, 0, Text_Parameter(Peak_Line(asked, choice)));
    }
    Send(dialog, ID_PEAKS, LB_SETCURSEL, static_cast<WPARAM>(marked), 0);
}

void Tag_Mark(HWND dialog, const Asked& asked) {
    const LRESULT marked = Send(dialog, ID_PEAKS, LB_GETCURSEL, 0, 0);
    if (marked >= 0) {
        const int tag = asked.plan.Choices()[static_cast<std::size_t>(marked)].tag;
        Send(dialog, ID_TAG, CB_SETCURSEL, static_cast<WPARAM>(tag), 0);
    }
}

void Start(HWND dialog, const Asked& asked) {
    Send(dialog, ID_TAG, CB_ADDSTRING, 0, Text_Parameter(L"no TAG"));
    for (int tag = 1; tag < asked.plan.Tag_Nb(); ++tag) {
        const Claimed_Levels now = asked.namer.claimed(tag);
        const std::wstring text = L"TAG " + std::to_wstring(tag) + L" " + Wide_Of_Utf8(asked.namer.name(tag)) +
                                  (now.is_set ? L" (has levels)" : L"");
        Send(dialog, ID_TAG, CB_ADDSTRING, 0, Text_Parameter(text));
    }
    Peaks_Fill(dialog, asked, 0);
    Tag_Mark(dialog, asked);
    ::SetFocus(::GetDlgItem(dialog, ID_PEAKS));
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongPtrW(dialog, GWLP_USERDATA, lparam);
        Start(dialog, *reinterpret_cast<Asked*>(lparam));
        return FALSE;
    }
    auto* asked = reinterpret_cast<Asked*>(::GetWindowLongPtrW(dialog, GWLP_USERDATA));
    if (message != WM_COMMAND || asked == nullptr) {
        return FALSE;
    }
    const int id = LOWORD(wparam);
    const int told = HIWORD(wparam);
    if (id == ID_PEAKS && told == LBN_SELCHANGE) {
        Tag_Mark(dialog, *asked);
        return TRUE;
    }
    if (id == ID_TAG && told == CBN_SELCHANGE) {
        const LRESULT peak = Send(dialog, ID_PEAKS, LB_GETCURSEL, 0, 0);
        const LRESULT tag = Send(dialog, ID_TAG, CB_GETCURSEL, 0, 0);
        if (peak >= 0 && tag >= 0) {
            asked->plan.Tag_Set(static_cast<std::size_t>(peak), static_cast<int>(tag));
            Peaks_Fill(dialog, *asked, peak);
        }
        return TRUE;
    }
    if (id == IDOK || id == IDCANCEL) {
        ::EndDialog(dialog, id);
        return TRUE;
    }
    return FALSE;
}

}  // namespace

bool Bands_Ask(HWND owner, Band_Plan& plan, const Tag_Namer& namer) {
    constexpr short inner = WIDTH - 2 * MARGIN;
    Dialog_Template dialog(L"Peaks to TAG bands", WIDTH, HEIGHT);
    short y = MARGIN;
    dialog.Add(DIALOG_STATIC, SS_LEFT, MARGIN, y, inner, LINE, 0xFFFF,
               L"&Peaks, their grey levels and the TAGs that get them:");
    y = static_cast<short>(y + LINE + 2);
    dialog.Add(DIALOG_LIST, WS_BORDER | WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT, MARGIN, y, inner,
               LIST_HEIGHT, ID_PEAKS, L"");
    y = static_cast<short>(y + LIST_HEIGHT + MARGIN);
    dialog.Add(DIALOG_STATIC, SS_LEFT, MARGIN, static_cast<short>(y + 2), 90, LINE, 0xFFFF,
               L"&TAG of the marked peak:");
    dialog.Add(DIALOG_COMBO, WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, MARGIN + 92, y, inner - 92, LIST_HEIGHT,
               ID_TAG, L"");
    y = static_cast<short>(HEIGHT - MARGIN - BUTTON_HEIGHT);
    dialog.Add(DIALOG_BUTTON, BS_DEFPUSHBUTTON | WS_TABSTOP, WIDTH - 2 * (MARGIN + BUTTON_WIDTH), y, BUTTON_WIDTH,
               BUTTON_HEIGHT, IDOK, L"&Set bands");
    dialog.Add(DIALOG_BUTTON, BS_PUSHBUTTON | WS_TABSTOP, WIDTH - MARGIN - BUTTON_WIDTH, y, BUTTON_WIDTH, BUTTON_HEIGHT,
               IDCANCEL, L"Cancel");
    Asked asked = {plan, namer};
    return dialog.Run(owner, &Procedure, reinterpret_cast<LPARAM>(&asked)) == IDOK;
}

}  // namespace workbench
