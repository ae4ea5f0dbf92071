/** Asks the user to choose a line of a list. */
#pragma once

#include "base/gdi_handles.h"

#include <string>
#include <vector>

namespace workbench {

/** Runs a modal dialog. @param label stands above the list @param current the line that is marked at first
 *  @param accept what the button says that takes the line
 *  @return index of the line; -1: given up */
int List_Choice_Ask(HWND owner, const std::wstring& title, const std::wstring& label,
                    const std::vector<std::wstring>& lines, int current, const wchar_t* accept = L"&Go there");

/** The same for several lines, marked as lists of files let mark them; the first one is at the beginning.
 *  @return indices of the lines; none: given up */
std::vector<int> List_Choices_Ask(HWND owner, const std::wstring& title, const std::wstring& label,
                                  const std::vector<std::wstring>& lines, const wchar_t* accept);

}  // namespace workbench
