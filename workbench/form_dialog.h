/** Asks the user for several lines of text at once. */
#pragma once

#include "base/gdi_handles.h"

#include <string>
#include <vector>

namespace workbench {

struct Form_Line {
    std::wstring label;  ///< with the mark of its letter
    std::wstring value;
};

/** Runs a message loop. @param text stands above the lines @param lines offered; receive what was entered
 *  @param ways what the buttons say, besides "Close"; Enter presses the first
 *  @return index of a way; -1: closed */
int Form_Ask(HWND owner, const std::wstring& title, const std::wstring& text, std::vector<Form_Line>& lines,
             const std::vector<std::wstring>& ways);

}  // namespace workbench
