/** Asks the user for a folder. */
#pragma once

#include <filesystem>
#include <optional>

#include "base/gdi_handles.h"

namespace workbench {

/** The system's dialog for files, which shows folders only. @return no value: the user gave up, or the system has no
 *  such dialog */
std::optional<std::filesystem::path> Ask_Folder(HWND owner, const wchar_t* title);

}  // namespace workbench
