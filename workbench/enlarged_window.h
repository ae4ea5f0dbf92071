/** The panels' enlarged histogram window, as the application meets it among its messages. */
#pragma once

#include <windows.h>

#include "workbench/model/settings.h"

namespace workbench {

/** True when it is such a window; null is none. */
bool Is_Enlarged_Window(HWND window);

/** Says where the window opens. @param main the main window, already in its place @param tools width of what at its
 * left must stay free @param kept where it stood last; without width: beside the main window */
void Enlarged_Place_Set(HWND main, int tools, const Window_Place& kept);
/** Where it stands, or stood last; without width when it was never open. */
Window_Place Enlarged_Place_Now();

}  // namespace workbench
