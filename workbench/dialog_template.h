/** A dialog template in memory, as the system reads it: 16-bit words, every control on a multiple of four bytes. */
#pragma once

#include "base/gdi_handles.h"

#include <string>
#include <vector>

namespace workbench {

inline constexpr WORD DIALOG_BUTTON = 0x0080;  ///< window classes by number
inline constexpr WORD DIALOG_EDIT = 0x0081;
inline constexpr WORD DIALOG_STATIC = 0x0082;
inline constexpr WORD DIALOG_LIST = 0x0083;
inline constexpr WORD DIALOG_COMBO = 0x0085;

/** Places and sizes are in dialog units, which grow with the font and so with the screen's resolution. */
class Dialog_Template {
  public:
    Dialog_Template(const std::wstring& title, short width, short height);
    void Add(WORD window_class, DWORD style, short x, short y, short width, short height, WORD id,
             const std::wstring& text);
    /** Asks, in the colours of the theme. Runs a modal loop. @param owner may be null
     *  @param procedure as the system's, with GWLP_USERDATA of the dialog to itself; DWLP_USER is taken
     *  @param data what it gets with WM_INITDIALOG @return what the dialog ended with, -1: it could not be shown */
    INT_PTR Run(HWND owner, DLGPROC procedure, LPARAM data = 0);

  private:
    const DLGTEMPLATE* Finish();
    void Put(const void* bytes, std::size_t size);
    void Put_Text(const std::wstring& text);
    std::vector<WORD> words;
    WORD count = 0;
};

}  // namespace workbench
