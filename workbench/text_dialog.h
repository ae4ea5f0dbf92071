/** Shows a long text that can be scrolled, read aloud and copied. */
#pragma once

#include "base/gdi_handles.h"

#include <string>
#include <vector>

namespace workbench {

/** What becomes of lines that are longer than the field is wide. */
enum class Long_Lines { Broken, Scrolled };

/** @param lines separated by \n @param font outlives the call @param choices further buttons beside "Close", with marks
 *  for their letters
 *  @return index of the button that was pressed; -1: closed */
int Text_Show(HWND owner, const std::wstring& title, const std::wstring& lines, HFONT font,
              const std::vector<std::wstring>& choices = {}, Long_Lines long_lines = Long_Lines::Broken);

}  // namespace workbench
