#include "workbench/prompt_dialog.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

constexpr int id_entry = 100;
constexpr WORD class_button = 0x0080;
constexpr WORD class_edit = 0x0081;
constexpr WORD class_static = 0x0082;

/** A dialog template in memory, as the system reads it: 16-bit words, every control on a multiple of four bytes. */
class Template {
  public:
    Template(const std::wstring& title, short width, short height) {
        DLGTEMPLATE head = {};
        head.style = DS_SETFONT | DS_MODALFRAME | DS_CENTER | WS_POPUP | WS_CAPTION | WS_SYSMENU;
        head.cx = width;
        head.cy = height;
        Put(&head, sizeof head);
        words.insert(words.end(), {0, 0});  // no menu, the system's class
        Put_Text(title);
        words.push_back(9);  // size of the font, points
        Put_Text(L"MS Shell Dlg");
    }
    void Add(WORD window_class, DWORD style, short x, short y, short width, short height, WORD id,
             const std::wstring& text) {
        if (words.size() % 2 != 0) {
            words.push_back(0);
        }
        DLGITEMTEMPLATE item = {};
        item.style = style | WS_CHILD | WS_VISIBLE;
        item.x = x;
        item.y = y;
        item.cx = width;
        item.cy = height;
        item.id = id;
        Put(&item, sizeof item);
        words.insert(words.end(), {0xFFFF, window_class});
        Put_Text(text);
        words.push_back(0);  // no creation data
        ++count;
    }
    const DLGTEMPLATE* Finish() {
        auto* head = reinterpret_cast<DLGTEMPLATE*>(words.data());
        head->cdit = count;
        return head;
    }

  private:
    void Put(const void* bytes, std::size_t size) {
        const std::size_t at = words.size();
        words.resize(at + size / sizeof(WORD));
        std::memcpy(words.data() + at, bytes, size);
    }
    void Put_Text(const std::wstring& text) {
        for (const wchar_t unit : text) {
            words.push_back(static_cast<WORD>(unit));
        }
        words.push_back(0);
    }
    std::vector<WORD> words;
    WORD count = 0;
};

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongPtrW(dialog, GWLP_USERDATA, lparam);
        const auto* answer = reinterpret_cast<std::wstring*>(lparam);
        ::SetDlgItemTextW(dialog, id_entry, answer->c_str());
        ::SendDlgItemMessageW(dialog, id_entry, EM_SETSEL, 0, -1);
        ::SetFocus(::GetDlgItem(dialog, id_entry));
        return FALSE;
    }
    if (message != WM_COMMAND) {
        return FALSE;
    }
    const int id = LOWORD(wparam);
    if (id == IDOK) {
        auto* answer = reinterpret_cast<std::wstring*>(::GetWindowLongPtrW(dialog, GWLP_USERDATA));
        wchar_t text[512] = {};
        ::GetDlgItemTextW(dialog, id_entry, text, 512);
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
    Template dialog(title, 220, 66);
    dialog.Add(class_static, SS_LEFT, 8, 7, 204, 10, 0xFFFF, question);
    dialog.Add(class_edit, WS_BORDER | WS_TABSTOP | ES_AUTOHSCROLL, 8, 20, 204, 13, id_entry, L"");
    dialog.Add(class_button, BS_DEFPUSHBUTTON | WS_TABSTOP, 108, 44, 50, 14, IDOK, L"OK");
    dialog.Add(class_button, BS_PUSHBUTTON | WS_TABSTOP, 162, 44, 50, 14, IDCANCEL, L"Cancel");
    std::wstring answer = start;
    const INT_PTR result = ::DialogBoxIndirectParamW(::GetModuleHandleW(nullptr), dialog.Finish(), owner, &Procedure,
                                                     reinterpret_cast<LPARAM>(&answer));
    if (result != IDOK) {
        return std::nullopt;
    }
    return answer;
}
