/** Asks the user to choose between several ways to go on. */
#pragma once

#include "base/gdi_handles.h"

#include <string>
#include <vector>

namespace workbench {

/** Runs a modal dialog with one button per way; the first one is pressed by Enter.
 *  @param text lines separated by \n @param ways what the buttons say, with marks for their letters
 *  @return index of the way; -1: closed, or Escape */
int Choice_Ask(HWND owner, const std::wstring& title, const std::wstring& text, const std::vector<std::wstring>& ways);

}  // namespace workbench
