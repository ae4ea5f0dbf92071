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
    /** @return valid while the object lives and nothing is added */
    const DLGTEMPLATE* Finish();

  private:
    void Put(const void* bytes, std::size_t size);
    void Put_Text(const std::wstring& text);
    std::vector<WORD> words;
    WORD count = 0;
};

}  // namespace workbench
