/** Asks the user for the name of a file to read or to write. */
#pragma once

#include "base/gdi_handles.h"

#include <filesystem>
#include <optional>

namespace workbench {

/** Of the system's dialogs: pairs of what a line says and the patterns that it means, each ended by a 0, and a 0. */
using File_Filter = const wchar_t*;

/** Runs the system's dialog for a file that is there. @return no value: given up */
std::optional<std::filesystem::path> Open_Ask(HWND owner, const wchar_t* title, File_Filter filter);

/** Runs the system's dialog for a file to write; the user has agreed when it is there already.
 *  @param start what is offered; a folder of it that is gone is left out
 *  @param ending for a name without one: "csv"; null: none */
std::optional<std::filesystem::path> Save_Ask(HWND owner, const wchar_t* title, File_Filter filter,
                                              std::filesystem::path start, const wchar_t* ending = nullptr);

}  // namespace workbench
