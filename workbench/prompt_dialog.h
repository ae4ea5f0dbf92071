/** Asks the user for one line of text. */
#pragma once

#include "base/gdi_handles.h"

#include <optional>
#include <string>

namespace workbench {

/** @param start offered, selected @return what was entered; no value when the user gave up */
std::optional<std::wstring> Prompt(HWND owner, const std::wstring& title, const std::wstring& question,
                                   const std::wstring& start);

}  // namespace workbench
